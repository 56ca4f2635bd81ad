#pragma once
// The remote dialog's address and port, as they are shown and stored, and
// the demonstration gateway behind its Default button.
#include <QString>

namespace kvr {

// Four numbers joined by "." ("10.0.0.7"); missing parts are 0, each part
// is its leading number kept within 0..255.
QString NormaliseAddress(const QString &text);
// The leading number kept within 0..65535.
QString NormalisePort(const QString &text);

// The gateway the Default button fills in: the key "Demonstration gateway"
// of section [Remote] in the settings file when present (so an installation
// can point it at its own demonstration board), else the simulated board
// on this computer.
QString DefaultGatewayAddress(const QString &settingsFile);
inline const QString BuiltInGatewayAddress = QStringLiteral("127.0.0.1");
inline const QString DefaultGatewayPort = QStringLiteral("4000");

} // namespace kvr
