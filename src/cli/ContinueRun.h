#pragma once
// `kvr compile FILE --continue`: goes on with the compile of FILE that stopped
// on a board error, once the fix is made. When it cannot, it says why and
// compiles from the start only when --yes is given.
#include <QCommandLineOption>
#include <QString>

namespace kvr {

class CompileDriver;
class Prompts;

QCommandLineOption ContinueOption();

void ContinueFromCommandLine(CompileDriver &driver, Prompts &prompts, const QString &path, bool yes);

} // namespace kvr
