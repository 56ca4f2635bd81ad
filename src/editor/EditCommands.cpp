#include "editor/EditCommands.h"
#include "app/Text.h"

namespace kvr {

namespace {

bool IsLineEnd(QChar c)
{
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

// Start of the line after the one starting at `start`, or -1 on the last.
int NextLineStart(const QString &text, int start)
{
    const int lf = static_cast<int>(text.indexOf(QLatin1Char('\n'), start));
    return lf < 0 ? -1 : lf + 1;
}

} // namespace

LineInfo GetLineInfo(const QString &text, int position)
{
    const int size = static_cast<int>(text.size());
    position = std::clamp(position, 0, size);
    int start = position;
    while (start > 0 && text[start - 1] != QLatin1Char('\n'))
        --start;
    int end = start;
    while (end < size && !IsLineEnd(text[end]))
        ++end;
    return {start, end - start};
}

bool IsDiscardedChar(uint code)
{
    if (code == 8 || code == 13)
        return false;
    return code < 32 || code >= 255;
}

EditAction EnterAction(const QString &text, int selStart, int selLength)
{
    const LineInfo line = GetLineInfo(text, selStart);
    EditAction action;
    action.changesText = true;
    action.start = selStart;
    action.removed = selLength;
    if (selStart == line.start + line.length) {
        int indent = 0;
        while (indent < line.length && text[line.start + indent] == QLatin1Char(' '))
            ++indent;
        action.wantedColumn = indent;
        action.inserted = QStringLiteral("\r\n") + QString(indent, QLatin1Char(' '));
    } else {
        action.inserted = QStringLiteral("\r\n");
    }
    action.selStart = selStart + static_cast<int>(action.inserted.size());
    return action;
}

std::optional<EditAction> TabAction(const QString &text, int selStart, int selLength,
                                    int tabSpaces)
{
    if (tabSpaces <= 0)
        return std::nullopt;
    const LineInfo line = GetLineInfo(text, selStart);
    const int column = selStart - line.start;
    int blanks = tabSpaces - column % tabSpaces;
    if (blanks == 0)
        blanks = tabSpaces;
    if (blanks + line.length >= MaxLineLength + 1)
        return std::nullopt;
    EditAction action;
    action.changesText = true;
    action.start = selStart;
    action.removed = selLength;
    action.inserted = QString(blanks, QLatin1Char(' '));
    action.selStart = selStart + blanks;
    return action;
}

std::optional<EditAction> UpDownAction(const QString &text, int selStart, int selLength,
                                       bool up)
{
    const int caret = selStart + selLength;
    const LineInfo line = GetLineInfo(text, caret);
    const int column = caret - line.start;
    EditAction action;
    action.selStart = caret;
    action.wantedColumn = column;
    int target = -1;
    if (up) {
        if (line.start == 0)
            return selLength ? std::optional(action) : std::nullopt;
        target = GetLineInfo(text, line.start - 1).start;
    } else {
        target = NextLineStart(text, line.start);
        if (target < 0)
            return selLength ? std::optional(action) : std::nullopt;
    }
    const LineInfo targetLine = GetLineInfo(text, target);
    if (targetLine.length < column) {
        action.changesText = true;
        action.start = targetLine.start + targetLine.length;
        action.inserted = QString(column - targetLine.length, QLatin1Char(' '));
    }
    action.selStart = targetLine.start + column;
    return action;
}

std::optional<EditAction> DeleteAction(const QString &text, int selStart, int selLength)
{
    const int size = static_cast<int>(text.size());
    if (selStart >= size)
        return std::nullopt;
    int length = selLength;
    if (length == 0) {
        length = 1;
        if (text[selStart] == QLatin1Char('\r') && selStart + 1 < size
            && text[selStart + 1] == QLatin1Char('\n'))
            length = 2;
    }
    length = std::min(length, size - selStart);
    EditAction action;
    action.changesText = true;
    action.start = selStart;
    action.removed = length;
    action.selStart = selStart;
    return action;
}

QString InvertCase(const QString &text)
{
    QString result = text;
    for (QChar &c : result) {
        const ushort u = c.unicode();
        if (u >= 'A' && u <= 'Z')
            c = QChar(u + 32);
        else if (u >= 'a' && u <= 'z')
            c = QChar(u - 32);
    }
    return result;
}

QString DateStamp(const QDateTime &when)
{
    return DayMonthYearTime(when, 2);
}

int TabSpacesValue(const QString &setting)
{
    const QString trimmed = setting.trimmed();
    if (trimmed == QLatin1String("2") || trimmed == QLatin1String("3")
        || trimmed == QLatin1String("4"))
        return trimmed.toInt();
    return 0;
}

LineRange LineSelection(const QString &text, int lineNumber)
{
    int start = 0;
    for (int n = 1; n < lineNumber; ++n) {
        const int lf = static_cast<int>(text.indexOf(QLatin1Char('\n'), start));
        if (lf < 0) {
            start = static_cast<int>(text.size());
            break;
        }
        start = lf + 1;
    }
    const int lf = static_cast<int>(text.indexOf(QLatin1Char('\n'), start));
    return {start, lf < 0 ? static_cast<int>(text.size()) : lf};
}

QString ToCrLf(const QString &text)
{
    QString result;
    result.reserve(text.size() + text.size() / 32);
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text[i];
        if (c == QLatin1Char('\r')) {
            result += QLatin1String("\r\n");
            if (i + 1 < n && text[i + 1] == QLatin1Char('\n'))
                ++i;
        } else if (c == QLatin1Char('\n') || c == QChar::ParagraphSeparator
                   || c == QChar::LineSeparator) {
            result += QLatin1String("\r\n");
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace kvr
