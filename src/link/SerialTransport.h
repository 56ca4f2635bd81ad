#pragma once
// The board on a serial port. Reception is polled without blocking and
// without relying on the port's read notifier; an unplugged adapter (line
// hung up, write error, device path gone, port error) closes the port and is
// reported once. A board that is slow to take its input is not unplugged:
// output then waits in the port's queue.
#include "link/Transport.h"
#include <QElapsedTimer>
#include <QSerialPort>

namespace kvr {

class SerialTransport : public Transport {
    Q_OBJECT
public:
    explicit SerialTransport(QObject *parent = nullptr);
    ~SerialTransport() override;

    // 8 data bits, no parity, 1 stop bit, `baud`, no handshake, then open and
    // raise RTS. False with ErrorText() when the port can't be opened.
    bool Open(const QString &devicePath, qint32 baud);
    QString ErrorText() const { return m_errorText; }
    // After a failed Open(): how to get access when the account lacks it.
    QString AccessAdvice() const { return m_accessAdvice; }
    // Changes the speed of the open port; false when the line refuses it.
    bool SetBaudRate(qint32 baud);
    QString DevicePath() const { return m_devicePath; }

    bool IsUsable() const override;
    void Write(const QByteArray &bytes) override;
    void Close() override;
    void WaitForData(int ms) override;

signals:
    // An error event of the port that did not end the link (a line fault,
    // an unexpected system error); a lost device comes as LinkLost.
    void PortError(const QString &description);

protected:
    void Poll() override;

private:
    void Lose(const QString &reason);
    // Hands queued output to the system as far as the line takes it now.
    void PushOut();
    bool DeviceVanished();

    QSerialPort m_port;
    QString m_devicePath;
    QString m_errorText;
    QString m_accessAdvice;
    QElapsedTimer m_sinceDeviceCheck;
};

} // namespace kvr
