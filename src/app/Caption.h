#pragma once
// The frame caption: program, board type and link.
#include "app/Settings.h"

namespace kvr {

// "KVR4410 ANS Forth" and so on; empty for an unknown type.
QString BoardDescription(const QString &computerType);

QString CaptionText(const Settings &settings, bool tcpConnected);

} // namespace kvr
