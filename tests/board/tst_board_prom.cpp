// What the PC's PROM transfer sends to the board: the upload program's
// set-up and forget lines, binary bytes to a program that reads keys, and
// the flash of a 4410F kept in its file across COLD and restarts.
#include "BoardRunner.h"
#include "WireClient.h"

#include <QTemporaryDir>
#include <QtTest>

using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

const QByteArray HereCommand = "BASE @ HEX HERE U. BASE !";

struct Session {
    BoardRunner board;
    std::unique_ptr<WireClient> wire;

    bool Open(const QString &type, const QStringList &extra = {})
    {
        wire = board.StartConnected(type, extra);
        return wire != nullptr;
    }
    QByteArray Here() { return wire->Converse(HereCommand).mid(26, 4); }
    bool Ok(const QByteArray &line) { return wire->Converse(line) == line + "  ok"; }
};

} // namespace

class TestBoardProm : public QObject {
    Q_OBJECT
private slots:
    void forgetLineTakesTheProgramAway_data();
    void forgetLineTakesTheProgramAway();
    void forgetLineRefusals_data();
    void forgetLineRefusals();
    void programTakesEveryByte();
    void flashOutlivesColdAndRestart();
    void dictionaryStopsBelowTheFlash();
    void flashFileRefusals_data();
    void flashFileRefusals();
};

void TestBoardProm::forgetLineTakesTheProgramAway_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("offset");
    QTest::newRow("4410ANS") << "4410ANS" << QByteArray("2");
    QTest::newRow("4410F") << "4410F" << QByteArray("2");
    QTest::newRow("4410Fig") << "4410Fig" << QByteArray("4");
    QTest::newRow("6630Fig") << "6630Fig" << QByteArray("4");
}

void TestBoardProm::forgetLineTakesTheProgramAway()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, offset);
    Session session;
    QVERIFY2(session.Open(type), qPrintable(session.board.Failure()));
    QVERIFY(session.Ok(": KEEP 7 ;"));
    const QByteArray before = session.Here();
    QVERIFY(session.Ok(": JOB ; DIS"));
    if (type.startsWith(QLatin1String("4410")))
        QVERIFY(session.Ok("$FD12 $FD14 !"));
    QVERIFY(session.Ok(": S-RECORD 1 2 + ;"));
    // A fig-FORTH VARIABLE takes its first value.
    QVERIFY(session.Ok(type.endsWith(QLatin1String("Fig")) ? "0 VARIABLE TALLY" : "VARIABLE TALLY"));
    QVERIFY(session.Here() != before);

    QVERIFY(session.Ok("' JOB " + offset + " - DUP @ CONTEXT @ ! 4 - DP !"));
    QCOMPARE(session.Here(), before);
    for (const QByteArray word : {"JOB", "S-RECORD", "TALLY"})
        QVERIFY2(session.wire->Converse(word).contains(" ?  - "), word.constData());
    QCOMPARE(session.wire->Converse("KEEP ."), QByteArray("KEEP . 7  ok"));
    // Defined afresh: no redefinition is reported.
    QVERIFY(session.Ok(": JOB ;"));
}

void TestBoardProm::forgetLineRefusals_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("a word of the board") << QByteArray("' DUP 2 - DUP @ CONTEXT @ ! 4 - DP !")
                                         << QByteArray("DUP ?  - invalid FORGET");
    QTest::newRow("no such word") << QByteArray("' NOSUCH 2 - DUP @ CONTEXT @ ! 4 - DP !")
                                  << QByteArray("NOSUCH ?  - undefined word");
}

void TestBoardProm::forgetLineRefusals()
{
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, reply);
    Session session;
    QVERIFY2(session.Open(QStringLiteral("4410ANS")), qPrintable(session.board.Failure()));
    QVERIFY(session.Ok(": KEEP 7 ;"));
    const QByteArray before = session.Here();
    QCOMPARE(session.wire->Converse(line), line + ' ' + reply);
    QCOMPARE(session.Here(), before);
    QCOMPARE(session.wire->Converse("KEEP ."), QByteArray("KEEP . 7  ok"));
}

