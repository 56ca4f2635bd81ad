#include "cli/UploadCommand.h"
#include "app/CommandLineHelp.h"
#include "cli/BoardSession.h"
#include "app/TerminationSignals.h"
#include "prom/PromUpload.h"
#include <QFileInfo>
#include <cstdio>

namespace kvr {

namespace {

const char *UploadNotes =
    "\n"
    "Compiles the board's upload program (PROGMOT.KVR or PROGINT.KVR, found along\n"
    "the source search paths), has it send the bytes from START up to END (END\n"
    "itself not included) as S-records or Intel hex, writes the records to OUT as\n"
    "received, takes the program off the board again, and checks the file.\n"
    "OUT without an extension gets .MOT or .INT.\n"
    "\n"
    "Exit status: 0 image written and checked, 1 a fault named on stderr (the\n"
    "check's first bad line, the upload program missing, OUT not writable), 2 no\n"
    "link or no answer, 3 bad usage, 4 halted (Ctrl-C).\n";

struct UploadParser {
    QCommandLineParser parser;
    BoardOptions board{parser};
    QCommandLineOption start{QStringLiteral("start"), QStringLiteral("First address, hexadecimal."),
                             QStringLiteral("HEX")};
    QCommandLineOption end{QStringLiteral("end"), QStringLiteral("Address after the last, hexadecimal (up to 10000)."),
                           QStringLiteral("HEX")};
    QCommandLineOption format{QStringLiteral("format"), QStringLiteral("srec (default) or ihex."),
                              QStringLiteral("FORMAT")};

    UploadParser()
    {
        parser.setApplicationDescription(QStringLiteral("Upload board memory into a PROM image file."));
        parser.addOptions({start, end, format});
        parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("The PROM image file to write."));
    }
    QString Help() const { return HelpText(parser, QStringLiteral("kvr upload")) + QLatin1String(UploadNotes); }
};

} // namespace

int RunUploadCommand(const QStringList &arguments, const QString &settingsDir)
{
    UploadParser command;
    QCommandLineParser &parser = command.parser;
    const QString name = QStringLiteral("kvr upload");
    QString file;
    if (const std::optional<int> ended =
            ParseFileCommand(parser, command.board.help, name, command.Help(), arguments, file, QStringLiteral("OUT")))
        return *ended;
    if (!parser.isSet(command.start) || !parser.isSet(command.end))
        return UsageError(name, QStringLiteral("--start and --end are both needed"), command.Help());
    const QString formatName = parser.value(command.format).toLower();
    if (parser.isSet(command.format) && formatName != QLatin1String("srec") && formatName != QLatin1String("ihex"))
        return UsageError(name, QStringLiteral("--format takes srec or ihex, not '%1'").arg(parser.value(command.format)),
                          command.Help());
    const ImageFormat format = formatName == QLatin1String("ihex") ? ImageFormat::IntelHex : ImageFormat::SRecord;
    const QString out = QFileInfo(file).absoluteFilePath();
    const UploadRequest request = ReadUploadRequest(parser.value(command.start), parser.value(command.end), out, true);
    if (!request.problem.isEmpty())
        return UsageError(name, request.problem, command.Help());

    BoardSession session(parser, command.board, settingsDir);
    QString problem;
    if (!session.Prepare(problem))
        return UsageError(name, problem, command.Help());
    session.ReportTroubleOnly();
    if (session.Context().settings.computerType == QLatin1String("Terminal")) {
        session.Driver().TerminalModeMessage();
        return ExitUsage;
    }
    if (!session.Connect(problem)) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(name), qPrintable(problem));
        return ExitLink;
    }

    PromUpload upload(session.Context(), session.BoardLink(), session.Driver(), &session.Terminal());
    TerminationSignals interrupts({SIGINT, SIGTERM, SIGHUP});
    QObject::connect(&interrupts, &TerminationSignals::Received, &upload, &PromUpload::Stop);
    const UploadOutcome outcome = upload.Run(request.start, request.end, out, format);

    switch (outcome.end) {
    case UploadEnd::ProgramMissing:
    case UploadEnd::FileNotWritten: return ExitFault;
    case UploadEnd::NoLink: return ExitLink;
    case UploadEnd::Halted: return ExitHalted;
    case UploadEnd::Done: break;
    }
    if (!session.BoardLink().Usable()) {
        std::fprintf(stderr, "%s: the link to the board was lost; %s keeps what arrived\n", qPrintable(name),
                     qPrintable(outcome.fileName));
        return ExitLink;
    }
    if (outcome.compileEnd == RunEnd::NotResponding || outcome.collect.lines == 0) {
        std::fprintf(stderr, "%s: no records came from the board; %s keeps what arrived\n", qPrintable(name),
                     qPrintable(outcome.fileName));
        return ExitLink;
    }
    const QString summary = outcome.check.Summary(request.start);
    std::fprintf(outcome.check.ok ? stdout : stderr, "%s: %s\n", qPrintable(outcome.fileName), qPrintable(summary));
    return outcome.check.ok ? ExitFinished : ExitFault;
}

} // namespace kvr
