#pragma once
// Opens, closes and switches the board link (serial port or TCP gateway),
// and reports connection failures with the program's messages. Owns the two
// transports; the Link is pointed at whichever is in use.
#include "app/AppContext.h"
#include "link/Link.h"
#include "link/SerialTransport.h"
#include "link/TcpTransport.h"
#include <QTimer>

namespace kvr {

class TerminalHost;

class LinkController : public QObject {
    Q_OBJECT
public:
    LinkController(AppContext &context, Link &link, QObject *parent = nullptr);

    // The terminal whose screen is cleared when a link opens and that the
    // start-up commands paint on; may stay null (command-line use).
    void SetTerminal(TerminalHost *terminal) { m_terminal = terminal; }

    // Load-time open of the configured link, with the COM1 fallback.
    void OpenAtStart();
    // Opens the configured serial port. False (nothing reported) on failure.
    bool OpenSerial();
    // Connects both sockets to the configured gateway, showing progress.
    void ConnectRemote();
    // Switches to port n (0 = the TCP gateway), saving the choice.
    void SelectPort(int n);
    // A new `Baud rate` setting takes effect on the open serial port at once.
    void ApplyBaudRate();

    // The remote dialog's Connect: store address and port, connect, and
    // greet the board when the connection stands.
    void ConnectFromDialog(const QString &address, const QString &port);
    // The remote dialog's Disconnect.
    void DisconnectFromDialog();

    // n of COMn in `Communications port` (0 = TCP).
    int PortNumber() const;
    bool IsTcpConnected() const { return m_tcp.IsConnected(); }
    QString StatusText() const { return m_status; }
    // Why the link that stood is gone; empty while it stands or was closed
    // on purpose. While it is down the controller tries to reopen it.
    QString DownReason() const { return m_downReason; }

    SerialTransport &Serial() { return m_serial; }
    TcpTransport &Tcp() { return m_tcp; }

    // Gives up a TCP connection attempt after this many seconds.
    void SetConnectLimitSeconds(double seconds) { m_connectLimit = seconds; }

signals:
    // The mnuOP item to tick; -1 when none is.
    void PortChanged(int n);
    // The remote dialog's status line.
    void StatusChanged(const QString &text);
    // The link's state changed: the frame caption must follow.
    void CaptionChanged();
    void BringTerminalForward();
    // A serial error or a lost serial device: the terminal shows its indicator.
    void SerialFault();
    // The link went down (`reason`) or came back (empty).
    void LinkStateChanged(const QString &reason);

private:
    void UsePort(int n);
    void SetStatus(const QString &text);
    void ClearAfterOpen();
    // `message`, followed by how to get access when the port was refused to
    // this account.
    QString WithAccessAdvice(const QString &message) const;
    void OnClientError(const QString &description);
    void OnHeartbeatError(const QString &description);
    void OnSerialLost(const QString &reason);
    void OnTcpLost(const QString &reason);
    // Marks the link down and starts watching for it to come back.
    void GoDown(const QString &reason);
    void StopWatching();
    void TryReopen();
    void Reopened();
    // A message box now would stack on the compile's own report of it.
    bool Compiling() const;

    AppContext &m_context;
    Link &m_link;
    TerminalHost *m_terminal = nullptr;
    SerialTransport m_serial;
    TcpTransport m_tcp;
    QString m_status;
    double m_connectLimit = 30.0;
    // The data connection broke after it stood: reported already.
    bool m_tcpLost = false;
    QString m_downReason;
    QTimer m_watch;
    // A connection attempt of the watch, not of the user: no boxes.
    bool m_reconnecting = false;
};

} // namespace kvr
