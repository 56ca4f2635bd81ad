// The link's logic on an in-memory board: the screen model, the
// send-and-await primitives, the start-up line and the terminal.
#include "LinkFixture.h"
#include "TempDir.h"
#include "link/ScreenModel.h"
#include "link/StartupCommands.h"
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;
using ByteList = QList<QByteArray>;

const QString NotResponding = QStringLiteral(
    "KVR4410ANS NOT RESPONDING.  Please Check:\n\n1. power supply\n2. connections to PC\n"
    "3. COM port selection from interactive window options menu.\n"
    "4. Baud rate from interactive window options menu (KVR4410 & KVR6630 default to 9600 baud)\n"
    "5. Timeout delay from interactive window options menu.\n\nIf characters are missing, especially during "
    "compilation, increase intercharacter delay from interactive window options menu.");

class TestLink : public QObject {
    Q_OBJECT

private slots:
    void screen_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        const auto row = [](const char *name, int columns, const QByteArray &bytes, const QStringList &rows, int r,
                            int c) { QTest::newRow(name) << columns << bytes << rows << r << c; };
        row("plain text", 80, "ok", {"ok"}, 0, 2);
        row("CR LF starts the next row", 80, "a\r\nb", {"a", "b"}, 1, 1);
        row("LF alone also goes to column 0", 80, "abc\nd", {"abc", "d"}, 1, 1);
        row("vertical tab acts as LF", 80, "abc\x0b" "d", {"abc", "d"}, 1, 1);
        row("CR overwrites from column 0", 80, "abc\rX", {"Xbc"}, 0, 1);
        row("form feed clears and homes", 80, "abc\r\ndef\x0cZ", {"Z"}, 0, 1);
        row("backspace erases under and after the cursor", 80, "abcd\r\x1c\x1c\x08", {"a"}, 0, 1);
        row("backspace then retype", 80, "ab\x08X", {"aX"}, 0, 2);
        row("backspace over the first character", 80, "a\x08", {""}, 0, 0);
        row("backspace at column 0 does nothing", 80, "ab\r\nc\r\x08", {"ab", "c"}, 1, 0);
        row("code 28 moves right without writing", 80, "ab\r\x1cX", {"aX"}, 0, 2);
        row("code 30 moves up one row", 80, "a\r\nbb\x1eX", {"a X", "bb"}, 0, 3);
        row("bell is not painted", 80, "a\x07" "b", {"ab"}, 0, 2);
        row("other control codes are ignored", 80, "a\x01\x02\x09\x1b\x1d\x1f" "b", {"ab"}, 0, 2);
        row("high bytes are painted as Latin-1", 80, "\xe9\x7f", {QString(QChar(0xE9)) + QChar(0x7F)}, 0, 2);
        row("exactly full row does not wrap yet", 4, "abcd", {"abcd"}, 0, 4);
        row("fifth character wraps to column 0", 4, "abcde", {"abcd", "e"}, 1, 1);
        row("CR LF after a full row gives no empty row", 4, "abcd\r\ne", {"abcd", "e"}, 1, 1);
        row("code 28 wraps like a character", 4, "abcd\x1c" "e", {"abcd", " e"}, 1, 2);
        row("window wider than a line wraps at 400", 1000, QByteArray(401, 'x'), {QString(400, 'x'), "x"}, 1, 1);
    }
    void screen()
    {
        QFETCH(int, columns);
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, rows);
        QFETCH(int, row);
        QFETCH(int, column);
        // Whole, and one byte a read as a slow link delivers it.
        for (const int piece : {int(bytes.size()), 1}) {
            ScreenModel screen(25);
            screen.SetVisibleColumns(columns);
            for (qsizetype at = 0; at < bytes.size(); at += piece)
                screen.Feed(bytes.mid(at, piece));
            QCOMPARE(screen.ScreenText(), rows.join(QLatin1Char('\n')));
            QCOMPARE(screen.Row(), row);
            QCOMPARE(screen.Column(), column);
            for (int r = 0; r < screen.Rows(); ++r)
                QCOMPARE(screen.Line(r).size(), qsizetype(ScreenModel::LineLength));
        }
    }

    void screenScrollsAndCounts()
    {
        ScreenModel screen(3, 2);
        QCOMPARE(screen.Feed("\x07" "1\r\n2\r\n3\x07\x07\r\n4\r\n5\r\n6"), 3);
        QCOMPARE(screen.Row(), 2);
        QCOMPARE(screen.ScreenText(), QStringLiteral("4\n5\n6"));
        // The scroll-back keeps only its limit, oldest dropped first.
        QCOMPARE(screen.ScrollBack().size(), 2);
        QCOMPARE(screen.ScrollBack().at(0).trimmed(), QStringLiteral("2"));
        QCOMPARE(screen.ScrollBack().at(1).trimmed(), QStringLiteral("3"));
        ScreenModel cleared(10, 100);
        cleared.Feed("a\r\nb\x0c");
        QCOMPARE(cleared.ScrollBack().size(), 2);
        QCOMPARE(cleared.ScreenText(), QString());
        cleared.Clear(); // an empty screen adds nothing
        QCOMPARE(cleared.ScrollBack().size(), 2);
        cleared.Feed("ab\x1e" "X"); // up from the top row wraps to the last
        QCOMPARE(cleared.Row(), 9);
        QCOMPARE(cleared.Text(9), QStringLiteral("  X"));
        QCOMPARE(cleared.Text(0), QStringLiteral("ab"));
    }

    void writeShapes_data()
    {
        QTest::addColumn<QString>("type"); // empty: a link that cannot be used
        QTest::addColumn<QStringList>("delays"); // KVR4410, KVR6630
        QTest::addColumn<QString>("text");       // a final CR: sent with one
        QTest::addColumn<ByteList>("writes");
        const auto row = [](const char *name, const char *type, const QStringList &delays, const QString &text,
                            const ByteList &writes) { QTest::newRow(name) << QString(type) << delays << text << writes; };
        row("delay 0: whole text then lone CR", "4410ANS", {"0", "0"}, "2 3 + .\r", {"2 3 + .", "\r"});
        row("delay set: one write per character", "4410ANS", {"3", "0"}, "AB\r", {"A", "B", "\r"});
        row("6630 uses the 6630 delay", "6630Fig", {"0", "2"}, "AB", {"A", "B"});
        row("6630 ignores the 4410 delay", "6630Fig", {"7", "0"}, "AB", {"AB"});
        row("Terminal uses the 4410 delay", "Terminal", {"0", "9"}, "AB", {"AB"});
        row("fractional delay is not 0", "4410ANS", {"0.5", "0"}, "AB", {"A", "B"});
        row("uncalibrated -1 still paces", "4410ANS", {"-1", "0"}, "AB", {"A", "B"});
        row("Latin-1 byte survives", "4410ANS", {"0", "0"}, QString(QChar(0xE9)), {"\xE9"});
        row("nothing on an unusable link", "", {"0", "0"}, "COLD\r", {});
    }
    void writeShapes()
    {
        QFETCH(QString, type);
        QFETCH(QStringList, delays);
        QFETCH(QString, text);
        QFETCH(ByteList, writes);
        test::LinkFixture f;
        f.board.SetUsable(!type.isEmpty());
        f.context.settings.computerType = type.isEmpty() ? QStringLiteral("4410ANS") : type;
        f.context.settings.delay4410 = delays.at(0);
        f.context.settings.delay6630 = delays.at(1);
        const bool addCR = text.endsWith(QLatin1Char('\r'));
        f.link.SendText(addCR ? text.chopped(1) : text, addCR);
        QCOMPARE(f.board.writes, writes);
    }

    void waitForReply_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("answered");
        QTest::addColumn<bool>("linkDown");
        QTest::addColumn<bool>("closing");
        QTest::addColumn<quint32>("start");
        const auto row = [](const char *name, const QByteArray &reply, bool answered, bool down = false,
                            bool closing = false, quint32 start = 1000) {
            QTest::newRow(name) << reply << answered << down << closing << start;
        };
        row("line feed ends it", "2 3 + . 5  ok\r\n", true);
        row("NUL ends it", QByteArray("abc\0", 4), true);
        row("form feed (12) ends it", "\x0c", true);
        row("bell (7) ends it", "x\x07", true);
        row("printable text never ends it", "2 3 + . 5  ok", false);
        row("carriage return never ends it", "ok\r\r", false);
        row("bytes above 127 do not end it", "\x8a\x8d\xff", false);
        row("nothing at all", "", false);
        row("time-out across a wrapped tick count", "", false, false, false, 0xFFFFFF00u);
        row("a link that is down ends it at once", "", false, true);
        row("a reply that came before the drop still counts", "ok\r\n", true, true);
        row("closing the program ends it without a word", "", true, false, true);
    }
    void waitForReply()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, answered);
        QFETCH(bool, linkDown);
        QFETCH(bool, closing);
        QFETCH(quint32, start);
        test::LinkFixture f;
        f.clock.ticks = start;
        f.board.Inject(reply);
        f.board.Available(); // the bytes arrive before the link goes down
        f.board.SetUsable(!linkDown);
        f.context.closing = closing;
        f.link.WaitForReply();
        QCOMPARE(f.prompts.MessageTexts().isEmpty(), answered);
        QCOMPARE(f.link.BytesAvailable(), 0); // what the wait read is consumed
        if (!answered) {
            // Not before the time-out, and not much after it; at once when
            // the link cannot answer.
            QVERIFY(linkDown || f.clock.ticks - start >= 1000);
            QVERIFY(f.clock.ticks - start <= (linkDown ? 3u : 1003u));
            QCOMPARE(f.prompts.MessageTexts().first(), NotResponding);
            QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
            QCOMPARE(f.prompts.shown.first().caption, QStringLiteral("KVR-PC for Windows"));
        }
        QVERIFY(!f.link.IsWaiting());
    }

    void pauseLength()
    {
        const auto spent = [](double seconds, const QList<quint32> &scripted = {}) {
            test::LinkFixture f;
            f.clock.ticks = 3600000; // 01:00:00
            f.clock.scriptedTicks = scripted;
            f.link.Pause(seconds);
            return f.clock.scriptedTicks.isEmpty() ? int(f.clock.ticks - 3600000) : -1;
        };
        QVERIFY(qAbs(spent(0.3) - 301) <= 2);
        QVERIFY(qAbs(spent(1.0) - 1001) <= 2);
        QVERIFY(spent(0.0) <= 2);
        QVERIFY(spent(0.5, {86399900u, 86399950u, 20u}) >= 0); // ends over midnight
    }

    void startupCommands_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QStringList>("lines");
        const QDateTime now(QDate(2026, 3, 7), QTime(9, 5, 4));
        const QString blanks(8, QLatin1Char(' '));
        QTest::newRow("4410ANS") << "4410ANS" << now << QStringList{"", blanks + "DECIMAL 7 3 2026 NOW 9 5 4 HRS W! START"};
        QTest::newRow("4410Fig") << "4410Fig" << now
                                 << QStringList{"", blanks + "DECIMAL 7 3 2026 NOW 9 5 4 HRS W! IBM ABORT"};
        QTest::newRow("6630Fig sets up memory first")
            << "6630Fig" << now
            << QStringList{"", "$B400 $820 ! $A000 $81E ! $A000 $1400 BLANKS",
                           blanks + "DECIMAL 7 3 2026 NOW 9 5 4 HRS IBM ABORT"};
        QTest::newRow("clock before 1984 is not sent") << "4410ANS" << QDateTime(QDate(1983, 12, 31), QTime(23, 59, 59))
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
        f.terminal.ShowBytes("old text");
        f.board.Inject("sign-on noise");
        SendStartupCommands(f.link, f.terminal, now);
        QStringList sent;
        for (const QByteArray &line : f.board.lines)
            sent << QString::fromLatin1(line);
        QCOMPARE(sent, lines);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        QCOMPARE(f.terminal.Screen().ScreenText().isEmpty(), !lines.isEmpty());
        if (!lines.isEmpty())
            QCOMPARE(f.board.writes.first(), QByteArray("\r")); // the lone CR goes alone
    }

    void startupWakeUpIsPausedAndItsReplyDropped()
    {
        // The board answers the lone carriage return only: a reply still
        // waiting from it must not pass for the answer to the next line.
        for (const QString type : {"4410ANS", "6630Fig"}) {
            test::LinkFixture f;
            f.context.settings.computerType = type;
            QList<quint32> sentAt;
            f.board.SetResponder([&](const QByteArray &line) {
                sentAt << f.clock.ticks;
                return line.isEmpty() ? QByteArray(" ok\r\n") : QByteArray();
            });
            SendStartupCommands(f.link, f.terminal, QDateTime(QDate(2026, 1, 2), QTime(3, 4, 5)));
            QCOMPARE(sentAt.size(), type == QLatin1String("6630Fig") ? 3 : 2);
            QVERIFY2(sentAt.at(1) - sentAt.at(0) >= 200, qPrintable(QString::number(sentAt.at(1) - sentAt.at(0))));
            QCOMPARE(f.prompts.MessageTexts().size(), sentAt.size() - 1);
            QVERIFY(f.prompts.MessageTexts().first().startsWith("KVR" + type + " NOT RESPONDING."));
        }
    }

    void keysSentAsTyped_data()
    {
        QTest::addColumn<bool>("capsEmulated");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("sent");
        const int none = Qt::NoModifier, shift = Qt::ShiftModifier, ctrl = Qt::ControlModifier;
        QTest::newRow("tab is never sent") << false << int(Qt::Key_Tab) << none << "\t" << QByteArray();
        QTest::newRow("typed text as the keyboard gives it") << false << int(Qt::Key_D) << shift << "D" << QByteArray("D");
        QTest::newRow("ctrl+w is character 23") << false << int(Qt::Key_W) << ctrl << "" << QByteArray("\x17");
        QTest::newRow("ctrl+c is character 3") << false << int(Qt::Key_C) << ctrl << "\x03" << QByteArray("\x03");
        QTest::newRow("ctrl+[ is escape") << false << int(Qt::Key_BracketLeft) << ctrl << "" << QByteArray("\x1b");
        QTest::newRow("caps lock gives capitals") << true << int(Qt::Key_D) << none << "d" << QByteArray("D");
        QTest::newRow("shift under caps lock gives small") << true << int(Qt::Key_D) << shift << "D" << QByteArray("d");
        QTest::newRow("caps lock leaves digits") << true << int(Qt::Key_2) << none << "2" << QByteArray("2");
        QTest::newRow("keyboard's own lock not doubled") << false << int(Qt::Key_D) << none << "D" << QByteArray("D");
    }
    void keysSentAsTyped()
    {
        QFETCH(bool, capsEmulated);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QString, text);
        QFETCH(QByteArray, sent);
        test::LinkFixture f;
        f.context.settings.capsLock = QStringLiteral("ON");
        f.terminal.SetCapsLockEmulated(capsEmulated);
        f.terminal.KeyPressed(key, Qt::KeyboardModifiers(modifiers), text);
        QCOMPARE(f.board.sent, sent);
        // One SendText per key, nothing painted locally.
        QCOMPARE(f.board.writes.size(), sent.size());
        QCOMPARE(f.terminal.Screen().ScreenText(), QString());
    }

    void pasteSendsLinesAndWaitsForEach()
    {
        test::LinkFixture f;
        f.AnswerOk();
        f.terminal.Paste(QStringLiteral(": SQ\tDUP * ;\r\n5 SQ .\n"));
        QCOMPARE(f.board.lines, (ByteList{": SQ DUP * ;", "5 SQ ."}));
        QCOMPARE(f.terminal.Screen().Text(1), QStringLiteral("5 SQ . ok"));
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        // A board that never answers stops the paste after the first line.
        f.board.SetResponder([](const QByteArray &) { return QByteArray(); });
        f.board.lines.clear();
        f.terminal.Paste(QStringLiteral("1\n2\n3"));
        QCOMPARE(f.board.lines, ByteList{"1"});
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
    }

    void commandKeys()
    {
        test::LinkFixture f;
        f.terminal.Zap();
        QCOMPARE(f.board.lines, ByteList{"COLD"});
        // F2 halts a compile and interrupts the board; unanswered, it says so.
        f.terminal.SendInterrupt();
        QCOMPARE(f.prompts.MessageTexts(), (QStringList{NotResponding, NotResponding}));
        f.AnswerOk();
        f.prompts.Clear();
        f.board.writes.clear();
        QVERIFY(f.terminal.KeyDown(Qt::Key_F2, false));
        QCOMPARE(f.context.compileOutcome, CompileOutcome::HaltRequested);
        QCOMPARE(f.board.writes, (ByteList{QByteArray("\x03\x11\x1b ;"), "\r", "\r"}));
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
    }

    void endlessStreamStillReturns()
    {
        // A board printing in a loop as fast as the link allows: each tick
        // paints and returns, so the event loop (and quitting) goes on.
        struct EndlessBoard : MemoryTransport {
            void Poll() override { MemoryTransport::Poll(), m_received += QByteArray(8192, 'x') + "\r\n"; }
        } board;
        test::LinkFixture f;
        f.link.SetTransport(&board);
        f.terminal.Tick();
        QVERIFY(board.polls > 1);
        QVERIFY(f.terminal.Screen().ScreenText().contains(QString(80, QLatin1Char('x'))));
    }

    void showReceivedLeavesAnAwaitedReplyAlone()
    {
        // The reply arrives and a timer tick runs while WaitForReply waits:
        // the tick must leave the reply to the waiter.
        struct TickingBoard : MemoryTransport {
            std::function<void()> tick;
            void Poll() override
            {
                MemoryTransport::Poll();
                if (polls == 3) {
                    m_received += "5  ok\r\n";
                    tick();
                }
            }
        } board;
        test::LinkFixture f;
        f.link.SetTransport(&board);
        board.tick = [&] { f.terminal.Tick(); };
        f.link.WaitForReply();
        QVERIFY(board.polls > 3);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        QCOMPARE(f.terminal.Screen().ScreenText(), QString());
    }

    void captureOnAFullDiskGoesOn()
    {
        test::LinkFixture f;
        const QString path = f.StartCapture(QStringLiteral("FULL.CAP"));
        QVERIFY(f.terminal.IsCapturing());
        f.prompts.Clear();
        {
            test::FileSizeLimit full(4096);
            for (int i = 0; i < 20; ++i) {
                f.board.Inject(QByteArray(1000, 'x') + "\r\n");
                f.terminal.ShowReceived();
            }
            // Painting goes on: 1000 characters are 12 rows of 80 and one of 40.
            QCOMPARE(f.terminal.Screen().Text(f.terminal.Screen().Row() - 1), QString(40, QLatin1Char('x')));
            // Write errors are not reported; the capture stops as usual and
            // keeps what fitted.
            QCOMPARE(f.prompts.MessageTexts(), QStringList());
            f.prompts.answers.enqueue(PromptAnswer::No);
            f.terminal.ToggleCapture();
            QVERIFY(!f.terminal.IsCapturing());
            QCOMPARE(f.prompts.MessageTexts().size(), 1);
        }
        const QByteArray kept = test::ReadAll(path);
        QVERIFY2(kept.size() > 0 && kept.size() <= 4096, qPrintable(QString::number(kept.size())));
        QVERIFY(kept.startsWith(QByteArray(1000, 'x') + "\r\n"));
    }

    void linkDropsMidCapture()
    {
        test::LinkFixture f;
        const QString path = f.StartCapture(QStringLiteral("DROP.CAP"));
        f.board.Inject("before\r\n");
        f.terminal.ShowReceived();
        f.board.Inject("lost");
        f.board.SetUsable(false);
        for (int i = 0; i < 10; ++i)
            f.terminal.Tick();
        // The screen and the indicator say the link is down, for as long as
        // it is; each key that cannot go out beeps once.
        f.terminal.SetLinkState(QStringLiteral("peer closed"));
        for (int i = 0; i < Terminal::SerialErrorTicks; ++i)
            f.terminal.Tick();
        QVERIFY(f.terminal.SerialErrorShown());
        f.prompts.beeps = 0;
        f.terminal.KeyTyped(QStringLiteral("2"));
        QCOMPARE(f.prompts.beeps, 1);
        f.terminal.KeyTyped(QStringLiteral("3"));
        QCOMPARE(f.prompts.beeps, 2);
        QVERIFY(f.terminal.IsCapturing());
        f.terminal.SetLinkState(QString());
        QVERIFY(!f.terminal.SerialErrorShown());
        f.prompts.answers.enqueue(PromptAnswer::Yes);
        f.terminal.ToggleCapture();
        QCOMPARE(test::ReadAll(path), QByteArray("before\r\n"));
        QCOMPARE(f.terminal.Screen().Text(0), QStringLiteral("before"));
        QCOMPARE(f.terminal.Screen().Text(1), QStringLiteral("[link down: peer closed]"));
        QCOMPARE(f.terminal.Screen().Text(2), QStringLiteral("[link back]"));
    }
};

QTEST_GUILESS_MAIN(TestLink)
#include "tst_link.moc"
