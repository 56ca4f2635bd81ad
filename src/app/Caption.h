#pragma once
// The frame caption: program, board type and link.
#include "app/Settings.h"

namespace kvr {

// "KVR4410 ANS Forth" and so on; empty for an unknown type.
QString BoardDescription(const QString &computerType);

// `linkDown`: why a link that stood is gone (empty while it stands).
QString CaptionText(const Settings &settings, bool tcpConnected, const QString &linkDown = {});

} // namespace kvr
