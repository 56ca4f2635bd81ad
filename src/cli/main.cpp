// kvr: the KVR-PC engine without windows, for scripts and CI.
#include "app/CommandLineHelp.h"
#include "cli/BoardOptions.h"
#include "cli/CompileCommand.h"
#include "cli/ReflashCommand.h"
#include "cli/UploadCommand.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>
#include <functional>

namespace {

struct Command {
    const char *name;
    const char *summary;
    std::function<int(const QStringList &, const QString &)> run;
};

const QList<Command> &Commands()
{
    static const QList<Command> commands = {
        {"compile", "compile FILE on the board (kvr compile --help)", kvr::RunCompileCommand},
        {"upload", "upload board memory into a PROM image (kvr upload --help)", kvr::RunUploadCommand},
        {"reflash", "re-program a KVR4410F's flash (kvr reflash --help)", kvr::RunReflashCommand},
    };
    return commands;
}

QString Help(const QCommandLineParser &parser)
{
    QString text = kvr::HelpText(parser, QStringLiteral("kvr"));
    text += QStringLiteral("\nCommands:\n");
    for (const Command &command : Commands())
        text += QStringLiteral("  %1 %2\n").arg(QLatin1String(command.name), -10).arg(QLatin1String(command.summary));
    text += QStringLiteral(
        "\n"
        "Settings come from KVR-PC.INI in the settings folder and are never written\n"
        "by kvr. An intercharacter delay still \"-1\" there (a fresh folder) is measured\n"
        "for the run, as kvr-pc measures it at its first start.\n"
        "\n"
        "Exit status: 0 finished (upload: image checked; reflash: verified by the\n"
        "board), 1 stopped on a fault named in the report or on stderr, 2 board not\n"
        "responding or link failure, 3 bad usage, 4 halted.\n");
    return text;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kvr"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVR_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("The KVR-PC engine without windows."));
    // Everything after the command belongs to the command's own parser.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption settingsDir(QStringLiteral("settings-dir"),
                                         QStringLiteral("Keep settings and lock file in DIR for this run."),
                                         QStringLiteral("DIR"));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help and exit."));
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version and exit."));
    parser.addOptions({settingsDir, help, version});
    parser.addPositionalArgument(QStringLiteral("COMMAND"), QStringLiteral("One of the commands below."),
                                 QStringLiteral("COMMAND [ARGUMENTS]"));

    if (!parser.parse(QCoreApplication::arguments()))
        return kvr::UsageError(QStringLiteral("kvr"), parser.errorText(), Help(parser));
    if (parser.isSet(version)) {
        std::printf("kvr %s\n", KVR_VERSION);
        return kvr::ExitFinished;
    }
    const QStringList rest = parser.positionalArguments();
    if (parser.isSet(help)) {
        std::fputs(qPrintable(Help(parser)), stdout);
        return kvr::ExitFinished;
    }
    if (rest.isEmpty()) {
        std::fputs(qPrintable(Help(parser)), stderr);
        return kvr::ExitUsage;
    }
    for (const Command &command : Commands())
        if (rest.first() == QLatin1String(command.name))
            return command.run(rest.mid(1), parser.value(settingsDir));
    return kvr::UsageError(QStringLiteral("kvr"), QStringLiteral("unknown command '%1'").arg(rest.first()),
                           Help(parser));
}
