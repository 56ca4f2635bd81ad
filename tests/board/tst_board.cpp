// The board's conversation as the PC sees it, over TCP and over the
// pseudo-terminal: echo, replies, error marker, redefinitions, HERE, COLD,
// the start-up line and the interrupt sequence.
#include "BoardRunner.h"
#include "WireClient.h"

#include <QtTest>

using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

const QByteArray ErrorMarker = " ?  - ";
const QByteArray HereCommand = "BASE @ HEX HERE U. BASE !";

// A running board and one client on it.
struct Session {
    BoardRunner board;
    std::unique_ptr<WireClient> wire;

    bool Open(const QString &transport, const QString &type = QStringLiteral("4410ANS"))
    {
        QStringList args{QStringLiteral("--type"), type};
        if (transport == QLatin1String("pty"))
            args << QStringLiteral("--pty");
        else
            args << QStringLiteral("--port") << QStringLiteral("0") << QStringLiteral("--no-heartbeat");
        if (!board.Start(args))
            return false;
        wire = transport == QLatin1String("pty") ? WireClient::OpenPty(board.PtyPath())
                                                 : WireClient::ConnectTcp(board.Port());
        return wire != nullptr;
    }
};

// The four characters the compiler takes as the board's HERE (from
// position 27, 1-based, of the reply).
QByteArray HereDigits(const QByteArray &reply)
{
    return reply.mid(26, 4);
}

}  // namespace

class TestBoard : public QObject {
    Q_OBJECT
private slots:
    void replies_data();
    void replies();
    void hereAddress_data();
    void hereAddress();
    void printedAddressesCanBeUsed();
    void dictionaryFillsUp();
    void dialects_data();
    void dialects();
    void coldForgetsEverything();
    void startupLine_data();
    void startupLine();
    void badClockSettingIsAnError();
    void interruptSequenceBreaksARunningProgram_data();
    void interruptSequenceBreaksARunningProgram();
    void ctrlCDropsTheTypedLine();
};

void TestBoard::replies_data()
{
    QTest::addColumn<QString>("transport");
    QTest::addColumn<QByteArrayList>("before");   // lines sent first, each must answer " ok"
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("reply");

    for (const QString &transport : {QStringLiteral("tcp"), QStringLiteral("pty")}) {
        const auto row = [&](const char *name) -> QTestData & { return QTest::addRow("%s: %s", qPrintable(transport), name); };
        row("echo, output and ok") << transport << QByteArrayList{} << QByteArray("1 2 + .") << QByteArray("1 2 + . 3  ok");
        row("empty line") << transport << QByteArrayList{} << QByteArray("") << QByteArray("  ok");
        row("unknown word") << transport << QByteArrayList{} << QByteArray("1 NOSUCHWORD 2")
                            << QByteArray("1 NOSUCHWORD 2 NOSUCHWORD ?  - undefined word");
        row("output before the error") << transport << QByteArrayList{} << QByteArray("7 . FROB")
                                       << QByteArray("7 . FROB 7 FROB ?  - undefined word");
        row("stack underflow") << transport << QByteArrayList{} << QByteArray("1 DROP DROP")
                               << QByteArray("1 DROP DROP DROP ?  - stack underflow");
        row("redefinition") << transport << QByteArrayList{": SQ DUP * ;"} << QByteArray(": SQ DUP DUP * * ;")
                            << QByteArray(": SQ DUP DUP * * ; SQ NOT UNIQUE  ok");
        row("redefinition of a board word") << transport << QByteArrayList{} << QByteArray(": DUP DUP ;")
                                            << QByteArray(": DUP DUP ; DUP NOT UNIQUE  ok");
        row("an error empties the stack") << transport << QByteArrayList{} << QByteArray("1 2 NOSUCH DEPTH .")
                                          << QByteArray("1 2 NOSUCH DEPTH . NOSUCH ?  - undefined word");
        row("definition over several lines") << transport << QByteArrayList{": TWICE", "2 * ;"}
                                             << QByteArray("21 TWICE .") << QByteArray("21 TWICE . 42  ok");
        row("comment over several lines") << transport << QByteArrayList{"( a comment", "that goes on )"}
                                          << QByteArray("5 .") << QByteArray("5 . 5  ok");
        row("error in a definition ends it") << transport << QByteArrayList{}
                                             << QByteArray(": BAD 1 NOSUCH ;")
                                             << QByteArray(": BAD 1 NOSUCH ; NOSUCH ?  - undefined word");
        row("tab is a blank") << transport << QByteArrayList{} << QByteArray("3\t4 + .") << QByteArray("3 4 + . 7  ok");
    }
}

void TestBoard::replies()
{
    QFETCH(QString, transport);
    QFETCH(QByteArrayList, before);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, reply);

    Session session;
    QVERIFY2(session.Open(transport), qPrintable(session.board.Failure()));
    for (const QByteArray &first : before) {
        const QByteArray answer = session.wire->Converse(first);
        QVERIFY2(answer.endsWith(" ok"), answer.constData());
    }
    QCOMPARE(session.wire->Converse(line), reply);
    // The board is at its prompt again, with nothing left on its stack.
    QCOMPARE(session.wire->Converse("DEPTH ."), QByteArray("DEPTH . 0  ok"));
}

