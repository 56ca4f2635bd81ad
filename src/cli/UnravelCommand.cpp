#include "cli/UnravelCommand.h"
#include "app/AppContext.h"
#include "app/CommandLineHelp.h"
#include "app/ConsolePrompts.h"
#include "app/FilePaths.h"
#include "cli/BoardOptions.h"
#include "compiler/SearchPaths.h"
#include "compiler/Unravel.h"
#include <QCommandLineParser>
#include <QFileInfo>
#include <cstdio>

namespace kvr {

namespace {

const char *UnravelNotes =
    "\n"
    "Writes FILE with every INCLUDE file expanded in its place (each file once),\n"
    "as \"Unravel INCLUDEs\" in an editor window's File menu does. INCLUDE files\n"
    "are found along the search paths of KVR-PC.INI. An existing OUT is replaced.\n"
    "\n"
    "The line map has one line per line of OUT: its number, the file it came\n"
    "from and the line there, separated by tabs, so that a board error reported\n"
    "in OUT can be traced to the real source.\n"
    "\n"
    "Exit status: 0 written, 1 an INCLUDE file not found (what was written is\n"
    "kept) or OUT not writable, 3 bad usage.\n";

struct UnravelParser : CommandOptions {
    QCommandLineParser parser;
    QCommandLineOption output{QStringList{QStringLiteral("o"), QStringLiteral("output")},
                              QStringLiteral("The flat file to write."), QStringLiteral("OUT")};
    QCommandLineOption strip{QStringLiteral("strip"),
                             QStringLiteral("Leave out comments, empty lines and extra blanks.")};
    QCommandLineOption map{QStringLiteral("map"), QStringLiteral("Write the line map to MAPFILE."),
                           QStringLiteral("MAPFILE")};

    UnravelParser()
    {
        parser.setApplicationDescription(QStringLiteral("Write a program and its INCLUDE files as one file."));
        parser.addOptions({settingsDir, output, strip, map, help});
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The top-level source file."));
    }
    QString Help() const { return HelpText(parser, QStringLiteral("kvr unravel")) + QLatin1String(UnravelNotes); }
};

} // namespace

int RunUnravelCommand(const QStringList &arguments, const QString &settingsDir)
{
    UnravelParser command;
    QCommandLineParser &parser = command.parser;
    const QString name = QStringLiteral("kvr unravel");
    QString file;
    if (const std::optional<int> ended =
            ParseFileCommand(parser, command.help, name, command.Help(), arguments, file))
        return *ended;
    if (!parser.isSet(command.output))
        return UsageError(name, QStringLiteral("no output file given (-o OUT)"), command.Help());

    // Relative names are taken before the run moves to the source's folder.
    const QString source = LogicalName(file);
    const QString output = QFileInfo(parser.value(command.output)).absoluteFilePath();
    const QString mapFile = parser.isSet(command.map) ? QFileInfo(parser.value(command.map)).absoluteFilePath()
                                                      : QString();

    Paths paths(parser.isSet(command.settingsDir) ? parser.value(command.settingsDir) : settingsDir);
    paths.Prepare();
    ConsolePrompts console;
    Prompts &prompts = console;
    SystemClock clock;
    AppContext context(paths, prompts, clock);
    context.ReadSettings();

    if (!source.endsWith(QLatin1String(".KVR"))) {
        prompts.Message(QStringLiteral("Extension not .KVR, can not unravel"), PromptIcon::Exclamation);
        return ExitUsage;
    }
    if (LogicalName(output) == LogicalName(ResolvePath(source))) {
        prompts.Message(QStringLiteral("File ") + output.toUpper()
                            + QStringLiteral(" is the file being unravelled, choose another name."),
                        PromptIcon::Exclamation);
        return ExitUsage;
    }
    const QString searchList =
        SearchList(SplitPath(source).folder, context.settings.extraSearchPaths, DefaultSearchPaths(paths));
    const UnravelResult result = UnravelFile(source, output, parser.isSet(command.strip), searchList, prompts);
    switch (result.end) {
    case UnravelResult::End::OpenFailed:
    case UnravelResult::End::WriteFailed:
        std::fprintf(stderr, "kvr unravel: %s: %s\n", qPrintable(output), qPrintable(result.error.description));
        return ExitFault;
    case UnravelResult::End::NotFound:
        prompts.Message(QStringLiteral("Halted unravel process, file ") + result.missingFile
                            + QStringLiteral(" not found"),
                        PromptIcon::Exclamation);
        break;
    case UnravelResult::End::Finished:
        break;
    }
    if (!mapFile.isEmpty()) {
        const SaveResult saved = SaveWholeFile(mapFile, LineMapText(result.map));
        if (!saved.Ok()) {
            std::fprintf(stderr, "kvr unravel: %s: %s\n", qPrintable(mapFile), qPrintable(saved.description));
            return ExitFault;
        }
    }
    std::printf("%s: %lld lines from %d files\n", qPrintable(output), static_cast<long long>(result.map.size()),
                result.filesRead);
    return result.end == UnravelResult::End::Finished ? ExitFinished : ExitFault;
}

} // namespace kvr
