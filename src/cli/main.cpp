// kvr: the KVR-PC engine without windows, for scripts and CI.
#include "cli/CompileCommand.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

namespace {

const char *Usage =
    "Usage: kvr [--settings-dir DIR] COMMAND [ARGUMENTS]\n"
    "\n"
    "The KVR-PC engine without windows.\n"
    "\n"
    "Commands:\n"
    "  compile FILE        compile FILE on the board (kvr compile --help)\n"
    "\n"
    "Options:\n"
    "  --settings-dir DIR  keep settings and lock file in DIR for this run\n"
    "  --version           print the version and exit\n"
    "  --help              print this text and exit\n"
    "\n"
    "Settings come from KVR-PC.INI in the settings folder and are never written\n"
    "by kvr. An intercharacter delay still \"-1\" there (a fresh folder) is measured\n"
    "for the run, as kvr-pc measures it at its first start.\n"
    "\n"
    "Exit status: 0 finished, 1 stopped on a fault in the report, 2 board not\n"
    "responding or link failure, 3 bad usage, 4 halted.\n";

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("KVR-PC"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVR_VERSION));

    QStringList args = QCoreApplication::arguments().mid(1);
    if (args.contains(QStringLiteral("--version"))) {
        std::printf("kvr %s\n", KVR_VERSION);
        return 0;
    }
    // --settings-dir belongs to every command; take it out wherever it is.
    QString settingsDir;
    const qsizetype dirAt = args.indexOf(QStringLiteral("--settings-dir"));
    if (dirAt >= 0) {
        if (dirAt + 1 >= args.size()) {
            std::fprintf(stderr, "kvr: --settings-dir needs a folder\n\n%s", Usage);
            return 3;
        }
        settingsDir = args.at(dirAt + 1);
        args.remove(dirAt, 2);
    }
    if (!args.isEmpty() && args.first() == QLatin1String("compile"))
        return kvr::RunCompileCommand(args.mid(1), settingsDir);
    if (args.isEmpty() || args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
        std::fputs(Usage, args.isEmpty() ? stderr : stdout);
        return args.isEmpty() ? 3 : 0;
    }
    std::fprintf(stderr, "kvr: unknown command '%s'\n\n%s", qPrintable(args.first()), Usage);
    return 3;
}
