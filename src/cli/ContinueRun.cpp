#include "cli/ContinueRun.h"
#include "app/Prompts.h"
#include "compiler/CompileDriver.h"

namespace kvr {

QCommandLineOption ContinueOption()
{
    return QCommandLineOption(QStringLiteral("continue"),
                              QStringLiteral("Go on with the compile of FILE that stopped on a board error, from the "
                                             "start of the failing definition, when nothing before it changed "
                                             "(with --yes: otherwise compile from the start)."));
}

void ContinueFromCommandLine(CompileDriver &driver, Prompts &prompts, const QString &path, bool yes)
{
    const QString reason = driver.TryContinue(path);
    if (reason.isEmpty())
        return;
    if (!yes) {
        prompts.Message(reason + QStringLiteral(" Add --yes to compile it from the start."), PromptIcon::Information);
        return;
    }
    prompts.Message(reason + QStringLiteral(" Compiling it from the start."), PromptIcon::Information);
    driver.CompileFile(path);
}

} // namespace kvr
