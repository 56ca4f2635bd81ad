#include "WireClient.h"

#include <QDeadlineTimer>

#include <arpa/inet.h>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvr::test {

std::unique_ptr<WireClient> WireClient::ConnectTcp(quint16 port)
{
    std::unique_ptr<WireClient> wire(new WireClient(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (wire->m_fd < 0 || ::connect(wire->m_fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
        return nullptr;
    const int one = 1;
    ::setsockopt(wire->m_fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    return wire;
}

WireClient::~WireClient()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void WireClient::Send(const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t written = ::write(m_fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (written <= 0 && errno != EINTR)
            return;
        done += qMax<ssize_t>(written, 0);
    }
}

QByteArray WireClient::ReadLine(int timeoutMs)
{
    for (QDeadlineTimer deadline(timeoutMs); !m_buffer.contains('\n');) {
        pollfd entry{m_fd, POLLIN, 0};
        char chunk[4096];
        ssize_t count = 0;
        if (deadline.hasExpired() || (::poll(&entry, 1, int(qMax<qint64>(1, deadline.remainingTime()))) > 0
                                      && (count = ::read(m_fd, chunk, sizeof chunk)) <= 0))
            return QByteArray(); // time-out or the end of the connection
        m_buffer.append(chunk, count);
    }
    const qsizetype end = m_buffer.indexOf('\n');
    QByteArray line = m_buffer.left(end);
    m_buffer.remove(0, end + 1);
    if (line.endsWith('\r'))
        line.chop(1);
    return line.isNull() ? QByteArray("") : line;
}

}  // namespace kvr::test
