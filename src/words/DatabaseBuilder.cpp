#include "words/DatabaseBuilder.h"
#include "words/WordsBrowser.h"
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include "compiler/IncludeReader.h"
#include "compiler/SearchPaths.h"
#include "editor/BusyCursor.h"
#include "words/SourceAnalysis.h"
#include "words/Suggestions.h"
#include "words/WordsDatabase.h"
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <memory>

namespace kvr {

// The suggestions report, written as the lines are read.
class DatabaseBuilder::ReportFile {
public:
    explicit ReportFile(const QString &path) : file(path) {}
    QFile file;
};

namespace {

QString MakeQuestion(const QString &fileName)
{
    const QChar lf(10);
    return QStringLiteral("File ") + fileName + QStringLiteral(" and any INCLUDE files will be ")
           + QStringLiteral("analysed.  Definitions identified will be added to ")
           + QStringLiteral("a database of existing Forth ROM words.") + lf + lf
           + QStringLiteral("Afterwards, the database is accessible:") + lf + QStringLiteral("  1. Using ctrl/F1") + lf
           + QStringLiteral("  2. From the 'Definitions' menu.") + lf + lf
           + QStringLiteral("Do you want to make a new database?");
}

QString SuggestionsQuestion()
{
    const QChar lf(10);
    return QStringLiteral("While making the database your source code can be ")
           + QStringLiteral("scanned for suggested improvements, but the process ")
           + QStringLiteral("then takes a longer time.") + lf + lf + QStringLiteral("Do you want to have the suggestions?");
}

// Busy state 2 for the builder's whole run, back to 0 on every way out.
class BuildingGuard {
public:
    explicit BuildingGuard(AppContext &context) : m_context(context)
    {
        m_context.busyState = BusyState::BuildingDatabase;
    }
    ~BuildingGuard() { m_context.busyState = BusyState::Idle; }
    BuildingGuard(const BuildingGuard &) = delete;
    BuildingGuard &operator=(const BuildingGuard &) = delete;

private:
    AppContext &m_context;
};

} // namespace

DatabaseBuilder::DatabaseBuilder(AppContext &context, QObject *parent)
    : QObject(parent), m_context(context), m_writeSettings([&context] { context.WriteSettings(); }),
      m_now([] { return QDateTime::currentDateTime(); }), m_yield([] { QCoreApplication::processEvents(); })
{
}

QString DatabaseBuilder::TemplatePath(const QString &programFolder, const QString &computerType)
{
    return WithTrailingSeparator(programFolder) + QStringLiteral("KVR") + computerType.left(4) + QStringLiteral("/W")
           + computerType + QStringLiteral(".MDB");
}

QString DatabaseBuilder::DerivedPath(const QString &source, const QString &extension)
{
    return source.left(source.size() - 4) + extension;
}

QString DatabaseBuilder::FaultyDatabaseMessage(const QString &path)
{
    return QStringLiteral("Database file ") + path
           + QStringLiteral(" is missing, corrupt, an old version or otherwise faulty.");
}

QStringList DatabaseBuilder::ClosingLines() const
{
    return ClosingSections(m_statistics, m_source);
}

void DatabaseBuilder::MakeDatabase(const QString &fileName)
{
    Prompts &prompts = m_context.prompts;
    const QString templatePath = TemplatePath(m_context.paths.ProgramFolder(), m_context.settings.computerType);
    QFile probe(ResolvePath(templatePath));
    if (!probe.open(QIODevice::ReadOnly)) {
        m_end = End::FaultyDatabase;
        prompts.Message(FaultyDatabaseMessage(templatePath), PromptIcon::Exclamation);
        return;
    }
    probe.close();
    if (m_context.busyState == BusyState::Compiling) {
        prompts.Message(QStringLiteral("Wait until compiling complete before making database"),
                        PromptIcon::Exclamation);
        return;
    }
    if (fileName.right(4) != QLatin1String(".KVR")) {
        prompts.Message(QStringLiteral("Extension not .KVR, can not make database"), PromptIcon::Exclamation);
        return;
    }
    if (prompts.Message(MakeQuestion(fileName), PromptIcon::Question, PromptButtons::OkCancel) != PromptAnswer::Ok)
        return;
    const BuildingGuard building(m_context);
    Build(fileName);
}

void DatabaseBuilder::Fail(End end, const QString &message)
{
    m_end = end;
    m_context.prompts.Message(message, PromptIcon::Exclamation);
}

bool DatabaseBuilder::OpenReport(const QString &sourcePath)
{
    Prompts &prompts = m_context.prompts;
    const QString reportName = DerivedPath(sourcePath, QStringLiteral(".SUG"));
    const QString reportPath = ResolvePath(reportName);
    if (!MayOverwrite(prompts, reportName, reportPath))
        return true; // the database is still made, without suggestions
    auto report = std::make_unique<ReportFile>(reportPath);
    if (!report->file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        Fail(End::Error, QStringLiteral("Error: ") + report->file.errorString());
        return false;
    }
    m_report = report.release();
    const QDateTime now = m_now();
    WriteReport(QStringList{HeadingLine(QStringLiteral("REPORT ON ") + ShortenPath(sourcePath), now)}
                + CautionLines());
    return true;
}

void DatabaseBuilder::WriteReport(const QStringList &lines)
{
    if (!m_report)
        return;
    QByteArray bytes;
    for (const QString &line : lines)
        bytes += Latin1ToBytes(line) + "\r\n";
    m_report->file.write(bytes);
}

void DatabaseBuilder::Build(const QString &sourcePath)
{
    m_stop = false;
    m_running = true;
    m_end = End::None;
    m_source = sourcePath;
    m_statistics = WordStatistics{};
    const auto finish = qScopeGuard([this] {
        delete m_report;
        m_report = nullptr;
        m_running = false;
    });
    Prompts &prompts = m_context.prompts;

    const QString databaseName = DerivedPath(sourcePath, QStringLiteral(".MDB"));
    m_context.settings.wordsDatabase = databaseName;
    if (m_writeSettings)
        m_writeSettings();

    if (prompts.Message(SuggestionsQuestion(), PromptIcon::Question, PromptButtons::YesNo) == PromptAnswer::Yes
        && !OpenReport(sourcePath))
        return;

    const QString databasePath = ResolvePath(databaseName);
    const QString templatePath =
        ResolvePath(TemplatePath(m_context.paths.ProgramFolder(), m_context.settings.computerType));
    QFile::remove(databasePath);
    QFile copy(templatePath);
    if (!copy.copy(databasePath)) {
        Fail(End::Error, QStringLiteral("Error: ") + copy.errorString());
        return;
    }
    QFile::setPermissions(databasePath, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    WordsDatabase database(databasePath);
    WordTable table;
    QList<SuggestRule> rules;
    if (!database.Open() || !database.LoadWords(table) || !database.LoadRules(rules)) {
        Fail(End::FaultyDatabase, FaultyDatabaseMessage(databaseName));
        return;
    }

    BusyCursor busy;
    emit MakingStarted(QStringLiteral("Analysing ") + ShortenPath(sourcePath));
    const SplitResult split = SplitPath(sourcePath);
    QDir::setCurrent(ResolvePath(split.folder));
    IncludeReader reader(prompts, SearchList(split.folder, m_context.settings.extraSearchPaths,
                                             DefaultSearchPaths(m_context.paths)));
    reader.onFileOpened = [this](const QString &path) {
        emit ProgressText(QStringLiteral("Processing file") + QChar(10) + ShortenPath(path));
    };
    const QString type = m_context.settings.computerType;
    SourceAnalysis analysis(reader, table, prompts, type);
    SuggestionAnalysis suggestions(type, rules);
    if (m_report)
        analysis.SetSuggestions(&suggestions, [this](const QStringList &lines) { WriteReport(lines); });
    analysis.stopRequested = [this] { return m_stop; };
    analysis.afterLine = [this] {
        emit LineRead();
        if (m_yield)
            m_yield();
    };
    const SourceAnalysis::End read = analysis.Run(sourcePath);

    // What was read stays in the database, also after Stop.
    if (!database.SaveWords(table)) {
        Fail(End::FaultyDatabase, FaultyDatabaseMessage(databaseName));
        emit MakingEnded(databaseName);
        return;
    }
    database.Close();
    switch (read) {
    case SourceAnalysis::End::Finished:
        m_end = End::Finished;
        m_statistics = WordStatistics::Of(table.InIndexOrder());
        WriteReport(ClosingLines());
        break;
    case SourceAnalysis::End::Stopped:
        m_end = End::Stopped;
        break;
    case SourceAnalysis::End::FileNotFound:
        m_end = End::FileNotFound;
        break;
    }
    if (m_report && (!m_report->file.flush() || m_report->file.error() != QFileDevice::NoError))
        Fail(End::Error, QStringLiteral("Error: ") + m_report->file.errorString());
    emit MakingEnded(databaseName);
}

} // namespace kvr
