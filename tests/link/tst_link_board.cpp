// The product's own link against the simulated board, over TCP and over the
// board's pseudo-terminal: what a user types reaches the board and its reply
// lands in the terminal's screen buffer.
#include "BoardRunner.h"
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "link/LinkController.h"
#include "link/StartupCommands.h"
#include "link/Terminal.h"
#include <QDeadlineTimer>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>
#include <csignal>

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

    Fixture()
    {
        context.settings.delay4410 = QStringLiteral("0");
        context.settings.delay6630 = QStringLiteral("0");
        context.settings.timeout = QStringLiteral("5000");
        context.settings.capsLock = QStringLiteral("OFF");
        context.settings.remoteIp = QStringLiteral("127.0.0.1");
        controller.SetTerminal(&terminal);
    }
    void UseTcp(quint16 port, quint16 heartbeatPort)
    {
        context.settings.remotePort = QString::number(port);
        controller.Tcp().SetHeartbeatPort(heartbeatPort);
        controller.SelectPort(0);
    }
    // Ticks the terminal until its screen shows `text`.
    bool ScreenShows(const QString &text, int ms = 5000)
    {
        QDeadlineTimer deadline(ms);
        while (!deadline.hasExpired()) {
            terminal.Tick();
            if (terminal.Screen().ScreenText().contains(text))
                return true;
            QTest::qWait(20);
        }
        qWarning("screen: %s", qPrintable(terminal.Screen().ScreenText()));
        return false;
    }
    // One line sent, its reply line read back whole.
    QByteArray Exchange(const QString &line)
    {
        link.SendText(line, true);
        QByteArray reply;
        QDeadlineTimer deadline(5000);
        while (!reply.endsWith('\n') && !deadline.hasExpired())
            if (link.BytesAvailable() > 0)
                reply += link.ReadBytes();
        return reply;
    }
};

quint16 UnusedPort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost, 0);
    const quint16 port = probe.serverPort();
    probe.close();
    return port;
}

} // namespace

class TestLinkBoard : public QObject {
    Q_OBJECT

private slots:
    void typedLineAnsweredOverTcp()
    {
        test::BoardRunner board;
        QVERIFY2(board.Start({"--port", "0", "--heartbeat-port", "0"}), qPrintable(board.Failure()));
        Fixture f;
        f.UseTcp(board.Port(), board.HeartbeatPort());
        QVERIFY(f.controller.IsTcpConnected());
        QCOMPARE(f.prompts.MessageTexts(),
                 QStringList{"Connected to IP address 127.0.0.1, port " + QString::number(board.Port())});
        f.terminal.KeyTyped(QStringLiteral("2 3 + .\r"));
        QVERIFY(f.ScreenShows(QStringLiteral("2 3 + . 5 ")));
        QVERIFY(f.ScreenShows(QStringLiteral(" ok")));
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
    }

