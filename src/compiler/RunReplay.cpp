#include "compiler/RunReplay.h"

namespace kvr {

bool RunReplay::Match(const QString &file, int line, const QString &text)
{
    const SentLine &sent = m_lines[m_next];
    // Line numbers may shift (a comment added above): the board only saw text.
    if (sent.file == file && sent.text == text) {
        ++m_next;
        return true;
    }
    StoppedAt(file, line);
    return false;
}

void RunReplay::StoppedAt(const QString &file, int line)
{
    if (m_changed)
        return;
    m_changed = true;
    m_file = file;
    m_line = line;
}

bool RunReplay::TakeResume()
{
    if (m_resumed || m_changed || m_next < m_restart)
        return false;
    m_resumed = true;
    return true;
}

} // namespace kvr
