#include "StreamingBoard.h"
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kvr::bench {

quint16 StreamingBoard::Listen()
{
    m_listenFd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(m_listenFd, reinterpret_cast<sockaddr *>(&address), sizeof address);
    ::listen(m_listenFd, 1);
    socklen_t length = sizeof address;
    ::getsockname(m_listenFd, reinterpret_cast<sockaddr *>(&address), &length);
    return ntohs(address.sin_port);
}

void StreamingBoard::run()
{
    const int fd = ::accept(m_listenFd, nullptr, nullptr);
    ::close(m_listenFd);
    if (fd < 0)
        return;
    int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    if (m_mode == Mode::Stream) {
        // The PC empties its input once the link opens; streaming before it
        // asks would measure that flush, not the painting.
        char first;
        if (::recv(fd, &first, 1, 0) <= 0) {
            ::close(fd);
            return;
        }
        qsizetype sent = 0;
        while (sent < m_payload.size()) {
            const ssize_t n = ::send(fd, m_payload.constData() + sent, m_payload.size() - sent, MSG_NOSIGNAL);
            if (n <= 0)
                break;
            sent += n;
        }
    } else {
        QByteArray line;
        char buffer[4096];
        for (;;) {
            const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
            if (n <= 0)
                break;
            for (ssize_t i = 0; i < n; ++i) {
                if (buffer[i] == '\r') {
                    const QByteArray reply = line + " ok\r\n";
                    ::send(fd, reply.constData(), reply.size(), MSG_NOSIGNAL);
                    line.clear();
                } else {
                    line += buffer[i];
                }
            }
        }
    }
    // Stay connected until the PC closes, as a board would.
    char sink[256];
    while (::recv(fd, sink, sizeof sink, 0) > 0) {
    }
    ::close(fd);
}

} // namespace kvr::bench
