#include "link/SerialTransport.h"
#include "link/SerialAccess.h"
#include <QFileInfo>
#include <poll.h>

namespace kvr {

namespace {
// How often a poll looks whether the device node is still there.
constexpr qint64 DeviceCheckMs = 200;
// What the port's own read buffer may hold between two polls.
constexpr qint64 InputBufferSize = 32000;

// The line's state now, without waiting: POLLHUP or POLLERR when the device
// went away, no POLLOUT while its output buffer is full.
short LineEvents(qintptr handle)
{
    pollfd line{static_cast<int>(handle), POLLOUT, 0};
    return ::poll(&line, 1, 0) > 0 ? line.revents : 0;
}
}

SerialTransport::SerialTransport(QObject *parent) : Transport(parent)
{
    m_port.setObjectName(QStringLiteral("MSComm1"));
    connect(&m_port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        switch (error) {
        case QSerialPort::NoError:
        case QSerialPort::TimeoutError:       // a poll that found nothing
        case QSerialPort::DeviceNotFoundError: // reported by Open()
        case QSerialPort::PermissionError:
        case QSerialPort::OpenError:
        case QSerialPort::NotOpenError:
        case QSerialPort::UnsupportedOperationError: // RTS on a line without modem control
            return;
        case QSerialPort::ResourceError:
        case QSerialPort::ReadError:
        case QSerialPort::WriteError:
            return; // the link is lost: Poll() and Write() close it and say so
        default:
            if (m_port.isOpen())
                emit PortError(m_port.errorString());
        }
    });
}

SerialTransport::~SerialTransport()
{
    m_port.close();
}

bool SerialTransport::Open(const QString &devicePath, qint32 baud)
{
    Close();
    m_received.clear();
    m_errorText.clear();
    m_accessAdvice.clear();
    m_devicePath = devicePath;
    if (devicePath.isEmpty()) {
        m_errorText = QStringLiteral("no device bound to this port");
        return false;
    }
    // The order the board's line expects: frame format, speed, then the port.
    m_port.setReadBufferSize(InputBufferSize);
    m_port.setDataBits(QSerialPort::Data8);
    m_port.setParity(QSerialPort::NoParity);
    m_port.setStopBits(QSerialPort::OneStop);
    m_port.setBaudRate(baud > 0 ? baud : 9600);
    m_port.setPortName(devicePath);
    m_port.setFlowControl(QSerialPort::NoFlowControl);
    if (!m_port.open(QIODevice::ReadWrite)) {
        m_accessAdvice = SerialAccessAdvice(devicePath);
        m_errorText = m_accessAdvice.isEmpty() ? m_port.errorString() : m_accessAdvice;
        return false;
    }
    // RTS can only be raised on an open port; a line without modem control
    // (a pseudo-terminal, some adapters) refuses it, which does no harm.
    m_port.setRequestToSend(true);
    m_port.clearError();
    m_sinceDeviceCheck.start();
    return true;
}

bool SerialTransport::SetBaudRate(qint32 baud)
{
    return m_port.isOpen() && baud > 0 && m_port.setBaudRate(baud);
}

bool SerialTransport::IsUsable() const
{
    return m_port.isOpen();
}

void SerialTransport::WaitForData(int ms)
{
    if (m_port.isOpen() && m_received.isEmpty() && m_port.bytesAvailable() == 0)
        WaitReadable(m_port.handle(), ms);
}

void SerialTransport::Close()
{
    if (m_port.isOpen())
        m_port.close();
}

void SerialTransport::Lose(const QString &reason)
{
    if (!m_port.isOpen())
        return;
    m_port.close();
    // The system's own words ("Resource temporarily unavailable") say little
    // when the device itself went away.
    emit LinkLost(QFileInfo::exists(m_devicePath) ? reason : QStringLiteral("device %1 is gone").arg(m_devicePath));
}

bool SerialTransport::DeviceVanished()
{
    if (m_sinceDeviceCheck.isValid() && m_sinceDeviceCheck.elapsed() < DeviceCheckMs)
        return false;
    m_sinceDeviceCheck.restart();
    return !QFileInfo::exists(m_devicePath);
}

void SerialTransport::Write(const QByteArray &bytes)
{
    if (!m_port.isOpen())
        return;
    if (m_port.write(bytes) != bytes.size()) {
        Lose(QStringLiteral("write error on %1: %2").arg(m_devicePath, m_port.errorString()));
        return;
    }
    PushOut();
}

void SerialTransport::PushOut()
{
    if (!m_port.isOpen() || m_port.bytesToWrite() == 0)
        return;
    const short events = LineEvents(m_port.handle());
    if (events & (POLLHUP | POLLERR | POLLNVAL)) {
        Lose(QStringLiteral("device %1 hung up").arg(m_devicePath));
        return;
    }
    // A board that takes its input slowly (or not at all) fills the line's
    // buffer: the bytes wait in the port's queue for the next push.
    if (!(events & POLLOUT))
        return;
    // Hand the bytes to the system now, so the busy loop between characters
    // paces the wire and not Qt's buffer.
    if (!m_port.flush()) {
        if (m_port.error() == QSerialPort::WriteError) {
            Lose(QStringLiteral("write error on %1: %2").arg(m_devicePath, m_port.errorString()));
            return;
        }
        m_port.clearError(); // the buffer filled between the look and the write
    }
}

void SerialTransport::Poll()
{
    PushOut();
    if (!m_port.isOpen())
        return;
    m_port.waitForReadyRead(0);
    const qint64 waiting = m_port.bytesAvailable();
    if (waiting > 0)
        m_received += m_port.read(waiting);
    const QSerialPort::SerialPortError error = m_port.error();
    if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError
        || error == QSerialPort::PermissionError) {
        Lose(QStringLiteral("read error on %1: %2").arg(m_devicePath, m_port.errorString()));
        return;
    }
    if (error == QSerialPort::TimeoutError)
        m_port.clearError(); // waitForReadyRead(0) found nothing: not a fault
    if (DeviceVanished())
        Lose(QStringLiteral("device %1 is gone").arg(m_devicePath));
}

} // namespace kvr
