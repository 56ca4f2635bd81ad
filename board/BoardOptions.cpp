#include "BoardOptions.h"

#include <QStringList>

namespace kvr::board {

QString BoardUsage()
{
    return QStringLiteral(
        "Usage: kvr-board [--type 4410ANS|4410Fig|6630Fig] [--port N]\n"
        "                 [--heartbeat-port N | --no-heartbeat] [--pty [--link PATH]]\n"
        "                 [--baud N] [--char-time-us N] [--log FILE] [--gforth PATH]\n"
        "A simulated KVR board: a Forth system on gforth, reached over TCP on\n"
        "127.0.0.1 (default port 4000, heartbeat port 5300) or over a\n"
        "pseudo-terminal that stands in for a serial port.\n"
        "  --type T            board type (default 4410ANS)\n"
        "  --port N            data port, 0 picks a free one\n"
        "  --heartbeat-port N  silent heartbeat port (default 5300), 0 picks a free one\n"
        "  --no-heartbeat      no heartbeat port\n"
        "  --pty               a pseudo-terminal instead of TCP\n"
        "  --link PATH         also make PATH a symbolic link to the pseudo-terminal\n"
        "  --baud N            send at the pace of a N baud serial line\n"
        "  --char-time-us N    lose characters arriving less than N us after the last one taken\n"
        "  --log FILE          write every line received to FILE\n"
        "  --gforth PATH       the gforth program to run\n"
        "When ready it prints one line: 'listening on 127.0.0.1:PORT' or 'pty /dev/pts/N'.\n");
}

namespace {

bool TakeNumber(const QString &name, const QString &text, int low, int high, int &value, QString &error)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < low || number > high) {
        error = QStringLiteral("%1 needs a number from %2 to %3, not '%4'").arg(name).arg(low).arg(high).arg(text);
        return false;
    }
    value = number;
    return true;
}

}  // namespace

bool ParseBoardOptions(const QStringList &args, BoardOptions &options, QString &error, bool &help)
{
    help = false;
    for (int i = 1; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        const auto needsValue = [&](QString &value) {
            if (i + 1 >= args.size()) {
                error = arg + QStringLiteral(" needs a value");
                return false;
            }
            value = args.at(++i);
            return true;
        };
        QString value;
        if (arg == QLatin1String("--help") || arg == QLatin1String("-h")) {
            help = true;
            return true;
        } else if (arg == QLatin1String("--type")) {
            if (!needsValue(value))
                return false;
            static const QStringList types{QStringLiteral("4410ANS"), QStringLiteral("4410Fig"), QStringLiteral("6630Fig")};
            if (!types.contains(value)) {
                error = QStringLiteral("unknown board type '%1' (4410ANS, 4410Fig or 6630Fig)").arg(value);
                return false;
            }
            options.type = value;
        } else if (arg == QLatin1String("--port")) {
            if (!needsValue(value) || !TakeNumber(arg, value, 0, 65535, options.port, error))
                return false;
        } else if (arg == QLatin1String("--heartbeat-port")) {
            if (!needsValue(value) || !TakeNumber(arg, value, 0, 65535, options.heartbeatPort, error))
                return false;
            options.heartbeatGiven = true;
        } else if (arg == QLatin1String("--no-heartbeat")) {
            options.heartbeat = false;
        } else if (arg == QLatin1String("--pty")) {
            options.pty = true;
        } else if (arg == QLatin1String("--link")) {
            if (!needsValue(options.linkPath))
                return false;
        } else if (arg == QLatin1String("--baud")) {
            if (!needsValue(value) || !TakeNumber(arg, value, 0, 4000000, options.baud, error))
                return false;
        } else if (arg == QLatin1String("--char-time-us")) {
            if (!needsValue(value) || !TakeNumber(arg, value, 0, 10000000, options.charTimeUs, error))
                return false;
        } else if (arg == QLatin1String("--log")) {
            if (!needsValue(options.logPath))
                return false;
        } else if (arg == QLatin1String("--gforth")) {
            if (!needsValue(options.gforth))
                return false;
        } else {
            error = QStringLiteral("unknown option '%1'").arg(arg);
            return false;
        }
    }
    if (!options.linkPath.isEmpty() && !options.pty) {
        error = QStringLiteral("--link needs --pty");
        return false;
    }
    if (options.heartbeatGiven && !options.heartbeat) {
        error = QStringLiteral("--heartbeat-port and --no-heartbeat exclude each other");
        return false;
    }
    return true;
}

}  // namespace kvr::board
