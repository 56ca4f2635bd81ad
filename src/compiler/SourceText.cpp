#include "compiler/SourceText.h"
#include "app/Text.h"

#include <algorithm>

namespace kvr {

QString TrimBlanks(const QString &text)
{
    return RTrim(LTrim(text));
}

void CompactLine(QString &line)
{
    if (line.isEmpty())
        return;
    if (line.front() == QLatin1Char('\\')) {
        line.clear();
        return;
    }
    QString source = line;
    const qsizetype comment = source.indexOf(QLatin1String(" \\ "));
    if (comment >= 0)
        source.truncate(comment);
    source = TrimBlanks(source);

    const qsizetype n = source.size();
    const QChar blank(QLatin1Char(' '));
    QString result;
    result.reserve(n);
    qsizetype i = 0;
    bool inQuote = false;
    bool endedWithBlank = false;
    do {
        if (!inQuote && i + 1 < n && source[i] == QLatin1Char('(') && source[i + 1] == blank) {
            while (i < n - 1 && source[i] != QLatin1Char(')'))
                ++i;
            ++i;
            if (i < n && source[i] == blank)
                ++i;
        }
        endedWithBlank = false;
        const qsizetype start = i;
        while (i < n) {
            const QChar c = source[i++];
            if (c == QLatin1Char('"'))
                inQuote = !inQuote;
            if (c == blank) {
                endedWithBlank = true;
                break;
            }
        }
        result += QStringView(source).mid(start, i - start);
        if (endedWithBlank && !inQuote)
            while (i < n && source[i] == blank)
                ++i;
    } while (endedWithBlank);
    line = result;
}

void AddDefaultExtension(QString &name)
{
    name = TrimBlanks(name).toUpper();
    if (!name.right(4).contains(QLatin1Char('.')))
        name += QStringLiteral(".KVR");
}

QString IncludeName(const QString &line)
{
    QString name = TrimBlanks(line.mid(8)).toUpper();
    qsizetype cut = name.indexOf(QLatin1String(" \\"));
    if (cut < 0)
        cut = name.indexOf(QLatin1String(" ( "));
    if (cut >= 0)
        name.truncate(cut);
    AddDefaultExtension(name);
    return name;
}

QString ConditionWord(const QString &line)
{
    // Characters 12 on, up to the next blank; with no blank after the
    // word (or a blank right at 12) the rest of the line.
    const qsizetype blank = line.indexOf(QLatin1Char(' '), 11);
    if (blank <= 11)
        return line.mid(11).toUpper();
    return line.mid(11, blank - 11).toUpper();
}

int ErrorLineNumber(const QString &reportLine)
{
    // The report's own " - line " first: the file's path before it may hold
    // "line" too (/home/caroline/..., a PIPELINE folder).
    qsizetype at = reportLine.indexOf(QLatin1String(" - line "));
    at = at >= 0 ? at + 3 : reportLine.indexOf(QLatin1String("line"));
    if (at < 0)
        return 0;
    return std::max(0, static_cast<int>(Val(reportLine.mid(at + 5, 3))));
}

} // namespace kvr
