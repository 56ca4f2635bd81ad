#pragma once

#include "BoardFront.h"

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

namespace kvr::board {

// The board behind a network gateway: one data client at a time on the data
// port (a new client replaces the old one), and a silent heartbeat port that
// accepts connections and ignores them.
class TcpFront : public BoardFront {
    Q_OBJECT
public:
    TcpFront(int port, bool heartbeat, int heartbeatPort, bool heartbeatRequired, QObject *parent = nullptr);
    bool Open(QString &error) override;
    QString ReadyLine() const override;
    void Send(const QByteArray &bytes) override;

private:
    void OnClient();
    void OnHeartbeatClient();

    int m_port;
    bool m_heartbeat;
    int m_heartbeatPort;
    bool m_heartbeatRequired;
    QTcpServer m_server;
    QTcpServer m_heartbeatServer;
    QPointer<QTcpSocket> m_client;
};

}  // namespace kvr::board