void TestBoardProm::programTakesEveryByte()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("4410ANS")), qPrintable(session.board.Failure()));
    QVERIFY(session.Ok(": GRAB 0 6 0 DO KEY + LOOP . ;"));
    session.wire->Send("GRAB\r");
    QTest::qWait(100);
    // Ctrl-C, the end-of-file code and the line ends are data, not commands.
    session.wire->Send(QByteArray("\x03\x04\x00\xFF\r\n", 6));
    QCOMPARE(session.wire->ReadLine(), QByteArray("GRAB 285  ok"));

    // Back at the prompt, Ctrl-C breaks a running program again.
    QVERIFY(session.Ok(": SPIN BEGIN AGAIN ;"));
    session.wire->Send("SPIN\r");
    QVERIFY(session.wire->ReadLine(300).isNull());
    session.wire->Send(QByteArray("\x03\x11\x1b ;\r", 6));
    QVERIFY(session.wire->ReadLine().startsWith("SPIN SPIN ?  - "));
}

void TestBoardProm::flashOutlivesColdAndRestart()
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("flash.bin"));
    {
        Session session;
        QVERIFY2(session.Open(QStringLiteral("4410F"), {QStringLiteral("--flash"), file}),
                 qPrintable(session.board.Failure()));
        QCOMPARE(session.board.NextLine(), QStringLiteral("flash 8800-FB7F"));
        QCOMPARE(session.wire->Converse("$8800 C@ ."), QByteArray("$8800 C@ . 255  ok"));
        QVERIFY(session.Ok("171 $8800 C! 205 $FB7F C! 9 $FB80 C!"));
        QVERIFY(session.Ok("$FD12 $FD14 !"));
        QCOMPARE(session.wire->Converse("COLD"), QByteArray("COLD "));
        QVERIFY(session.wire->ReadLine().startsWith("KVR4410F"));
        QCOMPARE(session.Here(), QByteArray("3C00"));
        QCOMPARE(session.wire->Converse("$8800 C@ ."), QByteArray("$8800 C@ . 171  ok"));
        QCOMPARE(session.board.Stop(), 0);
    }
    QFile kept(file);
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QByteArray expected(0xFB80 - 0x8800, '\xFF');
    expected[0] = char(171);
    expected[expected.size() - 1] = char(205);
    QCOMPARE(kept.readAll(), expected);

    // A file named without its folder is the one in the board's working folder.
    Session again;
    again.board.SetWorkingDirectory(dir.path());
    QVERIFY2(again.Open(QStringLiteral("4410F"), {QStringLiteral("--flash"), QStringLiteral("flash.bin")}),
             qPrintable(again.board.Failure()));
    QCOMPARE(again.wire->Converse("$FB7F C@ ."), QByteArray("$FB7F C@ . 205  ok"));
}

void TestBoardProm::dictionaryStopsBelowTheFlash()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("4410F")), qPrintable(session.board.Failure()));
    QVERIFY(session.wire->Converse("CREATE BIG 70000 ALLOT").endsWith(" ok"));
    QVERIFY(session.wire->Converse("CREATE MORE 10000 ALLOT").endsWith("?  - dictionary overflow"));
    QCOMPARE(session.wire->Converse("$8800 C@ ."), QByteArray("$8800 C@ . 255  ok"));
}

void TestBoardProm::flashFileRefusals_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("status");
    QTest::newRow("flash on a board without") << "4410ANS" << 0 << 2;
    QTest::newRow("file of another size") << "4410F" << 100 << 1;
}

void TestBoardProm::flashFileRefusals()
{
    QFETCH(QString, type);
    QFETCH(int, size);
    QFETCH(int, status);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("flash.bin"));
    QFile made(file);
    QVERIFY(made.open(QIODevice::WriteOnly));
    made.write(QByteArray(size, 'x'));
    made.close();
    BoardRunner board;
    QCOMPARE(board.RunToEnd({QStringLiteral("--type"), type, QStringLiteral("--flash"), file, QStringLiteral("--port"),
                             QStringLiteral("0"), QStringLiteral("--no-heartbeat")}),
             status);
    QVERIFY(made.open(QIODevice::ReadOnly));
    QCOMPARE(made.readAll(), QByteArray(size, 'x'));
}

QTEST_GUILESS_MAIN(TestBoardProm)
#include "tst_board_prom.moc"
