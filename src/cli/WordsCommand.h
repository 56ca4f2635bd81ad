#pragma once
// `kvr words FILE`: the words database of a program, as "Make database" in
// an editor window makes it, with its statistics on stdout.
#include <QString>
#include <QStringList>

namespace kvr {

int RunWordsCommand(const QStringList &arguments, const QString &settingsDir);

} // namespace kvr