void TestBoard::hereAddress_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("start");
    QTest::newRow("4410ANS") << "4410ANS" << QByteArray("3C00");
    QTest::newRow("4410Fig") << "4410Fig" << QByteArray("2E00");
    QTest::newRow("6630Fig") << "6630Fig" << QByteArray("B400");
}

void TestBoard::hereAddress()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, start);

    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp"), type), qPrintable(session.board.Failure()));
    QByteArray reply = session.wire->Converse(HereCommand);
    QCOMPARE(reply.left(26), HereCommand + ' ');
    QCOMPARE(HereDigits(reply), start);
    QCOMPARE(reply.mid(30), QByteArray("  ok"));

    // Compiling moves HERE on, still four hexadecimal digits, and BASE is
    // back to decimal afterwards.
    QVERIFY(session.wire->Converse(": FILLER 1 2 3 4 5 6 7 8 9 ;").endsWith(" ok"));
    reply = session.wire->Converse(HereCommand);
    bool ok = false;
    const uint after = HereDigits(reply).toUInt(&ok, 16);
    QVERIFY2(ok, reply.constData());
    QVERIFY(after > start.toUInt(nullptr, 16));
    QCOMPARE(reply.at(30), ' ');
    QCOMPARE(session.wire->Converse("10 ."), QByteArray("10 . 10  ok"));
}

void TestBoard::printedAddressesCanBeUsed()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp")), qPrintable(session.board.Failure()));
    QVERIFY(session.wire->Converse("CREATE BUF 77 C, 88 C,").endsWith(" ok"));
    const QByteArray reply = session.wire->Converse("BASE @ HEX BUF U. BASE !");
    const QByteArray address = reply.mid(25).trimmed().split(' ').value(0);
    QCOMPARE(address.size(), 4);
    QCOMPARE(session.wire->Converse("HEX " + address + " C@ DECIMAL ."), "HEX " + address + " C@ DECIMAL . 77  ok");
    QCOMPARE(session.wire->Converse("99 HEX " + address + " C! DECIMAL BUF C@ ."),
             "99 HEX " + address + " C! DECIMAL BUF C@ . 99  ok");
    // Below the dictionary there is RAM of its own.
    QCOMPARE(session.wire->Converse("1234 $820 ! $820 @ ."), QByteArray("1234 $820 ! $820 @ . 1234  ok"));
}

void TestBoard::dictionaryFillsUp()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp"), QStringLiteral("6630Fig")), qPrintable(session.board.Failure()));
    QByteArray reply;
    for (int i = 0; i < 100 && !reply.contains(ErrorMarker); ++i)
        reply = session.wire->Converse("CREATE BLOCK" + QByteArray::number(i) + " 4000 ALLOT");
    QVERIFY2(reply.endsWith("?  - DICTIONARY FULL"), reply.constData());
    // HERE is still a board address of four digits, near the top.
    const QByteArray digits = HereDigits(session.wire->Converse(HereCommand));
    QVERIFY2(digits.toUInt(nullptr, 16) > 0xF000, digits.constData());
}

void TestBoard::dialects_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("signOn");
    QTest::addColumn<QByteArray>("unknownWord");
    QTest::newRow("4410ANS") << "4410ANS" << QByteArray("KVR4410 ANS Forth") << QByteArray("XYZ ?  - undefined word");
    QTest::newRow("4410Fig") << "4410Fig" << QByteArray("KVR4410 fig-FORTH") << QByteArray("XYZ ?  - NOT FOUND");
    QTest::newRow("6630Fig") << "6630Fig" << QByteArray("KVR6630 fig-FORTH") << QByteArray("XYZ ?  - NOT FOUND");
}

void TestBoard::dialects()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, signOn);
    QFETCH(QByteArray, unknownWord);

    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp"), type), qPrintable(session.board.Failure()));
    QCOMPARE(session.wire->Converse("XYZ"), "XYZ " + unknownWord);
    QCOMPARE(session.wire->Converse("COLD"), QByteArray("COLD "));
    const QByteArray banner = session.wire->ReadLine();
    QVERIFY2(banner.startsWith(signOn), banner.constData());
}

void TestBoard::coldForgetsEverything()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp")), qPrintable(session.board.Failure()));
    QCOMPARE(session.wire->Converse(": FOO 42 ;"), QByteArray(": FOO 42 ;  ok"));
    QCOMPARE(session.wire->Converse("FOO ."), QByteArray("FOO . 42  ok"));
    QCOMPARE(session.wire->Converse("HEX"), QByteArray("HEX  ok"));
    QCOMPARE(session.wire->Converse("COLD"), QByteArray("COLD "));
    QVERIFY(session.wire->ReadLine().startsWith("KVR4410"));
    QCOMPARE(HereDigits(session.wire->Converse(HereCommand)), QByteArray("3C00"));
    QCOMPARE(session.wire->Converse("FOO"), QByteArray("FOO FOO ?  - undefined word"));
    // Defined afresh, so no redefinition; and numbers are decimal again.
    QCOMPARE(session.wire->Converse(": FOO 1 ;"), QByteArray(": FOO 1 ;  ok"));
    QCOMPARE(session.wire->Converse("10 ."), QByteArray("10 . 10  ok"));
}

