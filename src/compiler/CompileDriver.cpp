#include "compiler/CompileDriver.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/SafeSave.h"
#include "compiler/RunReplay.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceFiles.h"
#include "compiler/SourceText.h"
#include "editor/EditorHost.h"
#include "link/Link.h"
#include "link/TerminalHost.h"
#include <QCoreApplication>
#include <QDir>
#include <QCursor>
#include <QGuiApplication>

namespace kvr {

namespace {

// The hourglass, where there is a screen to show it on.
class BusyPointer {
public:
    BusyPointer()
    {
        m_shown = qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
        if (m_shown)
            QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
    }
    ~BusyPointer()
    {
        if (m_shown)
            QGuiApplication::restoreOverrideCursor();
    }
    BusyPointer(const BusyPointer &) = delete;
    BusyPointer &operator=(const BusyPointer &) = delete;

private:
    bool m_shown = false;
};

const QString TerminalType = QStringLiteral("Terminal");

} // namespace

int LastDefinitionStart(const QString &text, int cursor)
{
    int p = std::clamp(cursor, 0, static_cast<int>(text.size()));
    while (p > 0) {
        if (QStringView(text).mid(p, 2) == QLatin1String(": ") && text[p - 1] == QLatin1Char('\n'))
            break;
        --p;
    }
    return p;
}

CompileDriver::CompileDriver(AppContext &context, Link &link, TerminalHost *terminal, EditorHost *editor,
                             CompileReport &report, QObject *parent)
    : QObject(parent), m_context(context), m_link(link), m_terminal(terminal), m_editor(editor),
      m_report(report), m_engine(context, link, terminal, report, m_state)
{
    m_engine.SetDefaultSearchPaths(DefaultSearchPaths(context.paths));
    m_state.noDisplay = context.settings.IsOn(context.settings.noCompileDisplay);
    // Every run leaves its record, so that one stopped by the board can continue.
    connect(this, &CompileDriver::RunStarted, this, [this](const QString &path) { m_record.Begin(path); });
    connect(&m_engine.Events(), &CompileEvents::LineSent, this,
            [this](const QString &file, int line, const QString &text) { m_record.Add(file, line, text); });
    connect(this, &CompileDriver::RunEnded, this, [this](RunEnd end) {
        m_record.end = end;
        m_record.Save(RunRecordPath());
    });
}

QString CompileDriver::RunRecordPath() const
{
    return m_context.paths.WindowsFolder() + QStringLiteral("kvr-pc-run.json");
}

QString CompileDriver::TryContinue(const QString &path)
{
    const std::optional<RunRecord> record = RunRecord::Load(RunRecordPath());
    if (!record || record->topLevelFile != path)
        return QStringLiteral("There is no stopped compile of %1 to continue.").arg(path);
    if (record->end == RunEnd::Finished)
        return QStringLiteral("The last compile of %1 finished; there is nothing to continue.").arg(path);
    if (record->end != RunEnd::BoardError)
        return QStringLiteral("The last compile of %1 did not stop on a board error; there is nothing to continue.")
            .arg(path);

    RunReplay replay(*record);
    m_engine.SetReplay(&replay);
    CompileFile(path);
    m_engine.SetReplay(nullptr);
    // Nothing went to the board: the stopped run can still be continued.
    if (!replay.Resumed())
        record->Save(RunRecordPath());
    if (!replay.Changed())
        return {};
    const QString place = replay.ChangedLine() > 0
                              ? QStringLiteral("%1 line %2").arg(replay.ChangedFile()).arg(replay.ChangedLine())
                              : replay.ChangedFile();
    return QStringLiteral("%1 has changed since the last compile of %2, so it cannot continue.").arg(place, path);
}

void CompileDriver::ContinueLastCompile()
{
    if (RefuseTerminalMode())
        return;
    if (m_editor)
        m_editor->SaveBeforeCompile(0); // saves what changed, leaves the current file as it is
    const std::optional<RunRecord> record = RunRecord::Load(RunRecordPath());
    const QString path = record ? record->topLevelFile : m_context.settings.currentFile;
    const QString reason = TryContinue(path);
    if (reason.isEmpty())
        return;
    if (m_context.prompts.Message(reason + QStringLiteral("\n\nCompile the whole program from the start?"),
                                  PromptIcon::Question, PromptButtons::YesNo)
        == PromptAnswer::Yes)
        CompileFile(path);
}

void CompileDriver::TerminalModeMessage()
{
    m_context.prompts.Message(AppTitle + QStringLiteral(" is in Terminal emulator, not development mode. "
                                                        "Select computer using interactive window options menu."),
                              PromptIcon::Exclamation);
}

bool CompileDriver::RefuseTerminalMode()
{
    if (m_context.settings.computerType != TerminalType)
        return false;
    TerminalModeMessage();
    return true;
}

void CompileDriver::CompileFile(const QString &path)
{
    m_selection = std::exchange(m_nextSelection, {});
    if (m_context.busyState == BusyState::BuildingDatabase) {
        m_context.prompts.Message(QStringLiteral("Wait until database complete before compiling"),
                                  PromptIcon::Exclamation);
        return;
    }
    if (path.right(4) != QLatin1String(".KVR")) {
        m_context.prompts.Message(QStringLiteral("Extension not .KVR, can not compile"), PromptIcon::Exclamation);
        return;
    }

    m_context.busyState = BusyState::Compiling;
    if (m_terminal)
        m_terminal->SetInputTimerEnabled(false);
    m_report.ClearReport();
    if (m_terminal)
        m_terminal->BringForward();
    m_report.BringForward();

    m_context.compileOutcome = CompileOutcome::Running;
    m_state.compiledFiles.clear();

    const SplitResult split = SplitPath(path);
    m_state.topLevelFolder = split.folder;
    QDir::setCurrent(ResolvePath(split.folder));

    m_state.files.CloseAll(); // whatever an interrupted earlier run left open
    m_state.topLevelFile = path;
    m_state.includeStack[0] = IncludeEntry{0, 0, path, 0};
    m_state.suspendedCount = 0;
    m_state.conditionValue.clear();
    m_state.conditionalState = 0;
    m_state.ResetQuietLineBuffer();
    m_state.shownLine.clear();
    // After a time-out the last reply is judged again: it must be this run's.
    m_state.replyLine.clear();
    m_state.runEnd = RunEnd::None;
    m_state.linesSent = 0;
    m_state.noDisplay = m_context.settings.IsOn(m_context.settings.noCompileDisplay);

    if (m_state.noDisplay && m_terminal) {
        m_state.progressCapacity = m_terminal->ProgressCapacity();
        m_terminal->SetProgressText(QString());
        m_terminal->SetProgressVisible(true);
    }
    emit RunStarted(path);

    do {
        m_engine.CompileNextLine(m_state.CurrentFile());
        QCoreApplication::processEvents();
    } while (m_state.Running());

    if (m_terminal) {
        m_terminal->SetInputTimerEnabled(true);
        m_terminal->SetProgressVisible(false);
    }
    m_report.BringForward();

    if (m_context.compileOutcome == CompileOutcome::Error && m_editor) {
        if (!ShowErrorLine()) {
            m_editor->LoadFile(m_state.CurrentFile());
            ShowErrorLine();
        }
    }
    m_context.busyState = BusyState::Idle;
    emit RunEnded(m_state.runEnd);
}

bool CompileDriver::ShowErrorLine()
{
    return ShowSourceLine(m_state.CurrentFile(), ErrorLineNumber(m_report.LastLine()));
}

bool CompileDriver::ShowReportLine(int row)
{
    const ReportEvent event = m_report.Event(row);
    if (!m_editor || event.file.isEmpty() || event.line <= 0)
        return false;
    if (ShowSourceLine(event.file, event.line))
        return true;
    m_editor->OpenFile(event.file);
    return ShowSourceLine(event.file, event.line);
}

bool CompileDriver::IsSelectionFile(const QString &file) const
{
    return LogicalName(file) == LogicalName(SelectedFilePath());
}

bool CompileDriver::ShowSourceLine(const QString &file, int line)
{
    if (!m_editor)
        return false;
    QString caption = file;
    // The scratch file is not what the user edits: the line is shown in the
    // window the selection came from, while that window is there.
    if (IsSelectionFile(file) && m_selection.index
        && m_editor->Caption(m_selection.index) == m_selection.caption) {
        caption = m_selection.caption;
        line += m_selection.firstLine - 1;
    }
    if (!m_editor->ShowLine(caption, line))
        return false;
    m_lastErrorEditor = m_editor->ActiveIndex();
    return true;
}

QString CompileDriver::SelectedFilePath() const
{
    return m_context.paths.ProgramFolder() + QStringLiteral("SELECTED.KVR");
}

void CompileDriver::CompileSelection(int index)
{
    if (!m_editor)
        return;
    BusyPointer busy;
    const QString text = m_editor->Text(index).mid(m_editor->SelStart(index), m_editor->SelLength(index));
    const QString path = SelectedFilePath();
    const SaveResult saved = SaveWholeFile(ResolvePath(path), (text + QStringLiteral("\r\n\r\n")).toLatin1());
    if (!saved.Ok()) {
        m_context.prompts.Message(QStringLiteral("Error: ") + saved.description, PromptIcon::Critical);
        return;
    }
    m_editor->SaveBeforeCompile(index);
    const QString before = m_editor->Text(index).left(m_editor->SelStart(index));
    m_nextSelection = {index, m_editor->Caption(index), static_cast<int>(before.count(QLatin1Char('\n'))) + 1};
    CompileFile(path.toUpper());
}

void CompileDriver::CompileThisWindow(int index)
{
    if (RefuseTerminalMode())
        return;
    if (m_editor)
        m_editor->SaveBeforeCompile(index);
    CompileFile(m_context.settings.currentFile);
}

void CompileDriver::CompileSelected(int index)
{
    if (RefuseTerminalMode() || !m_editor)
        return;
    if (m_editor->SelLength(index) <= 0) {
        m_context.prompts.Message(QStringLiteral("No text selected. Mark text to compile first."),
                                  PromptIcon::Information);
        return;
    }
    CompileSelection(index);
}

void CompileDriver::CompileFromLastDefinition(int index)
{
    if (!m_editor)
        return;
    const QString text = m_editor->Text(index);
    const int start = LastDefinitionStart(text, m_editor->SelStart(index));
    m_editor->Select(index, start, static_cast<int>(text.size()) - start);
    CompileSelection(index);
}

void CompileDriver::CompileRecentFile(int index, const QString &name)
{
    if (RefuseTerminalMode())
        return;
    if (m_editor)
        m_editor->SaveBeforeCompile(index);
    m_context.settings.currentFile = name;
    if (m_editor)
        m_editor->OpenFile(name);
    CompileFile(m_context.settings.currentFile);
}

void CompileDriver::ToggleQuickCompile(bool wasChecked)
{
    m_context.settings.quickCompile = wasChecked ? QStringLiteral("OFF") : QStringLiteral("ON");
    emit QuickCompileChanged(!wasChecked);
    m_context.WriteSettings();
}

void CompileDriver::ToggleNoCompileDisplay(bool wasChecked)
{
    m_context.settings.noCompileDisplay = wasChecked ? QStringLiteral("OFF") : QStringLiteral("ON");
    m_state.noDisplay = !wasChecked;
    emit NoCompileDisplayChanged(!wasChecked);
    m_context.WriteSettings();
}

void CompileDriver::HaltCompile()
{
    m_context.compileOutcome = CompileOutcome::HaltRequested;
    if (m_terminal) {
        m_terminal->SendInterrupt();
    } else {
        m_link.SendText(QString::fromLatin1("\x03\x11\x1b ;"), true);
        m_link.WaitForReply();
        m_link.SendText(QString(QChar(13)), false);
        m_link.WaitForReply();
    }
}

QString CompileDriver::FindProgramFile(const QString &name)
{
    QString found = name;
    SourceFiles files;
    int number = 0;
    const QString searchList =
        SearchList(m_state.topLevelFolder, m_context.settings.extraSearchPaths, DefaultSearchPaths(m_context.paths));
    if (!FindSourceFile(found, number, files, searchList, m_context.prompts))
        return QString();
    files.Close(number);
    return found;
}

} // namespace kvr
