#include "cli/WordsCommand.h"
#include "app/AppContext.h"
#include "app/CommandLineHelp.h"
#include "app/ConsolePrompts.h"
#include "app/FilePaths.h"
#include "app/SafeSave.h"
#include "app/TerminationSignals.h"
#include "app/Text.h"
#include "cli/BoardOptions.h"
#include "words/DatabaseBuilder.h"
#include "words/WordsDatabase.h"
#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

namespace kvr {

namespace {

const char *WordsNotes =
    "\n"
    "Makes FILE.MDB beside FILE from the computer type's template, as \"Make\n"
    "database\" in an editor window does with every question answered Yes (the\n"
    "suggestions question only with --suggest), and prints the statistics.\n"
    "Messages go to stderr; the build goes on where the window's would.\n"
    "Settings come from KVR-PC.INI and are never written back.\n"
    "\n"
    "Exit status: 0 made, 1 an INCLUDE file not found or a faulty template or\n"
    "database, 3 bad usage, 4 halted (Ctrl-C; what was read stays in the database).\n";

struct WordsParser : CommandOptions {
    QCommandLineParser parser;
    QCommandLineOption suggest{QStringLiteral("suggest"),
                               QStringLiteral("Write the suggestions report FILE.SUG too.")};
    QCommandLineOption report{QStringLiteral("report"),
                              QStringLiteral("Write the alphanumeric report of definitions to OUT.TXT."),
                              QStringLiteral("OUT.TXT")};

    WordsParser()
    {
        parser.setApplicationDescription(QStringLiteral("Make the words database of a program."));
        parser.addOptions({settingsDir, type, suggest, report, help});
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The top-level source file."));
    }
    QString Help() const { return HelpText(parser, QStringLiteral("kvr words")) + QLatin1String(WordsNotes); }
};

// Messages on stderr; the make question is answered OK, the suggestions
// question as the command line says.
class WordsPrompts : public ConsolePrompts {
public:
    explicit WordsPrompts(bool suggest) : ConsolePrompts(true), m_suggest(suggest) {}
    PromptAnswer Message(const QString &text, PromptIcon icon, PromptButtons buttons,
                         const QString &caption) override
    {
        const PromptAnswer answer = ConsolePrompts::Message(text, icon, buttons, caption);
        return buttons == PromptButtons::YesNo && !m_suggest ? PromptAnswer::No : answer;
    }

private:
    bool m_suggest;
};

std::optional<QString> KnownType(const QString &type)
{
    for (const QString &known : {QStringLiteral("4410ANS"), QStringLiteral("4410Fig"), QStringLiteral("6630Fig")})
        if (known.compare(type, Qt::CaseInsensitive) == 0)
            return known;
    return std::nullopt;
}

QByteArray Lines(const QStringList &lines)
{
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += Latin1ToBytes(line) + "\r\n";
    return bytes;
}

int WriteAlphanumericReport(const QString &database, const QString &target)
{
    WordsDatabase words(ResolvePath(database));
    WordTable table;
    if (!words.Open() || !words.LoadWords(table)) {
        std::fprintf(stderr, "%s\n", qPrintable(DatabaseBuilder::FaultyDatabaseMessage(database)));
        return ExitFault;
    }
    QStringList suggestions;
    QFile report(ResolvePath(DatabaseBuilder::DerivedPath(database, QStringLiteral(".SUG"))));
    if (report.open(QIODevice::ReadOnly)) {
        for (QByteArray line : report.readAll().split('\n')) {
            if (line.endsWith('\r'))
                line.chop(1);
            suggestions << BytesToLatin1(line);
        }
        if (!suggestions.isEmpty() && suggestions.last().isEmpty())
            suggestions.removeLast();
    }
    const QStringList lines = AlphanumericReport(table.InIndexOrder(),
                                                 DatabaseBuilder::DerivedPath(database, QStringLiteral(".KVR")),
                                                 QDateTime::currentDateTime(), suggestions);
    const SaveResult saved = SaveWholeFile(target, Lines(lines));
    if (!saved.Ok()) {
        std::fprintf(stderr, "kvr words: %s: %s\n", qPrintable(target), qPrintable(saved.description));
        return ExitFault;
    }
    return ExitFinished;
}

} // namespace

int RunWordsCommand(const QStringList &arguments, const QString &settingsDir)
{
    WordsParser command;
    QCommandLineParser &parser = command.parser;
    const QString name = QStringLiteral("kvr words");
    QString file;
    if (const std::optional<int> ended =
            ParseFileCommand(parser, command.help, name, command.Help(), arguments, file))
        return *ended;
    const QString source = LogicalName(file);
    const QString reportTarget =
        parser.isSet(command.report) ? QFileInfo(parser.value(command.report)).absoluteFilePath() : QString();

    Paths paths(parser.isSet(command.settingsDir) ? parser.value(command.settingsDir) : settingsDir);
    paths.Prepare();
    WordsPrompts prompts(parser.isSet(command.suggest));
    SystemClock clock;
    AppContext context(paths, prompts, clock);
    context.ReadSettings();
    if (parser.isSet(command.type)) {
        const std::optional<QString> type = KnownType(parser.value(command.type));
        if (!type)
            return UsageError(name, QStringLiteral("unknown computer type '%1'").arg(parser.value(command.type)),
                              command.Help());
        context.settings.computerType = *type;
    }

    DatabaseBuilder builder(context);
    builder.SetSettingsWriter({}); // the command line leaves KVR-PC.INI alone
    // Ctrl-C, a shutdown or a closed terminal stop the build as Stop does.
    TerminationSignals interrupts({SIGINT, SIGTERM, SIGHUP});
    QObject::connect(&interrupts, &TerminationSignals::Received, &builder, &DatabaseBuilder::Stop);
    builder.MakeDatabase(source);

    switch (builder.LastEnd()) {
    case DatabaseBuilder::End::None:
        return ExitUsage; // refused: not a .KVR file
    case DatabaseBuilder::End::Stopped:
        return ExitHalted;
    case DatabaseBuilder::End::FileNotFound:
    case DatabaseBuilder::End::FaultyDatabase:
    case DatabaseBuilder::End::Error:
        return ExitFault;
    case DatabaseBuilder::End::Finished:
        break;
    }
    for (const QString &line : builder.ClosingLines())
        std::printf("%s\n", line.toLocal8Bit().constData());
    std::fflush(stdout);
    if (!reportTarget.isEmpty())
        return WriteAlphanumericReport(context.settings.wordsDatabase, reportTarget);
    return ExitFinished;
}

} // namespace kvr
