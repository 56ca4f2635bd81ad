#include "link/StartupCommands.h"
#include "link/Link.h"
#include "link/TerminalHost.h"

namespace kvr {

QString StartupLine(const QString &computerType, const QDateTime &now)
{
    QString line = QString(8, QLatin1Char(' ')) + QStringLiteral("DECIMAL ");
    const QDate date = now.date();
    const QTime time = now.time();
    if (date.year() >= 1984)
        line += QStringLiteral("%1 %2 %3 NOW %4 %5 %6 HRS ")
                    .arg(date.day())
                    .arg(date.month())
                    .arg(date.year())
                    .arg(time.hour())
                    .arg(time.minute())
                    .arg(time.second());
    if (computerType.left(4) == QLatin1String("4410"))
        line += QStringLiteral("W! ");
    line += computerType == QLatin1String("4410ANS") ? QStringLiteral("START") : QStringLiteral("IBM ABORT");
    return line;
}

void SendStartupCommands(Link &link, TerminalHost &terminal, const QDateTime &now)
{
    const QString type = link.Context().settings.computerType;
    if (type == QLatin1String("Terminal"))
        return;
    link.SendText(QString(QChar(13)), false);
    link.Pause(0.2);
    link.ClearInput();
    if (type == QLatin1String("6630Fig")) {
        link.SendText(Memory6630Line, true);
        link.WaitForReply();
    }
    terminal.ClearScreen();
    link.SendText(StartupLine(type, now), true);
    link.WaitForReply();
}

} // namespace kvr
