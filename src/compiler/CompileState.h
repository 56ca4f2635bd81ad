#pragma once
// The program-wide state of one compile run, shared by the driver, the line
// engine and the readers that come after it (PROM upload reads the end
// address). BusyState and CompileOutcome live in AppContext.
#include "compiler/SourceFiles.h"
#include <QString>
#include <QStringList>
#include <array>

namespace kvr {

inline constexpr int MaxIncludeFiles = 100;
inline constexpr int QuietLineLength = 160;
// The longest reply line kept from the terminal-shown receiver; a board
// that never ends its line cannot fill the memory.
inline constexpr int ReplyLineLimit = 4096;

// One file of the include stack: entry 0 is the file being read, entries
// 1.. its suspended parents, most recent first.
struct IncludeEntry {
    int fileNumber = 0; // 0: not opened yet
    int lineNumber = 0;
    QString name;
    qint64 position = 0; // where a suspended parent resumes
};

// Why the last run ended, for callers that must tell faults apart (the
// command-line exit status); the report says the same in words.
enum class RunEnd {
    None,
    Finished,
    EndUnconfirmed, // finished, but the board did not give its end address
    FileNotFound,
    OverLong,
    ConditionalError,
    BoardError,
    NotResponding,
    Halted,
};

struct CompileState {
    QString topLevelFile; // non-empty exactly while a run is in progress
    QString topLevelFolder;
    QString conditionValue;
    int conditionalState = 0;
    QStringList compiledFiles;
    std::array<IncludeEntry, MaxIncludeFiles + 1> includeStack{};
    int suspendedCount = 0; // parents held in includeStack[1..]
    QString quietLineBuffer;
    int quietFill = 0;
    QString shownLine; // the reply line being collected on the terminal
    int progressCapacity = 0;
    QString replyLine;
    QString endOfProgramAddress;
    bool noDisplay = false; // mirrors "No compile display"
    RunEnd runEnd = RunEnd::None;
    int linesSent = 0;
    SourceFiles files;

    QString &CurrentFile() { return includeStack[0].name; }
    const QString &CurrentFile() const { return includeStack[0].name; }
    bool Running() const { return !topLevelFile.isEmpty(); }

    void ResetQuietLineBuffer()
    {
        quietLineBuffer = QString(QuietLineLength, QLatin1Char(' '));
        quietFill = 0;
    }
};

} // namespace kvr
