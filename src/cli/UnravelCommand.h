#pragma once
// `kvr unravel FILE -o OUT`: a program and its INCLUDE files as one flat
// file, with a map from its lines back to the source files.
#include <QString>
#include <QStringList>

namespace kvr {

int RunUnravelCommand(const QStringList &arguments, const QString &settingsDir);

} // namespace kvr
