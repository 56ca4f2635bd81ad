#include "compiler/SearchPaths.h"
#include "app/AppContext.h"
#include "compiler/SourceFiles.h"
#include <QDir>

namespace kvr {

SplitResult SplitPath(const QString &path)
{
    const qsizetype slash = std::max(path.lastIndexOf(QLatin1Char('/')),
                                     path.lastIndexOf(QLatin1Char('\\')));
    if (slash > 0)
        return {path.left(slash), path.mid(slash + 1)};
    return {QStringLiteral("."), slash == 0 ? path.mid(1) : path};
}

QString DefaultSearchPaths(const Paths &paths)
{
    QString program = paths.ProgramFolder();
    if (program.endsWith(QLatin1Char('/')))
        program.chop(1);
    return program + QStringLiteral("/;") + program + QStringLiteral("/KVR4410/;") + program
           + QStringLiteral("/KVR6630/;") + paths.KvrHomeFolder() + QStringLiteral(";");
}

QString SearchList(const QString &topLevelFolder, const QString &extraSearchPaths,
                   const QString &defaultSearchPaths)
{
    return topLevelFolder + QStringLiteral("/;") + extraSearchPaths + defaultSearchPaths;
}

bool FindSourceFile(QString &name, int &fileNumber, SourceFiles &files,
                    const QString &searchList, Prompts &prompts)
{
    fileNumber = files.FreeNumber();
    const SplitResult split = SplitPath(name);
    if (split.folder != QLatin1String(".") && files.Open(fileNumber, name))
        return true;

    qsizetype start = 0;
    for (;;) {
        const qsizetype end = searchList.indexOf(QLatin1Char(';'), start);
        if (end < 0)
            break;
        const QString candidate = searchList.mid(start, end - start) + split.name;
        if (files.Open(fileNumber, candidate)) {
            name = candidate;
            return true;
        }
        start = end + 1;
    }
    prompts.Message(QStringLiteral("Can't open file ") + name, PromptIcon::Information);
    return false;
}

QString AddSearchPath(const QString &extraSearchPaths, const QString &answer)
{
    if (answer.isEmpty())
        return extraSearchPaths;
    QString result = extraSearchPaths + answer;
    if (!result.endsWith(QLatin1Char(';'))) {
        // A typed "\" ends a folder too; what we add is the platform's own.
        if (!result.endsWith(QLatin1Char('\\')) && !result.endsWith(QLatin1Char('/')))
            result += QDir::separator();
        result += QLatin1Char(';');
    }
    return result;
}

QString AddPathsPrompt()
{
    const QChar lf(10);
    return QStringLiteral("Enter the full drive and path to be searched for source files. ")
           + QStringLiteral("The path entered will be added to other paths already searched.") + lf
           + QStringLiteral("Example: d:\\projects\\old\\") + lf + lf
           + QStringLiteral("To display paths press return");
}

QString PathsDisplayText(const QString &extraSearchPaths, const QString &defaultSearchPaths)
{
    const QChar lf(10);
    QString extra = extraSearchPaths;
    QString defaults = defaultSearchPaths;
    extra.replace(QLatin1Char(';'), lf);
    defaults.replace(QLatin1Char(';'), lf);
    return QStringLiteral("Source files are currently sought in these paths (in this order):") + lf
           + lf + QStringLiteral("PATH OF TOP LEVEL SOURCE FILE") + lf + extra + defaults
           + QStringLiteral("PATHS SET WITH OPERATING SYSTEM APPEND COMMAND");
}

namespace {
void ShowPathsAndWrite(AppContext &context)
{
    context.prompts.Message(PathsDisplayText(context.settings.extraSearchPaths,
                                             DefaultSearchPaths(context.paths)),
                            PromptIcon::Information);
    context.WriteSettings();
}
} // namespace

void AddOrDisplayPaths(AppContext &context)
{
    const std::optional<QString> answer =
        context.prompts.Input(AddPathsPrompt(), QStringLiteral("Add or display paths"), QString());
    context.settings.extraSearchPaths =
        AddSearchPath(context.settings.extraSearchPaths, answer.value_or(QString()));
    ShowPathsAndWrite(context);
}

void SetDefaultPaths(AppContext &context)
{
    context.settings.extraSearchPaths.clear();
    ShowPathsAndWrite(context);
}

} // namespace kvr
