#include "link/TcpTransport.h"
#include <QCoreApplication>

namespace kvr {

namespace {
bool Pending(const QTcpSocket &socket)
{
    const auto state = socket.state();
    return state == QAbstractSocket::HostLookupState || state == QAbstractSocket::ConnectingState;
}
}

TcpTransport::TcpTransport(QObject *parent) : Transport(parent)
{
    m_client.setObjectName(QStringLiteral("tcpClient"));
    m_heartbeat.setObjectName(QStringLiteral("tcpHeartbeat"));
    connect(&m_client, &QTcpSocket::connected, this, [this] {
        // Lines go out as a text and a lone carriage return: without this
        // the second write would wait for the board's delayed ACK.
        m_client.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_wasConnected = true;
        emit ClientConnected();
    });
    connect(&m_client, &QTcpSocket::errorOccurred, this, &TcpTransport::OnClientError);
    connect(&m_heartbeat, &QTcpSocket::errorOccurred, this, &TcpTransport::OnHeartbeatError);
}

void TcpTransport::Connect(const QString &host, quint16 port)
{
    Close();
    m_received.clear();
    m_host = host;
    m_port = port;
    m_wasConnected = false;
    m_client.connectToHost(host, port);
    if (m_heartbeatPort != 0)
        m_heartbeat.connectToHost(host, m_heartbeatPort);
}

bool TcpTransport::IsConnecting() const
{
    return Pending(m_client) || Pending(m_heartbeat);
}

void TcpTransport::GiveUp(const QString &reason)
{
    if (Pending(m_client)) {
        m_client.abort();
        emit ClientError(reason);
    }
    if (Pending(m_heartbeat)) {
        m_heartbeat.abort();
        emit HeartbeatError(reason);
    }
}

bool TcpTransport::IsUsable() const
{
    return m_client.state() == QAbstractSocket::ConnectedState;
}

void TcpTransport::Write(const QByteArray &bytes)
{
    if (!IsUsable())
        return;
    m_client.write(bytes);
    m_client.flush();
}

void TcpTransport::Close()
{
    CloseClient();
    m_heartbeat.abort();
}

void TcpTransport::CloseClient()
{
    // Keep what already arrived readable; drop the connection at once.
    if (m_client.bytesAvailable() > 0)
        m_received += m_client.readAll();
    m_client.abort();
}

void TcpTransport::BeforeCount()
{
    // Socket events only: no key or click may start a second exchange
    // while one waits for the board.
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void TcpTransport::WaitForData(int ms)
{
    if (IsUsable() && m_received.isEmpty() && m_client.bytesAvailable() == 0)
        WaitReadable(m_client.socketDescriptor(), ms);
}

void TcpTransport::Poll()
{
    // Take what the system holds now, not only what the event loop has
    // delivered: ClearInput after a busy Pause must really empty the line,
    // or the next reply awaited is the one that was meant to be dropped.
    if (IsUsable())
        m_client.waitForReadyRead(0);
    if (m_client.bytesAvailable() > 0)
        m_received += m_client.readAll();
}

void TcpTransport::OnClientError(QAbstractSocket::SocketError error)
{
    // A poll that found nothing is not a fault of the link.
    if (error == QAbstractSocket::SocketTimeoutError)
        return;
    const QString description = m_client.errorString();
    const bool wasConnected = m_wasConnected;
    m_wasConnected = false;
    CloseClient();
    // The loss first: whoever reports the error knows it ended a link that stood.
    if (wasConnected)
        emit LinkLost(description);
    emit ClientError(description);
}

void TcpTransport::OnHeartbeatError(QAbstractSocket::SocketError)
{
    const QString description = m_heartbeat.errorString();
    m_heartbeat.abort();
    emit HeartbeatError(description);
}

} // namespace kvr
