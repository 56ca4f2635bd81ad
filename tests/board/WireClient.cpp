#include "WireClient.h"

#include <QDeadlineTimer>

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <termios.h>
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

std::unique_ptr<WireClient> WireClient::OpenPty(const QString &path)
{
    const int fd = ::open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    termios settings{};
    ::tcgetattr(fd, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(fd, TCSANOW, &settings);
    return std::unique_ptr<WireClient>(new WireClient(fd));
}

void WireClient::Close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

void WireClient::Send(const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size() && m_fd >= 0;) {
        const ssize_t written = ::write(m_fd, bytes.constData() + done, size_t(bytes.size() - done));
        if (written <= 0 && errno != EINTR)
            return;
        done += qMax<ssize_t>(written, 0);
    }
}

bool WireClient::Fill(int timeoutMs)
{
    pollfd entry{m_fd, POLLIN, 0};
    if (m_fd < 0 || m_ended || ::poll(&entry, 1, timeoutMs) <= 0)
        return false;
    char chunk[4096];
    const ssize_t count = ::read(m_fd, chunk, sizeof chunk);
    m_ended = count <= 0;
    if (count > 0)
        m_buffer.append(chunk, count);
    return count > 0;
}

QByteArray WireClient::ReadLine(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!m_buffer.contains('\n')) {
        if (deadline.hasExpired() || m_ended)
            return QByteArray();
        Fill(int(qMax<qint64>(1, deadline.remainingTime())));
    }
    const qsizetype end = m_buffer.indexOf('\n');
    QByteArray line = m_buffer.left(end);
    m_buffer.remove(0, end + 1);
    if (line.endsWith('\r'))
        line.chop(1);
    return line.isNull() ? QByteArray("") : line;
}

bool WireClient::WaitClosed(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!m_ended && !deadline.hasExpired()) {
        Fill(int(qMax<qint64>(1, deadline.remainingTime())));
        m_buffer.clear();
    }
    return m_ended;
}

}  // namespace kvr::test
