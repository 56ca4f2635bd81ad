#include "LinkFixture.h"
#include "link/StartupCommands.h"
#include "link/Terminal.h"
#include <QtTest>

using namespace kvr;
using ByteList = QList<QByteArray>;

class TestLinkPrimitives : public QObject {
    Q_OBJECT

private slots:
    void writeShapes_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("delay4410");
        QTest::addColumn<QString>("delay6630");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("addCR");
        QTest::addColumn<ByteList>("writes");
        QTest::newRow("delay 0: whole text then lone CR")
            << "4410ANS" << "0" << "0" << "2 3 + ." << true << ByteList{"2 3 + .", "\r"};
        QTest::newRow("delay 0 without CR") << "4410ANS" << "0" << "0" << "DUP" << false << ByteList{"DUP"};
        QTest::newRow("delay set: one write per character")
            << "4410ANS" << "3" << "0" << "AB" << true << ByteList{"A", "B", "\r"};
        QTest::newRow("6630 uses the 6630 delay")
            << "6630Fig" << "0" << "2" << "AB" << false << ByteList{"A", "B"};
        QTest::newRow("6630 ignores the 4410 delay")
            << "6630Fig" << "7" << "0" << "AB" << false << ByteList{"AB"};
        QTest::newRow("4410Fig uses the 4410 delay")
            << "4410Fig" << "1" << "0" << "AB" << false << ByteList{"A", "B"};
        QTest::newRow("Terminal uses the 4410 delay")
            << "Terminal" << "0" << "9" << "AB" << false << ByteList{"AB"};
        QTest::newRow("fractional delay is not 0") << "4410ANS" << "0.5" << "0" << "AB" << false
                                                   << ByteList{"A", "B"};
        QTest::newRow("uncalibrated -1 still paces") << "4410ANS" << "-1" << "0" << "AB" << false
                                                     << ByteList{"A", "B"};
        QTest::newRow("empty text with CR") << "4410ANS" << "0" << "0" << "" << true << ByteList{"\r"};
        QTest::newRow("Latin-1 byte survives") << "4410ANS" << "0" << "0" << QString(QChar(0xE9)) << false
                                               << ByteList{"\xE9"};
    }
    void writeShapes()
    {
        QFETCH(QString, type);
        QFETCH(QString, delay4410);
        QFETCH(QString, delay6630);
        QFETCH(QString, text);
        QFETCH(bool, addCR);
        QFETCH(ByteList, writes);
        test::LinkFixture f;
        f.context.settings.computerType = type;
        f.context.settings.delay4410 = delay4410;
        f.context.settings.delay6630 = delay6630;
        f.link.SendText(text, addCR);
        QCOMPARE(f.board.writes, writes);
    }

    void delayPasses_data()
    {
        QTest::addColumn<double>("delay");
        QTest::addColumn<qint64>("lastPass");
        QTest::newRow("1 -> 8") << 1.0 << qint64(8);
        QTest::newRow("2 -> 17") << 2.0 << qint64(17);
        QTest::newRow("2.5 -> 21") << 2.5 << qint64(21);
        QTest::newRow("-1 -> no passes") << -1.0 << qint64(-8);
    }
    void delayPasses()
    {
        QFETCH(double, delay);
        QFETCH(qint64, lastPass);
        QCOMPARE(DelayLastPass(delay), lastPass);
    }

    void nothingSentOnUnusableLink()
    {
        test::LinkFixture f;
        f.board.SetUsable(false);
        f.link.SendText(QStringLiteral("COLD"), true);
        QVERIFY(f.board.writes.isEmpty());
        QCOMPARE(f.link.BytesAvailable(), 0);
    }

    void waitForReply_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("answered");
        QTest::addColumn<bool>("linkDown");
        QTest::addColumn<bool>("closing");
        QTest::newRow("line feed ends it") << QByteArray("2 3 + . 5  ok\r\n") << true << false << false;
        QTest::newRow("NUL ends it") << QByteArray("abc\0", 4) << true << false << false;
        QTest::newRow("form feed (12) ends it") << QByteArray("\x0c") << true << false << false;
        QTest::newRow("bell (7) ends it") << QByteArray("x\x07") << true << false << false;
        QTest::newRow("printable text never ends it") << QByteArray("2 3 + . 5  ok") << false << false << false;
        QTest::newRow("carriage return never ends it") << QByteArray("ok\r\r") << false << false << false;
        QTest::newRow("bytes above 127 do not end it") << QByteArray("\x8a\x8d\xff") << false << false << false;
        QTest::newRow("nothing at all") << QByteArray() << false << false << false;
        QTest::newRow("a link that is down ends it at once") << QByteArray() << false << true << false;
        QTest::newRow("a reply that came before the drop still counts") << QByteArray("ok\r\n") << true << true
                                                                        << false;
        QTest::newRow("closing the program ends it without a word") << QByteArray() << true << false << true;
    }
    void waitForReply()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, answered);
        QFETCH(bool, linkDown);
        QFETCH(bool, closing);
        test::LinkFixture f;
        f.board.Inject(reply);
        f.board.Available(); // the bytes arrive before the link goes down
        f.board.SetUsable(!linkDown);
        f.context.closing = closing;
        const quint32 start = f.clock.ticks;
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts().isEmpty(), answered);
        QCOMPARE(f.link.BytesAvailable(), 0); // what the wait read is consumed
        if (!answered) {
            // Not before the time-out, and not much after it; at once when
            // the link cannot answer.
            QVERIFY(linkDown || f.clock.ticks - start >= 1000);
            QVERIFY(f.clock.ticks - start <= (linkDown ? 3u : 1003u));
            QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
            QCOMPARE(f.prompts.shown.first().caption, QStringLiteral("KVR-PC for Windows"));
        }
        QVERIFY(!f.link.IsWaiting());
    }

    void waitForReplyAcrossWrappedTickCount()
    {
        test::LinkFixture f;
        f.clock.ticks = 0xFFFFFF00u;
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
        QVERIFY(f.clock.ticks < 0x400u);
    }

    void notRespondingText_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("4410ANS") << "4410ANS";
        QTest::newRow("6630Fig") << "6630Fig";
    }
    void notRespondingText()
    {
        QFETCH(QString, type);
        test::LinkFixture f;
        f.context.settings.computerType = type;
        f.link.NotResponding();
        const QString expected =
            "KVR" + type
            + " NOT RESPONDING.  Please Check:\n\n1. power supply\n2. connections to PC\n"
              "3. COM port selection from interactive window options menu.\n"
              "4. Baud rate from interactive window options menu (KVR4410 & KVR6630 default to 9600 baud)\n"
              "5. Timeout delay from interactive window options menu.\n\n"
              "If characters are missing, especially during compilation, increase intercharacter "
              "delay from interactive window options menu.";
        QCOMPARE(f.prompts.MessageTexts(), QStringList{expected});
    }

    void pauseLength_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<int>("minMs");
        QTest::addColumn<int>("maxMs");
        QTest::newRow("0.3 s") << 0.3 << 299 << 303;
        QTest::newRow("1 s") << 1.0 << 999 << 1003;
        QTest::newRow("0 s returns at once") << 0.0 << 0 << 2;
    }
    void pauseLength()
    {
        QFETCH(double, seconds);
        QFETCH(int, minMs);
        QFETCH(int, maxMs);
        test::LinkFixture f;
        f.clock.ticks = 3600000; // 01:00:00
        const quint32 start = f.clock.ticks;
        f.link.Pause(seconds);
        QVERIFY2(int(f.clock.ticks - start) >= minMs, qPrintable(QString::number(f.clock.ticks - start)));
        QVERIFY2(int(f.clock.ticks - start) <= maxMs, qPrintable(QString::number(f.clock.ticks - start)));
    }

    void pauseOverMidnightEnds()
    {
        test::LinkFixture f;
        f.clock.scriptedTicks = {86399900u, 86399950u, 20u};
        f.link.Pause(0.5);
        QVERIFY(f.clock.scriptedTicks.isEmpty());
    }

    void beepUnlessQuiet_data()
    {
        QTest::addColumn<QString>("quiet");
        QTest::addColumn<int>("beeps");
        QTest::newRow("OFF beeps") << "OFF" << 1;
        QTest::newRow("ON is silent") << "ON" << 0;
        QTest::newRow("only three characters count") << "OFFX" << 1;
        QTest::newRow("lower case is not OFF") << "off" << 0;
    }
    void beepUnlessQuiet()
    {
        QFETCH(QString, quiet);
        QFETCH(int, beeps);
        test::LinkFixture f;
        f.context.settings.quiet = quiet;
        f.link.BeepUnlessQuiet();
        QCOMPARE(f.prompts.beeps, beeps);
    }

    void countedBytesStayForRead()
    {
        test::LinkFixture f;
        f.board.Inject("ab");
        QCOMPARE(f.link.BytesAvailable(), 2);
        f.board.Inject("c");
        QCOMPARE(f.link.ReadBytes(), QByteArray("abc"));
        QCOMPARE(f.link.BytesAvailable(), 0);
        f.board.Inject("xyz");
        f.link.ClearInput();
        QCOMPARE(f.link.BytesAvailable(), 0);
        QCOMPARE(Link::BytesToText(QByteArray("\xff\x01", 2)), QString(QChar(0xFF)) + QChar(1));
    }

    void startupCommands_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QStringList>("lines");
        const QDateTime now(QDate(2026, 3, 7), QTime(9, 5, 4));
        const QString blanks(8, QLatin1Char(' '));
        QTest::newRow("4410ANS") << "4410ANS" << now
                                 << QStringList{"", blanks + "DECIMAL 7 3 2026 NOW 9 5 4 HRS W! START"};
        QTest::newRow("4410Fig") << "4410Fig" << now
                                 << QStringList{"", blanks + "DECIMAL 7 3 2026 NOW 9 5 4 HRS W! IBM ABORT"};
        QTest::newRow("6630Fig sets up memory first")
            << "6630Fig" << now
            << QStringList{"", "$B400 $820 ! $A000 $81E ! $A000 $1400 BLANKS",
                           blanks + "DECIMAL 7 3 2026 NOW 9 5 4 HRS IBM ABORT"};
        QTest::newRow("clock before 1984 is not sent")
            << "4410ANS" << QDateTime(QDate(1983, 12, 31), QTime(23, 59, 59))
            << QStringList{"", blanks + "DECIMAL W! START"};
        QTest::newRow("Terminal gets nothing") << "Terminal" << now << QStringList{};
    }
    void startupCommands()
    {
        QFETCH(QString, type);
        QFETCH(QDateTime, now);
        QFETCH(QStringList, lines);
        test::LinkFixture f;
        f.AnswerOk();
        f.context.settings.computerType = type;
        Terminal terminal(f.context, f.link);
        terminal.ShowBytes("old text");
        f.board.Inject("sign-on noise");
        SendStartupCommands(f.link, terminal, now);
        QStringList sent;
        for (const QByteArray &line : f.board.lines)
            sent << QString::fromLatin1(line);
        QCOMPARE(sent, lines);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        QCOMPARE(terminal.Screen().ScreenText().isEmpty(), !lines.isEmpty());
        if (!lines.isEmpty())
            QCOMPARE(f.board.writes.first(), QByteArray("\r")); // the lone CR goes alone
    }

    void startupWakeUpIsPausedAndItsReplyDropped_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("4410ANS") << "4410ANS";
        QTest::newRow("6630Fig") << "6630Fig";
    }
    void startupWakeUpIsPausedAndItsReplyDropped()
    {
        // The board answers the lone carriage return only: a reply still
        // waiting from it must not pass for the answer to the next line.
        QFETCH(QString, type);
        test::LinkFixture f;
        f.context.settings.computerType = type;
        QList<quint32> sentAt;
        f.board.SetResponder([&](const QByteArray &line) {
            sentAt << f.clock.ticks;
            return line.isEmpty() ? QByteArray(" ok\r\n") : QByteArray();
        });
        Terminal terminal(f.context, f.link);
        SendStartupCommands(f.link, terminal, QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)));
        QCOMPARE(sentAt.size(), type == QLatin1String("6630Fig") ? 3 : 2);
        QVERIFY2(sentAt.at(1) - sentAt.at(0) >= 200, qPrintable(QString::number(sentAt.at(1) - sentAt.at(0))));
        QCOMPARE(f.prompts.MessageTexts().size(), sentAt.size() - 1);
        QVERIFY(f.prompts.MessageTexts().first().startsWith("KVR" + type + " NOT RESPONDING."));
    }
};

QTEST_GUILESS_MAIN(TestLinkPrimitives)
#include "tst_link_primitives.moc"
