#include "BoardOptions.h"
#include "app/CommandLineHelp.h"
#include <QCommandLineParser>
#include <QStringList>

namespace kvr::board {

namespace {

const char *BoardNotes =
    "\nWhen ready it prints one line: 'listening on 127.0.0.1:PORT' or 'pty /dev/pts/N';\n"
    "a 4410F then prints its flash range on a line of its own: 'flash 8800-FB7F'.\n"
    "The flash is kept in the --flash file (created erased when missing), so it\n"
    "outlives COLD and the board; without --flash it lasts as long as the board.\n";

struct BoardParser {
    QCommandLineParser parser;
    QCommandLineOption type{QStringLiteral("type"), QStringLiteral("Board type: 4410ANS (default), 4410Fig, 4410F (4410ANS with flash) or 6630Fig."),
                            QStringLiteral("T")};
    QCommandLineOption port{QStringLiteral("port"), QStringLiteral("Data port (default 4000), 0 picks a free one."),
                            QStringLiteral("N")};
    QCommandLineOption heartbeatPort{QStringLiteral("heartbeat-port"),
                                     QStringLiteral("Silent heartbeat port (default 5300), 0 picks a free one."),
                                     QStringLiteral("N")};
    QCommandLineOption noHeartbeat{QStringLiteral("no-heartbeat"), QStringLiteral("No heartbeat port.")};
    QCommandLineOption pty{QStringLiteral("pty"), QStringLiteral("A pseudo-terminal instead of TCP.")};
    QCommandLineOption link{QStringLiteral("link"),
                            QStringLiteral("Also make PATH a symbolic link to the pseudo-terminal."),
                            QStringLiteral("PATH")};
    QCommandLineOption baud{QStringLiteral("baud"), QStringLiteral("Pace the line both ways as an N baud serial line."),
                            QStringLiteral("N")};
    QCommandLineOption charTime{QStringLiteral("char-time-us"),
                                QStringLiteral("Take a character every N us behind a 16-character buffer; characters arriving while it is full are lost."),
                                QStringLiteral("N")};
    QCommandLineOption flash{QStringLiteral("flash"), QStringLiteral("4410F: keep the flash in FILE."),
                             QStringLiteral("FILE")};
    QCommandLineOption log{QStringLiteral("log"), QStringLiteral("Write every line received to FILE."),
                           QStringLiteral("FILE")};
    QCommandLineOption gforth{QStringLiteral("gforth"), QStringLiteral("The gforth program to run."),
                              QStringLiteral("PATH")};
    QCommandLineOption listWords{QStringLiteral("list-words"),
                                 QStringLiteral("Print the words of the board type's ROM, one a line, and exit.")};
    QCommandLineOption help{QStringList{QStringLiteral("h"), QStringLiteral("help")},
                            QStringLiteral("Print this help and exit.")};
    QCommandLineOption version{QStringList{QStringLiteral("v"), QStringLiteral("version")},
                               QStringLiteral("Print the version and exit.")};

    BoardParser()
    {
        parser.setApplicationDescription(
            QStringLiteral("A simulated KVR board: a Forth system on gforth, reached over TCP on\n"
                           "127.0.0.1 or over a pseudo-terminal that stands in for a serial port."));
        parser.addOptions({type, port, heartbeatPort, noHeartbeat, pty, link, baud, charTime, flash, log, gforth,
                           listWords, help, version});
    }
};

bool TakeNumber(const QString &name, const QString &text, int low, int high, int &value, QString &error)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < low || number > high) {
        error = QStringLiteral("--%1 needs a number from %2 to %3, not '%4'").arg(name).arg(low).arg(high).arg(text);
        return false;
    }
    value = number;
    return true;
}

}  // namespace

QString BoardUsage()
{
    BoardParser board;
    return HelpText(board.parser, QStringLiteral("kvr-board")) + QLatin1String(BoardNotes);
}

bool ParseBoardOptions(const QStringList &args, BoardOptions &options, QString &error, bool &help)
{
    BoardParser board;
    QCommandLineParser &parser = board.parser;
    help = false;
    if (!parser.parse(args)) {
        error = parser.errorText();
        return false;
    }
    if (!parser.positionalArguments().isEmpty()) {
        error = QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().first());
        return false;
    }
    if (parser.isSet(board.help)) {
        help = true;
        return true;
    }
    options.showVersion = parser.isSet(board.version);
    options.listWords = parser.isSet(board.listWords);
    if (parser.isSet(board.type)) {
        static const QStringList types{QStringLiteral("4410ANS"), QStringLiteral("4410Fig"), QStringLiteral("4410F"),
                                       QStringLiteral("6630Fig")};
        options.type = parser.value(board.type);
        if (!types.contains(options.type)) {
            error = QStringLiteral("unknown board type '%1' (4410ANS, 4410Fig, 4410F or 6630Fig)").arg(options.type);
            return false;
        }
    }
    const struct {
        const QCommandLineOption &option;
        int low, high;
        int &value;
    } numbers[] = {{board.port, 0, 65535, options.port},
                   {board.heartbeatPort, 0, 65535, options.heartbeatPort},
                   {board.baud, 0, 4000000, options.baud},
                   {board.charTime, 0, 10000000, options.charTimeUs}};
    for (const auto &number : numbers)
        if (parser.isSet(number.option)
            && !TakeNumber(number.option.names().first(), parser.value(number.option), number.low, number.high,
                           number.value, error))
            return false;
    options.heartbeatGiven = parser.isSet(board.heartbeatPort);
    options.heartbeat = !parser.isSet(board.noHeartbeat);
    options.pty = parser.isSet(board.pty);
    options.linkPath = parser.value(board.link);
    options.logPath = parser.value(board.log);
    options.gforth = parser.value(board.gforth);
    options.flashPath = parser.value(board.flash);
    if (parser.isSet(board.flash) && options.type != QLatin1String("4410F")) {
        error = QStringLiteral("--flash needs --type 4410F");
        return false;
    }
    if (parser.isSet(board.flash) && options.flashPath.isEmpty()) {
        error = QStringLiteral("--flash needs a file name");
        return false;
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
