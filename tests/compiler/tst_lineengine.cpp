// The line engine driven through whole compile runs on the in-memory board.
#include "CompileFixture.h"
#include "link/LinkController.h"
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestLineEngine : public QObject {
    Q_OBJECT
private slots:
    void SendsLinesAndFinishes();
    void FinishedAddress_data();
    void FinishedAddress();
    void BoardProgramKeepsEndAddress();
    void Failures_data();
    void Failures();
    void LineLengthLimit_data();
    void LineLengthLimit();
    void CommentsAndTabs();
    void IncludeOnceAndNesting();
    void HundredAndFirstIncludeIgnored();
    void IncludeNotFound();
    void IncludeWithBackslashFolder();
    void TopLevelWithoutFolder();
    void PcLinesInsideSkippedBranch();
    void ConditionalBlockSpansFiles();
    void QuickCompileCompactsLines();
    void QuickLineSwitchesSettings();
    void NotUniqueRepeatedAfterTimeout();
    void HaltWithF2();
    void QuietReceiveAndProgress();
    void ShownReceivePaintsTraffic();
    void GarbageFromBoardAndFile();
    void AwkwardIncludes_data();
    void AwkwardIncludes();
    void DeepIncludeNesting();
    void BoardGoneMidCompile_data();
    void BoardGoneMidCompile();
    void FloodWithoutLineEnd();
};

void TestLineEngine::SendsLinesAndFinishes()
{
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {": SQ DUP * ;", "", "   ", "5 SQ ."});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{": SQ DUP * ;", "5 SQ ."}));
    QCOMPARE(f.transport.lines.last(), QByteArray("BASE @ HEX HERE U. BASE !"));
    QCOMPARE(f.report->Lines(), QStringList{ShortenPath(main) + " - FINISHED at 1A2B"});
    QCOMPARE(f.driver->State().endOfProgramAddress, QStringLiteral("1A2B"));
    QCOMPARE(f.context->compileOutcome, CompileOutcome::Running);
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
    QCOMPARE(f.context->busyState, BusyState::Idle);
    QVERIFY(f.driver->State().topLevelFile.isEmpty());
    QCOMPARE(f.terminal.timerStates, (QList<bool>{false, true}));
    // Each line is the text and one carriage return, nothing else.
    QVERIFY(f.transport.sent.startsWith(": SQ DUP * ;\r5 SQ .\r"));
    QCOMPARE(f.prompts.beeps, 2); // the report line and the closing beep
}

void TestLineEngine::FinishedAddress_data()
{
    QTest::addColumn<QByteArray>("here"); // null: no answer
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("address");
    QTest::addColumn<int>("runEnd");
    const int finished = int(RunEnd::Finished);
    const int unconfirmed = int(RunEnd::EndUnconfirmed);
    QTest::newRow("four digits") << QByteArray("8F00") << "8F00" << "8F00" << finished;
    QTest::newRow("three digits show what follows") << QByteArray("12A") << "12A" << "12A " << finished;
    QTest::newRow("two digits") << QByteArray("C0") << "C0" << "C0  " << finished;
    QTest::newRow("one digit") << QByteArray("7") << "7  o" << "7  o" << finished;
    QTest::newRow("noise is not an address") << QByteArray("CHGI") << "CHGI" << "CHGI" << unconfirmed;
    QTest::newRow("no answer") << QByteArray() << "" << "" << unconfirmed;
}

void TestLineEngine::FinishedAddress()
{
    QFETCH(QByteArray, here);
    QFETCH(QString, reported);
    QFETCH(QString, address);
    QFETCH(int, runEnd);
    CompileFixture f;
    f.board.here = here;
    if (here.isNull())
        f.board.silent.append("BASE @ HEX HERE U. BASE !");
    const QString main = f.Write("MAIN.KVR", {"1 DROP"});
    f.driver->CompileFile(main);
    QCOMPARE(f.report->LastLine(), (ShortenPath(main) + " - FINISHED at " + reported).trimmed());
    QCOMPARE(f.driver->State().endOfProgramAddress, address);
    QCOMPARE(int(f.driver->State().runEnd), runEnd);
}

