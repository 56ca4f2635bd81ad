// The link controller on real sockets and a real pseudo-terminal: the test
// plays the gateway (in-process servers) and the serial board (the master
// side of a pty it opens itself).
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "link/LinkController.h"
#include "link/RemoteAddress.h"
#include "link/Terminal.h"
#include <QDeadlineTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <pty.h>
#include <sys/socket.h>
#include <termios.h>
#include <unistd.h>

using namespace kvr;

namespace {

quint16 UnusedPort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close();
    return port;
}

struct Fixture {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    SystemClock clock;
    AppContext context{Paths(dir.path()), prompts, clock};
    Link link{context};
    LinkController controller{context, link};
    Terminal terminal{context, link};
    QTcpServer data;
    QTcpServer heartbeat;
    QTcpSocket *peer = nullptr;

    Fixture()
    {
        context.settings.delay4410 = QStringLiteral("0");
        context.settings.timeout = QStringLiteral("2000");
        context.settings.remoteIp = QStringLiteral("127.0.0.1");
        controller.SetTerminal(&terminal);
    }
    void ListenBoth()
    {
        data.listen(QHostAddress::LocalHost, 0);
        heartbeat.listen(QHostAddress::LocalHost, 0);
        context.settings.remotePort = QString::number(data.serverPort());
        controller.Tcp().SetHeartbeatPort(heartbeat.serverPort());
    }
    bool AcceptPeer()
    {
        if (!data.hasPendingConnections() && !data.waitForNewConnection(2000))
            return false;
        peer = data.nextPendingConnection();
        return peer != nullptr;
    }
};

// A pseudo-terminal standing in for a serial port: the test holds the master.
struct Pty {
    int master = -1;
    int slave = -1;
    QString path;
    Pty()
    {
        char name[128] = {};
        if (openpty(&master, &slave, name, nullptr, nullptr) != 0)
            return;
        path = QString::fromLocal8Bit(name);
        termios raw{};
        tcgetattr(master, &raw);
        cfmakeraw(&raw);
        tcsetattr(master, TCSANOW, &raw);
        fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
        // The program opens its own descriptor through the path.
        ::close(slave);
        slave = -1;
    }
    ~Pty() { CloseMaster(); }
    void CloseMaster()
    {
        if (master >= 0)
            ::close(master);
        master = -1;
    }
    void Send(const QByteArray &bytes) { QCOMPARE(::write(master, bytes.constData(), bytes.size()), bytes.size()); }
    QByteArray ReadUntil(const QByteArray &end, int ms = 2000)
    {
        QByteArray got;
        QDeadlineTimer deadline(ms);
        while (!got.endsWith(end) && !deadline.hasExpired()) {
            char buffer[256];
            const ssize_t n = ::read(master, buffer, sizeof buffer);
            if (n > 0)
                got.append(buffer, n);
            else
                QTest::qWait(5);
        }
        return got;
    }
};

} // namespace

