#pragma once
// An in-memory board for tests: records every write and answers from a
// script. A responder sees each complete line (up to a carriage return) and
// returns the bytes the board would send back.
#include "link/Transport.h"
#include <QList>
#include <functional>

namespace kvr {

class MemoryTransport : public Transport {
    Q_OBJECT
public:
    using Responder = std::function<QByteArray(const QByteArray &line)>;

    bool IsUsable() const override { return m_usable; }
    void Write(const QByteArray &bytes) override;
    void Close() override { m_usable = false; }

    void SetUsable(bool usable) { m_usable = usable; }
    void SetResponder(Responder responder) { m_responder = std::move(responder); }
    // Bytes that arrive at the next poll.
    void Inject(const QByteArray &bytes) { m_pending += bytes; }

    QList<QByteArray> writes;   // one entry per Write call
    QByteArray sent;            // everything written, in order
    QList<QByteArray> lines;    // complete lines seen by the responder, without CR
    int polls = 0;

protected:
    void Poll() override;

private:
    bool m_usable = true;
    Responder m_responder;
    QByteArray m_pending;
    QByteArray m_line;
};

} // namespace kvr
