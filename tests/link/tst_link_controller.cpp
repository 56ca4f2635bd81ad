// The link controller on real sockets and a pseudo-terminal: the test plays
// the gateway (in-process servers) and the serial board (the master side of
// a pty it opens itself).
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "link/LinkController.h"
#include "link/Terminal.h"
#include <QDeadlineTimer>
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

    Fixture()
    {
        context.settings.delay4410 = QStringLiteral("0");
        context.settings.timeout = QStringLiteral("2000");
        context.settings.remoteIp = QStringLiteral("127.0.0.1");
        controller.SetTerminal(&terminal);
        data.listen(QHostAddress::LocalHost, 0);
        heartbeat.listen(QHostAddress::LocalHost, 0);
        context.settings.remotePort = QString::number(data.serverPort());
        controller.Tcp().SetHeartbeatPort(heartbeat.serverPort());
    }
    // What the link reads until `end`, taken as the terminal's polls take it.
    QByteArray LinkReads(const QByteArray &end)
    {
        QByteArray got;
        for (QDeadlineTimer deadline(3000); !got.endsWith(end) && !deadline.hasExpired();)
            got += link.ReadBytes();
        return got;
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
        openpty(&master, &slave, name, nullptr, nullptr);
        path = QString::fromLocal8Bit(name);
        termios raw{};
        tcgetattr(master, &raw);
        cfmakeraw(&raw);
        tcsetattr(master, TCSANOW, &raw);
        fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK);
        ::close(slave); // the program opens its own descriptor through the path
    }
    ~Pty() { ::close(master); }
    void Send(const QByteArray &bytes) { QCOMPARE(::write(master, bytes.constData(), bytes.size()), bytes.size()); }
    QByteArray Read(qsizetype size, const std::function<void()> &meanwhile = [] {})
    {
        QByteArray got;
        for (QDeadlineTimer deadline(10000); got.size() < size && !deadline.hasExpired(); meanwhile()) {
            char buffer[4096];
            got.append(buffer, qMax<ssize_t>(0, ::read(master, buffer, sizeof buffer)));
        }
        return got;
    }
};

} // namespace

class TestLinkController : public QObject {
    Q_OBJECT

private slots:
    void connectsAndTalks()
    {
        Fixture f;
        QSignalSpy captions(&f.controller, &LinkController::CaptionChanged);
        int captionsAtBox = -1;
        f.prompts.onMessage = [&](const QString &) { captionsAtBox = int(captions.size()); };
        f.controller.SelectPort(0);
        QVERIFY2(captionsAtBox > 0, "the caption was not updated before the connected box showed");
        QCOMPARE(f.prompts.MessageTexts(),
                 QStringList{"Connected to IP address 127.0.0.1, port " + f.context.settings.remotePort});
        QVERIFY(f.data.hasPendingConnections() || f.data.waitForNewConnection(2000));
        QTcpSocket *peer = f.data.nextPendingConnection();
        QTRY_VERIFY(f.heartbeat.hasPendingConnections());
        // The start-up wake-up: a reply that arrived during a busy pause is
        // dropped by ClearInput even though no event was processed meanwhile.
        peer->write("  ok\r\n");
        QVERIFY(peer->waitForBytesWritten(2000));
        f.link.Pause(0.1);
        f.link.ClearInput();
        peer->write("wanted\r\n");
        QVERIFY(peer->waitForBytesWritten(2000));
        QCOMPARE(f.LinkReads("\n"), QByteArray("wanted\r\n"));
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
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
        f.heartbeat.close();
        if (!dataUp)
            f.data.close();
        f.controller.SelectPort(0);
        QCOMPARE(f.controller.IsTcpConnected(), dataUp);
        QTRY_COMPARE(f.prompts.MessageTexts().size(), 2);
        for (int i = 0; i < 2; ++i)
            QVERIFY2(f.prompts.MessageTexts().at(i).startsWith(starts.at(i)), qPrintable(f.prompts.MessageTexts().at(i)));
        QCOMPARE(f.prompts.shown.at(1).icon, PromptIcon::Exclamation);
        if (!dataUp)
            QCOMPARE(f.controller.StatusText(), QStringLiteral("Remote KVR computer - not connected"));
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
        QCOMPARE(f.terminal.Screen().ScreenText(), QString());
        f.link.SendText(QStringLiteral("2 3 + ."), true);
        QCOMPARE(pty.Read(8), QByteArray("2 3 + .\r"));
        pty.Send("2 3 + . 5  ok\r\n");
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts(), QStringList());

        // Polls that find nothing (zero-byte reads) must not stall later
        // reception, whichever way the bytes are then taken.
        for (int round = 0; round < 5; ++round) {
            for (int i = 0; i < 50; ++i)
                QCOMPARE(f.link.BytesAvailable(), 0);
            pty.Send("line " + QByteArray::number(round) + "\r\n");
            QCOMPARE(f.LinkReads("\r\n"), "line " + QByteArray::number(round) + "\r\n");
        }
        // Paced characters arrive whole and in order.
        f.context.settings.delay4410 = QStringLiteral("50");
        f.link.SendText(QStringLiteral("SLOW"), true);
        QCOMPARE(pty.Read(5), QByteArray("SLOW\r"));

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
        QCOMPARE(pty.Read(20 * 10001, [&] { f.link.BytesAvailable(); }), (QByteArray(10000, 'x') + '\r').repeated(20));
        QVERIFY(f.controller.Serial().IsUsable());
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestLinkController)
#include "tst_link_controller.moc"
