#include "app/Caption.h"
#include "app/Prompts.h"

namespace kvr {

QString BoardDescription(const QString &computerType)
{
    if (computerType == QLatin1String("4410ANS"))
        return QStringLiteral("KVR4410 ANS Forth");
    if (computerType == QLatin1String("4410Fig"))
        return QStringLiteral("KVR4410 Fig-Forth");
    if (computerType == QLatin1String("6630Fig"))
        return QStringLiteral("KVR6630 Fig-Forth");
    if (computerType == QLatin1String("Terminal"))
        return QStringLiteral("terminal emulator");
    return {};
}

QString CaptionText(const Settings &settings, bool tcpConnected, const QString &linkDown)
{
    QString caption = AppTitle + QStringLiteral(" - ") + BoardDescription(settings.computerType)
                      + QStringLiteral(" - ");
    const QString down = QStringLiteral(" - link down: ") + linkDown;
    if (!settings.IsTcpMode())
        return caption + settings.commPort + (linkDown.isEmpty() ? QString() : down);
    caption += QStringLiteral("IP addresss ") + settings.remoteIp + QStringLiteral(" port ")
               + settings.remotePort;
    if (!linkDown.isEmpty())
        return caption + down;
    return caption + (tcpConnected ? QStringLiteral(" - connected") : QStringLiteral(" - no connection"));
}

} // namespace kvr
