#pragma once
// One connection to the board, serial or TCP or in memory. Reception is
// polled: Poll() moves whatever the system holds into the transport's own
// buffer without blocking, so a count taken by BytesAvailable is still there
// for the ReadBytes that follows.
#include <QByteArray>
#include <QObject>

namespace kvr {

class Transport : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    // Serial port open, or TCP socket connected.
    virtual bool IsUsable() const = 0;
    // Hands the bytes to the operating system (write and flush).
    virtual void Write(const QByteArray &bytes) = 0;
    virtual void Close() = 0;

    // Bytes waiting; those that arrived before the link broke still count.
    int Available();
    QByteArray TakeAll();
    void DiscardInput();
    // Sleeps until bytes may have arrived, the link changed, or `ms` passed.
    virtual void WaitForData(int ms) { Q_UNUSED(ms); }

signals:
    // The link broke (device gone, peer closed): reported once.
    void LinkLost(const QString &reason);

protected:
    // Sleeps on a descriptor until it is readable (or hung up) or `ms` passed.
    static void WaitReadable(qintptr handle, int ms);
    // Appends newly arrived bytes to m_received; must not block.
    virtual void Poll() = 0;
    // Runs before Available() counts; the TCP link yields to the event loop
    // here, once, so that socket data can arrive during a wait.
    virtual void BeforeCount() {}
    QByteArray m_received;
};

} // namespace kvr