void TestLineEngine::BoardProgramKeepsEndAddress()
{
    CompileFixture f;
    f.driver->State().endOfProgramAddress = QStringLiteral("4000");
    const QString prog = f.Write("PROGINT.KVR", {"1 DROP"});
    f.driver->CompileFile(prog);
    QCOMPARE(f.report->LastLine(), ShortenPath(prog) + " - FINISHED at 1A2B");
    QCOMPARE(f.driver->State().endOfProgramAddress, QStringLiteral("4000"));
}

void TestLineEngine::Failures_data()
{
    QTest::addColumn<QStringList>("source");
    QTest::addColumn<QByteArray>("reply");       // reply to the line "X"
    QTest::addColumn<QString>("reportTail");     // after the prefix of line 2
    QTest::addColumn<int>("outcome");
    QTest::addColumn<int>("runEnd");
    QTest::addColumn<QStringList>("sent");

    const QStringList source = {"1 DROP", "X", "2 DROP"};
    QTest::newRow("board error stops with word and message")
        << source << QByteArray("X X ?  - undefined word\r\n") << ": X ?  - undefined word" << 1
        << int(RunEnd::BoardError) << QStringList{"1 DROP", "X"};
    QTest::newRow("error word found by looking back")
        << source << QByteArray("1 2 FOO BAR ?  - not found\r\n") << ": BAR ?  - not found" << 1
        << int(RunEnd::BoardError) << QStringList{"1 DROP", "X"};
    QTest::newRow("error word at the start of the reply")
        << source << QByteArray("BAR ?  - not found\r\n") << ": BAR ?  - not found" << 1
        << int(RunEnd::BoardError) << QStringList{"1 DROP", "X"};
    QTest::newRow("look-back limited to 31 characters")
        << source << QByteArray("A ") + QByteArray(40, 'W') + " ?  - msg\r\n"
        << ": " + QString(31, 'W') + " ?  - msg" << 1 << int(RunEnd::BoardError) << QStringList{"1 DROP", "X"};
    QTest::newRow("redefinition warns and goes on")
        << source << QByteArray(": X ; X NOT UNIQUE  ok\r\n") << ": X NOT UNIQUE" << 0 << int(RunEnd::Finished)
        << QStringList{"1 DROP", "X", "2 DROP"};
    QTest::newRow("redefined word at the start of the reply")
        << source << QByteArray("DUP NOT UNIQUE ok\r\n") << ": DUP NOT UNIQUE" << 0 << int(RunEnd::Finished)
        << QStringList{"1 DROP", "X", "2 DROP"};
    QTest::newRow("marker needs two blanks")
        << source << QByteArray("X X ? - odd\r\n") << "" << 0 << int(RunEnd::Finished)
        << QStringList{"1 DROP", "X", "2 DROP"};
    QTest::newRow("no reply: not responding")
        << source << QByteArray() << "" << 2 << int(RunEnd::NotResponding) << QStringList{"1 DROP", "X"};
    QTest::newRow("reply without line feed: not responding")
        << source << QByteArray("X  ok\r") << "" << 2 << int(RunEnd::NotResponding) << QStringList{"1 DROP", "X"};
    QTest::newRow("out-of-order directive")
        << QStringList{"1 DROP", "#ENDIF", "2 DROP"} << QByteArray() << ": CONDITIONAL COMPILATION ERROR" << 1
        << int(RunEnd::ConditionalError) << QStringList{"1 DROP"};
    QTest::newRow("second #IF before #ENDIF")
        << QStringList{"#IF A", "#IF B", "2 DROP"} << QByteArray() << ": CONDITIONAL COMPILATION ERROR" << 1
        << int(RunEnd::ConditionalError) << QStringList{};
}

