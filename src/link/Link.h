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
    int BytesAvailable();
    QByteArray ReadBytes();
    static QString BytesToText(const QByteArray &bytes);
    void ClearInput();
    void WaitForReply();
    void Pause(double seconds);
    void BeepUnlessQuiet();
    void NotResponding();

    // The delay units for the configured board family.
    qint64 CurrentDelay() const;
    static QString NotRespondingText(const QString &computerType);

    AppContext &Context() const { return m_context; }

private:
    bool Usable() const { return m_transport && m_transport->IsUsable(); }
    AppContext &m_context;
    QPointer<Transport> m_transport;
};

// The busy loop between characters: N + 1 empty passes on a volatile counter.
void SpinDelay(qint64 passes);

} // namespace kvr
