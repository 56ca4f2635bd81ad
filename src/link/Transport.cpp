#include "link/Transport.h"
#include <poll.h>

namespace kvr {

int Transport::Available()
{
    // What arrived before the link went away is still delivered.
    if (IsUsable()) {
        BeforeCount();
        if (IsUsable())
            Poll();
    }
    return static_cast<int>(m_received.size());
}

QByteArray Transport::TakeAll()
{
    if (IsUsable())
        Poll();
    QByteArray bytes;
    bytes.swap(m_received);
    return bytes;
}

void Transport::WaitReadable(qintptr handle, int ms)
{
    if (handle < 0 || ms <= 0)
        return;
    pollfd line{static_cast<int>(handle), POLLIN, 0};
    ::poll(&line, 1, ms);
}

void Transport::DiscardInput()
{
    TakeAll();
}

} // namespace kvr