void TestLineEngine::Failures()
{
    QFETCH(QStringList, source);
    QFETCH(QByteArray, reply);
    QFETCH(QString, reportTail);
    QFETCH(int, outcome);
    QFETCH(int, runEnd);
    QFETCH(QStringList, sent);

    CompileFixture f;
    if (reply.isEmpty())
        f.board.silent.append("X");
    else
        f.board.replies.insert("X", reply);
    const QString main = f.Write("MAIN.KVR", source);
    f.driver->CompileFile(main);

    QCOMPARE(f.Sent(), sent);
    QCOMPARE(int(f.context->compileOutcome), outcome);
    QCOMPARE(int(f.driver->State().runEnd), runEnd);
    QVERIFY(f.driver->State().topLevelFile.isEmpty());
    const QStringList lines = f.report->Lines();
    if (!reportTail.isEmpty())
        QVERIFY2(lines.contains(f.Prefix(main, 2) + reportTail), qPrintable(lines.join('\n')));
    if (runEnd == int(RunEnd::NotResponding)) {
        QCOMPARE(lines.last(), QStringLiteral("KVR4410 NOT RESPONDING"));
        QCOMPARE(f.prompts.MessageTexts(), QStringList{Link::NotRespondingText("4410ANS")});
        QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
    } else {
        QVERIFY(f.prompts.shown.isEmpty());
    }
    if (runEnd != int(RunEnd::Finished))
        QVERIFY(!f.transport.lines.contains("BASE @ HEX HERE U. BASE !"));
}

void TestLineEngine::LineLengthLimit_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("80 characters") << QString(78, 'A') + " ." << true;
    QTest::newRow("81 characters") << QString(79, 'A') + " ." << false;
    QTest::newRow("81-character comment") << "\\ " + QString(79, 'C') << false;
    QTest::newRow("trailing blanks do not count") << QString(80, 'A') + "     " << true;
    QTest::newRow("word after 5000 blanks") << QString(5000, ' ') + "W" << false;
}

void TestLineEngine::LineLengthLimit()
{
    QFETCH(QString, line);
    QFETCH(bool, accepted);
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {"1 DROP", line, "2 DROP"});
    f.editor.windows.insert(1, {main, {}, 0, 0});
    f.driver->CompileFile(main);
    if (accepted) {
        QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
        QVERIFY(!f.report->LastLine().contains("OVER 80"));
    } else {
        QCOMPARE(f.report->Lines(), QStringList{f.Prefix(main, 2) + ": OVER 80 CHARACTERS"});
        QCOMPARE(f.Sent(), QStringList{"1 DROP"});
        QCOMPARE(f.context->compileOutcome, CompileOutcome::Running);
        QVERIFY(f.editor.shownLines.isEmpty()); // no editor is opened at the line
    }
}

void TestLineEngine::CommentsAndTabs()
{
    CompileFixture f;
    const QString main =
        f.Write("MAIN.KVR", {"\\ a comment", "    \\ indented comment", "\t\\ tab-indented comment", "include lib",
                             "QUICK", "INCLUDE", "#condition", "1 DROP"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{"\t\\ tab-indented comment", "include lib", "QUICK", "INCLUDE", "#condition",
                                    "1 DROP"}));
}

void TestLineEngine::IncludeOnceAndNesting()
{
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {"INCLUDE A", "INCLUDE lib \\ twice", "M"});
    f.Write("A.KVR", {"A1", "INCLUDE LIB ( tools )", "A2"});
    f.Write("lib.kvr", {"L1", "L2"});
    f.driver->CompileFile(main);

    QCOMPARE(f.Sent(), (QStringList{"A1", "L1", "L2", "A2", "M"}));
    const QString folder = QFileInfo(main).absolutePath();
    QCOMPARE(f.report->Lines(),
             (QStringList{f.Prefix(main, 1) + ": FILE A.KVR INCLUDED",
                          f.Prefix(folder + "/A.KVR", 2) + ": FILE LIB.KVR INCLUDED",
                          f.Prefix(main, 2) + ": FILE LIB.KVR ALREADY COMPILED",
                          ShortenPath(main) + " - FINISHED at 1A2B"}));
    QCOMPARE(f.driver->State().compiledFiles, (QStringList{"A.KVR", "LIB.KVR"}));
    QCOMPARE(f.prompts.beeps, 5); // every report line and the closing beep
}

