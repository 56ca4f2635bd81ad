#include "words/WordsText.h"
#include "app/Text.h"
#include <cmath>

namespace kvr {

void BlankStrings(QString &line, const QString &computerType)
{
    if (!line.contains(QLatin1Char('"')))
        return;
    line += QLatin1Char(' ');
    const QChar other = computerType == QLatin1String("4410ANS") ? QLatin1Char('S') : QLatin1Char(' ');
    const qsizetype n = line.size();
    for (qsizetype i = 0; i + 2 < n; ++i) {
        const QChar c = line[i];
        if ((c != QLatin1Char('.') && c != other) || line[i + 1] != QLatin1Char('"')
            || line[i + 2] != QLatin1Char(' '))
            continue;
        const qsizetype close = line.indexOf(QLatin1Char('"'), i + 3);
        const qsizetype end = close < 0 ? n : close;
        for (qsizetype j = i + 3; j < end; ++j)
            line[j] = QLatin1Char(' ');
        if (close < 0)
            break;
        // Go on after the closing quote: the blanks just made must not
        // open a string of their own.
        i = close;
    }
}

void BlankBrackets(QString &line)
{
    qsizetype open = line.indexOf(QLatin1Char('['));
    while (open >= 0) {
        const qsizetype from = open + 2;
        if (from >= line.size())
            return;
        const qsizetype close = line.indexOf(QLatin1Char(']'), from);
        const qsizetype end = close < 0 ? line.size() : close;
        for (qsizetype j = from; j < end; ++j)
            line[j] = QLatin1Char(' ');
        if (close < 0)
            return;
        open = line.indexOf(QLatin1Char('['), close + 1);
    }
}

bool IsCountedToken(QStringView token)
{
    if (token.isEmpty())
        return false;
    // Most tokens are words: no number can start them.
    const QChar first = token.front();
    if (!first.isDigit() && first != QLatin1Char('-') && first != QLatin1Char('+') && first != QLatin1Char('.')
        && first != QLatin1Char(' ') && first != QLatin1Char('\t'))
        return true;
    // The value becomes a whole number as the original integer conversion
    // does it, halves to even: -1.4 and -0.6 are -1, -1.5 and -0.5 are not.
    return std::nearbyint(Val(token.toString())) != -1.0;
}

DefiningKind KindOf(QStringView token)
{
    static const QStringList oneLine{QStringLiteral("CONSTANT"), QStringLiteral("2CONSTANT"),
                                     QStringLiteral("VARIABLE"), QStringLiteral("2VARIABLE"),
                                     QStringLiteral("MARKER"),   QStringLiteral("USER"),
                                     QStringLiteral("DEFER"),    QStringLiteral("VALUE")};
    if (token == QLatin1String(":"))
        return DefiningKind::Colon;
    if (token == QLatin1String("CODE"))
        return DefiningKind::Code;
    if (token == QLatin1String("CREATE"))
        return DefiningKind::Data;
    for (const QString &word : oneLine)
        if (token == word)
            return DefiningKind::OneLine;
    return DefiningKind::None;
}

QString Separator()
{
    return QString(79, QLatin1Char('-'));
}

QString ReportDate(const QDateTime &when)
{
    return DayMonthYearTime(when, 4);
}

QString PadToColumn(const QString &text, int column)
{
    const qsizetype width = column - 1;
    if (text.size() >= width)
        return text + QLatin1Char(' ');
    return text.leftJustified(width, QLatin1Char(' '));
}

QString HeadingLine(const QString &text, const QDateTime &when)
{
    return PadToColumn(text, 64) + ReportDate(when);
}

QStringList CautionLines()
{
    return {QStringLiteral("   This report comes from an analysis of source code and all INCLUDE files"),
            QStringLiteral("   and not to the compiled code. As a result it may contain errors.")};
}

} // namespace kvr
