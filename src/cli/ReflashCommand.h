#pragma once
// `kvr reflash FILE.MOT`: a new flash image for a KVR4410F.
#include <QString>
#include <QStringList>

namespace kvr {

int RunReflashCommand(const QStringList &arguments, const QString &settingsDir);

} // namespace kvr
