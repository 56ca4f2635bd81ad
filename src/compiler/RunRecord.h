#pragma once
// What the last compile sent to the board, line by line, and how it ended.
// Kept in the settings folder, so that a compile stopped by a board error
// can go on from the failing definition once the line is fixed, instead of
// sending the whole program again.
#include "compiler/CompileState.h"
#include <QList>
#include <QString>
#include <optional>

namespace kvr {

struct SentLine {
    QString file;
    int line = 0;
    QString text;              // exactly as sent
    bool inDefinition = false; // a definition was open before this line
};

class RunRecord {
public:
    QString topLevelFile;
    RunEnd end = RunEnd::None;
    QList<SentLine> lines;

    void Begin(const QString &topLevel);
    void Add(const QString &file, int line, const QString &text);
    // Where a continued run starts sending: the first line of the definition
    // the last (failing) line belongs to, since the board drops an unfinished
    // definition; the failing line itself when it is outside any.
    qsizetype RestartIndex() const;

    bool Save(const QString &path) const;
    // Nothing for a missing or damaged file.
    static std::optional<RunRecord> Load(const QString &path);

private:
    bool m_open = false; // a definition is open after the last line
};

// Whether a colon or CODE definition is open after the Forth text `text`,
// given whether one was open before it. Comments and strings are passed over.
bool DefinitionOpenAfter(QStringView text, bool openBefore);

} // namespace kvr
