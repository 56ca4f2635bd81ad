#include "compiler/LineEngine.h"
#include "compiler/ReplyChecks.h"
#include "app/AppContext.h"
#include "app/Text.h"
#include "compiler/ConditionalCompilation.h"
#include "compiler/RunReplay.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceText.h"
#include "link/Link.h"
#include "link/TerminalHost.h"
#include "link/WaitGuard.h"
#include <QRegularExpression>
#include <limits>

namespace kvr {

namespace {
const QString EndCommand = QStringLiteral("BASE @ HEX HERE U. BASE !");
constexpr int MaxLineLength = 80;

// The deadline of one wait; an odd setting (negative, huge, not a number)
// still gives a deadline the wrap-around tick comparison can use.
quint32 DeadlineAfterTimeout(Clock &clock, const QString &timeout)
{
    const double ms = std::clamp(Val(timeout), 0.0, double(std::numeric_limits<qint32>::max()));
    return clock.TickCount() + static_cast<quint32>(ms);
}

// Whether the reply to the end command shows HERE: hexadecimal digits after
// the echo and one blank, up to a blank or the end.
bool ShowsEndAddress(const QString &reply)
{
    static const QRegularExpression hexWord(QStringLiteral("^[0-9A-Fa-f]+( |$)"));
    return hexWord.match(QStringView(reply).mid(EndCommand.size() + 1)).hasMatch();
}
} // namespace

LineEngine::LineEngine(AppContext &context, Link &link, TerminalHost *terminal,
                       CompileReport &report, CompileState &state)
    : m_context(context), m_link(link), m_terminal(terminal), m_report(report), m_state(state),
      m_receiver(link, terminal, state), m_writeSettings([&context] { context.WriteSettings(); })
{
}

QString LineEngine::Prefix() const
{
    return ShortenPath(m_state.CurrentFile()) + QStringLiteral(" - line ")
           + QString::number(m_state.includeStack[0].lineNumber);
}

bool LineEngine::Replaying() const
{
    return m_replay && m_replay->Replaying();
}

void LineEngine::ResumeIfDue()
{
    if (!m_replay || !m_replay->TakeResume())
        return;
    const IncludeEntry &active = m_state.includeStack[0];
    m_report.AddReportLine(QStringLiteral("CONTINUED at ") + ShortenPath(active.name) + QStringLiteral(" line ")
                               + QString::number(active.lineNumber),
                           {QStringLiteral("continued"), active.name, active.lineNumber});
}

void LineEngine::Report(const QString &text, const QString &kind, bool withPosition)
{
    // The run being continued reported these already.
    if (Replaying())
        return;
    ReportEvent event{kind, m_state.CurrentFile(), withPosition ? m_state.includeStack[0].lineNumber : 0};
    m_report.AddReportLine(withPosition ? Prefix() + text : text, event);
}

void LineEngine::EndRun(RunEnd why)
{
    // Stopping short of the restart line means the program changed: nothing
    // was sent, so the run is refused rather than failed.
    if (Replaying() && why != RunEnd::Halted) {
        m_replay->StoppedAt(m_state.CurrentFile(), m_state.includeStack[0].lineNumber);
        why = RunEnd::None;
    }
    m_state.topLevelFile.clear();
    CloseSourceFiles();
    m_state.runEnd = why;
}

void LineEngine::CloseSourceFiles()
{
    const int last = std::min<int>(static_cast<int>(m_state.compiledFiles.size()), MaxIncludeFiles);
    for (int k = 0; k <= last; ++k)
        m_state.files.Close(m_state.includeStack[k].fileNumber);
}

void LineEngine::CompileNextLine(QString &fileName)
{
    IncludeEntry &active = m_state.includeStack[0];

    if (active.fileNumber == 0) {
        const QString searchList = SearchList(m_state.topLevelFolder, m_context.settings.extraSearchPaths,
                                              m_defaultSearchPaths);
        const bool found = FindSourceFile(fileName, active.fileNumber, m_state.files, searchList, m_context.prompts);
        active.name = fileName;
        if (!found) {
            // What to look at is the INCLUDE line that named the file.
            const IncludeEntry parent = m_state.suspendedCount > 0 ? m_state.includeStack[1] : IncludeEntry{};
            m_report.AddReportLine(QStringLiteral("HALTED COMPILE, FILE NOT FOUND: ") + ShortenPath(fileName),
                                   {QStringLiteral("file-not-found"), parent.name, parent.lineNumber});
            EndRun(RunEnd::FileNotFound);
            return;
        }
        active.lineNumber = 0;
        emit m_events.FileOpened(fileName);
    }

    if (m_state.files.AtEnd(active.fileNumber)) {
        EndOfFile(fileName);
    } else {
        QString line = RTrim(m_state.files.ReadLine(active.fileNumber));
        ++active.lineNumber;
        emit m_events.LineRead(active.name, active.lineNumber);
        const qsizetype firstNonBlank = line.size() - LTrim(line).size();
        if (line.size() > MaxLineLength) {
            Report(QStringLiteral(": OVER 80 CHARACTERS"), QStringLiteral("over-long"));
            EndRun(RunEnd::OverLong);
        } else if (line.isEmpty() || line[firstNonBlank] == QLatin1Char('\\')) {
            // Comment or empty line: nothing to do.
        } else if (line.startsWith(QLatin1String("QUICK "))) {
            QuickLine(line);
        } else if (line.startsWith(QLatin1String("INCLUDE "))) {
            IncludeLine(fileName, line);
        } else if (line.left(11).toUpper() == QLatin1String("#CONDITION ")) {
            m_state.conditionValue = ConditionWord(line);
        } else {
            BoardLine(line);
        }
    }
    HaltTest();
}

void LineEngine::EndOfFile(QString &fileName)
{
    IncludeEntry &active = m_state.includeStack[0];
    m_state.files.Close(active.fileNumber);
    // A top-level file found along the search list has another name than
    // the one the run started with; with no parent left it still ends the run.
    if (fileName != m_state.topLevelFile && m_state.suspendedCount > 0) {
        auto &stack = m_state.includeStack;
        stack[0] = stack[1];
        m_state.files.Seek(stack[0].fileNumber, stack[1].position);
        for (int k = 2; k <= MaxIncludeFiles; ++k)
            stack[k - 1] = stack[k];
        --m_state.suspendedCount;
        return;
    }
    // The program now ends before the line the continued run restarts at.
    if (Replaying()) {
        EndRun(RunEnd::None);
        return;
    }
    FinishTopLevel(fileName);
}

void LineEngine::FinishTopLevel(const QString &fileName)
{
    ResumeIfDue();
    EndRun(RunEnd::Finished);
    m_link.SendText(EndCommand, true);
    Clock &clock = m_context.clock;
    const quint32 deadline = DeadlineAfterTimeout(clock, m_context.settings.timeout);
    const WaitGuard guard;
    bool answered = false;
    while (!(answered = m_receiver.ReceiveLineQuiet()) && !m_context.closing && m_link.Usable()) {
        const quint32 now = clock.TickCount();
        if (!TickBefore(now, deadline))
            break;
        m_link.ServeWhileWaiting(deadline - now);
    }
    // The report keeps whatever stands there; callers that trust the end
    // address must know when the board never gave one.
    if (!answered || !ShowsEndAddress(m_state.replyLine))
        m_state.runEnd = RunEnd::EndUnconfirmed;
    const QString address = m_state.replyLine.mid(26, 4);
    const QString upper = fileName.toUpper();
    if (!upper.contains(QLatin1String("PROGMOT.KVR")) && !upper.contains(QLatin1String("PROGINT.KVR")))
        m_state.endOfProgramAddress = address;
    m_report.AddReportLine(ShortenPath(fileName) + QStringLiteral(" - FINISHED at ") + address,
                           {QStringLiteral("finished"), fileName, 0});
    m_link.Pause(0.3);
    m_link.BeepUnlessQuiet();
    if (m_terminal)
        m_terminal->BringForward();
}

void LineEngine::QuickLine(const QString &line)
{
    Settings &settings = m_context.settings;
    const bool on = RTrim(line.mid(6, 3)) == QLatin1String("ON");
    const QString value = on ? QStringLiteral("ON") : QStringLiteral("OFF");
    settings.quickCompile = value;
    settings.noCompileDisplay = value;
    m_state.noDisplay = on;
    if (m_terminal)
        m_terminal->SetProgressVisible(on);
    if (m_writeSettings)
        m_writeSettings();
    Report(QStringLiteral(": ") + line.left(9), QStringLiteral("quick"));
}

void LineEngine::IncludeLine(QString &fileName, const QString &line)
{
    const QString name = IncludeName(line);
    if (m_state.compiledFiles.contains(name)) {
        Report(QStringLiteral(": FILE ") + name + QStringLiteral(" ALREADY COMPILED"),
               QStringLiteral("already-compiled"));
        return;
    }
    if (m_state.compiledFiles.size() >= MaxIncludeFiles)
        return;
    Report(QStringLiteral(": FILE ") + name + QStringLiteral(" INCLUDED"), QStringLiteral("included"));
    m_state.compiledFiles.append(name);

    auto &stack = m_state.includeStack;
    for (int k = MaxIncludeFiles; k >= 2; --k)
        stack[k] = stack[k - 1];
    stack[1] = stack[0];
    stack[1].position = m_state.files.Position(stack[0].fileNumber);
    stack[1].name = fileName;
    ++m_state.suspendedCount;
    stack[0] = IncludeEntry{};
    fileName = name;
    stack[0].name = name;
}

void LineEngine::BoardLine(QString line)
{
    const int r = EvaluateDirective(line, m_state.conditionalState, m_state.conditionValue);
    if (r == -1) {
        // Before the restart line it is a change to report, not a line to show.
        if (!Replaying())
            m_context.compileOutcome = CompileOutcome::Error;
        Report(QStringLiteral(": CONDITIONAL COMPILATION ERROR"), QStringLiteral("conditional-error"));
        EndRun(RunEnd::ConditionalError);
        return;
    }
    if (r != 1)
        return;
    if (m_context.settings.quickCompile.left(2) == QLatin1String("ON"))
        CompactLine(line);
    if (line.isEmpty())
        return;
    const IncludeEntry &active = m_state.includeStack[0];
    if (Replaying()) {
        if (m_replay->Match(active.name, active.lineNumber, line))
            emit m_events.LineSent(active.name, active.lineNumber, line); // the board has it already
        else
            EndRun(RunEnd::None);
        return;
    }
    ResumeIfDue();

    m_link.SendText(line, true);
    ++m_state.linesSent;
    emit m_events.LineSent(active.name, active.lineNumber, line);
    Clock &clock = m_context.clock;
    const quint32 deadline = DeadlineAfterTimeout(clock, m_context.settings.timeout);
    bool complete = false;
    const WaitGuard guard;
    for (;;) {
        complete = m_state.noDisplay ? m_receiver.ReceiveLineQuiet() : m_receiver.ReceiveLineShown();
        // F2 handled while waiting (the TCP link yields here) sends the
        // interrupt, whose own wait takes this line's reply: stop at once
        // and let the halt test end the run, before the time-out is judged,
        // as that wait may have outlasted it. A reply complete by then may
        // be the interrupt's own (" ; ?" outside a definition), not this
        // line's: the halt wins. Closing the program halts too.
        if (m_context.compileOutcome == CompileOutcome::HaltRequested || m_context.closing)
            return;
        if (complete)
            break;
        const quint32 now = clock.TickCount();
        // A link that is down cannot answer: no use sitting out the time-out.
        if (!TickBefore(now, deadline) || !m_link.Usable())
            break;
        m_link.ServeWhileWaiting(deadline - now);
    }

    if (!complete) {
        m_context.compileOutcome = CompileOutcome::NotResponding;
        m_link.NotResponding();
        Report(QStringLiteral("KVR") + m_context.settings.computerType.left(4) + QStringLiteral(" NOT RESPONDING"),
               QStringLiteral("not-responding"), false);
        EndRun(RunEnd::NotResponding);
    }

    const QString &reply = m_state.replyLine;
    if (const auto error = BoardErrorText(reply)) {
        m_context.compileOutcome = CompileOutcome::Error;
        Report(QStringLiteral(": ") + *error, QStringLiteral("board-error"));
        EndRun(RunEnd::BoardError);
    }
    if (const auto unique = NotUniqueText(reply))
        Report(QStringLiteral(": ") + *unique, QStringLiteral("not-unique"));
}

void LineEngine::HaltTest()
{
    if (m_context.compileOutcome != CompileOutcome::HaltRequested)
        return;
    m_report.AddReportLine(QStringLiteral("HALTED COMPILE WITH F2"), {QStringLiteral("halted"), {}, 0});
    EndRun(RunEnd::Halted);
    m_link.ClearInput();
}

} // namespace kvr