void TestLineEngine::HundredAndFirstIncludeIgnored()
{
    CompileFixture f;
    QStringList mainLines;
    for (int i = 1; i <= 101; ++i) {
        const QString name = QStringLiteral("F%1").arg(i);
        f.Write(name + ".KVR", {QStringLiteral("%1 DROP").arg(i)});
        mainLines.append("INCLUDE " + name);
    }
    const QString main = f.Write("MAIN.KVR", mainLines);
    f.driver->CompileFile(main);

    const QStringList sent = f.Sent();
    QCOMPARE(sent.size(), 100);
    QCOMPARE(sent.last(), QStringLiteral("100 DROP"));
    QCOMPARE(f.driver->State().compiledFiles.size(), 100);
    const QStringList lines = f.report->Lines();
    QCOMPARE(lines.size(), 101); // 100 INCLUDED and FINISHED; nothing for the 101st
    QVERIFY(!lines.join('\n').contains("F101"));
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
}

void TestLineEngine::IncludeNotFound()
{
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {"1 DROP", "INCLUDE MISSING", "2 DROP"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), QStringList{"1 DROP"});
    QCOMPARE(f.report->LastLine(), QStringLiteral("HALTED COMPILE, FILE NOT FOUND: MISSING.KVR"));
    QCOMPARE(f.prompts.MessageTexts(), QStringList{"Can't open file MISSING.KVR"});
    QCOMPARE(f.context->compileOutcome, CompileOutcome::Running);
    QCOMPARE(f.driver->State().runEnd, RunEnd::FileNotFound);

    CompileFixture g;
    const QString gone = g.dir.path() + "/GONE.KVR";
    g.driver->CompileFile(gone);
    QCOMPARE(g.report->Lines(), QStringList{"HALTED COMPILE, FILE NOT FOUND: " + ShortenPath(gone)});
    QVERIFY(g.transport.lines.isEmpty());
}

void TestLineEngine::IncludeWithBackslashFolder()
{
    CompileFixture f;
    const QString main = f.Write("src/MAIN.KVR", {"INCLUDE ..\\common\\io \\ shared", "1 DROP"});
    f.Write("common/Io.kvr", {"IO LINE"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{"IO LINE", "1 DROP"}));
    QCOMPARE(f.report->Lines().first(), f.Prefix(main, 1) + ": FILE ..\\COMMON\\IO.KVR INCLUDED");
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
}

void TestLineEngine::TopLevelWithoutFolder()
{
    // A bare name is sought in the current folder first; found there it
    // carries "./" yet its end still ends the run.
    CompileFixture f;
    f.Write("MAIN.KVR", {"INCLUDE LIB", "1 DROP"});
    f.Write("LIB.KVR", {"L"});
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(f.dir.path()));
    f.driver->CompileFile(QStringLiteral("MAIN.KVR"));
    QDir::setCurrent(before);
    QCOMPARE(f.Sent(), (QStringList{"L", "1 DROP"}));
    QCOMPARE(f.report->Lines(), (QStringList{"./MAIN.KVR - line 1: FILE LIB.KVR INCLUDED",
                                             "./MAIN.KVR - FINISHED at 1A2B"}));
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
}

void TestLineEngine::PcLinesInsideSkippedBranch()
{
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {"#IF NEVER", "INCLUDE LIB", "#CONDITION X", "QUICK ON", "SKIPPED",
                                              "#ENDIF", "#IF X", "TAKEN   (  x  )", "#ENDIF"});
    f.Write("LIB.KVR", {"IN LIB"});
    f.driver->CompileFile(main);
    // The INCLUDE took effect; LIB's line was read inside the skipped branch.
    // The blank that ended the word before the comment stays.
    QCOMPARE(f.Sent(), QStringList{"TAKEN "});
    QCOMPARE(f.driver->State().conditionValue, QStringLiteral("X"));
    QCOMPARE(f.context->settings.quickCompile, QStringLiteral("ON"));
    QVERIFY(f.report->Lines().contains(f.Prefix(main, 2) + ": FILE LIB.KVR INCLUDED"));
    QVERIFY(f.report->Lines().contains(f.Prefix(main, 4) + ": QUICK ON"));
}

