#include "app/Text.h"

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

} // namespace kvr
