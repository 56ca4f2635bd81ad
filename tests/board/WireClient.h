#pragma once

#include <QByteArray>
#include <memory>

namespace kvr::test {

// The PC's end of the board's wire, as a plain TCP socket.
class WireClient {
public:
    static std::unique_ptr<WireClient> ConnectTcp(quint16 port);
    ~WireClient();
    WireClient(const WireClient &) = delete;
    WireClient &operator=(const WireClient &) = delete;

    void Send(const QByteArray &bytes);
    // One line through its line feed, CR LF removed; null when none came in time.
    QByteArray ReadLine(int timeoutMs = 5000);
    // Sends the line with a carriage return and reads the one reply line.
    QByteArray Converse(const QByteArray &line, int timeoutMs = 5000) { return Send(line + '\r'), ReadLine(timeoutMs); }

private:
    explicit WireClient(int fd) : m_fd(fd) {}

    int m_fd;
    QByteArray m_buffer;
};

}  // namespace kvr::test