void TestLineEngine::ConditionalBlockSpansFiles()
{
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {"#CONDITION KVR6630 \\ board", "#IF KVR4410", "INCLUDE OPEN",
                                              "FOUR-B", "#ENDIF", "AFTER"});
    f.Write("OPEN.KVR", {"FOUR-A", "#ELSEIF kvr6630", "SIX-A", "INCLUDE SET"});
    f.Write("SET.KVR", {"#CONDITION LATER", "SIX-B"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{"SIX-A", "SIX-B", "FOUR-B", "AFTER"}));
    QCOMPARE(f.driver->State().conditionValue, QStringLiteral("LATER"));
}

void TestLineEngine::QuickCompileCompactsLines()
{
    CompileFixture f;
    f.context->settings.quickCompile = QStringLiteral("ON");
    const QString main = f.Write("MAIN.KVR", {": SQ  DUP *  ;  \\ square", ".\" A  ( B )\"", "( only a comment )"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{": SQ DUP * ;", ".\" A  ( B )\""}));
}

void TestLineEngine::QuickLineSwitchesSettings()
{
    CompileFixture f;
    QSignalSpy written(f.context.get(), &AppContext::SettingsWritten);
    const QString main = f.Write("MAIN.KVR", {"QUICK ON \\ fast", "A  B", "QUICK OFF", "C  D"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{"A B", "C  D"}));
    QCOMPARE(f.context->settings.quickCompile, QStringLiteral("OFF"));
    QCOMPARE(f.context->settings.noCompileDisplay, QStringLiteral("OFF"));
    QCOMPARE(f.terminal.progressStates, (QList<bool>{true, false, false}));
    QCOMPARE(written.count(), 2);
    QVERIFY(f.report->Lines().contains(f.Prefix(main, 1) + ": QUICK ON"));
    QVERIFY(f.report->Lines().contains(f.Prefix(main, 3) + ": QUICK OFF"));
}

void TestLineEngine::NotUniqueRepeatedAfterTimeout()
{
    CompileFixture f;
    f.board.replies.insert(": DUP ;", ": DUP ; DUP NOT UNIQUE  ok\r\n");
    f.board.silent.append("SLOW");
    const QString main = f.Write("MAIN.KVR", {": DUP ;", "SLOW"});
    f.driver->CompileFile(main);
    QCOMPARE(f.report->Lines(), (QStringList{f.Prefix(main, 1) + ": DUP NOT UNIQUE", "KVR4410 NOT RESPONDING",
                                             f.Prefix(main, 2) + ": DUP NOT UNIQUE"}));
    QCOMPARE(f.context->compileOutcome, CompileOutcome::NotResponding);
}

