#include "LinkFixture.h"
#include "TempDir.h"
#include "link/Terminal.h"
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;

class TestTerminal : public QObject {
    Q_OBJECT

private slots:
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
        Terminal terminal(f.context, f.link);
        terminal.SetCapsLockEmulated(capsEmulated);
        terminal.KeyPressed(key, Qt::KeyboardModifiers(modifiers), text);
        QCOMPARE(f.board.sent, sent);
        // One SendText per key, nothing painted locally.
        QCOMPARE(f.board.writes.size(), sent.size());
        QCOMPARE(terminal.Screen().ScreenText(), QString());
    }

    void upAndDownRecallLines()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        terminal.KeyTyped(QStringLiteral("1 2 +\r"));
        terminal.KeyTyped(QStringLiteral("WORDS\r"));
        terminal.KeyTyped(QStringLiteral("DU"));
        f.board.sent.clear();
        terminal.KeyPressed(Qt::Key_Up, Qt::NoModifier, QString());
        QCOMPARE(f.board.sent, QByteArray("\b\bWORDS"));
        f.board.sent.clear();
        terminal.KeyPressed(Qt::Key_Up, Qt::NoModifier, QString());
        terminal.KeyPressed(Qt::Key_Up, Qt::NoModifier, QString()); // nothing older
        QCOMPARE(f.board.sent, QByteArray("\b\b\b\b\b1 2 +"));
        f.board.sent.clear();
        terminal.KeyPressed(Qt::Key_Down, Qt::NoModifier, QString());
        terminal.KeyPressed(Qt::Key_Down, Qt::NoModifier, QString());
        terminal.KeyPressed(Qt::Key_Down, Qt::NoModifier, QString()); // nothing newer
        QCOMPARE(f.board.sent, QByteArray("\b\b\b\b\bWORDS\b\b\b\b\b"));
        for (int i = 0; i < 120; ++i)
            terminal.KeyTyped(QStringLiteral("%1\r").arg(i));
        QCOMPARE(terminal.History().Lines().size(), LineHistory::Capacity);
        QCOMPARE(terminal.History().Lines().first(), QStringLiteral("20"));
    }

    void ctrlSpaceCompletesTheWordBeingTyped()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QString seen;
        terminal.SetCompleter([&](const QString &line) {
            seen = line;
            return line.endsWith("SQ") ? QStringLiteral("UARE ") : QString();
        });
        terminal.KeyTyped(QStringLiteral("5 SQX\b"));
        f.board.sent.clear();
        QVERIFY(terminal.KeyPressed(Qt::Key_Space, Qt::ControlModifier, QStringLiteral(" ")));
        QCOMPARE(seen, QStringLiteral("5 SQ"));
        QCOMPARE(f.board.sent, QByteArray("UARE "));
        terminal.KeyPressed(Qt::Key_Space, Qt::ControlModifier, QStringLiteral(" ")); // nothing to add: a beep
        QCOMPARE(f.board.sent, QByteArray("UARE "));
        QCOMPARE(f.prompts.beeps, 1);
    }

    void pasteSendsLinesAndWaitsForEach()
    {
        test::LinkFixture f;
        f.AnswerOk();
        Terminal terminal(f.context, f.link);
        terminal.Paste(QStringLiteral(": SQ\tDUP * ;\r\n5 SQ .\n"));
        QCOMPARE(f.board.lines, (QList<QByteArray>{": SQ DUP * ;", "5 SQ ."}));
        QCOMPARE(terminal.Screen().Text(1), QStringLiteral("5 SQ . ok"));
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        // A board that never answers stops the paste after the first line.
        f.board.SetResponder([](const QByteArray &) { return QByteArray(); });
        f.board.lines.clear();
        terminal.Paste(QStringLiteral("1\n2\n3"));
        QCOMPARE(f.board.lines, QList<QByteArray>{"1"});
        QCOMPARE(f.prompts.MessageTexts().size(), 1);
    }

    void capsLockToggleIsSaved()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QSignalSpy written(&f.context, &AppContext::SettingsWritten);
        QVERIFY(terminal.CapsLockOn());
        terminal.ToggleCapsLock();
        QCOMPARE(f.context.settings.capsLock, QStringLiteral("OFF"));
        terminal.ToggleCapsLock();
        QCOMPARE(f.context.settings.capsLock, QStringLiteral("ON"));
        QCOMPARE(written.size(), 2);
    }

    void f2HaltsAndInterrupts()
    {
        test::LinkFixture f;
        f.AnswerOk();
        Terminal terminal(f.context, f.link);
        QVERIFY(terminal.KeyDown(Qt::Key_F2, false));
        QCOMPARE(f.context.compileOutcome, CompileOutcome::HaltRequested);
        QCOMPARE(f.board.writes, (QList<QByteArray>{QByteArray("\x03\x11\x1b ;"), "\r", "\r"}));
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
    }

    void interruptUnansweredSaysNotResponding()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        terminal.SendInterrupt();
        QCOMPARE(f.prompts.MessageTexts().size(), 2);
        QVERIFY(f.prompts.MessageTexts().first().startsWith(QStringLiteral("KVR4410ANS NOT RESPONDING.")));
    }

    void otherKeys()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QSignalSpy help(&terminal, &Terminal::HelpRequested);
        QSignalSpy focus(&terminal, &Terminal::FocusEditorRequested);
        QVERIFY(terminal.KeyDown(Qt::Key_F1, false));
        QVERIFY(terminal.KeyDown(Qt::Key_Tab, false));
        QVERIFY(terminal.KeyDown(Qt::Key_Tab, true));
        QVERIFY(!terminal.KeyDown(Qt::Key_A, false));
        QCOMPARE(help.size(), 1);
        QCOMPARE(focus.size(), 1);
        QVERIFY(f.board.writes.isEmpty());
    }

    void zapSendsCold()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        terminal.Zap();
        QCOMPARE(f.board.lines, QList<QByteArray>{"COLD"});
    }

    void showReceivedPaintsAndBeeps()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QSignalSpy changed(&terminal, &Terminal::ScreenChanged);
        f.board.Inject("2 3 + . 5  ok\r\n\x07");
        terminal.ShowReceived();
        QCOMPARE(terminal.Screen().Text(0), QStringLiteral("2 3 + . 5  ok"));
        QCOMPARE(f.prompts.beeps, 1);
        QVERIFY(!changed.isEmpty());
        f.context.settings.quiet = QStringLiteral("ON");
        f.board.Inject("\x07");
        terminal.ShowReceived();
        QCOMPARE(f.prompts.beeps, 1);
    }

    void endlessStreamStillReturns()
    {
        // A board printing in a loop as fast as the link allows: each tick
        // paints and returns, so the event loop (and quitting) goes on.
        struct EndlessBoard : MemoryTransport {
            void Poll() override
            {
                MemoryTransport::Poll();
                m_received += QByteArray(8192, 'x') + "\r\n";
            }
        } board;
        test::LinkFixture f;
        f.link.SetTransport(&board);
        Terminal terminal(f.context, f.link);
        terminal.Tick();
        QVERIFY(board.polls > 1);
        QVERIFY(terminal.Screen().ScreenText().contains(QString(80, QLatin1Char('x'))));
    }

    void timerOffLeavesBytesToTheOtherReader()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QSignalSpy timer(&terminal, &Terminal::InputTimerChanged);
        terminal.SetInputTimerEnabled(false);
        QCOMPARE(timer.size(), 1);
        f.board.Inject("reply\r\n");
        terminal.Tick();
        QCOMPARE(terminal.Screen().ScreenText(), QString());
        QCOMPARE(f.link.ReadBytes(), QByteArray("reply\r\n"));
    }

    void showReceivedLeavesAnAwaitedReplyAlone()
    {
        // The reply arrives and a timer tick runs while WaitForReply waits:
        // the tick must leave the reply to the waiter.
        test::LinkFixture f;
        struct TickingClock : TestClock {
            std::function<void()> atThirdReading;
            quint32 TickCount() override
            {
                if (readings == 3 && atThirdReading)
                    atThirdReading();
                return TestClock::TickCount();
            }
        } clock;
        clock.stepPerReading = 1;
        AppContext context(Paths(f.dir.path()), f.prompts, clock);
        context.settings.timeout = QStringLiteral("1000");
        Link link(context);
        link.SetTransport(&f.board);
        Terminal terminal(context, link);
        clock.atThirdReading = [&] {
            f.board.Inject("5  ok\r\n");
            terminal.Tick();
        };
        link.WaitForReply();
        QVERIFY(clock.readings > 3);
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        QCOMPARE(terminal.Screen().ScreenText(), QString());
    }

    void cursorBlinksEverySixthTick()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QSignalSpy blinked(&terminal, &Terminal::CursorBlinked);
        for (int i = 0; i < 5; ++i)
            terminal.Tick();
        QCOMPARE(blinked.size(), 0);
        terminal.Tick();
        QCOMPARE(blinked.size(), 1);
        QVERIFY(terminal.CursorShown());
        for (int i = 0; i < 6; ++i)
            terminal.Tick();
        QVERIFY(!terminal.CursorShown());
    }

    void serialErrorIndicatorCountsDown()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        terminal.ShowSerialError();
        for (int i = 1; i < Terminal::SerialErrorTicks; ++i)
            terminal.Tick();
        QVERIFY(terminal.SerialErrorShown());
        terminal.Tick();
        QVERIFY(!terminal.SerialErrorShown());
    }

    void captureRoundTrip_data()
    {
        QTest::addColumn<PromptAnswer>("display");
        QTest::newRow("display it") << PromptAnswer::Yes;
        QTest::newRow("don't display") << PromptAnswer::No;
    }
    void captureRoundTrip()
    {
        QFETCH(PromptAnswer, display);
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        QSignalSpy open(&terminal, &Terminal::OpenInEditor);
        const QString path = f.dir.filePath(QStringLiteral("RUN.CAP"));
        test::WriteAll(path, "earlier\r\n");
        f.prompts.fileNames.enqueue(path);
        terminal.ToggleCapture();
        QVERIFY(terminal.IsCapturing());
        QCOMPARE(f.prompts.shown.at(0).kind, QStringLiteral("save"));
        QCOMPARE(f.prompts.shown.at(0).caption, QStringLiteral("Capture to file"));
        QCOMPARE(f.prompts.shown.at(0).text, QStringLiteral("Capture files (*.cap);;All files (*.*)"));
        QCOMPARE(f.prompts.shown.at(0).items.first(), QDir::current().filePath(QStringLiteral("TEMP.CAP")));
        QCOMPARE(f.prompts.MessageTexts(),
                 QStringList{"Now capturing input and appending it to end of file " + path});
        QCOMPARE(f.context.settings.captureToDisk, path);

        f.board.Inject(QByteArray("\x0c" "bytes \xff\x07\r\n", 11));
        terminal.ShowReceived();
        f.prompts.answers.enqueue(display);
        terminal.ToggleCapture();
        QVERIFY(!terminal.IsCapturing());
        QCOMPARE(f.prompts.shown.last().text,
                 "Stopped capturing to file " + path + ".\nDo you want to display it?");
        QCOMPARE(f.prompts.shown.last().buttons, PromptButtons::YesNo);
        QCOMPARE(test::ReadAll(path), QByteArray("earlier\r\n\x0c" "bytes \xff\x07\r\n", 20));
        QCOMPARE(open.size(), display == PromptAnswer::Yes ? 1 : 0);
        if (!open.isEmpty())
            QCOMPARE(open.first().first().toString(), path);
    }

    void captureCancelledOrUnopenable()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        terminal.ToggleCapture(); // dialog cancelled
        QVERIFY(!terminal.IsCapturing());
        QCOMPARE(f.prompts.MessageTexts(), QStringList());
        const QString path = f.dir.filePath(QStringLiteral("no/such/folder/X.CAP"));
        f.prompts.fileNames.enqueue(path);
        terminal.ToggleCapture();
        QVERIFY(!terminal.IsCapturing());
        QCOMPARE(f.prompts.MessageTexts(), QStringList{path + "\nCan't open file (No such file or directory)"});
        QCOMPARE(f.context.settings.captureToDisk, NotUsed);
    }

    void garbageNeverBreaksTheScreen_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QByteArray random(200000, Qt::Uninitialized);
        quint32 seed = 12345;
        for (char &c : random) {
            seed = seed * 1103515245u + 12345u;
            c = char(seed >> 16);
        }
        QTest::newRow("random bytes") << random;
        QTest::newRow("NUL bytes") << QByteArray(100000, '\0');
        QTest::newRow("only cursor moves") << QByteArray(50000, '\x1e') + QByteArray(50000, '\x1c');
        QTest::newRow("backspaces and form feeds") << QByteArray("x\x08\x08\x0c\x08", 5).repeated(10000);
    }
    void garbageNeverBreaksTheScreen()
    {
        QFETCH(QByteArray, stream);
        test::LinkFixture f;
        f.context.settings.quiet = QStringLiteral("ON");
        Terminal terminal(f.context, f.link);
        f.board.Inject(stream);
        terminal.ShowReceived();
        const ScreenModel &screen = terminal.Screen();
        QVERIFY(screen.Row() >= 0 && screen.Row() < screen.Rows());
        QVERIFY(screen.Column() >= 0 && screen.Column() <= ScreenModel::LineLength);
        for (int r = 0; r < screen.Rows(); ++r)
            QCOMPARE(screen.Line(r).size(), qsizetype(ScreenModel::LineLength));
        QCOMPARE(f.link.BytesAvailable(), 0);
        // Still a working terminal afterwards.
        f.board.Inject("\x0cok");
        terminal.ShowReceived();
        QCOMPARE(screen.ScreenText(), QStringLiteral("ok"));
    }

    void captureOnAFullDiskGoesOn()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        const QString path = f.dir.filePath(QStringLiteral("FULL.CAP"));
        f.prompts.fileNames.enqueue(path);
        terminal.ToggleCapture();
        QVERIFY(terminal.IsCapturing());
        f.prompts.Clear();
        {
            test::FileSizeLimit full(4096);
            for (int i = 0; i < 20; ++i) {
                f.board.Inject(QByteArray(1000, 'x') + "\r\n");
                terminal.ShowReceived();
            }
            // Painting goes on: 1000 characters are 12 rows of 80 and one of 40.
            QCOMPARE(terminal.Screen().Text(terminal.Screen().Row() - 1), QString(40, QLatin1Char('x')));
            // Write errors are not reported; the capture stops as usual and
            // keeps what fitted.
            QCOMPARE(f.prompts.MessageTexts(), QStringList());
            f.prompts.answers.enqueue(PromptAnswer::No);
            terminal.ToggleCapture();
            QVERIFY(!terminal.IsCapturing());
            QCOMPARE(f.prompts.MessageTexts().size(), 1);
        }
        const QByteArray kept = test::ReadAll(path);
        QVERIFY2(kept.size() > 0 && kept.size() <= 4096, qPrintable(QString::number(kept.size())));
        QVERIFY(kept.startsWith(QByteArray(1000, 'x') + "\r\n"));
    }

    void linkDropsMidCapture()
    {
        test::LinkFixture f;
        Terminal terminal(f.context, f.link);
        const QString path = f.dir.filePath(QStringLiteral("DROP.CAP"));
        f.prompts.fileNames.enqueue(path);
        terminal.ToggleCapture();
        f.board.Inject("before\r\n");
        terminal.ShowReceived();
        f.board.Inject("lost");
        f.board.SetUsable(false);
        for (int i = 0; i < 10; ++i)
            terminal.Tick();
        // The screen and the indicator say the link is down, for as long as
        // it is; a key that cannot go out beeps.
        terminal.SetLinkState(QStringLiteral("peer closed"));
        for (int i = 0; i < Terminal::SerialErrorTicks; ++i)
            terminal.Tick();
        QVERIFY(terminal.SerialErrorShown());
        f.prompts.beeps = 0;
        terminal.KeyTyped(QStringLiteral("2"));
        QCOMPARE(f.prompts.beeps, 1);
        QVERIFY(terminal.IsCapturing());
        terminal.SetLinkState(QString());
        QVERIFY(!terminal.SerialErrorShown());
        f.prompts.answers.enqueue(PromptAnswer::Yes);
        terminal.ToggleCapture();
        QCOMPARE(test::ReadAll(path), QByteArray("before\r\n"));
        QCOMPARE(terminal.Screen().Text(0), QStringLiteral("before"));
        QCOMPARE(terminal.Screen().Text(1), QStringLiteral("[link down: peer closed]"));
        QCOMPARE(terminal.Screen().Text(2), QStringLiteral("[link back]"));
    }
};

QTEST_GUILESS_MAIN(TestTerminal)
#include "tst_terminal.moc"
