// The board's wire and life: lost characters, pacing, the line log, the
// heartbeat port, clients coming and going, the pseudo-terminal link, and
// starting and stopping.
#include "BoardRunner.h"
#include "WireClient.h"
#include "WireModel.h"

#include <QtTest>

#include <QElapsedTimer>
#include <QFile>
#include <QTcpServer>
#include <QTemporaryDir>
#include <thread>

using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

const QStringList TcpArgs{QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--no-heartbeat")};

// The PC's intercharacter delay: the gap it leaves before each character.
void SendPaced(WireClient &wire, const QByteArray &bytes, std::chrono::microseconds gap)
{
    for (char byte : bytes) {
        std::this_thread::sleep_for(gap);
        wire.Send(QByteArray(1, byte));
    }
}

QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<qint64> ChildrenOf(qint64 pid)
{
    QList<qint64> children;
    const QByteArray text = ReadFile(QStringLiteral("/proc/%1/task/%1/children").arg(pid));
    for (const QByteArray &number : text.split(' '))
        if (!number.trimmed().isEmpty())
            children << number.trimmed().toLongLong();
    return children;
}

}  // namespace

class TestBoardWire : public QObject {
    Q_OBJECT
private slots:
    void charactersArrivingTooFastAreLost_data();
    void charactersArrivingTooFastAreLost();
    void wireModelTakes_data();
    void wireModelTakes();
    void baudRatePacesTheReply();
    void logRecordsLinesAsReceived();
    void heartbeatPortIsSilent();
    void heartbeatCanBeSwitchedOff();
    void heartbeatPortTakenIsRefused();
    void droppedClientThenNewOne();
    void newClientReplacesOldOne();
    void ptyLinkAndReopen();
    void ptyLinkRefusesToReplaceAFile();
    void sigtermEndsBoardAndForth();
    void refusesToStart_data();
    void refusesToStart();
};

void TestBoardWire::charactersArrivingTooFastAreLost_data()
{
    QTest::addColumn<int>("gapUs");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("logged");
    QTest::newRow("delay longer than the board needs") << 30000 << QByteArray("1 2 + . 3 4 + . 5 6 + . 7 8 + . 3 7 11 15  ok")
                                                     << QByteArray("1 2 + . 3 4 + . 5 6 + . 7 8 + .\n");
    // The board's buffer holds 16 characters; the rest of the burst is lost.
    QTest::newRow("sent in one go") << 0 << QByteArray("1 2 + . 3 4 + .  3 7  ok") << QByteArray("1 2 + . 3 4 + . \n");
}

void TestBoardWire::charactersArrivingTooFastAreLost()
{
    QFETCH(int, gapUs);
    QFETCH(QByteArray, reply);
    QFETCH(QByteArray, logged);

    QTemporaryDir dir;
    const QString log = dir.filePath(QStringLiteral("received.log"));
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs + QStringList{"--char-time-us", "20000", "--log", log}), qPrintable(board.Failure()));
    auto wire = WireClient::ConnectTcp(board.Port());
    QVERIFY(wire);

    const std::chrono::microseconds boardTime(25000);
    if (gapUs > 0) {
        SendPaced(*wire, "1 2 + . 3 4 + . 5 6 + . 7 8 + .", std::chrono::microseconds(gapUs));
    } else {
        std::this_thread::sleep_for(boardTime);
        wire->Send("1 2 + . 3 4 + . 5 6 + . 7 8 + .");
    }
    SendPaced(*wire, "\r", boardTime);
    QCOMPARE(wire->ReadLine(), reply);
    QCOMPARE(ReadFile(log), logged);
}

void TestBoardWire::wireModelTakes_data()
{
    QTest::addColumn<int>("baud");
    QTest::addColumn<int>("charTimeUs");
    // Chunks as "count@arrivalUs", in order.
    QTest::addColumn<QStringList>("chunks");
    QTest::addColumn<int>("taken");
    QTest::newRow("burst, no wire: the buffer's worth") << 0 << 1000 << QStringList{"40@0"} << 16;
    QTest::newRow("board faster than the wire takes any burst") << 38400 << 260 << QStringList{"4000@0"} << 4000;
    // Half a place freed per character: 31 in a row, then every other one.
    QTest::newRow("board half the wire's speed") << 10000 << 2000 << QStringList{"40@0"} << 35;
    QTest::newRow("stream paced at the board's time") << 10000 << 2000
        << QStringList{"1@0", "1@2000", "1@4000", "1@6000", "1@8000", "1@10000"} << 6;
    // The board process woke late: the stream was still well paced.
    QTest::newRow("late chunk of a paced stream") << 38400 << 260 << QStringList{"1@0", "38@10000"} << 39;
}

