#include "link/LinkController.h"
#include "app/Text.h"
#include "link/StartupCommands.h"
#include "link/TerminalHost.h"
#include <QCoreApplication>
#include <algorithm>
#include "link/WaitGuard.h"
#include <QFileInfo>

namespace kvr {

namespace {
// A board that goes away closes both sockets at once; the heartbeat's report
// waits this long to learn whether the data socket's message already told it.
constexpr int HeartbeatReportDelayMs = 200;
// How often a lost link is looked for again.
constexpr int WatchIntervalMs = 500;
// A board that just came back sends its sign-on; the start-up commands wait for it.
constexpr double SettleSeconds = 0.5;
}

LinkController::LinkController(AppContext &context, Link &link, QObject *parent)
    : QObject(parent), m_context(context), m_link(link)
{
    m_watch.setInterval(WatchIntervalMs);
    connect(&m_watch, &QTimer::timeout, this, &LinkController::TryReopen);
    connect(&m_tcp, &TcpTransport::ClientConnected, this, [this] {
        if (m_reconnecting) {
            Reopened();
            return;
        }
        // The caption says connected by the time the box does.
        emit CaptionChanged();
        m_context.prompts.Message(QStringLiteral("Connected to IP address ") + m_tcp.Host()
                                      + QStringLiteral(", port ") + QString::number(m_tcp.Port()),
                                  PromptIcon::Exclamation);
    });
    connect(&m_tcp, &TcpTransport::ClientError, this, &LinkController::OnClientError);
    connect(&m_tcp, &TcpTransport::HeartbeatError, this, &LinkController::OnHeartbeatError);
    connect(&m_tcp, &Transport::LinkLost, this, &LinkController::OnTcpLost);
    connect(&m_serial, &Transport::LinkLost, this, &LinkController::OnSerialLost);
    connect(&m_serial, &SerialTransport::PortError, this, &LinkController::SerialFault);
}

int LinkController::PortNumber() const
{
    return static_cast<int>(Val(m_context.settings.commPort.mid(3)));
}

void LinkController::UsePort(int n)
{
    m_link.SetTransport(n == 0 ? static_cast<Transport *>(&m_tcp) : &m_serial);
}

void LinkController::SetStatus(const QString &text)
{
    m_status = text;
    emit StatusChanged(text);
}

void LinkController::ClearAfterOpen()
{
    m_link.ClearInput();
    if (m_terminal)
        m_terminal->ClearScreen();
}

QString LinkController::WithAccessAdvice(const QString &message) const
{
    const QString advice = m_serial.AccessAdvice();
    return advice.isEmpty() ? message : message + QChar(10) + QChar(10) + advice;
}

bool LinkController::OpenSerial()
{
    const int n = PortNumber();
    UsePort(n);
    const QString device = m_context.settings.SerialDevice(QStringLiteral("COM%1").arg(n));
    if (n < 1 || !m_serial.Open(device, static_cast<qint32>(Val(m_context.settings.baudRate))))
        return false;
    ClearAfterOpen();
    return true;
}

void LinkController::ConnectRemote()
{
    StopWatching();
    UsePort(0);
    m_tcpLost = false;
    const Settings &s = m_context.settings;
    m_tcp.Connect(s.remoteIp, static_cast<quint16>(Val(s.remotePort)));
    const quint32 started = m_context.clock.TickCount();
    int counter = 1;
    do {
        SetStatus(QStringLiteral("Trying to connect ") + QStringLiteral(". ").repeated(counter));
        counter = counter == 4 ? 1 : counter + 1;
        QCoreApplication::processEvents();
        m_link.Pause(0.3);
        // A gateway that never answers would keep the sockets connecting for
        // minutes; give up after the limit, as a refused connection would.
        if (m_tcp.IsConnecting() && m_context.clock.TickCount() - started > m_connectLimit * 1000)
            m_tcp.GiveUp(QStringLiteral("Connection timed out"));
    } while (m_tcp.IsConnecting());
    SetStatus(m_tcp.IsConnected() ? QStringLiteral("Remote KVR computer - connected")
                                  : QStringLiteral("Remote KVR computer - not connected"));
    emit CaptionChanged();
    ClearAfterOpen();
}

void LinkController::ApplyBaudRate()
{
    if (!m_context.settings.IsTcpMode() && m_serial.IsUsable())
        m_serial.SetBaudRate(static_cast<qint32>(std::clamp(Val(m_context.settings.baudRate), 0.0, 4.0e6)));
}

void LinkController::SelectPort(int n)
{
    StopWatching();
    emit PortChanged(n);
    m_serial.Close();
    m_tcp.Close();
    m_context.settings.commPort = QStringLiteral("COM%1").arg(n);
    m_context.WriteSettings();
    if (n != 0) {
        if (!OpenSerial())
            m_context.prompts.Message(WithAccessAdvice(QStringLiteral("Com port ") + QString::number(n)
                                                       + QStringLiteral(" not available")),
                                      PromptIcon::Exclamation);
    } else {
        ConnectRemote();
    }
    emit CaptionChanged();
}

void LinkController::OpenAtStart()
{
    if (!m_context.settings.IsTcpMode()) {
        const int n = PortNumber();
        emit PortChanged(n >= 1 && n <= 20 ? n : -1);
        if (!OpenSerial()) {
            emit PortChanged(-1);
            m_context.prompts.Message(WithAccessAdvice(QStringLiteral("No serial port available")),
                                      PromptIcon::Exclamation);
            m_context.settings.commPort = QStringLiteral("COM1");
            m_context.WriteSettings();
        }
    } else {
        UsePort(0);
        emit PortChanged(0);
        ClearAfterOpen();
    }
    emit CaptionChanged();
}

void LinkController::ConnectFromDialog(const QString &address, const QString &port)
{
    m_context.settings.remoteIp = address;
    m_context.settings.remotePort = port;
    SelectPort(0);
    QCoreApplication::processEvents();
    if (m_tcp.IsConnected()) {
        m_link.Pause(0.8);
        if (m_terminal)
            SendStartupCommands(m_link, *m_terminal);
    }
    emit BringTerminalForward();
    emit CaptionChanged();
}

void LinkController::DisconnectFromDialog()
{
    StopWatching();
    if (m_context.settings.IsTcpMode())
        m_tcp.CloseClient();
    emit BringTerminalForward();
    emit CaptionChanged();
}

void LinkController::OnClientError(const QString &description)
{
    // The watch retries quietly; a lost link was said once already, and a
    // compile reports it in its own words.
    if (m_reconnecting || (m_tcpLost && Compiling())) {
        emit CaptionChanged();
        return;
    }
    const QChar lf(10);
    m_context.prompts.Message(QStringLiteral("TCP/IP connection error") + lf + lf
                                  + QStringLiteral("Failed when trying to connect to IP address ")
                                  + m_tcp.Host() + QStringLiteral(", port ") + QString::number(m_tcp.Port())
                                  + QStringLiteral(".") + lf + description,
                              PromptIcon::Exclamation);
    emit CaptionChanged();
}

void LinkController::OnHeartbeatError(const QString &description)
{
    QTimer::singleShot(HeartbeatReportDelayMs, this, [this, description] {
        if (m_tcpLost)
            return;
        const QChar lf(10);
        m_context.prompts.Message(QStringLiteral("TCP/IP connection error") + lf + lf
                                      + QStringLiteral("Failed when trying to connect heartbeat port")
                                      + QStringLiteral(".") + lf + description,
                                  PromptIcon::Exclamation);
    });
}

void LinkController::OnSerialLost(const QString &reason)
{
    emit SerialFault();
    GoDown(reason);
    if (Compiling())
        return;
    const QChar lf(10);
    m_context.prompts.Message(QStringLiteral("Com port ") + QString::number(PortNumber())
                                  + QStringLiteral(" not available") + lf + lf + reason + lf + lf
                                  + QStringLiteral("The port is opened again when the board is back."),
                              PromptIcon::Exclamation);
}

void LinkController::OnTcpLost(const QString &reason)
{
    m_tcpLost = true;
    GoDown(reason);
}

bool LinkController::Compiling() const
{
    // A running compile ends with its own not-responding message; a second
    // box about the same loss would only be in the way.
    return m_context.busyState == BusyState::Compiling;
}

void LinkController::GoDown(const QString &reason)
{
    if (!m_downReason.isEmpty())
        return;
    m_downReason = reason.isEmpty() ? QStringLiteral("connection lost") : reason;
    emit LinkStateChanged(m_downReason);
    emit CaptionChanged();
    m_watch.start();
}

void LinkController::StopWatching()
{
    m_watch.stop();
    m_reconnecting = false;
    if (m_downReason.isEmpty())
        return;
    m_downReason.clear();
    emit LinkStateChanged(QString());
}

void LinkController::TryReopen()
{
    // Not inside another exchange with the board or a compile that has not
    // yet ended, nor while the program ends.
    if (WaitGuard::Active() || m_context.closing || Compiling())
        return;
    if (m_context.settings.IsTcpMode()) {
        if (m_tcp.IsConnecting() || m_tcp.IsUsable())
            return;
        m_reconnecting = true;
        const Settings &s = m_context.settings;
        m_tcp.Connect(s.remoteIp, static_cast<quint16>(Val(s.remotePort)));
        return;
    }
    // Opened as the port was, but the screen keeps what the user saw.
    const QString device = m_context.settings.SerialDevice(QStringLiteral("COM%1").arg(PortNumber()));
    if (QFileInfo::exists(device) && m_serial.Open(device, static_cast<qint32>(Val(m_context.settings.baudRate))))
        Reopened();
}

void LinkController::Reopened()
{
    m_watch.stop();
    m_reconnecting = false;
    m_tcpLost = false;
    m_downReason.clear();
    m_link.ClearInput();
    emit CaptionChanged();
    if (m_terminal) {
        // A board that comes back is greeted as one freshly connected.
        m_link.Pause(SettleSeconds);
        SendStartupCommands(m_link, *m_terminal);
    }
    // After the greeting, which may clear the screen, so the note stays.
    emit LinkStateChanged(QString());
}

} // namespace kvr
