#include "WireClient.h"

#include <QDeadlineTimer>
#include <QList>

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
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return nullptr;
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        ::close(fd);
        return nullptr;
    }
    const int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    return std::unique_ptr<WireClient>(new WireClient(fd));
}

std::unique_ptr<WireClient> WireClient::OpenPty(const QString &path)
{
    const int fd = ::open(path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    termios settings {};
    ::tcgetattr(fd, &settings);
    ::cfmakeraw(&settings);
    ::tcsetattr(fd, TCSANOW, &settings);
    return std::unique_ptr<WireClient>(new WireClient(fd));
}

WireClient::~WireClient()
{
    Close();
}

void WireClient::Close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
}

void WireClient::Send(const QByteArray &bytes)
{
    const char *data = bytes.constData();
    qsizetype left = bytes.size();
    while (left > 0 && m_fd >= 0) {
        const ssize_t written = ::write(m_fd, data, static_cast<size_t>(left));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        data += written;
        left -= written;
    }
}

bool WireClient::Fill(int timeoutMs)
{
    if (m_fd < 0 || m_ended)
        return false;
    pollfd entry {m_fd, POLLIN, 0};
    const int ready = ::poll(&entry, 1, timeoutMs);
    if (ready <= 0)
        return false;
    char chunk[4096];
    const ssize_t count = ::read(m_fd, chunk, sizeof chunk);
    if (count <= 0) {
        m_ended = true;
        return false;
    }
    m_buffer.append(chunk, count);
    return true;
}

QByteArray WireClient::ReadLine(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!m_buffer.contains('\n')) {
        const qint64 left = deadline.remainingTime();
        if (left <= 0 || m_ended)
            return QByteArray();
        Fill(static_cast<int>(left));
    }
    const qsizetype end = m_buffer.indexOf('\n');
    QByteArray line = m_buffer.left(end);
    m_buffer.remove(0, end + 1);
    if (line.endsWith('\r'))
        line.chop(1);
    if (line.isNull())
        line = QByteArray("");
    return line;
}

QByteArray WireClient::Converse(const QByteArray &line, int timeoutMs)
{
    Send(line + '\r');
    return ReadLine(timeoutMs);
}

QList<QByteArray> WireClient::ReadReply(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    QList<QByteArray> lines;
    while (!deadline.hasExpired()) {
        const QByteArray line = ReadLine(static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
        if (line.isNull())
            break;
        lines << line;
        if (line.endsWith("ok") || line.contains(" ?  - "))
            return lines;
    }
    return {};
}

bool WireClient::Silent(int ms)
{
    return m_buffer.isEmpty() && !Fill(ms) && !m_ended;
}

bool WireClient::WaitClosed(int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!m_ended && !deadline.hasExpired()) {
        Fill(static_cast<int>(deadline.remainingTime()));
        m_buffer.clear();
    }
    return m_ended;
}

}  // namespace kvr::test
