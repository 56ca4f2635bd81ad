// Backups, find and the window-wide editing commands of the editor pool.
#include "editor/Backups.h"
#include "editor/BusyCursor.h"
#include "editor/EditorPool.h"
#include "editor/FileFilters.h"
#include "editor/RecentFiles.h"
#include "app/FilePaths.h"
#include "editor/SourceFile.h"
#include <QFileInfo>
#include <QFontMetrics>
#include <QProcess>
#include <QStandardPaths>

namespace kvr {

QString TooLongForOperation()
{
    return QStringLiteral("The source text in this window is too long for this operation");
}

EditorView *EditorPool::NamedDocument(int index, const QString &command)
{
    EditorView *view = Document(index);
    if (view && IsUnnamed(view->Caption())) {
        m_context.prompts.Message(QStringLiteral("Name the source file with 'Save As' before using '")
                                      + command + QLatin1Char('\''),
                                  PromptIcon::Information);
        return nullptr;
    }
    return view;
}

void EditorPool::Backup(int index)
{
    EditorView *view = NamedDocument(index, QStringLiteral("Backup"));
    if (!view)
        return;
    const QString caption = DiskName(index);
    if (view->Text().isEmpty()) {
        m_context.prompts.Message(QStringLiteral("This source window has no text"),
                                  PromptIcon::Exclamation);
        return;
    }
    BackupScan scan;
    {
        BusyCursor busy;
        scan = ScanHighestBackup(caption);
    }
    const int next = scan.highest + 1;
    if (next > 999) {
        m_context.prompts.Message(QStringLiteral("Can't make back-up file, ") + m_workingFileName
                                      + QStringLiteral(".999.KVR already exists"),
                                  PromptIcon::Information);
        return;
    }
    if (scan.stoppedByError) {
        m_context.prompts.Message(QStringLiteral("Can't make back-up file, ") + scan.description,
                                  PromptIcon::Information);
        return;
    }
    QString directory;
    QString name;
    SplitPath(BackupName(caption, next), directory, name);
    m_backupDirectory[index] = directory;
    const std::optional<QString> answer = m_context.prompts.Input(
        QStringLiteral("Enter backup file name, the one suggested is the next in sequence."),
        AppTitle, name);
    if (!answer || answer->isEmpty())
        return;
    SaveFile(directory + QLatin1Char('/') + *answer, index, true);
}

QStringList EditorPool::KeepChangedTextAsBackups()
{
    QStringList said;
    for (int index : OpenIndexes()) {
        if (!m_fstate[index].Dirty)
            continue;
        const EditorView *view = m_document[index];
        const QString file = IsUnnamed(view->Caption())
                                 ? m_context.paths.ProgramFolder() + QStringLiteral("UNTITLED.KVR")
                                 : DiskName(index);
        const BackupScan scan = ScanHighestBackup(file);
        QString failure;
        QString backup;
        if (scan.stoppedByError) {
            failure = scan.description;
        } else if (scan.highest >= 999) {
            failure = BackupName(file, 999) + QStringLiteral(" already exists");
        } else {
            backup = ResolvePath(BackupName(file, scan.highest + 1));
            const SaveResult saved = SaveWholeFile(backup, SourceBytesForSave(view->Text()));
            if (!saved.Ok())
                failure = saved.description;
        }
        if (failure.isEmpty()) {
            m_fstate[index].Dirty = false;
            said << view->Caption() + QStringLiteral(": kept in ") + backup;
        } else {
            said << view->Caption() + QStringLiteral(": not kept, ") + failure;
        }
    }
    return said;
}

void EditorPool::Restore(int index)
{
    EditorView *view = NamedDocument(index, QStringLiteral("Restore"));
    if (!view)
        return;
    const QString caption = DiskName(index);
    BackupScan scan;
    QStringList names;
    {
        BusyCursor busy;
        scan = ScanAllBackups(caption);
        for (int n : scan.numbers) {
            QString directory;
            QString name;
            SplitPath(BackupName(caption, n), directory, name);
            m_backupDirectory[index] = directory;
            names << name;
        }
    }
    if (names.isEmpty()) {
        if (!scan.stoppedByError)
            m_context.prompts.Message(QStringLiteral("No backups have been made of ") + view->Caption(),
                                      PromptIcon::Exclamation);
        else
            m_context.prompts.Message(QStringLiteral("Error: ") + scan.description,
                                      PromptIcon::Exclamation);
        return;
    }
    view->ShowBackups(names, static_cast<int>(names.size()) - 1);
}

bool EditorPool::FitsOrSays(const EditorView *view, int removed, qsizetype added)
{
    if (view->Text().size() - removed + added <= MaxTextLength)
        return true;
    m_context.prompts.Message(TooLongForOperation(), PromptIcon::Information);
    return false;
}

void EditorPool::RestoreChosen(int index, const QString &entry)
{
    EditorView *view = Document(index);
    if (!view)
        return;
    const PromptAnswer answer = m_context.prompts.Message(
        QStringLiteral("Do you really want to overwrite displayed source code?"),
        PromptIcon::Question, PromptButtons::YesNo);
    view->HideBackups();
    if (answer != PromptAnswer::Yes)
        return;
    BusyCursor busy;
    m_workingFileName = m_backupDirectory[index] + QLatin1Char('/') + entry;
    const ReadResult read = ReadSourceFile(m_workingFileName);
    if (!read.ok) {
        m_context.prompts.Message(QStringLiteral("Error: ") + read.description,
                                  PromptIcon::Exclamation);
        return;
    }
    // Taken as it stands: no line checks, no trimming, no cut. A backup
    // of a full window may end in the CR LF that saving added, one more
    // than the window holds: that pair alone is let go. Anything longer
    // is refused whole rather than cut.
    QString restored = ToCrLf(read.content);
    if (restored.size() == MaxTextLength + 2 && restored.endsWith(QLatin1String("\r\n")))
        restored.chop(2);
    if (!FitsOrSays(view, static_cast<int>(view->Text().size()), restored.size()))
        return;
    EditAction action;
    action.changesText = true;
    action.start = 0;
    action.removed = static_cast<int>(view->Text().size());
    action.inserted = restored;
    view->Apply(action);
    m_fstate[index].Dirty = true;
}

void EditorPool::RestoreCancelled(int index)
{
    if (EditorView *view = Document(index))
        view->HideBackups();
}

void EditorPool::TextChanged(int index)
{
    if (index >= 1 && index < m_fstate.size())
        m_fstate[index].Dirty = true;
}

void EditorPool::GotFocus(int index)
{
    if (!IsOpen(index))
        return;
    m_active = index;
    const QString caption = m_document[index]->Caption();
    if (!IsUnnamed(caption))
        m_context.settings.currentFile = caption;
}

void EditorPool::LineTooLong()
{
    if (!m_context.settings.IsOn(m_context.settings.quiet))
        m_context.prompts.Beep();
    m_context.prompts.Message(QStringLiteral("Line too long. Shorten to 80 characters maximum."),
                              PromptIcon::Exclamation);
}

void EditorPool::ActivateNext(int index)
{
    const QList<int> open = OpenIndexes();
    if (open.isEmpty())
        return;
    int next = open.first();
    for (int i : open) {
        if (i > index) {
            next = i;
            break;
        }
    }
    m_active = next;
    m_document[next]->Activate();
}

void EditorPool::InsertFile(int index)
{
    EditorView *view = Document(index);
    if (!view)
        return;
    const QString name = m_context.prompts.OpenFileName(
        QStringLiteral("Insert file"), QtFilter(InsertFileFilter), QString());
    if (name.isEmpty())
        return;
    // Line ends never shrink on the way in: a file of more bytes than a
    // window holds cannot fit and is not read at all.
    const ReadResult read = ReadSourceFile(name, MaxTextLength);
    if (read.tooLarge) {
        m_context.prompts.Message(TooLongForOperation(), PromptIcon::Information);
        return;
    }
    if (!read.ok) {
        m_context.prompts.Message(CantOpenFile(name, read.description), PromptIcon::Information);
        return;
    }
    const QString inserted = ToCrLf(read.content);
    if (!FitsOrSays(view, view->SelLength(), inserted.size()))
        return;
    EditAction action;
    action.changesText = true;
    action.start = view->SelStart();
    action.removed = view->SelLength();
    action.inserted = inserted;
    action.selStart = action.start + static_cast<int>(inserted.size());
    view->Apply(action);
}

void EditorPool::InsertDateStamp(int index)
{
    EditorView *view = Document(index);
    if (!view)
        return;
    EditAction action;
    action.changesText = true;
    action.start = view->SelStart();
    action.removed = view->SelLength();
    action.inserted = DateStamp(QDateTime::currentDateTime());
    if (!FitsOrSays(view, action.removed, action.inserted.size()))
        return;
    action.selStart = action.start + static_cast<int>(action.inserted.size());
    view->Apply(action);
}

void EditorPool::Halt()
{
    m_context.compileOutcome = CompileOutcome::HaltRequested;
    emit HaltRequested();
}

void EditorPool::TabPressedWithoutSpaces()
{
    emit TerminalFocusRequested();
}

int EditorPool::TabSpaces() const
{
    return TabSpacesValue(m_context.settings.tabSpaces);
}

void EditorPool::SetTabSpaces(int spaces)
{
    m_context.settings.tabSpaces = QString::number(TabSpacesValue(QString::number(spaces)));
    m_context.WriteSettings();
    for (int index : OpenIndexes())
        m_document[index]->RefreshOptions();
}

QColor EditorPool::EditorColor(bool foreground) const
{
    return m_context.settings.Color(ColorWindow::Editor, foreground);
}

void EditorPool::ChooseEditorColor(bool foreground)
{
    const std::optional<QColor> chosen = m_context.prompts.Color(
        EditorColor(foreground), foreground ? QStringLiteral("Source code foreground color")
                                            : QStringLiteral("Source code background color"));
    if (!chosen)
        return;
    m_context.settings.SetColor(ColorWindow::Editor, foreground, *chosen);
    m_context.WriteSettings();
    for (int index : OpenIndexes()) {
        m_fstate[index].Color = EditorColor(false).rgb();
        m_document[index]->RefreshOptions();
    }
}

void EditorPool::ChooseEditorFont()
{
    const std::optional<QFont> chosen = m_context.prompts.Font(m_font);
    if (!chosen)
        return;
    const QFontMetrics metrics(*chosen);
    if (metrics.horizontalAdvance(QLatin1Char('i')) != metrics.horizontalAdvance(QLatin1Char('M')))
        m_context.prompts.Message(
            QStringLiteral("The font '") + chosen->family()
                + QStringLiteral("' is proportional so maximum line lengths will be different "
                                 "depending on content. Monospaced fonts are usually preferable "
                                 "for source code."),
            PromptIcon::Information);
    SetEditorFont(*chosen);
    m_context.settings.SetTextFont(*chosen);
    m_context.WriteSettings();
}

void EditorPool::SetEditorFont(const QFont &font)
{
    m_font = font;
    for (int index : OpenIndexes())
        m_document[index]->RefreshOptions();
}

void EditorPool::ChooseExternalEditor()
{
    // Programs here rarely carry those endings: every file is offered too.
    const QString name = m_context.prompts.OpenFileName(
        QStringLiteral("External editor"),
        QtFilter(QStringLiteral("EXE files (*.exe)|*.exe|COM files (*.com)|*.com|All files (*.*)|*.*")),
        QFileInfo(m_context.settings.externalEditor).absolutePath());
    if (name.isEmpty())
        return;
    m_context.settings.externalEditor = name;
    m_context.WriteSettings();
}

void EditorPool::StartExternalEditor()
{
    const QString configured = m_context.settings.externalEditor;
    // The Windows default names Notepad; the desktop's own editor stands in.
    const QString program = configured.endsWith(QLatin1String("NOTEPAD.EXE"), Qt::CaseInsensitive)
        ? QStringLiteral("xdg-open")
        : configured;
    const bool found = QFileInfo(program).isAbsolute()
        ? QFileInfo(program).isFile() && QFileInfo(program).isExecutable()
        : !QStandardPaths::findExecutable(program).isEmpty();
    QStringList arguments;
    const QString file = m_context.settings.currentFile;
    if (!file.isEmpty() && !IsUnusedEntry(file))
        arguments << ResolvePath(file);
    if (!found || !QProcess::startDetached(program, arguments))
        m_context.prompts.Message(QStringLiteral("Editor program ") + configured
                                      + QStringLiteral(" not found.\r\n")
                                      + QStringLiteral("Select using editor window options menu."),
                                  PromptIcon::Exclamation);
}

void EditorPool::ShowFind(int index)
{
    EditorView *view = Document(index);
    const QString selected = view && view->SelLength() > 0
        ? view->Text().mid(view->SelStart(), view->SelLength())
        : QString();
    m_find.gFirstTime = true;
    m_find.gFindDirection = 1;
    emit FindDialogRequested(FindPrefill(m_find, selected));
}

void EditorPool::FindNext(int index)
{
    if (m_find.gFindString.isEmpty()) {
        ShowFind(index);
        return;
    }
    FindFromDialog(m_find.gFindString);
}

bool EditorPool::FindFromDialog(const QString &findString)
{
    m_find.gFindString = findString;
    EditorView *view = Document(m_active);
    if (!view)
        return true;
    int selStart = view->SelStart();
    int selLength = view->SelLength();
    const bool going = FindIt(m_find, view->Text(), selStart, selLength, m_context.prompts);
    view->Select(selStart, selLength);
    m_find.gCurPos = view->SelStart();
    return going;
}

} // namespace kvr
