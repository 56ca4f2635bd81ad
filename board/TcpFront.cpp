#include "TcpFront.h"

#include <cstdio>

namespace kvr::board {

TcpFront::TcpFront(int port, bool heartbeat, int heartbeatPort, bool heartbeatRequired, QObject *parent)
    : BoardFront(parent), m_port(port), m_heartbeat(heartbeat), m_heartbeatPort(heartbeatPort),
      m_heartbeatRequired(heartbeatRequired)
{
    connect(&m_server, &QTcpServer::newConnection, this, &TcpFront::OnClient);
    connect(&m_heartbeatServer, &QTcpServer::newConnection, this, &TcpFront::OnHeartbeatClient);
}

bool TcpFront::Open(QString &error)
{
    if (!m_server.listen(QHostAddress::LocalHost, static_cast<quint16>(m_port))) {
        error = QStringLiteral("cannot listen on 127.0.0.1:%1: %2").arg(m_port).arg(m_server.errorString());
        return false;
    }
    if (m_heartbeat) {
        if (m_heartbeatServer.listen(QHostAddress::LocalHost, static_cast<quint16>(m_heartbeatPort))) {
            std::fprintf(stderr, "kvr-board: heartbeat on 127.0.0.1:%d\n", m_heartbeatServer.serverPort());
        } else if (m_heartbeatRequired) {
            error = QStringLiteral("cannot listen on heartbeat port 127.0.0.1:%1: %2")
                        .arg(m_heartbeatPort).arg(m_heartbeatServer.errorString());
            return false;
        } else {
            // Another board may hold the default port; the data port still works.
            std::fprintf(stderr, "kvr-board: heartbeat port %d not available (%s); going on without it\n",
                         m_heartbeatPort, qPrintable(m_heartbeatServer.errorString()));
        }
        std::fflush(stderr);
    }
    return true;
}

QString TcpFront::ReadyLine() const
{
    return QStringLiteral("listening on 127.0.0.1:%1").arg(m_server.serverPort());
}

void TcpFront::OnClient()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        if (m_client) {
            m_client->disconnect(this);
            m_client->abort();
            m_client->deleteLater();
        }
        m_client = socket;
        emit ClientConnected();
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            if (socket == m_client)
                emit Received(socket->readAll());
        });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void TcpFront::OnHeartbeatClient()
{
    while (QTcpSocket *socket = m_heartbeatServer.nextPendingConnection()) {
        connect(socket, &QTcpSocket::readyRead, socket, [socket] { socket->readAll(); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void TcpFront::Send(const QByteArray &bytes)
{
    if (m_client && m_client->state() == QAbstractSocket::ConnectedState)
        m_client->write(bytes);
}

}  // namespace kvr::board