class TestLinkController : public QObject {
    Q_OBJECT

private slots:
    void remoteAddress_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("address");
        QTest::newRow("plain") << "192.168.1.20" << "192.168.1.20";
        QTest::newRow("leading zeros dropped") << "010.001.000.007" << "10.1.0.7";
        QTest::newRow("missing parts are 0") << "10.2" << "10.2.0.0";
        QTest::newRow("parts kept within a byte") << "300.1.1.1" << "255.1.1.1";
        QTest::newRow("garbage is 0") << "abc" << "0.0.0.0";
        QTest::newRow("blanks around") << " 127.0.0.1 " << "127.0.0.1";
    }
    void remoteAddress()
    {
        QFETCH(QString, typed);
        QFETCH(QString, address);
        QCOMPARE(NormaliseAddress(typed), address);
    }

    void remotePortAndDefaultGateway()
    {
        QCOMPARE(NormalisePort(QStringLiteral("04000")), QStringLiteral("4000"));
        QCOMPARE(NormalisePort(QStringLiteral("99999")), QStringLiteral("65535"));
        QCOMPARE(NormalisePort(QStringLiteral("x")), QStringLiteral("0"));
        QTemporaryDir dir;
        const QString ini = dir.filePath(QStringLiteral("KVR-PC.INI"));
        QCOMPARE(DefaultGatewayAddress(ini), QStringLiteral("127.0.0.1"));
        QFile file(ini);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Remote]\r\nDemonstration gateway=10.20.30.040\r\n");
        file.close();
        QCOMPARE(DefaultGatewayAddress(ini), QStringLiteral("10.20.30.40"));
    }

    void connectsAndTalks()
    {
        Fixture f;
        f.ListenBoth();
        QSignalSpy ports(&f.controller, &LinkController::PortChanged);
        QSignalSpy statuses(&f.controller, &LinkController::StatusChanged);
        QSignalSpy captions(&f.controller, &LinkController::CaptionChanged);
        int captionsAtBox = -1;
        f.prompts.onMessage = [&](const QString &) { captionsAtBox = int(captions.size()); };
        f.controller.SelectPort(0);
        QVERIFY2(captionsAtBox > 0, "the caption was not updated before the connected box showed");
        QCOMPARE(ports.first().first().toInt(), 0);
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM0"));
        QVERIFY(f.controller.IsTcpConnected());
        QCOMPARE(statuses.first().first().toString(), QStringLiteral("Trying to connect . "));
        QCOMPARE(f.controller.StatusText(), QStringLiteral("Remote KVR computer - connected"));
        QCOMPARE(f.prompts.MessageTexts(),
                 QStringList{"Connected to IP address 127.0.0.1, port " + f.context.settings.remotePort});
        QVERIFY(f.AcceptPeer());
        QTRY_VERIFY(f.heartbeat.hasPendingConnections());

        f.link.SendText(QStringLiteral("2 3 + ."), true);
        QByteArray got;
        QTRY_COMPARE(got += f.peer->readAll(), QByteArray("2 3 + .\r"));
        f.peer->write("2 3 + . 5  ok\r\n");
        f.peer->flush();
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts().size(), 1);

        // The terminal paints what the gateway streams.
        f.peer->write("hello\r\nworld");
        f.peer->flush();
        QTRY_COMPARE((f.terminal.Tick(), f.terminal.Screen().ScreenText()), QStringLiteral("hello\nworld"));
    }

    // The start-up wake-up: a reply that arrived during a busy pause is
    // dropped by ClearInput even though no event was processed meanwhile.
    void clearInputTakesWhatTheSystemHolds()
    {
        Fixture f;
        f.ListenBoth();
        f.controller.SelectPort(0);
        QVERIFY(f.AcceptPeer());
        f.peer->write("  ok\r\n");
        QVERIFY(f.peer->waitForBytesWritten(2000));
        f.link.Pause(0.1);
        f.link.ClearInput();
        f.peer->write("wanted\r\n");
        QVERIFY(f.peer->waitForBytesWritten(2000));
        QByteArray got;
        QDeadlineTimer deadline(3000);
        while (!got.endsWith("\n") && !deadline.hasExpired())
            if (f.link.BytesAvailable() > 0)
                got += f.link.ReadBytes();
        QCOMPARE(got, QByteArray("wanted\r\n"));
        QCOMPARE(f.prompts.MessageTexts().size(), 1); // only "Connected to ..."
    }

    void heartbeatRefusedWhileDataStaysUp()
    {
        Fixture f;
        f.ListenBoth();
        f.heartbeat.close();
        f.controller.SelectPort(0);
        QVERIFY(f.controller.IsTcpConnected());
        QTRY_COMPARE(f.prompts.MessageTexts().size(), 2);
        const QString message = f.prompts.MessageTexts().at(1);
        QVERIFY2(message.startsWith(QStringLiteral("TCP/IP connection error\n\n"
                                                   "Failed when trying to connect heartbeat port.\n")),
                 qPrintable(message));
        QVERIFY(message.size() > 80); // the socket's own description follows
        QCOMPARE(f.prompts.shown.at(1).icon, PromptIcon::Exclamation);
        QVERIFY(f.controller.IsTcpConnected());
        QVERIFY(f.AcceptPeer());
        f.link.SendText(QStringLiteral("X"), false);
        QByteArray got;
        QTRY_COMPARE(got += f.peer->readAll(), QByteArray("X"));
    }

    void nothingListening()
    {
        Fixture f;
        const quint16 port = UnusedPort();
        f.context.settings.remotePort = QString::number(port);
        f.controller.Tcp().SetHeartbeatPort(UnusedPort());
        f.controller.SelectPort(0);
        QVERIFY(!f.controller.IsTcpConnected());
        QCOMPARE(f.controller.StatusText(), QStringLiteral("Remote KVR computer - not connected"));
        // Each socket's failure is its own message: the data port's first.
        QTRY_COMPARE(f.prompts.MessageTexts().size(), 2);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(
            "TCP/IP connection error\n\nFailed when trying to connect to IP address 127.0.0.1, port "
            + QString::number(port) + ".\n"));
        QVERIFY(f.prompts.MessageTexts().at(1).startsWith(
            "TCP/IP connection error\n\nFailed when trying to connect heartbeat port.\n"));
        for (const RecordedPrompt &box : f.prompts.shown)
            QCOMPARE(box.icon, PromptIcon::Exclamation);
        f.link.SendText(QStringLiteral("lost"), true); // silently nothing
        QCOMPARE(f.link.BytesAvailable(), 0);
    }

    void gatewayThatNeverAnswersIsGivenUp()
    {
        // A listener whose queue is full drops further connection requests,
        // so the sockets stay connecting as with an unreachable gateway.
        const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        QCOMPARE(::bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        QCOMPARE(::listen(listener, 0), 0);
        socklen_t length = sizeof address;
        ::getsockname(listener, reinterpret_cast<sockaddr *>(&address), &length);
        QList<int> fillers;
        for (int i = 0; i < 3; ++i) {
            const int filler = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
            ::connect(filler, reinterpret_cast<sockaddr *>(&address), sizeof address);
            fillers << filler;
        }
        QTest::qWait(100);
        Fixture f;
        f.context.settings.remotePort = QString::number(ntohs(address.sin_port));
        f.controller.Tcp().SetHeartbeatPort(0);
        f.controller.SetConnectLimitSeconds(1.0);
        QElapsedTimer elapsed;
        elapsed.start();
        f.controller.SelectPort(0);
        const qint64 ms = elapsed.elapsed();
        for (int filler : fillers)
            ::close(filler);
        ::close(listener);
        QVERIFY2(ms >= 1000, qPrintable(QString::number(ms))); // not before the limit
        QVERIFY(!f.controller.IsTcpConnected());
        QCOMPARE(f.controller.StatusText(), QStringLiteral("Remote KVR computer - not connected"));
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.prompts.MessageTexts().first().endsWith(QStringLiteral(".\nConnection timed out")));
    }

    // A gateway that goes away is reported once; while it is gone the
    // controller retries without a word, and when it accepts again the link
    // stands again.
    void gatewayGoesAwayMidSessionAndComesBack()
    {
        Fixture f;
        f.controller.SetTerminal(nullptr); // no start-up exchange to answer
        f.ListenBoth();
        QSignalSpy caption(&f.controller, &LinkController::CaptionChanged);
        QSignalSpy state(&f.controller, &LinkController::LinkStateChanged);
        f.controller.SelectPort(0);
        QVERIFY(f.AcceptPeer());
        QTRY_VERIFY(f.heartbeat.hasPendingConnections());
        QTcpSocket *heartbeatPeer = f.heartbeat.nextPendingConnection();
        const quint16 port = f.data.serverPort();
        f.data.close();
        f.prompts.Clear();
        caption.clear();
        f.peer->abort();
        heartbeatPeer->abort();
        QTRY_VERIFY(!f.controller.IsTcpConnected() && (f.link.BytesAvailable(), true));
        // Neither the heartbeat's failure nor the refused retries report it again.
        QVERIFY(!QTest::qWaitFor([&] { return f.prompts.MessageTexts().size() > 1; }, 1200));
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(
            QStringLiteral("TCP/IP connection error\n\nFailed when trying to connect to IP address")));
        QVERIFY(!caption.isEmpty());
        QVERIFY(!f.controller.DownReason().isEmpty());

        QVERIFY(f.data.listen(QHostAddress::LocalHost, port));
        QTRY_VERIFY_WITH_TIMEOUT(f.data.hasPendingConnections(), 3000);
        QTRY_VERIFY(f.controller.IsTcpConnected());
        QVERIFY(f.controller.DownReason().isEmpty());
        QCOMPARE(state.size(), 2);
        QCOMPARE(state.last().first().toString(), QString());
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        f.peer = f.data.nextPendingConnection();
        f.link.SendText(QStringLiteral("after"), true);
        QByteArray got;
        QTRY_COMPARE((got += f.peer->readAll()), QByteArray("after\r"));
    }

    void connectFromDialogGreetsAConnectedBoard()
    {
        Fixture f;
        f.ListenBoth();
        QList<QByteArray> lines;
        QByteArray partial;
        QObject::connect(&f.data, &QTcpServer::newConnection, &f.data, [&] {
            QTcpSocket *board = f.data.nextPendingConnection();
            QObject::connect(board, &QTcpSocket::readyRead, board, [board, &lines, &partial] {
                partial += board->readAll();
                qsizetype cr;
                while ((cr = partial.indexOf('\r')) >= 0) {
                    lines << partial.left(cr);
                    partial.remove(0, cr + 1);
                    board->write(" ok\r\n");
                }
            });
        });
        QSignalSpy forward(&f.controller, &LinkController::BringTerminalForward);
        QElapsedTimer elapsed;
        elapsed.start();
        f.controller.ConnectFromDialog(QStringLiteral("127.0.0.1"), f.context.settings.remotePort);
        QVERIFY(elapsed.elapsed() >= 1000); // 0.8 s after connecting, 0.2 s after the wake-up
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines.at(0), QByteArray());
        QVERIFY2(QRegularExpression(QStringLiteral("^ {8}DECIMAL \\d+ \\d+ \\d{4} NOW \\d+ \\d+ \\d+ HRS W! START$"))
                     .match(QString::fromLatin1(lines.at(1)))
                     .hasMatch(),
                 lines.at(1).constData());
        QCOMPARE(f.prompts.MessageTexts().size(), 1); // "Connected to IP address ..."
        QCOMPARE(forward.size(), 1);
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM0"));
        QCOMPARE(f.context.settings.remotePort, QString::number(f.data.serverPort()));
    }

    void connectFromDialogToNothingSendsNothing()
    {
        Fixture f;
        f.context.settings.remotePort = QString::number(UnusedPort());
        f.controller.Tcp().SetHeartbeatPort(0);
        QSignalSpy forward(&f.controller, &LinkController::BringTerminalForward);
        f.controller.ConnectFromDialog(QStringLiteral("127.0.0.1"), f.context.settings.remotePort);
        QVERIFY(!f.controller.IsTcpConnected());
        // Only the connection error: no start-up line waited for in vain.
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(QStringLiteral("TCP/IP connection error")));
        QCOMPARE(forward.size(), 1);
    }

    void disconnectFromDialog()
    {
        Fixture f;
        f.ListenBoth();
        f.controller.ConnectFromDialog(QStringLiteral("127.0.0.1"), f.context.settings.remotePort);
        QVERIFY(f.controller.IsTcpConnected());
        QSignalSpy forward(&f.controller, &LinkController::BringTerminalForward);
        f.controller.DisconnectFromDialog();
        QVERIFY(!f.controller.IsTcpConnected());
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM0"));
        QCOMPARE(forward.size(), 1);
    }

    void unboundPortNotAvailable()
    {
        Fixture f;
        f.context.settings.serialDevices.remove(QStringLiteral("COM12"));
        f.controller.SelectPort(12);
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM12"));
        QCOMPARE(f.prompts.MessageTexts(), QStringList{"Com port 12 not available"});
    }

    void startFallsBackToCom1()
    {
        Fixture f;
        f.context.settings.commPort = QStringLiteral("COM3");
        f.context.settings.serialDevices[QStringLiteral("COM3")] = f.dir.filePath(QStringLiteral("no-such-tty"));
        QSignalSpy ports(&f.controller, &LinkController::PortChanged);
        f.controller.OpenAtStart();
        QCOMPARE(f.prompts.MessageTexts(), QStringList{"No serial port available"});
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM1"));
        QCOMPARE(ports.last().first().toInt(), -1);
        Settings saved;
        ReadSettings(saved, f.context.paths.SettingsFile(), f.context.paths.WindowsFolder());
        QCOMPARE(saved.commPort, QStringLiteral("COM1"));
    }

    void startInTcpModeDoesNotConnect()
    {
        Fixture f;
        f.ListenBoth();
        f.context.settings.commPort = QStringLiteral("COM0");
        f.terminal.ShowBytes("old");
        QSignalSpy ports(&f.controller, &LinkController::PortChanged);
        f.controller.OpenAtStart();
        QCOMPARE(ports.size(), 1);
        QCOMPARE(ports.first().first().toInt(), 0);
        QVERIFY(!f.controller.IsTcpConnected());
        QVERIFY(!f.data.waitForNewConnection(100));
        QCOMPARE(f.terminal.Screen().ScreenText(), QString());
        QVERIFY(f.prompts.MessageTexts().isEmpty());
    }

    void serialOverPty()
    {
        Pty pty;
        QVERIFY(!pty.path.isEmpty());
        Fixture f;
        f.context.settings.serialDevices[QStringLiteral("COM7")] = pty.path;
        f.terminal.ShowBytes("stale");
        f.controller.SelectPort(7);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        QVERIFY(f.controller.Serial().IsUsable());
        QCOMPARE(f.terminal.Screen().ScreenText(), QString());

        f.link.SendText(QStringLiteral("2 3 + ."), true);
        QCOMPARE(pty.ReadUntil("\r"), QByteArray("2 3 + .\r"));
        pty.Send("2 3 + . 5  ok\r\n");
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts(), QStringList());

        // Polls that find nothing (zero-byte reads) must not stall later
        // reception, whichever way the bytes are then taken.
        for (int round = 0; round < 5; ++round) {
            for (int i = 0; i < 50; ++i)
                QCOMPARE(f.link.BytesAvailable(), 0);
            pty.Send("line " + QByteArray::number(round) + "\r\n");
            QByteArray got;
            QDeadlineTimer deadline(2000);
            while (!got.endsWith("\r\n") && !deadline.hasExpired())
                got += f.link.ReadBytes();
            QCOMPARE(got, "line " + QByteArray::number(round) + "\r\n");
        }

        // Paced characters arrive whole and in order.
        f.context.settings.delay4410 = QStringLiteral("50");
        f.link.SendText(QStringLiteral("SLOW"), true);
        QCOMPARE(pty.ReadUntil("\r"), QByteArray("SLOW\r"));
    }

    void baudChangeReachesTheOpenPort()
    {
        Pty pty;
        QVERIFY(!pty.path.isEmpty());
        Fixture f;
        f.context.settings.serialDevices[QStringLiteral("COM7")] = pty.path;
        f.controller.SelectPort(7);
        QVERIFY(f.controller.Serial().IsUsable());
        auto lineSpeed = [&] {
            termios attributes{};
            tcgetattr(pty.master, &attributes);
            return cfgetospeed(&attributes);
        };
        QCOMPARE(lineSpeed(), speed_t(B9600));
        f.context.settings.baudRate = QStringLiteral("38400");
        f.controller.ApplyBaudRate();
        QCOMPARE(lineSpeed(), speed_t(B38400));
        f.context.settings.baudRate = QStringLiteral("garbage");
        f.controller.ApplyBaudRate(); // refused: the line keeps its speed
        QCOMPARE(lineSpeed(), speed_t(B38400));
        QVERIFY(f.controller.Serial().IsUsable());
    }

    void serialBoardThatStopsReadingIsNotUnplugged()
    {
        // A board that takes nothing in fills the line's buffers; that is
        // a slow board, not a lost device.
        Pty pty;
        Fixture f;
        f.context.settings.serialDevices[QStringLiteral("COM7")] = pty.path;
        f.controller.SelectPort(7);
        QVERIFY(f.controller.Serial().IsUsable());
        for (int i = 0; i < 20; ++i)
            f.link.SendText(QString(10000, QLatin1Char('x')), true);
        QVERIFY(f.controller.Serial().IsUsable());
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        // Once the board reads again everything arrives, whole and in order.
        QByteArray got;
        const qsizetype total = 20 * 10001;
        QDeadlineTimer deadline(10000);
        while (got.size() < total && !deadline.hasExpired()) {
            char buffer[4096];
            const ssize_t n = ::read(pty.master, buffer, sizeof buffer);
            if (n > 0)
                got.append(buffer, n);
            else
                f.link.BytesAvailable(); // the terminal's next poll
        }
        QCOMPARE(got, (QByteArray(10000, 'x') + '\r').repeated(20));
        QVERIFY(f.controller.Serial().IsUsable());
    }

    // An unplugged adapter is reported once, with the reason; when the
    // device is back under its name the port opens again by itself.
    void serialUnplugReportedOnceAndReopened()
    {
        auto pty = std::make_unique<Pty>();
        Fixture f;
        f.controller.SetTerminal(nullptr);
        const QString device = f.dir.filePath(QStringLiteral("ttyKVR"));
        QVERIFY(QFile::link(pty->path, device));
        f.context.settings.serialDevices[QStringLiteral("COM7")] = device;
        QSignalSpy fault(&f.controller, &LinkController::SerialFault);
        QSignalSpy state(&f.controller, &LinkController::LinkStateChanged);
        f.controller.SelectPort(7);
        QVERIFY(f.controller.Serial().IsUsable());
        pty->CloseMaster();
        QFile::remove(device);
        QDeadlineTimer deadline(3000);
        while (f.controller.Serial().IsUsable() && !deadline.hasExpired()) {
            f.link.SendText(QStringLiteral("x"), false);
            f.link.BytesAvailable();
            QTest::qWait(5);
        }
        QVERIFY(!f.controller.Serial().IsUsable());
        for (int i = 0; i < 20; ++i) {
            f.link.SendText(QStringLiteral("more"), true);
            f.terminal.Tick();
        }
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY2(f.prompts.MessageTexts().first().startsWith(QStringLiteral("Com port 7 not available\n\n")),
                 qPrintable(f.prompts.MessageTexts().first()));
        QCOMPARE(fault.size(), 1);
        QCOMPARE(state.size(), 1);
        QVERIFY(!f.controller.DownReason().isEmpty());

        pty = std::make_unique<Pty>();
        QVERIFY(QFile::link(pty->path, device));
        QTRY_VERIFY_WITH_TIMEOUT(f.controller.Serial().IsUsable(), 3000);
        QVERIFY(f.controller.DownReason().isEmpty());
        QCOMPARE(state.size(), 2);
        f.link.SendText(QStringLiteral("back"), true);
        QCOMPARE(pty->ReadUntil("back\r"), QByteArray("back\r"));
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestLinkController)
#include "tst_link_controller.moc"
