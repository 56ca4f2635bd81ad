#include "editor/FindEngine.h"
#include "app/Prompts.h"

namespace kvr {

QString FindPrefill(const FindState &state, const QString &selectedText)
{
    return selectedText.isEmpty() ? state.gLastFound : selectedText;
}

namespace {

// Character by character, so positions stay those of the text.
QString Upper(const QString &text)
{
    QString result = text;
    for (QChar &c : result)
        c = c.toUpper();
    return result;
}

// 0-based position of the match, -1 when none.
int Search(const FindState &state, const QString &text, const QString &wanted, int start)
{
    if (wanted.isEmpty())
        return -1;
    if (state.gFindDirection == 1) {
        if (start > text.size())
            return -1;
        return static_cast<int>(text.indexOf(wanted, start));
    }
    // Upward: 1-based i from start - 1 down to 1.
    const qsizetype length = wanted.size();
    for (int i = start - 1; i >= 1; --i) {
        if (i - 1 + length <= text.size() && QStringView(text).mid(i - 1, length) == wanted)
            return i - 1;
    }
    return -1;
}

} // namespace

bool FindIt(FindState &state, const QString &text, int &selStart, int &selLength,
            Prompts &prompts)
{
    const QString compared = state.gFindCase ? text : Upper(text);
    const QString wanted = state.gFindCase ? state.gFindString : Upper(state.gFindString);
    state.gLastFound = wanted;
    const int searchLength = static_cast<int>(wanted.size());
    bool going = true;
    bool wrapped = false;
    for (;;) {
        const int s = selStart;
        int offset = s == state.gCurPos ? 1 : 0;
        if (state.gFirstTime)
            offset = 0;
        // After the wrap the whole text is searched, the far end included:
        // a match at position 0 (or at the very end going up) is found
        // instead of being asked about for ever.
        int start = s + offset;
        if (wrapped)
            start = state.gFindDirection == 1 ? 0 : static_cast<int>(text.size()) + 2;
        const int found = Search(state, compared, wanted, start);
        if (found >= 0) {
            selStart = found;
            selLength = searchLength;
            break;
        }
        const PromptAnswer answer = prompts.Message(
            QStringLiteral("Cannot find '") + state.gFindString
                + QStringLiteral("', continue search at other end of text? "),
            PromptIcon::Question, PromptButtons::YesNo);
        if (answer != PromptAnswer::Yes) {
            going = false;
            break;
        }
        wrapped = true;
        const int size = static_cast<int>(text.size());
        selStart = state.gFindDirection == 1 ? 0 : std::max(0, size - searchLength);
        selLength = std::min(searchLength, size - selStart);
    }
    state.gCurPos = selStart;
    state.gFirstTime = false;
    return going;
}

} // namespace kvr
