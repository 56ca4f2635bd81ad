#pragma once
// The send-and-await primitives through which every part of the program
// talks to the board, whatever the transport.
#include "app/AppContext.h"
#include "link/Transport.h"
#include <QPointer>

namespace kvr {

class Link {
public:
    explicit Link(AppContext &context) : m_context(context) {}

    void SetTransport(Transport *transport) { m_transport = transport; }
    Transport *CurrentTransport() const { return m_transport; }

    void SendText(const QString &text, bool addCR);
    // Bytes as they stand, without the intercharacter delay: for data whose
    // pace the caller keeps itself (a flash image).
    void SendRaw(const QByteArray &bytes);
    int BytesAvailable();
    QByteArray ReadBytes();
    static QString BytesToText(const QByteArray &bytes);
    void ClearInput();
    void WaitForReply();
    void Pause(double seconds);
    void BeepUnlessQuiet();
    void NotResponding();

    // The delay units for the configured board family (fractions count).
    double CurrentDelay() const;
    // True while WaitForReply runs: the terminal must not take the reply.
    bool IsWaiting() const { return m_waitDepth > 0; }
    static QString NotRespondingText(const QString &computerType);

    AppContext &Context() const { return m_context; }

    // The link can carry bytes now (an open port, a connected socket).
    bool Usable() const { return m_transport && m_transport->IsUsable(); }

    // The longest a wait sleeps before it serves the window again.
    static constexpr quint32 IdleSliceMs = 20;
    // One pause inside a wait: sleeps on the link (or the clock) for up to
    // `remainingMs`, then serves paint and close events. The caller holds a
    // WaitGuard for the whole wait.
    void ServeWhileWaiting(quint32 remainingMs);

private:
    AppContext &m_context;
    QPointer<Transport> m_transport;
    int m_waitDepth = 0;
};

// lastPass for a delay: the integer part of delay x 8.5.
qint64 DelayLastPass(double delay);

} // namespace kvr
