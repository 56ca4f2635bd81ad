#include "pc/CommandLine.h"

namespace kvr {

const char *PcUsage =
    "Usage: kvr-pc [--settings-dir DIR] [--simulator HOST:PORT] [FILE.KVR]\n"
    "\n"
    "  --settings-dir DIR     keep settings and lock file in DIR for this run\n"
    "  --simulator HOST:PORT  use the board at HOST:PORT over TCP for this run,\n"
    "                         leaving the saved link settings as they are\n"
    "  --version, --help\n";

PcCommandLine ParsePcCommandLine(const QStringList &arguments)
{
    PcCommandLine result;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments[i];
        auto value = [&](QString &into) {
            if (i + 1 >= arguments.size()) {
                result.error = arg + QStringLiteral(" needs a value");
                return;
            }
            into = arguments[++i];
        };
        if (arg == QLatin1String("--settings-dir")) {
            value(result.settingsDir);
        } else if (arg == QLatin1String("--simulator")) {
            QString address;
            value(address);
            const qsizetype colon = address.lastIndexOf(QLatin1Char(':'));
            bool ok = false;
            const int port = colon > 0 ? address.mid(colon + 1).toInt(&ok) : 0;
            if (result.error.isEmpty() && (!ok || port <= 0 || port > 65535)) {
                result.error = QStringLiteral("--simulator needs HOST:PORT");
            } else if (result.error.isEmpty()) {
                result.simulatorHost = address.left(colon);
                result.simulatorPort = QString::number(port);
            }
        } else if (arg == QLatin1String("--version")) {
            result.showVersion = true;
        } else if (arg == QLatin1String("--help") || arg == QLatin1String("-h")) {
            result.showHelp = true;
        } else if (arg.startsWith(QLatin1String("--"))) {
            result.error = QStringLiteral("unknown option ") + arg;
        } else if (result.file.isEmpty()) {
            result.file = arg;
        } else {
            result.error = QStringLiteral("only one file can be given");
        }
        if (!result.error.isEmpty())
            break;
    }
    return result;
}

} // namespace kvr
