#include "compiler/ReplyChecks.h"

namespace kvr {

std::optional<QString> BoardErrorText(const QString &reply)
{
    const qsizetype marker = reply.indexOf(QLatin1String(" ?  - "));
    if (marker < 0)
        return std::nullopt;
    // Look back from the marker to the blank before the offending word;
    // 1-based p = marker + 1, the character at p - i is reply[marker - i].
    const qsizetype p = marker + 1;
    qsizetype i = 1;
    while (i <= 31 && i != p && reply[p - i - 1] != QLatin1Char(' '))
        ++i;
    return reply.mid(p - i);
}

std::optional<QString> NotUniqueText(const QString &reply)
{
    const qsizetype unique = reply.indexOf(QLatin1String("NOT UNIQUE"));
    if (unique < 0)
        return std::nullopt;
    const qsizetype q = unique + 1;
    qsizetype i = 2;
    // Before the first character counts as a blank.
    while (i <= 32 && q - i >= 1 && reply[q - i - 1] != QLatin1Char(' '))
        ++i;
    return reply.mid(q - i, i + 9);
}

} // namespace kvr
