#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

namespace kvr::board {

// Where the PC reaches the board: a TCP port or a pseudo-terminal.
class BoardFront : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    // Starts listening; false with a message when that is not possible.
    virtual bool Open(QString &error) = 0;
    // The one line printed when the board is ready.
    virtual QString ReadyLine() const = 0;
    // Sends to the PC; dropped when no PC is there.
    virtual void Send(const QByteArray &bytes) = 0;
    // The board is ready: what it said before is not for any PC.
    virtual void Ready() {}

signals:
    void Received(const QByteArray &bytes);
    // A PC came on the line; what was on its way to the one before is lost.
    void ClientConnected();
};

}  // namespace kvr::board
