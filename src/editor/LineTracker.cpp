#include "editor/LineTracker.h"
#include "editor/EditCommands.h"

namespace kvr {

bool LineTracker::Changed(int caret, int added, int removed,
                          const std::function<int()> &measure, bool lineEndsChanged)
{
    if (lineEndsChanged) {
        m_lineLength = measure();
    } else if (caret == m_lastSelStart + 1 && added == 1 && removed == 0) {
        ++m_lineLength;
    } else if (added == 0 && removed == 1
               && (caret == m_lastSelStart || caret == m_lastSelStart - 1)) {
        // One character removed in front of (Delete) or behind (Backspace)
        // the caret: the line only got shorter.
        --m_lineLength;
        m_lastSelStart = caret;
        return false;
    } else {
        m_lineLength = measure();
    }
    m_lastSelStart = caret;
    return m_lineLength > MaxLineLength;
}

void LineTracker::Reset(int caret, int lineLength)
{
    m_lastSelStart = caret;
    m_lineLength = lineLength;
}

} // namespace kvr
