#pragma once
// Why this account cannot open a serial device, in words a user can act on.
#include <QString>

namespace kvr {

// Empty when the device is missing or this account may read and write it;
// otherwise names the device and says how to get access on this system.
QString SerialAccessAdvice(const QString &devicePath);

} // namespace kvr
