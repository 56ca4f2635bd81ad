#pragma once
// Small text helpers shared by every subsystem: the numeric conversion the
// settings use at each point of use, and fixed-width string slices.
#include <QString>

class QDateTime;

namespace kvr {

// Leading number of `text` (blanks first, sign, digits, one decimal point);
// 0 when the text does not begin with a number.
double Val(const QString &text);

// "07 Mar 2025  14:05" (four-digit year) or "07 Mar 25  14:05": day, month
// from "JanFebMar...", year, two blanks, time.
QString DayMonthYearTime(const QDateTime &when, int yearDigits);

// The first `count` characters (all of them when shorter).
inline QString Left(const QString &text, qsizetype count)
{
    return text.left(count < 0 ? 0 : count);
}

QString RTrim(const QString &text);
QString LTrim(const QString &text);

// A path longer than 38 characters becomes "..." and its last 34 characters.
QString ShortenPath(const QString &path);

// Bytes to text and back, one character per byte (Latin-1), so that every
// byte value survives.
inline QString BytesToLatin1(const QByteArray &bytes) { return QString::fromLatin1(bytes); }
inline QByteArray Latin1ToBytes(const QString &text) { return text.toLatin1(); }

} // namespace kvr
