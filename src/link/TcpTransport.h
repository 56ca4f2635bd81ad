#pragma once
// The board behind a network gateway: the data socket `tcpClient` and the
// silent `tcpHeartbeat` socket that tells the gateway a client is present.
// Socket data are kept in the transport's buffer, so the count taken by
// Available() is still there for the TakeAll() that follows.
#include "link/Transport.h"
#include <QTcpSocket>

namespace kvr {

class TcpTransport : public Transport {
    Q_OBJECT
public:
    static constexpr quint16 DefaultHeartbeatPort = 5300;

    explicit TcpTransport(QObject *parent = nullptr);

    // Starts both connections; the outcome arrives as signals and as the
    // sockets' states.
    void Connect(const QString &host, quint16 port);
    // True while either socket is still looking up or connecting.
    bool IsConnecting() const;
    bool IsConnected() const { return IsUsable(); }
    // Aborts connections that are still pending and reports them as failed.
    void GiveUp(const QString &reason);

    // 0: no heartbeat connection (a simulated board run without one).
    void SetHeartbeatPort(quint16 port) { m_heartbeatPort = port; }
    quint16 HeartbeatPort() const { return m_heartbeatPort; }
    QString Host() const { return m_host; }
    quint16 Port() const { return m_port; }

    QTcpSocket &Client() { return m_client; }
    QTcpSocket &Heartbeat() { return m_heartbeat; }

    bool IsUsable() const override;
    void Write(const QByteArray &bytes) override;
    // Closes both sockets.
    void Close() override;
    // Closes the data socket only.
    void CloseClient();
    void WaitForData(int ms) override;

signals:
    void ClientConnected();
    // The data socket failed (refused, reset, closed by the peer); it is
    // closed already when this arrives.
    void ClientError(const QString &description);
    void HeartbeatError(const QString &description);

protected:
    void Poll() override;
    void BeforeCount() override;

private:
    void OnClientError(QAbstractSocket::SocketError error);
    void OnHeartbeatError(QAbstractSocket::SocketError error);

    QTcpSocket m_client;
    QTcpSocket m_heartbeat;
    QString m_host;
    quint16 m_port = 0;
    quint16 m_heartbeatPort = DefaultHeartbeatPort;
    bool m_wasConnected = false;
};

} // namespace kvr
