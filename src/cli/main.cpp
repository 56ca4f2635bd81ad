// kvr: the KVR-PC engine without windows, for scripts and CI.
#include "app/ConsolePrompts.h"
#include "app/Paths.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

namespace {

const char *Usage =
    "Usage: kvr [--settings-dir DIR] COMMAND [ARGUMENTS]\n"
    "\n"
    "The KVR-PC engine without windows.\n"
    "\n"
    "Options:\n"
    "  --settings-dir DIR  keep settings and lock file in DIR for this run\n"
    "  --version           print the version and exit\n"
    "  --help              print this text and exit\n"
    "\n"
    "Exit status: 0 finished, 1 stopped on a fault in the report, 2 board not\n"
    "responding or link failure, 3 bad usage, 4 halted.\n";

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("KVR-PC"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KVR_VERSION));

    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.contains(QStringLiteral("--version"))) {
        std::printf("kvr %s\n", KVR_VERSION);
        return 0;
    }
    if (args.isEmpty() || args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
        std::fputs(Usage, args.isEmpty() ? stderr : stdout);
        return args.isEmpty() ? 3 : 0;
    }
    std::fprintf(stderr, "kvr: unknown command '%s'\n\n%s", qPrintable(args.first()), Usage);
    return 3;
}
