#pragma once
// Make database: turns a source file and its INCLUDE files into a words
// database copied from the computer type's template, with an optional
// suggestions report (.SUG) and its closing statistics.
#include "words/WordsReports.h"
#include <QDateTime>
#include <QObject>
#include <functional>

namespace kvr {

class AppContext;

class DatabaseBuilder : public QObject {
    Q_OBJECT
public:
    enum class End { None, Finished, Stopped, FileNotFound, FaultyDatabase, Error };

    explicit DatabaseBuilder(AppContext &context, QObject *parent = nullptr);

    // How the current words database is kept; the command line keeps the
    // settings file untouched.
    void SetSettingsWriter(std::function<void()> writer) { m_writeSettings = std::move(writer); }
    void SetClock(std::function<QDateTime()> now) { m_now = std::move(now); }
    // Given the turn after every line (the window keeps painting there).
    void SetYield(std::function<void()> yield) { m_yield = std::move(yield); }

    // mnuDMake: the checks and the question, then the builder with the
    // busy state 2 for its whole run. `fileName` is the window's caption.
    void MakeDatabase(const QString &fileName);
    // The builder proper on a main source file (its upper-cased path).
    void Build(const QString &sourcePath);
    // cmdESC: the build ends before its next line.
    void Stop() { m_stop = true; }
    bool Running() const { return m_running; }

    End LastEnd() const { return m_end; }
    // The statistics of the last build that read its program to the end.
    const WordStatistics &Statistics() const { return m_statistics; }
    QStringList ClosingLines() const;
    QString LastSource() const { return m_source; }

    static QString TemplatePath(const QString &programFolder, const QString &computerType);
    // The source's path with its last four characters replaced.
    static QString DerivedPath(const QString &source, const QString &extension);
    static QString FaultyDatabaseMessage(const QString &path);

signals:
    // frmWords: the making state with "Analysing " + the source, then
    // "Processing file" and each file's name, then back to its list.
    void MakingStarted(const QString &text);
    void ProgressText(const QString &text);
    void MakingEnded(const QString &databaseName);
    // After every line read.
    void LineRead();

private:
    bool OpenReport(const QString &sourcePath);
    void WriteReport(const QStringList &lines);
    void Fail(End end, const QString &message);

    AppContext &m_context;
    std::function<void()> m_writeSettings;
    std::function<QDateTime()> m_now;
    std::function<void()> m_yield;
    bool m_stop = false;
    bool m_running = false;
    End m_end = End::None;
    QString m_source;
    WordStatistics m_statistics;
    class ReportFile;
    ReportFile *m_report = nullptr;
};

} // namespace kvr
