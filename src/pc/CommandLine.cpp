#include "pc/CommandLine.h"
#include "app/CommandLineHelp.h"
#include <QCommandLineParser>

namespace kvr {

namespace {
struct PcOptions {
    QCommandLineOption settingsDir{QStringLiteral("settings-dir"),
                                   QStringLiteral("Keep settings and lock file in DIR for this run."),
                                   QStringLiteral("DIR")};
    QCommandLineOption simulator{QStringLiteral("simulator"),
                                 QStringLiteral("Use the board at HOST:PORT over TCP for this run, leaving the "
                                                "saved link settings as they are."),
                                 QStringLiteral("HOST:PORT")};
    QCommandLineOption help{QStringList{QStringLiteral("h"), QStringLiteral("help")},
                            QStringLiteral("Print this help and exit.")};
    QCommandLineOption version{QStringList{QStringLiteral("v"), QStringLiteral("version")},
                               QStringLiteral("Print the version and exit.")};

    explicit PcOptions(QCommandLineParser &parser)
    {
        parser.setApplicationDescription(
            QStringLiteral("KVR-PC: edit, compile and upload Forth programs for KVR boards."));
        parser.addOptions({settingsDir, simulator, help, version});
        parser.addPositionalArgument(QStringLiteral("FILE.KVR"), QStringLiteral("The source file to open."),
                                     QStringLiteral("[FILE.KVR]"));
    }
};
} // namespace

QString PcHelpText()
{
    QCommandLineParser parser;
    const PcOptions options(parser);
    return HelpText(parser, QStringLiteral("kvr-pc"));
}

PcCommandLine ParsePcCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    const PcOptions options(parser);
    const QCommandLineOption &settingsDir = options.settingsDir;
    const QCommandLineOption &simulator = options.simulator;
    const QCommandLineOption &help = options.help;
    const QCommandLineOption &version = options.version;
    PcCommandLine result;
    if (!parser.parse(QStringList{QStringLiteral("kvr-pc")} + arguments)) {
        result.error = parser.errorText();
        return result;
    }
    result.showHelp = parser.isSet(help);
    result.showVersion = parser.isSet(version);
    result.settingsDir = parser.value(settingsDir);
    const QStringList files = parser.positionalArguments();
    if (!files.isEmpty())
        result.file = files.first();
    if (files.size() > 1)
        result.error = QStringLiteral("only one file can be given");
    if (parser.isSet(simulator)) {
        const QString address = parser.value(simulator);
        const qsizetype colon = address.lastIndexOf(QLatin1Char(':'));
        bool ok = false;
        const int port = colon > 0 ? address.mid(colon + 1).toInt(&ok) : 0;
        if (!ok || port <= 0 || port > 65535) {
            result.error = QStringLiteral("--simulator needs HOST:PORT");
        } else {
            result.simulatorHost = address.left(colon);
            result.simulatorPort = QString::number(port);
        }
    }
    return result;
}

} // namespace kvr
