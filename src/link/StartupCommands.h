#pragma once
// What a freshly connected board is told: wake it, set up the 6630's memory,
// set its clock from the PC and start its Forth system.
#include <QDateTime>
#include <QString>

namespace kvr {

class Link;
class TerminalHost;

// The one command line, for example
// "        DECIMAL 21 11 2026 NOW 14 5 9 HRS W! START": the date as day, month,
// year for NOW and the time as hours, minutes, seconds for HRS (both in
// decimal, leaving nothing on the stack), "W! " to store them in the
// 4410's clock chip. Before 1984 the clock is left alone.
QString StartupLine(const QString &computerType, const QDateTime &now);

// The 6630's memory set-up line.
inline const QString Memory6630Line = QStringLiteral("$B400 $820 ! $A000 $81E ! $A000 $1400 BLANKS");

// Sends the start-up commands (nothing for "Terminal").
void SendStartupCommands(Link &link, TerminalHost &terminal,
                         const QDateTime &now = QDateTime::currentDateTime());

} // namespace kvr
