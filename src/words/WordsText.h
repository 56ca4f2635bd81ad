#pragma once
// Text rules of the words database that need no file or database: string
// and bracket blanking, which tokens are counted, the defining words, and
// the pieces every report shares.
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace kvr {

// Blanks what string literals hold, so that words quoted in messages are not
// counted: after an opener (a character, a double quote and a blank) up to
// the closing double quote. Openers: "." and "S" for 4410ANS, "." and the
// blank otherwise. A line holding a double quote gets a blank appended.
void BlankStrings(QString &line, const QString &computerType);

// Blanks the text interpreted between "[" and "]": from the second
// character after each "[" up to the next "]".
void BlankBrackets(QString &line);

// Whether a token is looked up: not empty, and its leading decimal number,
// taken as a whole number, is not -1.
bool IsCountedToken(QStringView token);

enum class DefiningKind { None, OneLine, Colon, Code, Data };
DefiningKind KindOf(QStringView token);

// A line of 79 "-".
QString Separator();
// "07 Mar 2025  14:05": day, month from "JanFebMar...", year, two blanks, time.
QString ReportDate(const QDateTime &when);
// `text` with the report date from column 64.
QString HeadingLine(const QString &text, const QDateTime &when);
// The two lines under every report heading.
QStringList CautionLines();
// `text` padded with blanks so that what follows starts in `column` (1-based);
// at least one blank when it is already longer.
QString PadToColumn(const QString &text, int column);

} // namespace kvr
