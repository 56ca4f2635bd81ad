#pragma once
// `kvr compile FILE ...`: one compile run on the board without windows.
#include <QString>
#include <QStringList>

namespace kvr {

// `arguments` are those after "compile"; `settingsDir` may be empty.
int RunCompileCommand(const QStringList &arguments, const QString &settingsDir);

// `kvr compile --help`.
QString CompileHelp();

} // namespace kvr
