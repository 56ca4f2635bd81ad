#pragma once
// A board type and a connection, as chosen in the computer dialog and the
// opening dialogue.
#include "app/Settings.h"

namespace kvr {

struct BoardChoice {
    QString computerType;  // "4410ANS", "4410Fig", "6630Fig", "Terminal"
    int port = 1;          // 0 = remote board over TCP, 1-20 = COM1-COM20
    QString remoteIp;
    QString remotePort;
};

inline const QStringList ComputerTypes = {QStringLiteral("4410ANS"), QStringLiteral("4410Fig"),
                                          QStringLiteral("6630Fig"), QStringLiteral("Terminal")};

BoardChoice CurrentBoardChoice(const Settings &settings);

// The port number of a "COMn" value; 0 for "COM0" or anything unreadable.
int PortNumber(const QString &commPort);

// Stores the type and the remote address; returns true when the link must
// be switched (another port, or another remote address while remote).
// The port itself is switched by the link, which also writes the settings.
bool ApplyBoardChoice(Settings &settings, const BoardChoice &choice);

} // namespace kvr
