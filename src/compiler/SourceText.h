#pragma once
// Text rules of the line engine that need no file or board: the quick
// compile reduction, INCLUDE names, and reading the line number back out
// of a report line.
#include <QString>

namespace kvr {

// Drops "\" comments and "( ... )" comments where a word begins, and
// collapses runs of blanks outside double quotes.
void CompactLine(QString &line);

// Trims, upper-cases and appends ".KVR" when the last four characters hold
// no ".".
void AddDefaultExtension(QString &name);

// The file named by an "INCLUDE " line (the line starts with it): trimmed,
// upper-cased, cut before a trailing comment, default extension added.
QString IncludeName(const QString &line);

// The word of a "#CONDITION " line (the line starts with it, any case).
QString ConditionWord(const QString &line);

// The line number in a report line: three characters read five after the
// "line" of the first " - line " (else the first "line"); so line 1234
// reads as 123. 0 when there is none.
int ErrorLineNumber(const QString &reportLine);

// Leading and trailing blanks removed (blanks only, tabs stay).
QString TrimBlanks(const QString &text);

} // namespace kvr
