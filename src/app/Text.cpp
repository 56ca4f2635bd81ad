#include "app/Text.h"
#include <QDateTime>

namespace kvr {

double Val(const QString &text)
{
    qsizetype i = 0;
    const qsizetype n = text.size();
    while (i < n && (text[i] == QLatin1Char(' ') || text[i] == QLatin1Char('\t')))
        ++i;
    const qsizetype start = i;
    if (i < n && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+')))
        ++i;
    bool digits = false;
    bool point = false;
    while (i < n) {
        const QChar c = text[i];
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            digits = true;
        } else if (c == QLatin1Char('.') && !point) {
            point = true;
        } else {
            break;
        }
        ++i;
    }
    if (!digits)
        return 0;
    return text.mid(start, i - start).toDouble();
}

QString RTrim(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && text[end - 1] == QLatin1Char(' '))
        --end;
    return text.left(end);
}

QString LTrim(const QString &text)
{
    qsizetype start = 0;
    while (start < text.size() && text[start] == QLatin1Char(' '))
        ++start;
    return text.mid(start);
}

QString ShortenPath(const QString &path)
{
    if (path.size() > 38)
        return QStringLiteral("...") + path.right(34);
    return path;
}

QString DayMonthYearTime(const QDateTime &when, int yearDigits)
{
    static const QString months = QStringLiteral("JanFebMarAprMayJunJulAugSepOctNovDec");
    const QDate date = when.date();
    const QTime time = when.time();
    const int year = yearDigits == 2 ? date.year() % 100 : date.year();
    return QStringLiteral("%1 %2 %3  %4:%5")
        .arg(date.day(), 2, 10, QLatin1Char('0'))
        .arg(months.mid(3 * (date.month() - 1), 3))
        .arg(year, yearDigits, 10, QLatin1Char('0'))
        .arg(time.hour(), 2, 10, QLatin1Char('0'))
        .arg(time.minute(), 2, 10, QLatin1Char('0'));
}

} // namespace kvr
