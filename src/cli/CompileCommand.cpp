#include "cli/CompileCommand.h"
#include "app/CommandLineHelp.h"
#include "app/FilePaths.h"
#include "app/TerminationSignals.h"
#include "app/Text.h"
#include "cli/BoardSession.h"
#include "cli/ContinueRun.h"
#include "cli/ProgressLine.h"
#include "compiler/CompileProgress.h"
#include <QElapsedTimer>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <cstdio>
#include <memory>

namespace kvr {

namespace {

const char *CompileNotes =
    "\n"
    "Compiles FILE and its INCLUDE files on the board, as F8 in an editor window does.\n"
    "Report lines go to stdout, messages to stderr. Settings come from KVR-PC.INI;\n"
    "the options apply to this run only and are never written back.\n"
    "\n"
    "An intercharacter delay still \"-1\" in the settings (a fresh settings folder)\n"
    "is measured for this run as the windowed program measures it at start-up,\n"
    "without writing it; set it once in KVR-PC.INI (or start kvr-pc) to skip that.\n"
    "\n"
    "Exit status: 0 finished, 1 stopped on a fault in the report, 2 board not\n"
    "responding, link failure or end address not confirmed, 3 bad usage,\n"
    "4 halted (Ctrl-C).\n";

struct CompileParser {
    QCommandLineParser parser;
    BoardOptions board{parser};
    QCommandLineOption quick{QStringLiteral("quick"), QStringLiteral("Quick compile (lines compacted before sending).")};
    QCommandLineOption json{QStringLiteral("json"),
                            QStringLiteral("One JSON object per report line, then a summary (lines sent, seconds, "
                                           "outcome, end address, delay).")};
    QCommandLineOption resume = ContinueOption();

    CompileParser()
    {
        parser.setApplicationDescription(QStringLiteral("Compile a program on the board."));
        parser.addOptions({quick, json, resume});
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The top-level source file."));
    }
    QString Help() const { return HelpText(parser, QStringLiteral("kvr compile")) + QLatin1String(CompileNotes); }
};

QString OutcomeName(RunEnd end)
{
    switch (end) {
    case RunEnd::Finished: return QStringLiteral("finished");
    case RunEnd::EndUnconfirmed: return QStringLiteral("end-address-unconfirmed");
    case RunEnd::FileNotFound: return QStringLiteral("file-not-found");
    case RunEnd::OverLong: return QStringLiteral("over-long");
    case RunEnd::ConditionalError: return QStringLiteral("conditional-error");
    case RunEnd::BoardError: return QStringLiteral("board-error");
    case RunEnd::NotResponding: return QStringLiteral("not-responding");
    case RunEnd::Halted: return QStringLiteral("halted");
    case RunEnd::None: break;
    }
    return QStringLiteral("refused");
}

int ExitFor(RunEnd end)
{
    switch (end) {
    case RunEnd::Finished: return ExitFinished;
    case RunEnd::FileNotFound:
    case RunEnd::OverLong:
    case RunEnd::ConditionalError:
    case RunEnd::BoardError: return ExitFault;
    case RunEnd::EndUnconfirmed:
    case RunEnd::NotResponding: return ExitLink;
    case RunEnd::Halted: return ExitHalted;
    case RunEnd::None: break;
    }
    return ExitUsage;
}

// The file on disk behind a logical name, so that an editor or a CI
// annotation can open it; empty stays empty.
QString DiskPath(const QString &logicalPath)
{
    return logicalPath.isEmpty() ? QString() : QFileInfo(ResolvePath(logicalPath)).absoluteFilePath();
}

void PrintJson(const QJsonObject &object)
{
    std::fprintf(stdout, "%s\n", QJsonDocument(object).toJson(QJsonDocument::Compact).constData());
    std::fflush(stdout);
}

} // namespace

QString CompileHelp()
{
    return CompileParser().Help();
}

int RunCompileCommand(const QStringList &arguments, const QString &settingsDir)
{
    CompileParser command;
    QCommandLineParser &parser = command.parser;
    const QString name = QStringLiteral("kvr compile");
    QString file;
    if (const std::optional<int> ended =
            ParseFileCommand(parser, command.board.help, name, command.Help(), arguments, file))
        return *ended;
    const struct {
        QString file;
        bool json;
    } options{file, parser.isSet(command.json)};

    BoardSession session(parser, command.board, settingsDir);
    QString problem;
    if (!session.Prepare(problem))
        return UsageError(name, problem, command.Help());
    AppContext &context = session.Context();
    if (parser.isSet(command.quick))
        context.settings.quickCompile = QStringLiteral("ON");
    Link &link = session.BoardLink();
    CompileReport &report = session.Report();
    CompileDriver &driver = session.Driver();
    CompileProgress progress(driver, context.clock);
    const ProgressLine progressLine(progress, report, !parser.isSet(command.board.quiet));

    if (context.settings.computerType == QLatin1String("Terminal")) {
        driver.TerminalModeMessage();
        return ExitUsage;
    }

    // The logical name of the file, as an editor window's caption has it.
    const QString path = QFileInfo(options.file).absoluteFilePath().toUpper();

    if (!session.Connect(problem)) {
        std::fprintf(stderr, "kvr compile: %s\n", qPrintable(problem));
        return ExitLink;
    }

    QObject::connect(&report, &CompileReport::LineAdded, [&options](const QString &text, const ReportEvent &event) {
        if (options.json) {
            PrintJson({{QStringLiteral("event"), QStringLiteral("report")},
                       {QStringLiteral("file"), DiskPath(event.file)},
                       {QStringLiteral("line"), event.line},
                       {QStringLiteral("kind"), event.kind},
                       {QStringLiteral("text"), text}});
        } else {
            std::fprintf(stdout, "%s\n", text.toLocal8Bit().constData());
            std::fflush(stdout);
        }
    });

    // Ctrl-C halts as F2 does; a shutdown or a closed terminal too, so the
    // board is left at its prompt and the run ends with its report.
    TerminationSignals interrupts({SIGINT, SIGTERM, SIGHUP});
    QObject::connect(&interrupts, &TerminationSignals::Received, &driver, [&driver, &context] {
        if (context.busyState == BusyState::Compiling)
            driver.HaltCompile();
        else
            context.closing = true;
    });

    QElapsedTimer elapsed;
    elapsed.start();
    if (parser.isSet(command.resume))
        ContinueFromCommandLine(driver, session.Prompts(), path, parser.isSet(command.board.yes));
    else
        driver.CompileFile(path);
    const double seconds = elapsed.nsecsElapsed() / 1e9;
    const RunEnd end = driver.State().runEnd;
    const int status = ExitFor(end);

    if (options.json) {
        PrintJson({{QStringLiteral("event"), QStringLiteral("summary")},
                   {QStringLiteral("file"), DiskPath(path)},
                   {QStringLiteral("lines_sent"), driver.State().linesSent},
                   {QStringLiteral("seconds"), seconds},
                   {QStringLiteral("outcome"), OutcomeName(end)},
                   {QStringLiteral("end_address"), driver.State().endOfProgramAddress.trimmed()},
                   {QStringLiteral("delay"), link.CurrentDelay()},
                   {QStringLiteral("exit"), status}});
    }
    session.Disconnect();
    return status;
}

} // namespace kvr
