#pragma once
// The builder's reading loop: a program and its INCLUDE files read line by
// line, each line cleaned and its references counted against the table as
// it stands, definitions found and collected into records of the table.
#include "words/WordTable.h"
#include "words/WordsText.h"
#include <QStringList>
#include <functional>

namespace kvr {

class IncludeReader;
class Prompts;
class SuggestionAnalysis;

class SourceAnalysis {
public:
    enum class End { Finished, Stopped, FileNotFound };

    SourceAnalysis(IncludeReader &reader, WordTable &table, Prompts &prompts, const QString &computerType);

    // Lines are handed to `analysis`, its blocks to `write`.
    void SetSuggestions(SuggestionAnalysis *analysis, std::function<void(const QStringList &)> write);
    // Called after every line read (the window yields there).
    std::function<void()> afterLine;
    // Asked before every line.
    std::function<bool()> stopRequested;

    End Run(const QString &mainFile);

private:
    // One line as read: the text as it stands and the text cleaned.
    struct Taken {
        QString raw;
        QString cleaned;
        QString file;
        int line = 0;
    };
    enum class Take { Line, Include, FileEnded, Finished, NotFound, Stopped };
    // What the scan of a line leaves: go on reading, a line to scan (or
    // INCLUDE to follow) next, or the end of the run.
    struct Outcome {
        Take next = Take::FileEnded; // FileEnded: read the next line
        Taken pending;
    };

    Take TakeLine(Taken &taken);
    void Clean(Taken &taken);
    Outcome Scan(const Taken &taken);
    Outcome Collect(DefiningKind kind, const QString &name, const Taken &first);
    void AddRecord(const QString &name, QString text, const Taken &first);
    void NoNameMessage(const Taken &taken);

    IncludeReader &m_reader;
    WordTable &m_table;
    Prompts &m_prompts;
    QString m_computerType;
    SuggestionAnalysis *m_suggestions = nullptr;
    std::function<void(const QStringList &)> m_write;
};

} // namespace kvr