    void startupLineAccepted_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("4410ANS") << "4410ANS";
        QTest::newRow("4410Fig") << "4410Fig";
        QTest::newRow("6630Fig") << "6630Fig";
    }
    void startupLineAccepted()
    {
        QFETCH(QString, type);
        test::BoardRunner board;
        QVERIFY2(board.Start({"--port", "0", "--no-heartbeat", "--type", type}), qPrintable(board.Failure()));
        Fixture f;
        f.context.settings.computerType = type;
        f.controller.Tcp().SetHeartbeatPort(0);
        f.context.settings.remotePort = QString::number(board.Port());
        f.controller.SelectPort(0);
        QVERIFY(f.controller.IsTcpConnected());
        f.link.SendText(QString(QChar(13)), false);
        f.link.Pause(0.2);
        f.link.ClearInput();
        if (type == QLatin1String("6630Fig")) {
            const QByteArray memory = f.Exchange(Memory6630Line);
            QVERIFY2(memory.endsWith(" ok\r\n"), memory.constData());
        }
        const QByteArray reply = f.Exchange(StartupLine(type, QDateTime::currentDateTime()));
        QVERIFY2(reply.endsWith(" ok\r\n"), reply.constData());
        QVERIFY2(!reply.contains(" ?  - "), reply.constData());

        // The whole sequence as the program sends it, then a line typed.
        f.prompts.Clear();
        SendStartupCommands(f.link, f.terminal);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        f.terminal.KeyTyped(QStringLiteral("7 6 * .\r"));
        QVERIFY(f.ScreenShows(QStringLiteral("7 6 * . 42 ")));
    }

    void heartbeatRefusedDataStaysUp()
    {
        test::BoardRunner board;
        QVERIFY2(board.Start({"--port", "0", "--no-heartbeat"}), qPrintable(board.Failure()));
        Fixture f;
        f.UseTcp(board.Port(), UnusedPort());
        QVERIFY(f.controller.IsTcpConnected());
        QTRY_COMPARE(f.prompts.MessageTexts().size(), 2);
        QVERIFY(f.prompts.MessageTexts().at(1).startsWith(
            QStringLiteral("TCP/IP connection error\n\nFailed when trying to connect heartbeat port.\n")));
        f.terminal.KeyTyped(QStringLiteral("1 1 + .\r"));
        QVERIFY(f.ScreenShows(QStringLiteral("1 1 + . 2 ")));
    }

    void boardKilledMidSession()
    {
        test::BoardRunner board;
        QVERIFY2(board.Start({"--port", "0", "--heartbeat-port", "0"}), qPrintable(board.Failure()));
        Fixture f;
        f.UseTcp(board.Port(), board.HeartbeatPort());
        f.terminal.KeyTyped(QStringLiteral("1 .\r"));
        QVERIFY(f.ScreenShows(QStringLiteral("1 . 1 ")));
        f.prompts.Clear();
        ::kill(static_cast<pid_t>(board.Pid()), SIGKILL);
        QDeadlineTimer deadline(5000);
        while (f.controller.IsTcpConnected() && !deadline.hasExpired()) {
            f.terminal.Tick();
            QTest::qWait(20);
        }
        QVERIFY(!f.controller.IsTcpConnected());
        // A second report (the heartbeat's) would come within this.
        QVERIFY(!QTest::qWaitFor([&] { return f.prompts.MessageTexts().size() > 1; }, 400));
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(QStringLiteral("TCP/IP connection error\n\n")));
        // The program goes on: typing and ticking do nothing harmful.
        f.terminal.KeyTyped(QStringLiteral("2 .\r"));
        f.terminal.Tick();
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
    }

    void typedLineAnsweredOverPty()
    {
        test::BoardRunner board;
        QVERIFY2(board.Start({"--pty"}), qPrintable(board.Failure()));
        Fixture f;
        f.context.settings.serialDevices[QStringLiteral("COM5")] = board.PtyPath();
        f.controller.SelectPort(5);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        f.terminal.KeyTyped(QStringLiteral("2 3 + .\r"));
        QVERIFY(f.ScreenShows(QStringLiteral("2 3 + . 5 ")));
        // A quiet spell of empty polls, then more: reception goes on.
        for (int i = 0; i < 100; ++i)
            f.terminal.Tick();
        f.terminal.KeyTyped(QStringLiteral("4 4 * .\r"));
        QVERIFY(f.ScreenShows(QStringLiteral("4 4 * . 16 ")));

        ::kill(static_cast<pid_t>(board.Pid()), SIGKILL);
        QDeadlineTimer deadline(5000);
        while (f.controller.Serial().IsUsable() && !deadline.hasExpired()) {
            f.terminal.KeyTyped(QStringLiteral("x"));
            f.terminal.Tick();
            QTest::qWait(20);
        }
        QVERIFY(!f.controller.Serial().IsUsable());
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(QStringLiteral("Com port 5 not available\n\ndevice ")));
    }
};

QTEST_GUILESS_MAIN(TestLinkBoard)
#include "tst_link_board.moc"
