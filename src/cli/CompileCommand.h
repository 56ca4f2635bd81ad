#pragma once
// `kvr compile FILE ...`: one compile run on the board without windows.
#include <QStringList>

namespace kvr {

// Exit status as the command line documents it.
enum ExitStatus { ExitFinished = 0, ExitFault = 1, ExitLink = 2, ExitUsage = 3, ExitHalted = 4 };

// `arguments` are those after "compile"; `settingsDir` may be empty.
int RunCompileCommand(const QStringList &arguments, const QString &settingsDir);

extern const char *CompileUsage;

} // namespace kvr