void TestLineEngine::HaltWithF2()
{
    CompileFixture f;
    f.board.onLine = [&f](const QByteArray &line) {
        if (line == "2 DROP")
            f.driver->HaltCompile();
    };
    const QString main = f.Write("MAIN.KVR", {"1 DROP", "2 DROP", "3 DROP"});
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), (QStringList{"1 DROP", "2 DROP"}));
    QCOMPARE(f.report->LastLine(), QStringLiteral("HALTED COMPILE WITH F2"));
    QCOMPARE(f.context->compileOutcome, CompileOutcome::HaltRequested);
    QCOMPARE(f.driver->State().runEnd, RunEnd::Halted);
    QCOMPARE(f.terminal.interrupts, 1);
    QVERIFY(f.editor.shownLines.isEmpty());
    QCOMPARE(f.terminal.timerStates.last(), true);

    // F2 while the engine waits for a reply that the interrupt took away:
    // no time-out, no not-responding message, just the halt, even when the
    // interrupt's own waits outlast the line's time-out.
    CompileFixture g;
    g.board.silent.append("2 DROP");
    g.context->settings.timeout = QStringLiteral("100000");
    quint32 haltedAt = 0;
    g.transport.beforeCount = [&g, &haltedAt] {
        if (g.transport.lines.contains("2 DROP") && g.context->compileOutcome == CompileOutcome::Running) {
            g.driver->HaltCompile();
            haltedAt = g.clock.ticks += 200000;
        }
    };
    g.driver->CompileFile(g.Write("MAIN.KVR", {"1 DROP", "2 DROP", "3 DROP"}));
    QCOMPARE(g.Sent(), (QStringList{"1 DROP", "2 DROP"}));
    QCOMPARE(g.report->Lines(), QStringList{"HALTED COMPILE WITH F2"});
    QVERIFY(g.prompts.shown.isEmpty());
    QCOMPARE(g.context->compileOutcome, CompileOutcome::HaltRequested);
    QVERIFY(g.clock.ticks - haltedAt < 10000); // it did not wait for the time-out
}

void TestLineEngine::QuietReceiveAndProgress()
{
    CompileFixture f;
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    f.terminal.capacity = 2;
    // Bit 7 set on every character, controls in the middle, a second line
    // in the same batch that must not be kept (it would pass for the reply
    // to B), and a reply longer than 160.
    QByteArray marked;
    for (char c : QByteArray("X X ?  - bad"))
        marked += char(c | 0x80);
    f.board.replies.insert("A", "A\x07 ok\r\n" "J ?  - stale\r\n");
    f.board.replies.insert("B", QByteArray(170, 'b') + "Z\r\n");
    f.board.replies.insert("X", marked + "\r\n");
    const QString main = f.Write("MAIN.KVR", {"A", "B", "X"});
    // The long reply keeps its first 159 characters and its last one.
    QString longReply;
    f.board.onLine = [&](const QByteArray &line) {
        if (line == "X")
            longReply = f.driver->State().replyLine;
    };
    f.driver->CompileFile(main);
    QCOMPARE(longReply, QString(159, QLatin1Char('b')) + QLatin1Char('Z'));
    QCOMPARE(f.report->LastLine(), f.Prefix(main, 3) + ": X ?  - bad");
    QCOMPARE(f.terminal.progressText, QString(1, QChar(127))); // 3 lines on a bar of 2
    QCOMPARE(f.terminal.progressStates, (QList<bool>{true, false}));
    QVERIFY(f.terminal.shown.isEmpty());
    QCOMPARE(f.driver->State().replyLine, QStringLiteral("X X ?  - bad"));
}

void TestLineEngine::ShownReceivePaintsTraffic()
{
    CompileFixture f;
    // The second line of the batch is neither shown nor taken as B's reply.
    f.board.replies.insert("A", "A ok\r\nLATER ?  - stale\r\n");
    const QString main = f.Write("MAIN.KVR", {"A", "B"});
    f.driver->CompileFile(main);
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
    QVERIFY(f.terminal.shown.startsWith("A ok\r\n"));
    QVERIFY(!f.terminal.shown.contains("LATER"));
    QCOMPARE(f.terminal.progressStates, QList<bool>{false});
}

void TestLineEngine::GarbageFromBoardAndFile()
{
    CompileFixture f;
    QByteArray garbage;
    for (int i = 0; i < 256; ++i)
        garbage += char(i);
    f.board.replies.insert("G", garbage + garbage);
    const QString main = f.dir.path() + "/BIN.KVR";
    QFile file(main);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("G\r\n" + QByteArray("\0\x01\x02\xff\xfe", 5) + "\r" + QByteArray(100000, 'x'));
    file.close();
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent().first(), QStringLiteral("G"));
    QCOMPARE(f.report->LastLine(), f.Prefix(main, 3) + ": OVER 80 CHARACTERS");
}

