#pragma once

#include <QByteArray>
#include <QString>
#include <memory>

namespace kvr::test {

// The PC's end of the board's wire, as a plain file descriptor: a TCP
// socket or the pseudo-terminal opened like a serial port.
class WireClient {
public:
    static std::unique_ptr<WireClient> ConnectTcp(quint16 port);
    static std::unique_ptr<WireClient> OpenPty(const QString &path);
    ~WireClient() { Close(); }
    WireClient(const WireClient &) = delete;
    WireClient &operator=(const WireClient &) = delete;

    void Send(const QByteArray &bytes);
    // One line through its line feed, CR LF removed; null when none came in time.
    QByteArray ReadLine(int timeoutMs = 5000);
    // Sends the line with a carriage return and reads the one reply line.
    QByteArray Converse(const QByteArray &line, int timeoutMs = 5000) { return Send(line + '\r'), ReadLine(timeoutMs); }
    // True when nothing at all arrives within the time.
    bool Silent(int ms) { return m_buffer.isEmpty() && !Fill(ms) && !m_ended; }
    // True when the other end closes within the time.
    bool WaitClosed(int timeoutMs);
    void Close();

private:
    explicit WireClient(int fd) : m_fd(fd) {}
    bool Fill(int timeoutMs); // false on time-out or end

    int m_fd;
    QByteArray m_buffer;
    bool m_ended = false;
};

}  // namespace kvr::test
