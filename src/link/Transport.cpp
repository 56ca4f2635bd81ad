#include "link/Transport.h"

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

void Transport::DiscardInput()
{
    TakeAll();
}

} // namespace kvr
