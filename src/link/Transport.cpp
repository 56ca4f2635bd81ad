#include "link/Transport.h"

namespace kvr {

int Transport::Available()
{
    if (!IsUsable())
        return 0;
    BeforeCount();
    if (!IsUsable())
        return 0;
    Poll();
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