void TestBoard::startupLine_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArrayList>("lines");
    // fig's ABORT prints the sign-on on a row of its own, within the reply.
    QTest::addColumn<QByteArray>("signOn");
    QTest::newRow("4410ANS") << "4410ANS"
                             << QByteArrayList{"        DECIMAL 21 11 2026 NOW 13 45 10 HRS W! START"} << QByteArray();
    QTest::newRow("4410Fig") << "4410Fig"
                             << QByteArrayList{"        DECIMAL 21 11 2026 NOW 13 45 10 HRS W! IBM ABORT"}
                             << QByteArray("\r\x0BKVR4410 fig-FORTH V2.7  (simulated board)");
    QTest::newRow("6630Fig") << "6630Fig"
                             << QByteArrayList{"$B400 $820 ! $A000 $81E ! $A000 $1400 BLANKS",
                                               "        DECIMAL 21 11 2026 NOW 13 45 10 HRS IBM ABORT"}
                             << QByteArray("\r\x0BKVR6630 fig-FORTH V1.9  (simulated board)");
    QTest::newRow("year first") << "4410ANS" << QByteArrayList{"DECIMAL 2026 11 21 NOW 13 45 10 HRS"} << QByteArray();
}

void TestBoard::startupLine()
{
    QFETCH(QString, type);
    QFETCH(QByteArrayList, lines);
    QFETCH(QByteArray, signOn);

    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp"), type), qPrintable(session.board.Failure()));
    // The PC first sends a lone carriage return.
    QCOMPARE(session.wire->Converse(""), QByteArray("  ok"));
    for (const QByteArray &line : lines)
        QCOMPARE(session.wire->Converse(line), line + ' ' + (line.endsWith("ABORT") ? signOn : QByteArray()) + " ok");
    const QByteArray clock = session.wire->Converse(".CLOCK");
    QVERIFY2(clock.startsWith(".CLOCK 21/11/2026 13:45:1"), clock.constData());
}

void TestBoard::badClockSettingIsAnError()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp")), qPrintable(session.board.Failure()));
    QVERIFY(session.wire->Converse("DECIMAL 32 13 2026 NOW").contains("NOW" + ErrorMarker));
    QVERIFY(session.wire->Converse("25 0 0 HRS").contains("HRS" + ErrorMarker));
}

void TestBoard::interruptSequenceBreaksARunningProgram_data()
{
    QTest::addColumn<QString>("transport");
    QTest::newRow("tcp") << "tcp";
    QTest::newRow("pty") << "pty";
}

void TestBoard::interruptSequenceBreaksARunningProgram()
{
    QFETCH(QString, transport);
    Session session;
    QVERIFY2(session.Open(transport), qPrintable(session.board.Failure()));
    // It prints whole lines before it loops, so counting line ends cannot
    // tell the board is busy.
    const QByteArray spin = ": SPIN CR .\" spinning\" CR BEGIN AGAIN ;";
    QCOMPARE(session.wire->Converse(spin), spin + "  ok");
    session.wire->Send("SPIN\r");
    QCOMPARE(session.wire->ReadLine(), QByteArray("SPIN "));
    QCOMPARE(session.wire->ReadLine(), QByteArray("spinning"));
    QVERIFY(session.wire->ReadLine(300).isNull());   // busy: no reply

    // What the PC sends on F2: Ctrl-C, Ctrl-Q, Escape, blank, ";", CR; then a lone CR.
    session.wire->Send(QByteArray("\x03\x11\x1b ;\r", 6));
    const QByteArray broken = session.wire->ReadLine();
    QVERIFY2(broken.startsWith("SPIN" + ErrorMarker), broken.constData());
    QVERIFY(!session.wire->ReadLine().isNull());   // the reply to " ;"
    QCOMPARE(session.wire->Converse(""), QByteArray("  ok"));
    QCOMPARE(session.wire->Converse("1 2 + ."), QByteArray("1 2 + . 3  ok"));
}

void TestBoard::ctrlCDropsTheTypedLine()
{
    Session session;
    QVERIFY2(session.Open(QStringLiteral("tcp")), qPrintable(session.board.Failure()));
    QCOMPARE(session.wire->Converse(QByteArray("GARBAGE\x03") + "1 1 + ."), QByteArray("GARBAGE1 1 + . 2  ok"));
    // Backspace takes back what was typed; the board rubs it out on screen.
    QCOMPARE(session.wire->Converse("7 9\b8 + ."), QByteArray("7 9\b \b8 + . 15  ok"));
}

QTEST_GUILESS_MAIN(TestBoard)
#include "tst_board.moc"
