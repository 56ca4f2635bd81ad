#include "link/KeyboardInput.h"
#include <Qt>

namespace kvr {

int ControlCode(int qtKey)
{
    if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)
        return qtKey - Qt::Key_A + 1;
    switch (qtKey) {
    case Qt::Key_At:
        return 0;
    case Qt::Key_BracketLeft:
        return 27;
    case Qt::Key_Backslash:
        return 28;
    case Qt::Key_BracketRight:
        return 29;
    case Qt::Key_AsciiCircum:
        return 30;
    case Qt::Key_Underscore:
        return 31;
    default:
        return -1;
    }
}

QChar CapsLockLetter(int qtKey, bool shift)
{
    if (qtKey < Qt::Key_A || qtKey > Qt::Key_Z)
        return {};
    const char letter = static_cast<char>('A' + (qtKey - Qt::Key_A));
    return QLatin1Char(shift ? static_cast<char>(letter - 'A' + 'a') : letter);
}

void LineHistory::Sent(QChar c)
{
    switch (c.unicode()) {
    case 13:
        if (!m_current.trimmed().isEmpty() && (m_lines.isEmpty() || m_lines.last() != m_current)) {
            m_lines.append(m_current);
            if (m_lines.size() > Capacity)
                m_lines.removeFirst();
        }
        m_current.clear();
        m_index = int(m_lines.size());
        return;
    case 8:
    case 127:
        m_current.chop(1);
        return;
    default:
        if (c.unicode() >= 32)
            m_current.append(c);
    }
}

QString LineHistory::Recall(bool up)
{
    const int target = up ? m_index - 1 : m_index + 1;
    if (target < 0 || target > m_lines.size())
        return {};
    m_index = target;
    const QString text = target < m_lines.size() ? m_lines.at(target) : QString();
    return QString(m_current.size(), QChar(8)) + text;
}

} // namespace kvr