void TestLineEngine::AwkwardIncludes_data()
{
    QTest::addColumn<QStringList>("source");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QStringList>("reportTails"); // after each line's prefix; "" for none
    QTest::addColumn<int>("runEnd");
    // A folder named like the file is not a file.
    QTest::newRow("INCLUDE of a folder")
        << QStringList{"1 DROP", "INCLUDE SUB", "2 DROP"} << QStringList{"1 DROP"}
        << QStringList{"2: FILE SUB.KVR INCLUDED", "HALTED COMPILE, FILE NOT FOUND: SUB.KVR"}
        << int(RunEnd::FileNotFound);
    QTest::newRow("INCLUDE of a bare dot")
        << QStringList{"INCLUDE .", "2 DROP"} << QStringList{}
        << QStringList{"1: FILE . INCLUDED", "HALTED COMPILE, FILE NOT FOUND: ."} << int(RunEnd::FileNotFound);
    const QString control = QStringLiteral("A") + QChar(0) + QChar(1) + QStringLiteral("B");
    QTest::newRow("INCLUDE of a name with NUL and control bytes")
        << QStringList{"INCLUDE " + control, "2 DROP"} << QStringList{}
        << QStringList{"1: FILE " + control + ".KVR INCLUDED", "HALTED COMPILE, FILE NOT FOUND: " + control + ".KVR"}
        << int(RunEnd::FileNotFound);
    // The file includes itself: its copy is read once more (the second
    // INCLUDE is already compiled) and, having the top-level name, its end
    // ends the run.
    QTest::newRow("INCLUDE of itself")
        << QStringList{"1 DROP", "INCLUDE MAIN", "2 DROP"} << QStringList{"1 DROP", "1 DROP", "2 DROP"}
        << QStringList{"2: FILE MAIN.KVR INCLUDED", "2: FILE MAIN.KVR ALREADY COMPILED", "FINISHED at 1A2B"}
        << int(RunEnd::Finished);
}

void TestLineEngine::AwkwardIncludes()
{
    QFETCH(QStringList, source);
    QFETCH(QStringList, sent);
    QFETCH(QStringList, reportTails);
    QFETCH(int, runEnd);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    CompileFixture f;
    QVERIFY(QDir(f.dir.path()).mkpath("SUB.KVR"));
    const QString main = f.Write("MAIN.KVR", source);
    f.driver->CompileFile(main);
    QCOMPARE(f.Sent(), sent);
    QCOMPARE(int(f.driver->State().runEnd), runEnd);
    const QStringList lines = f.report->Lines();
    QCOMPARE(lines.size(), reportTails.size());
    for (int i = 0; i < lines.size(); ++i)
        QVERIFY2(lines[i].endsWith(reportTails[i]), qPrintable(lines[i]));
    QCOMPARE(f.context->busyState, BusyState::Idle);
    for (int n = 1; n <= 3; ++n)
        QVERIFY(!f.driver->State().files.IsOpen(n));
}

void TestLineEngine::DeepIncludeNesting()
{
    // F1 includes F2 ... includes F105: a hundred files nest, the
    // hundred-and-first INCLUDE is ignored, and every parent resumes.
    CompileFixture f;
    for (int i = 1; i <= 105; ++i)
        f.Write(QStringLiteral("F%1.KVR").arg(i),
                {QStringLiteral("INCLUDE F%1").arg(i + 1), QStringLiteral("%1 DROP").arg(i)});
    const QString main = f.Write("MAIN.KVR", {"INCLUDE F1", "0 DROP"});
    f.driver->CompileFile(main);
    QStringList expected;
    for (int i = 100; i >= 0; --i)
        expected.append(QStringLiteral("%1 DROP").arg(i));
    QCOMPARE(f.Sent(), expected);
    QCOMPARE(f.driver->State().compiledFiles.size(), 100);
    QCOMPARE(f.report->Lines().size(), 101);
    QCOMPARE(f.report->LastLine(), ShortenPath(main) + " - FINISHED at 1A2B");
}

