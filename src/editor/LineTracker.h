#pragma once
// Per-window length of the line holding the caret, kept up to date while
// typing so that a character past column 80 is caught at once without
// measuring the line again on every keystroke.
#include <functional>

namespace kvr {

class LineTracker {
public:
    // After each change of the text: `caret` is the new caret position,
    // `added`/`removed` the characters the change put in and took out,
    // `measure` gives the caret line's length when it must be measured;
    // `lineEndsChanged` tells that lines were joined or split, which no
    // count of characters can follow (Delete before a line end).
    // True when the line is now over 80 characters (the box is due).
    bool Changed(int caret, int added, int removed, const std::function<int()> &measure,
                 bool lineEndsChanged = false);

    // The caret moved without a change (or the text was replaced).
    void Reset(int caret, int lineLength);

    int LastSelStart() const { return m_lastSelStart; }
    int LineLength() const { return m_lineLength; }

private:
    int m_lastSelStart = 0;
    int m_lineLength = 0;
};

} // namespace kvr