void TestBoardWire::wireModelTakes()
{
    QFETCH(int, baud);
    QFETCH(int, charTimeUs);
    QFETCH(QStringList, chunks);
    QFETCH(int, taken);

    kvr::board::CharacterFilter filter(charTimeUs, baud);
    qsizetype total = 0;
    for (const QString &chunk : chunks) {
        const QStringList parts = chunk.split(u'@');
        total += filter.Take(QByteArray(parts[0].toInt(), 'x'), parts[1].toLongLong()).size();
    }
    QCOMPARE(total, qsizetype(taken));
}

void TestBoardWire::baudRatePacesTheReply()
{
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs + QStringList{"--baud", "2400"}), qPrintable(board.Failure()));
    auto wire = WireClient::ConnectTcp(board.Port());
    QVERIFY(wire);
    QElapsedTimer clock;
    clock.start();
    const QByteArray reply = wire->Converse("60 SPACES", 10000);
    const qint64 elapsedMs = clock.elapsed();
    QCOMPARE(reply, "60 SPACES " + QByteArray(60, ' ') + " ok");
    // 10 bits a character at 2400 baud; the first character goes at once.
    const qint64 leastMs = (reply.size() + 2 - 1) * 10 * 1000 / 2400;
    QVERIFY2(elapsedMs >= leastMs * 9 / 10, qPrintable(QStringLiteral("%1 ms, expected at least %2").arg(elapsedMs).arg(leastMs)));
}

void TestBoardWire::logRecordsLinesAsReceived()
{
    QTemporaryDir dir;
    const QString log = dir.filePath(QStringLiteral("lines.log"));
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs + QStringList{"--log", log}), qPrintable(board.Failure()));
    auto wire = WireClient::ConnectTcp(board.Port());
    QVERIFY(wire);
    QCOMPARE(wire->Converse(": SQ DUP * ;"), QByteArray(": SQ DUP * ;  ok"));
    QVERIFY(!wire->Converse("AB\bC").isNull());
    QVERIFY(!wire->Converse("").isNull());
    // CR LF from a terminal counts as one line end, and so does LF alone.
    wire->Send("3 SQ .\r\n");
    QCOMPARE(wire->ReadLine(), QByteArray("3 SQ . 9  ok"));
    wire->Send("4 SQ .\n");
    QCOMPARE(wire->ReadLine(), QByteArray("4 SQ . 16  ok"));
    QCOMPARE(ReadFile(log), QByteArray(": SQ DUP * ;\nAB\bC\n\n3 SQ .\n4 SQ .\n"));
}

void TestBoardWire::heartbeatPortIsSilent()
{
    BoardRunner board;
    QVERIFY2(board.Start({"--port", "0", "--heartbeat-port", "0"}), qPrintable(board.Failure()));
    const quint16 heartbeatPort = board.HeartbeatPort();
    QVERIFY2(heartbeatPort != 0, board.Stderr().constData());
    auto heartbeat = WireClient::ConnectTcp(heartbeatPort);
    QVERIFY(heartbeat);
    auto wire = WireClient::ConnectTcp(board.Port());
    QVERIFY(wire);
    heartbeat->Send("anything\r");
    QCOMPARE(wire->Converse("1 2 + ."), QByteArray("1 2 + . 3  ok"));
    QVERIFY(heartbeat->Silent(200));
    heartbeat.reset();
    QCOMPARE(wire->Converse("4 5 + ."), QByteArray("4 5 + . 9  ok"));
}

void TestBoardWire::heartbeatCanBeSwitchedOff()
{
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs), qPrintable(board.Failure()));
    QCOMPARE(board.HeartbeatPort(), quint16(0));
    QCOMPARE(board.Stop(), 0);
}

void TestBoardWire::heartbeatPortTakenIsRefused()
{
    QTcpServer holder;
    QVERIFY(holder.listen(QHostAddress::LocalHost));
    BoardRunner board;
    const int status = board.RunToEnd({"--port", "0", "--heartbeat-port", QString::number(holder.serverPort())});
    QCOMPARE(status, 1);
    QVERIFY2(board.Stderr().contains("heartbeat port"), board.Stderr().constData());
}