void TestLineEngine::BoardGoneMidCompile_data()
{
    QTest::addColumn<bool>("overTcp");       // a real socket whose peer goes, or the in-memory link
    QTest::addColumn<QByteArray>("lastLine"); // the line the link dies on
    QTest::addColumn<bool>("afterBoardError"); // an earlier run stopped on a board error
    QTest::newRow("in-memory link closes") << false << QByteArray("2 DROP") << false;
    QTest::newRow("TCP peer closes: one message, not two") << true << QByteArray("2 DROP") << false;
    QTest::newRow("first line, after a run that stopped on a board error") << false << QByteArray("1 DROP") << true;
}

void TestLineEngine::BoardGoneMidCompile()
{
    QFETCH(bool, overTcp);
    QFETCH(QByteArray, lastLine);
    QFETCH(bool, afterBoardError);
    CompileFixture f;
    if (afterBoardError) {
        f.board.Lacks("BAD");
        f.driver->CompileFile(f.Write("EARLIER.KVR", {"BAD"}));
        QCOMPARE(f.driver->State().runEnd, RunEnd::BoardError);
        f.transport.lines.clear();
        f.editor.loaded.clear();
    }
    LinkController controller(*f.context, *f.link);
    QTcpServer server;
    QTcpSocket *peer = nullptr;
    QByteArray received;
    if (overTcp) {
        QVERIFY(server.listen(QHostAddress::LocalHost, 0));
        f.context->settings.remoteIp = QStringLiteral("127.0.0.1");
        f.context->settings.remotePort = QString::number(server.serverPort());
        controller.Tcp().SetHeartbeatPort(0);
        controller.SelectPort(0);
        QVERIFY(server.hasPendingConnections() || server.waitForNewConnection(2000));
        peer = server.nextPendingConnection();
        connect(peer, &QTcpSocket::readyRead, peer, [&] {
            received += peer->readAll();
            for (qsizetype end = received.indexOf('\r'); end >= 0; end = received.indexOf('\r')) {
                const QByteArray line = received.left(end);
                received.remove(0, end + 1);
                f.transport.lines.append(line); // what the board got, as the in-memory board keeps it
                if (line == lastLine)
                    peer->abort();
                else
                    peer->write(line + "  ok\r\n");
            }
        });
    } else {
        f.board.onLine = [&](const QByteArray &line) {
            if (line == lastLine)
                f.transport.Close();
        };
        f.board.silent.append(lastLine);
    }
    f.prompts.Clear();
    const QString main = f.Write("MAIN.KVR", {"1 DROP", "2 DROP", "3 DROP"});
    f.driver->CompileFile(main);
    const QStringList sent = lastLine == "1 DROP" ? QStringList{"1 DROP"} : QStringList{"1 DROP", "2 DROP"};
    QCOMPARE(f.Sent(), sent);
    QCOMPARE(f.report->Lines(), QStringList{"KVR4410 NOT RESPONDING"});
    QCOMPARE(f.context->compileOutcome, CompileOutcome::NotResponding);
    QCOMPARE(f.driver->State().runEnd, RunEnd::NotResponding);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{Link::NotRespondingText("4410ANS")});
    QVERIFY(f.editor.loaded.isEmpty() && f.editor.shownLines.isEmpty());
    QCOMPARE(f.context->busyState, BusyState::Idle);
}

void TestLineEngine::FloodWithoutLineEnd()
{
    // A board that sends a megabyte without a line feed: the line being
    // collected stays bounded and the compile goes on.
    CompileFixture f;
    f.board.replies.insert("A", QByteArray(1 << 20, 'x') + " ok\r\n");
    qsizetype seen = -1;
    f.board.onLine = [&](const QByteArray &line) {
        if (line == "B")
            seen = f.driver->State().replyLine.size();
    };
    f.driver->CompileFile(f.Write("MAIN.KVR", {"A", "B"}));
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
    QVERIFY(seen > 80);
    QVERIFY2(seen <= ReplyLineLimit, qPrintable(QString::number(seen)));
}

QTEST_GUILESS_MAIN(TestLineEngine)
#include "tst_lineengine.moc"
