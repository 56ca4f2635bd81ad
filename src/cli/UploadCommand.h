#pragma once
// `kvr upload OUT --start HEX --end HEX`: a PROM image of board memory.
#include <QString>
#include <QStringList>

namespace kvr {

int RunUploadCommand(const QStringList &arguments, const QString &settingsDir);

} // namespace kvr
