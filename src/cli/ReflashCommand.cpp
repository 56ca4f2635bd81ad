#include "cli/ReflashCommand.h"
#include "app/CommandLineHelp.h"
#include "cli/BoardSession.h"
#include "app/TerminationSignals.h"
#include "prom/Reflash.h"
#include <QFileInfo>
#include <cstdio>

namespace kvr {

namespace {

const char *ReflashNotes =
    "\n"
    "Empties the KVR4410F (COLD), compiles the receiver #REFLASH.KVR on it (found\n"
    "along the source search paths), checks the whole S-record file, then sends\n"
    "the data of its S1 records, in file order, to the start of the flash. The\n"
    "board checks what it received; its verdict is printed.\n"
    "\n"
    "Exit status: 0 flash written and verified by the board, 1 a fault named on\n"
    "stderr (a bad S-record file, #REFLASH.KVR missing, the board's check\n"
    "refused), 2 no link or no answer, 3 bad usage, 4 halted (Ctrl-C).\n";

struct ReflashParser {
    QCommandLineParser parser;
    BoardOptions board{parser};

    ReflashParser()
    {
        parser.setApplicationDescription(QStringLiteral("Re-program the flash of a KVR4410F."));
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The S-record file (.MOT)."));
    }
    QString Help() const { return HelpText(parser, QStringLiteral("kvr reflash")) + QLatin1String(ReflashNotes); }
};

} // namespace

int RunReflashCommand(const QStringList &arguments, const QString &settingsDir)
{
    ReflashParser command;
    QCommandLineParser &parser = command.parser;
    const QString name = QStringLiteral("kvr reflash");
    QString file;
    if (const std::optional<int> ended =
            ParseFileCommand(parser, command.board.help, name, command.Help(), arguments, file))
        return *ended;
    file = QFileInfo(file).absoluteFilePath();
    if (!QFileInfo(file).isFile()) {
        std::fprintf(stderr, "%s: cannot read %s\n", qPrintable(name), qPrintable(file));
        return ExitFault;
    }

    BoardSession session(parser, command.board, settingsDir);
    QString problem;
    if (!session.Prepare(problem))
        return UsageError(name, problem, command.Help());
    session.ReportTroubleOnly();
    const QString type = session.Context().settings.computerType;
    if (type.left(4) != QLatin1String("4410"))
        return UsageError(name, QStringLiteral("re-flashing is for the KVR4410F; the computer type is %1").arg(type),
                          command.Help());
    if (!session.Connect(problem)) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(name), qPrintable(problem));
        return ExitLink;
    }

    Reflasher reflasher(session.Context(), session.BoardLink(), session.Driver(), &session.Terminal());
    TerminationSignals interrupts({SIGINT, SIGTERM, SIGHUP});
    QObject::connect(&interrupts, &TerminationSignals::Received, &reflasher, &Reflasher::Stop);
    const ReflashOutcome outcome = reflasher.ReflashFile(file);

    switch (outcome.end) {
    case ReflashEnd::Verdict:
        std::fprintf(outcome.verified ? stdout : stderr, "%s\n", qPrintable(outcome.verdict));
        return outcome.verified ? ExitFinished : ExitFault;
    case ReflashEnd::CompileFailed:
        return session.Driver().State().runEnd == RunEnd::NotResponding ? ExitLink : ExitFault;
    case ReflashEnd::NoVerdict:
        std::fprintf(stderr, "%s: %s\n", qPrintable(name),
                     session.BoardLink().Usable() ? "the board gave no verdict within the time-out"
                                                  : "the link to the board was lost before its verdict");
        return ExitLink;
    case ReflashEnd::NoLink: return ExitLink;
    case ReflashEnd::Halted: return ExitHalted;
    case ReflashEnd::Cancelled:
    case ReflashEnd::ReceiverMissing:
    case ReflashEnd::BadFile: break;
    }
    return ExitFault;
}

} // namespace kvr