void TestBoardWire::droppedClientThenNewOne()
{
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs), qPrintable(board.Failure()));
    {
        auto first = WireClient::ConnectTcp(board.Port());
        QVERIFY(first);
        QCOMPARE(first->Converse(": KEPT 7 ;"), QByteArray(": KEPT 7 ;  ok"));
        QCOMPARE(first->Converse(": COUNT-UP 300 0 DO I . LOOP ;"), QByteArray(": COUNT-UP 300 0 DO I . LOOP ;  ok"));
        first->Send("COUNT-UP\r");   // drops while the board answers
    }
    auto second = WireClient::ConnectTcp(board.Port());
    QVERIFY(second);
    // Like the PC: a lone CR; what the board still had to say comes first.
    second->Send("\r");
    QByteArray line;
    do {
        line = second->ReadLine();
        QVERIFY(!line.isNull());
    } while (line != "  ok");
    QCOMPARE(second->Converse("KEPT ."), QByteArray("KEPT . 7  ok"));
}

void TestBoardWire::newClientReplacesOldOne()
{
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs), qPrintable(board.Failure()));
    auto first = WireClient::ConnectTcp(board.Port());
    QVERIFY(first);
    QCOMPARE(first->Converse("1 ."), QByteArray("1 . 1  ok"));
    auto second = WireClient::ConnectTcp(board.Port());
    QVERIFY(second);
    QVERIFY(first->WaitClosed(5000));
    QCOMPARE(second->Converse("2 ."), QByteArray("2 . 2  ok"));
}

void TestBoardWire::ptyLinkAndReopen()
{
    QTemporaryDir dir;
    const QString link = dir.filePath(QStringLiteral("ttyKVR"));
    BoardRunner board;
    QVERIFY2(board.Start({"--pty", "--link", link}), qPrintable(board.Failure()));
    QVERIFY(board.PtyPath().startsWith(QLatin1String("/dev/pts/")));
    QCOMPARE(QFileInfo(link).symLinkTarget(), board.PtyPath());
    {
        auto wire = WireClient::OpenPty(link);
        QVERIFY(wire);
        QCOMPARE(wire->Converse(": SEVEN 7 ;"), QByteArray(": SEVEN 7 ;  ok"));
    }
    // The port closed and opened again, as a PC program does.
    auto again = WireClient::OpenPty(link);
    QVERIFY(again);
    QCOMPARE(again->Converse("SEVEN ."), QByteArray("SEVEN . 7  ok"));
    QCOMPARE(board.Stop(), 0);
    QVERIFY(!QFileInfo(link).isSymLink());
}

void TestBoardWire::ptyLinkRefusesToReplaceAFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("precious"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("keep me");
    file.close();
    BoardRunner board;
    QCOMPARE(board.RunToEnd({"--pty", "--link", path}), 1);
    QCOMPARE(ReadFile(path), QByteArray("keep me"));
}

void TestBoardWire::sigtermEndsBoardAndForth()
{
    BoardRunner board;
    QVERIFY2(board.Start(TcpArgs), qPrintable(board.Failure()));
    const QList<qint64> children = ChildrenOf(board.Pid());
    QCOMPARE(children.size(), 1);
    QVERIFY(ReadFile(QStringLiteral("/proc/%1/cmdline").arg(children.first())).contains("gforth"));
    QCOMPARE(board.Stop(), 0);
    QVERIFY(!QFileInfo::exists(QStringLiteral("/proc/%1").arg(children.first())));
}

void TestBoardWire::refusesToStart_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("path");   // PATH for the board, empty: unchanged
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("gforth missing") << QStringList{"--port", "0"} << "/nonexistent" << 1
                                    << QByteArray("gforth is not installed");
    QTest::newRow("gforth given wrong") << QStringList{"--port", "0", "--gforth", "/nonexistent/gforth"} << "" << 1
                                        << QByteArray("not an executable gforth");
    QTest::newRow("gforth cannot run the board") << QStringList{"--port", "0", "--no-heartbeat", "--gforth", "/bin/false"}
                                                 << "" << 1 << QByteArray("personality did not start");
    QTest::newRow("unknown type") << QStringList{"--type", "8080"} << "" << 2 << QByteArray("unknown board type");
    QTest::newRow("bad port") << QStringList{"--port", "70000"} << "" << 2 << QByteArray("--port needs a number");
    QTest::newRow("link without pty") << QStringList{"--link", "/tmp/x"} << "" << 2 << QByteArray("--link needs --pty");
}

void TestBoardWire::refusesToStart()
{
    QFETCH(QStringList, args);
    QFETCH(QString, path);
    QFETCH(int, status);
    QFETCH(QByteArray, message);

    BoardRunner board;
    if (!path.isEmpty()) {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("PATH"), path);
        board.SetEnvironment(env);
    }
    QCOMPARE(board.RunToEnd(args), status);
    QVERIFY2(board.Stderr().contains(message), board.Stderr().constData());
}

QTEST_GUILESS_MAIN(TestBoardWire)
#include "tst_board_wire.moc"
