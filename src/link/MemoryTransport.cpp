#include "link/MemoryTransport.h"

namespace kvr {

void MemoryTransport::Write(const QByteArray &bytes)
{
    if (!m_usable)
        return;
    writes.append(bytes);
    sent += bytes;
    for (char c : bytes) {
        if (c == '\r') {
            lines.append(m_line);
            if (m_responder)
                m_pending += m_responder(m_line);
            m_line.clear();
        } else {
            m_line += c;
        }
    }
}

void MemoryTransport::Poll()
{
    ++polls;
    m_received += m_pending;
    m_pending.clear();
}

} // namespace kvr
