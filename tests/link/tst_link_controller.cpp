// The link controller on real sockets and pseudo-terminals: the test plays
// the gateway (in-process servers) and the serial board (the master side of
// a pty it opens itself).
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
#include <fcntl.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

using namespace kvr;

namespace {

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
    QByteArray PeerReads(const QByteArray &end)
    {
        QByteArray got;
        QDeadlineTimer deadline(3000);
        while (!got.endsWith(end) && !deadline.hasExpired()) {
            peer->waitForReadyRead(50);
            got += peer->readAll();
        }
        return got;
    }
    // Ticks the terminal until its screen shows `text`.
    bool ScreenShows(const QString &text)
    {
        return QTest::qWaitFor([&] { return terminal.Tick(), terminal.Screen().ScreenText().contains(text); }, 5000);
    }
};

// A pseudo-terminal standing in for a serial port: the test holds the master.
struct Pty {
    int master = -1;
    QString path;
    Pty()
    {
        char name[128] = {};
        int slave = -1;
        if (openpty(&master, &slave, name, nullptr, nullptr) != 0)
            return;
        path = QString::fromLocal8Bit(name);
        termios raw{};
        tcgetattr(master, &raw);
        cfmakeraw(&raw);
        tcsetattr(master, TCSANOW, &raw);
        fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
        ::close(slave); // the program opens its own descriptor through the path
    }
    ~Pty() { CloseMaster(); }
    void CloseMaster()
    {
        if (master >= 0)
            ::close(master);
        master = -1;
    }
    void Send(const QByteArray &bytes) { QCOMPARE(::write(master, bytes.constData(), bytes.size()), bytes.size()); }
    QByteArray ReadUntil(const QByteArray &end)
    {
        QByteArray got;
        QDeadlineTimer deadline(3000);
        while (!got.endsWith(end) && !deadline.hasExpired()) {
            char buffer[4096];
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
        QTest::addColumn<bool>("port");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("normal");
        QTest::newRow("plain") << false << "192.168.1.20" << "192.168.1.20";
        QTest::newRow("leading zeros dropped") << false << "010.001.000.007" << "10.1.0.7";
        QTest::newRow("missing parts are 0") << false << "10.2" << "10.2.0.0";
        QTest::newRow("parts kept within a byte") << false << "300.1.1.1" << "255.1.1.1";
        QTest::newRow("garbage is 0") << false << "abc" << "0.0.0.0";
        QTest::newRow("blanks around") << false << " 127.0.0.1 " << "127.0.0.1";
        QTest::newRow("port: leading zero") << true << "04000" << "4000";
        QTest::newRow("port: kept within 16 bits") << true << "99999" << "65535";
        QTest::newRow("port: garbage is 0") << true << "x" << "0";
    }
    void remoteAddress()
    {
        QFETCH(bool, port);
        QFETCH(QString, typed);
        QFETCH(QString, normal);
        QCOMPARE(port ? NormalisePort(typed) : NormaliseAddress(typed), normal);
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
        QCOMPARE(statuses.first().first().toString(), QStringLiteral("Trying to connect . "));
        QCOMPARE(f.controller.StatusText(), QStringLiteral("Remote KVR computer - connected"));
        QCOMPARE(f.prompts.MessageTexts(),
                 QStringList{"Connected to IP address 127.0.0.1, port " + f.context.settings.remotePort});
        QVERIFY(f.AcceptPeer());
        QTRY_VERIFY(f.heartbeat.hasPendingConnections());
        f.link.SendText(QStringLiteral("2 3 + ."), true);
        QCOMPARE(f.PeerReads("\r"), QByteArray("2 3 + .\r"));
        f.peer->write("2 3 + . 5  ok\r\n");
        f.peer->flush();
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        f.peer->write("hello\r\nworld");
        f.peer->flush();
        QVERIFY(f.ScreenShows(QStringLiteral("hello\nworld")));

        // The start-up wake-up: a reply that arrived during a busy pause is
        // dropped by ClearInput even though no event was processed meanwhile.
        f.peer->write("  ok\r\n");
        QVERIFY(f.peer->waitForBytesWritten(2000));
        f.link.Pause(0.1);
        f.link.ClearInput();
        f.peer->write("wanted\r\n");
        QVERIFY(f.peer->waitForBytesWritten(2000));
        QByteArray got;
        QDeadlineTimer deadline(3000);
        while (!got.endsWith("\n") && !deadline.hasExpired())
            got += f.link.ReadBytes();
        QCOMPARE(got, QByteArray("wanted\r\n"));
    }

    void connectFailures_data()
    {
        QTest::addColumn<bool>("dataUp");
        QTest::addColumn<QStringList>("starts");
        const QString error = QStringLiteral("TCP/IP connection error\n\nFailed when trying to connect ");
        QTest::newRow("heartbeat refused, data stays up") << true << QStringList{"Connected", error + "heartbeat port.\n"};
        QTest::newRow("nothing listening: one message a socket")
            << false << QStringList{error + "to IP address 127.0.0.1, port ", error + "heartbeat port.\n"};
    }
    void connectFailures()
    {
        QFETCH(bool, dataUp);
        QFETCH(QStringList, starts);
        Fixture f;
        f.ListenBoth();
        f.heartbeat.close();
        if (!dataUp)
            f.data.close();
        f.controller.SelectPort(0);
        QCOMPARE(f.controller.IsTcpConnected(), dataUp);
        QTRY_COMPARE(f.prompts.MessageTexts().size(), 2);
        for (int i = 0; i < 2; ++i)
            QVERIFY2(f.prompts.MessageTexts().at(i).startsWith(starts.at(i)), qPrintable(f.prompts.MessageTexts().at(i)));
        QVERIFY(f.prompts.MessageTexts().at(1).size() > 80); // the socket's own description follows
        QCOMPARE(f.prompts.shown.at(1).icon, PromptIcon::Exclamation);
        f.link.SendText(QStringLiteral("X"), false);
        if (dataUp) {
            QVERIFY(f.AcceptPeer());
            QCOMPARE(f.PeerReads("X"), QByteArray("X"));
        } else {
            QCOMPARE(f.controller.StatusText(), QStringLiteral("Remote KVR computer - not connected"));
            QCOMPARE(f.link.BytesAvailable(), 0);
        }
    }

    void connectFromDialog()
    {
        Fixture f;
        f.ListenBoth();
        QList<QByteArray> lines;
        QByteArray partial;
        QObject::connect(&f.data, &QTcpServer::newConnection, &f.data, [&] {
            QTcpSocket *board = f.data.nextPendingConnection();
            QObject::connect(board, &QTcpSocket::readyRead, board, [board, &lines, &partial] {
                partial += board->readAll();
                for (qsizetype cr; (cr = partial.indexOf('\r')) >= 0; board->write(" ok\r\n")) {
                    lines << partial.left(cr);
                    partial.remove(0, cr + 1);
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
                     .match(QString::fromLatin1(lines.at(1))).hasMatch(), lines.at(1).constData());
        QCOMPARE(f.prompts.MessageTexts().size(), 1); // "Connected to IP address ..."
        QCOMPARE(forward.size(), 1);
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM0"));
        f.controller.DisconnectFromDialog();
        QVERIFY(!f.controller.IsTcpConnected());
        QCOMPARE(forward.size(), 2);

        // To nothing: only the connection error, no start-up line waited for in vain.
        f.prompts.Clear();
        f.data.close();
        f.controller.Tcp().SetHeartbeatPort(0);
        f.controller.ConnectFromDialog(QStringLiteral("127.0.0.1"), f.context.settings.remotePort);
        QVERIFY(!f.controller.IsTcpConnected());
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(QStringLiteral("TCP/IP connection error")));
        QCOMPARE(forward.size(), 3);
    }

    void portsAtStart()
    {
        Fixture f;
        f.context.settings.serialDevices.remove(QStringLiteral("COM12"));
        f.controller.SelectPort(12);
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM12"));
        QCOMPARE(f.prompts.MessageTexts(), QStringList{"Com port 12 not available"});

        // A saved port that cannot open falls back to COM1, saved.
        f.prompts.Clear();
        f.context.settings.commPort = QStringLiteral("COM3");
        f.context.settings.serialDevices[QStringLiteral("COM3")] = f.dir.filePath(QStringLiteral("no-such-tty"));
        QSignalSpy ports(&f.controller, &LinkController::PortChanged);
        f.controller.OpenAtStart();
        QCOMPARE(f.prompts.MessageTexts(), QStringList{"No serial port available"});
        QCOMPARE(ports.last().first().toInt(), -1);
        Settings saved;
        ReadSettings(saved, f.context.paths.SettingsFile(), f.context.paths.WindowsFolder());
        QCOMPARE(saved.commPort, QStringLiteral("COM1"));

        // TCP at start waits to be asked.
        f.prompts.Clear();
        f.ListenBoth();
        f.context.settings.commPort = QStringLiteral("COM0");
        f.terminal.ShowBytes("old");
        f.controller.OpenAtStart();
        QCOMPARE(ports.last().first().toInt(), 0);
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

        // A baud rate chosen later reaches the open port; a bad one is refused.
        const auto lineSpeed = [&] {
            termios attributes{};
            tcgetattr(pty.master, &attributes);
            return cfgetospeed(&attributes);
        };
        QCOMPARE(lineSpeed(), speed_t(B9600));
        f.context.settings.baudRate = QStringLiteral("38400");
        f.controller.ApplyBaudRate();
        QCOMPARE(lineSpeed(), speed_t(B38400));
        f.context.settings.baudRate = QStringLiteral("garbage");
        f.controller.ApplyBaudRate();
        QCOMPARE(lineSpeed(), speed_t(B38400));

        // A board that takes nothing in fills the line's buffers; that is a
        // slow board, not a lost device, and everything arrives later.
        f.context.settings.delay4410 = QStringLiteral("0");
        for (int i = 0; i < 20; ++i)
            f.link.SendText(QString(10000, QLatin1Char('x')), true);
        QVERIFY(f.controller.Serial().IsUsable());
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        QByteArray got;
        QDeadlineTimer deadline(10000);
        while (got.size() < 20 * 10001 && !deadline.hasExpired()) {
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
        QVERIFY(QTest::qWaitFor([&] {
            f.link.SendText(QStringLiteral("x"), false);
            f.link.BytesAvailable();
            return !f.controller.Serial().IsUsable();
        }, 3000));
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
