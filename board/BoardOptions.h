#pragma once

#include <QString>

namespace kvr::board {

// What the command line asks of the simulated board.
struct BoardOptions {
    QString type = QStringLiteral("4410ANS");
    int port = 4000;
    int heartbeatPort = 5300;
    bool heartbeat = true;
    bool heartbeatGiven = false;  // an explicit port must be available
    bool pty = false;
    QString linkPath;
    int baud = 0;                  // 0: output as fast as it comes
    int charTimeUs = 0;            // 0: no character is lost
    QString logPath;
    QString gforth;                // empty: looked up on PATH
    QString flashPath;             // 4410F: the file that holds the flash
    bool showVersion = false;
    bool listWords = false;        // print the board's words and exit
};

// Parses argv; on failure returns false and sets error to a message
// meant for stderr. help is set when --help was asked for.
bool ParseBoardOptions(const QStringList &args, BoardOptions &options, QString &error, bool &help);

QString BoardUsage();

}  // namespace kvr::board
