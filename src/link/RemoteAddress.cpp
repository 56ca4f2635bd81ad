#include "link/RemoteAddress.h"
#include "app/IniFile.h"
#include "app/Text.h"
#include <QStringList>
#include <algorithm>

namespace kvr {

namespace {
QString Bounded(const QString &text, int high)
{
    const double value = std::clamp(Val(text), 0.0, double(high));
    return QString::number(static_cast<int>(value));
}
}

QString NormaliseAddress(const QString &text)
{
    const QStringList parts = text.trimmed().split(QLatin1Char('.'));
    QStringList numbers;
    for (int i = 0; i < 4; ++i)
        numbers << Bounded(i < parts.size() ? parts.at(i) : QString(), 255);
    return numbers.join(QLatin1Char('.'));
}

QString NormalisePort(const QString &text)
{
    return Bounded(text, 65535);
}

QString DefaultGatewayAddress(const QString &settingsFile)
{
    IniFile ini;
    ini.Load(settingsFile);
    const QString configured = ini.Value(QStringLiteral("Remote"), QStringLiteral("Demonstration gateway"), QString());
    return configured.trimmed().isEmpty() ? BuiltInGatewayAddress : NormaliseAddress(configured);
}

} // namespace kvr
