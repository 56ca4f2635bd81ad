// Whole compile runs on the in-memory board: what the board gets, the
// report, how a run ends, and the commands that start or continue one.
#include "CompileFixture.h"
#include "compiler/CompileProgress.h"
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestCompileRun : public QObject {
    Q_OBJECT
private slots:
    void Runs_data();
    void Runs();
    void FinishedAddress_data();
    void FinishedAddress();
    void HaltWithF2();
    void ReceiveQuietAndShown();
    void BoardGoneMidCompile_data();
    void BoardGoneMidCompile();
    void Refusals_data();
    void Refusals();
    void SelectionAndLastDefinition();
    void ErrorLineShown_data();
    void ErrorLineShown();
    void ProgressCountsKnownFiles();
    void ContinueAfterFix_data();
    void ContinueAfterFix();
};

void TestCompileRun::Runs_data()
{
    QTest::addColumn<QStringList>("files");  // name, text pairs; the first is compiled
    QTest::addColumn<QByteArray>("reply");   // the board's reply to the line "X"; "-": none
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QStringList>("report"); // "@" lines as CompileFixture::Expand
    QTest::addColumn<int>("runEnd");
    const QString fin = QStringLiteral("@MAIN.KVR - FINISHED at 1A2B");
    const int ok = int(RunEnd::Finished), error = int(RunEnd::BoardError), notFound = int(RunEnd::FileNotFound);
    const int mute = int(RunEnd::NotResponding), cond = int(RunEnd::ConditionalError);
    const QStringList x = {"MAIN.KVR", "1 DROP\nX\n2 DROP"}, x2 = {"1 DROP", "X"}, x3 = {"1 DROP", "X", "2 DROP"};
    auto row = [](const char *name, const QStringList &files, const QByteArray &reply, const QStringList &sent,
                  const QStringList &report, int runEnd) {
        QTest::newRow(name) << files << reply << sent << report << runEnd;
    };
    row("blank lines skipped", {"MAIN.KVR", ": SQ DUP * ;\n\n   \n5 SQ ."}, {}, {": SQ DUP * ;", "5 SQ ."}, {fin}, ok);
    row("comment lines kept back unless tab-indented, lower-case words sent",
        {"MAIN.KVR", "\\ c\n    \\ indented\n\t\\ tab\ninclude lib\nQUICK\nINCLUDE\n#condition"}, {},
        {"\t\\ tab", "include lib", "QUICK", "INCLUDE", "#condition"}, {fin}, ok);
    row("board error: word and message", x, "X X ?  - undefined word\r\n", x2, {"@MAIN.KVR 2: X ?  - undefined word"}, error);
    row("error word found by looking back", x, "1 2 FOO BAR ?  - nf\r\n", x2, {"@MAIN.KVR 2: BAR ?  - nf"}, error);
    row("error word at the start of the reply", x, "BAR ?  - nf\r\n", x2, {"@MAIN.KVR 2: BAR ?  - nf"}, error);
    row("look-back limited to 31 characters", x, "A " + QByteArray(40, 'W') + " ?  - msg\r\n", x2,
        {"@MAIN.KVR 2: " + QString(31, 'W') + " ?  - msg"}, error);
    row("redefinition warns and goes on", x, ": X ; X NOT UNIQUE  ok\r\n", x3, {"@MAIN.KVR 2: X NOT UNIQUE", fin}, ok);
    row("redefined word at the start of the reply", x, "DUP NOT UNIQUE ok\r\n", x3, {"@MAIN.KVR 2: DUP NOT UNIQUE", fin}, ok);
    row("error marker needs two blanks", x, "X X ? - odd\r\n", x3, {fin}, ok);
    row("no reply: not responding", x, "-", x2, {"KVR4410 NOT RESPONDING"}, mute);
    row("reply without line feed: not responding", x, "X  ok\r", x2, {"KVR4410 NOT RESPONDING"}, mute);
    row("out-of-order directive", {"MAIN.KVR", "1 DROP\n#ENDIF\n2 DROP"}, {}, {"1 DROP"},
        {"@MAIN.KVR 2: CONDITIONAL COMPILATION ERROR"}, cond);
    row("second #IF before #ENDIF", {"MAIN.KVR", "#IF A\n#IF B\n2 DROP"}, {}, {},
        {"@MAIN.KVR 2: CONDITIONAL COMPILATION ERROR"}, cond);
    row("80 characters; trailing blanks do not count", {"MAIN.KVR", QString(78, 'A') + " .\n" + QString(80, 'B') + "  "},
        {}, {QString(78, 'A') + " .", QString(80, 'B')}, {fin}, ok);
    for (const QString &longLine : {QString(79, 'A') + " .", "\\ " + QString(79, 'C'), QString(5000, ' ') + "W"})
        QTest::addRow("over 80 characters: %.5s...", qPrintable(longLine))
            << QStringList{"MAIN.KVR", "1 DROP\n" + longLine + "\n2 DROP"} << QByteArray() << QStringList{"1 DROP"}
            << QStringList{"@MAIN.KVR 2: OVER 80 CHARACTERS"} << int(RunEnd::OverLong);
    row("included once, through a parent and directly",
        {"MAIN.KVR", "INCLUDE A\nINCLUDE lib \\ twice\nM", "A.KVR", "A1\nINCLUDE LIB ( tools )\nA2", "lib.kvr", "L1"}, {},
        {"A1", "L1", "A2", "M"},
        {"@MAIN.KVR 1: FILE A.KVR INCLUDED", "@A.KVR 2: FILE LIB.KVR INCLUDED", "@MAIN.KVR 2: FILE LIB.KVR ALREADY COMPILED",
         fin}, ok);
    row("INCLUDE through a folder with backslashes",
        {"src/MAIN.KVR", "INCLUDE ..\\common\\io \\ shared\n1 DROP", "common/Io.kvr", "IO LINE"}, {}, {"IO LINE", "1 DROP"},
        {"@src/MAIN.KVR 1: FILE ..\\COMMON\\IO.KVR INCLUDED", "@src/MAIN.KVR - FINISHED at 1A2B"}, ok);
    const QString control = QStringLiteral("A") + QChar(0) + QChar(1) + QStringLiteral("B.KVR");
    for (const QString &name : {QStringLiteral("MISSING.KVR"), QStringLiteral("SUB.KVR"), QStringLiteral("."), control})
        QTest::addRow("INCLUDE of %s: not found", qPrintable(name.left(3)))
            << QStringList{"MAIN.KVR", "INCLUDE " + name + "\n2 DROP"} << QByteArray() << QStringList()
            << QStringList{"@MAIN.KVR 1: FILE " + name + " INCLUDED", "HALTED COMPILE, FILE NOT FOUND: " + name} << notFound;
    // Its copy is read once more and, having the top-level name, its end ends the run.
    row("INCLUDE of itself", {"MAIN.KVR", "1 DROP\nINCLUDE MAIN\n2 DROP"}, {}, {"1 DROP", "1 DROP", "2 DROP"},
        {"@MAIN.KVR 2: FILE MAIN.KVR INCLUDED", "@MAIN.KVR 2: FILE MAIN.KVR ALREADY COMPILED", fin}, ok);
    QStringList files{"MAIN.KVR", {}}, sent, report;
    for (int i = 1; i <= 101; ++i) {
        files[1] += QStringLiteral("INCLUDE F%1\n").arg(i);
        files << QStringLiteral("F%1.KVR").arg(i) << QStringLiteral("%1 DROP").arg(i);
        if (i <= 100)
            sent << QStringLiteral("%1 DROP").arg(i), report << QStringLiteral("@MAIN.KVR %1: FILE F%1.KVR INCLUDED").arg(i);
    }
    row("the 101st INCLUDE file is ignored", files, {}, sent, report << fin, ok);
    // INCLUDE and #CONDITION take effect in a skipped branch; the blank before the comment stays.
    row("PC lines inside a skipped branch",
        {"MAIN.KVR", "#IF NEVER\nINCLUDE LIB\n#CONDITION X\nQUICK ON\nSKIPPED\n#ENDIF\n#IF X\nTAKEN   (  x  )\n#ENDIF",
         "LIB.KVR", "IN LIB"}, {}, {"TAKEN "}, {"@MAIN.KVR 2: FILE LIB.KVR INCLUDED", "@MAIN.KVR 4: QUICK ON", fin}, ok);
    row("conditional block spans files",
        {"MAIN.KVR", "#CONDITION KVR6630 \\ b\n#IF KVR4410\nINCLUDE OPEN\nFOUR-B\n#ENDIF\nAFTER", "OPEN.KVR",
         "FOUR-A\n#ELSEIF kvr6630\nSIX-A\nINCLUDE SET", "SET.KVR", "#CONDITION LATER\nSIX-B"}, {},
        {"SIX-A", "SIX-B", "FOUR-B", "AFTER"}, {"@MAIN.KVR 3: FILE OPEN.KVR INCLUDED", "@OPEN.KVR 4: FILE SET.KVR INCLUDED", fin},
        ok);
    row("QUICK lines switch compaction", {"MAIN.KVR", "QUICK ON \\ fast\nA  B  ( c )\n( only a comment )\nQUICK OFF\nC  D"},
        {}, {"A B ", "C  D"}, {"@MAIN.KVR 1: QUICK ON", "@MAIN.KVR 4: QUICK OFF", fin}, ok);
}

void TestCompileRun::Runs()
{
    QFETCH(QStringList, files);
    QFETCH(QByteArray, reply);
    QFETCH(QStringList, sent);
    QFETCH(QStringList, report);
    QFETCH(int, runEnd);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    CompileFixture f;
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    if (!reply.isEmpty())
        f.board.replies.insert("X", reply == "-" ? QByteArray() : reply);
    QVERIFY(QDir(f.dir.path()).mkpath("SUB.KVR"));
    f.editor.windows.insert(1, {LogicalName(f.dir.filePath(files.first())), {}});
    f.Compile(files);
    QCOMPARE(f.Sent(), sent);
    for (QString &line : report)
        line = f.Expand(line);
    QCOMPARE(f.report->Lines(), report);
    QCOMPARE(int(f.driver->State().runEnd), runEnd);
    QCOMPARE(f.context->busyState, BusyState::Idle);
    QVERIFY(f.driver->State().topLevelFile.isEmpty());
    for (int n = 1; n <= 3; ++n)
        QVERIFY(!f.driver->State().files.IsOpen(n));
    QCOMPARE(f.transport.lines.contains("BASE @ HEX HERE U. BASE !"), runEnd == int(RunEnd::Finished));
    // Whatever the end, the progress display goes and the terminal takes keys again.
    QCOMPARE(f.terminal.progressStates.first(), true);
    QCOMPARE(f.terminal.progressStates.last(), false);
    QCOMPARE(f.terminal.timerStates, (QList<bool>{false, true}));
    if (runEnd == int(RunEnd::NotResponding))
        QCOMPARE(f.prompts.MessageTexts(), QStringList{Link::NotRespondingText("4410ANS")});
    else if (runEnd != int(RunEnd::FileNotFound))
        QVERIFY(f.prompts.shown.isEmpty());
    if (runEnd != int(RunEnd::BoardError) && runEnd != int(RunEnd::ConditionalError))
        QVERIFY(f.editor.shownLines.isEmpty()); // over-long lines open no editor
    if (runEnd == int(RunEnd::Finished)) // every report line and the closing beep
        QCOMPARE(f.prompts.beeps, report.size() + 1);
}

void TestCompileRun::FinishedAddress_data()
{
    QTest::addColumn<QByteArray>("here"); // null: no answer
    QTest::addColumn<QString>("reported");
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("confirmed");
    QTest::newRow("four digits") << QByteArray("8F00") << "8F00" << "8F00" << true;
    QTest::newRow("three digits show what follows") << QByteArray("12A") << "12A" << "12A " << true;
    QTest::newRow("one digit") << QByteArray("7") << "7  o" << "7  o" << true;
    QTest::newRow("noise is not an address") << QByteArray("CHGI") << "CHGI" << "CHGI" << false;
    QTest::newRow("no answer") << QByteArray() << "" << "" << false;
}

void TestCompileRun::FinishedAddress()
{
    QFETCH(QByteArray, here);
    QFETCH(QString, reported);
    QFETCH(QString, address);
    QFETCH(bool, confirmed);
    CompileFixture f;
    f.board.here = here;
    const QString main = f.Compile({"MAIN.KVR", "1 DROP"});
    QCOMPARE(f.report->LastLine(), (ShortenPath(main) + " - FINISHED at " + reported).trimmed());
    QCOMPARE(f.driver->State().endOfProgramAddress, address);
    QCOMPARE(f.driver->State().runEnd, confirmed ? RunEnd::Finished : RunEnd::EndUnconfirmed);
    QCOMPARE(f.terminal.timerStates, (QList<bool>{false, true}));
}

void TestCompileRun::HaltWithF2()
{
    CompileFixture f;
    f.board.onLine = [&f](const QByteArray &line) {
        if (line == "2 DROP")
            f.driver->HaltCompile();
    };
    f.Compile({"MAIN.KVR", "1 DROP\n2 DROP\n3 DROP"});
    QCOMPARE(f.Sent(), (QStringList{"1 DROP", "2 DROP"}));
    QCOMPARE(f.report->Lines(), QStringList{"HALTED COMPILE WITH F2"});
    QCOMPARE(f.context->compileOutcome, CompileOutcome::HaltRequested);
    QCOMPARE(f.driver->State().runEnd, RunEnd::Halted);
    QCOMPARE(f.terminal.interrupts, 1);

    // F2 while waiting for a reply that the interrupt took away: just the
    // halt, even when the interrupt's own waits outlast the line's time-out.
    CompileFixture g;
    g.board.replies.insert("2 DROP", {});
    g.context->settings.timeout = QStringLiteral("100000");
    quint32 haltedAt = 0;
    g.transport.beforeCount = [&g, &haltedAt] {
        if (g.transport.lines.contains("2 DROP") && g.context->compileOutcome == CompileOutcome::Running) {
            g.driver->HaltCompile();
            haltedAt = g.clock.ticks += 200000;
        }
    };
    g.Compile({"MAIN.KVR", "1 DROP\n2 DROP\n3 DROP"});
    QCOMPARE(g.report->Lines(), QStringList{"HALTED COMPILE WITH F2"});
    QVERIFY(g.prompts.shown.isEmpty());
    QVERIFY(g.clock.ticks - haltedAt < 10000); // it did not wait for the time-out
}

void TestCompileRun::ReceiveQuietAndShown()
{
    // Without display: bit 7 set on every character, controls inside, a
    // second line in the same batch that must not pass for the next reply,
    // a reply longer than 160 that keeps its first 159 characters and its last.
    CompileFixture f;
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    f.terminal.capacity = 2;
    QByteArray marked;
    for (char c : QByteArray("X X ?  - bad"))
        marked += char(c | 0x80);
    f.board.replies.insert("A", "A\x07 ok\r\nJ ?  - stale\r\n");
    f.board.replies.insert("B", QByteArray(170, 'b') + "Z\r\n");
    f.board.replies.insert("X", marked + "\r\n");
    QString longReply;
    f.board.onLine = [&](const QByteArray &line) {
        if (line == "X")
            longReply = f.driver->State().replyLine;
    };
    f.Compile({"MAIN.KVR", "A\nB\nX"});
    QCOMPARE(longReply, QString(159, 'b') + 'Z');
    QCOMPARE(f.report->LastLine(), f.Expand("@MAIN.KVR 3: X ?  - bad"));
    QCOMPARE(f.terminal.progressText, QString(1, QChar(127))); // 3 lines on a bar of 2
    QCOMPARE(f.terminal.progressStates, (QList<bool>{true, false}));
    QVERIFY(f.terminal.shown.isEmpty());

    // With display the traffic is painted, the stale second line is not.
    CompileFixture g;
    g.board.replies.insert("A", "A ok\r\nLATER ?  - stale\r\n");
    g.Compile({"MAIN.KVR", "A\nB"});
    QCOMPARE(g.driver->State().runEnd, RunEnd::Finished);
    QVERIFY(g.terminal.shown.startsWith("A ok\r\n"));
    QVERIFY(!g.terminal.shown.contains("LATER"));
}

void TestCompileRun::BoardGoneMidCompile_data()
{
    QTest::addColumn<QByteArray>("lastLine"); // the line the link dies on
    QTest::addColumn<bool>("afterBoardError");
    QTest::newRow("link closes mid-compile") << QByteArray("2 DROP") << false;
    QTest::newRow("first line, after a run that stopped on a board error") << QByteArray("1 DROP") << true;
}

void TestCompileRun::BoardGoneMidCompile()
{
    QFETCH(QByteArray, lastLine);
    QFETCH(bool, afterBoardError);
    CompileFixture f;
    if (afterBoardError) {
        f.board.Lacks("BAD");
        f.Compile({"EARLIER.KVR", "BAD"});
        QCOMPARE(f.driver->State().runEnd, RunEnd::BoardError);
        f.transport.lines.clear();
        f.editor.loaded.clear();
        f.editor.shownLines.clear();
    }
    f.board.onLine = [&](const QByteArray &line) {
        if (line == lastLine)
            f.transport.Close();
    };
    f.board.replies.insert(lastLine, {});
    f.prompts.Clear();
    f.Compile({"MAIN.KVR", "1 DROP\n2 DROP\n3 DROP"});
    QCOMPARE(f.Sent().size(), lastLine == "1 DROP" ? 1 : 2);
    QCOMPARE(f.report->Lines(), QStringList{"KVR4410 NOT RESPONDING"});
    QCOMPARE(f.context->compileOutcome, CompileOutcome::NotResponding);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{Link::NotRespondingText("4410ANS")});
    QVERIFY(f.editor.loaded.isEmpty() && f.editor.shownLines.isEmpty());
    QCOMPARE(f.context->busyState, BusyState::Idle);
}

void TestCompileRun::Refusals_data()
{
    QTest::addColumn<QString>("command"); // file, window, selected, recent
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("computer");
    QTest::addColumn<int>("busy");
    QTest::addColumn<int>("selLength");
    QTest::addColumn<QString>("message");
    const QString terminal = "KVR-PC for Windows is in Terminal emulator, not development mode. Select computer "
                             "using interactive window options menu.";
    const int building = int(BusyState::BuildingDatabase);
    QTest::newRow("database being built") << "file" << "MAIN.KVR" << "" << building << 0
                                          << "Wait until database complete before compiling";
    QTest::newRow("lower-case extension") << "file" << "MAIN.kvr" << "" << 0 << 0 << "Extension not .KVR, can not compile";
    QTest::newRow("other extension") << "file" << "MAIN.TXT" << "" << 0 << 0 << "Extension not .KVR, can not compile";
    for (const char *command : {"window", "selected", "recent"})
        QTest::addRow("%s in terminal mode", command) << command << "MAIN.KVR" << "Terminal" << 0 << 6 << terminal;
    QTest::newRow("nothing selected") << "selected" << "MAIN.KVR" << "" << 0 << 0
                                      << "No text selected. Mark text to compile first.";
}

void TestCompileRun::Refusals()
{
    QFETCH(QString, command);
    QFETCH(QString, name);
    QFETCH(QString, computer);
    QFETCH(int, busy);
    QFETCH(int, selLength);
    QFETCH(QString, message);
    CompileFixture f;
    const QString path = f.Write(name, {"1 DROP"});
    if (!computer.isEmpty())
        f.context->settings.computerType = computer;
    f.context->busyState = BusyState(busy);
    f.context->settings.currentFile = path;
    f.editor.windows.insert(1, {path, "1 DROP", 0, selLength});
    f.report->AddReportLine(QStringLiteral("old line"));
    if (command == "file")
        f.driver->CompileFile(path);
    else if (command == "window")
        f.driver->CompileThisWindow(1);
    else if (command == "selected")
        f.driver->CompileSelected(1);
    else
        f.driver->CompileRecentFile(1, path);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{message});
    QCOMPARE(f.prompts.shown.first().icon, selLength || busy || command == "file" ? PromptIcon::Exclamation
                                                                                  : PromptIcon::Information);
    QCOMPARE(int(f.context->busyState), busy);
    QCOMPARE(f.report->Lines(), QStringList{"old line"});
    QVERIFY(f.transport.lines.isEmpty() && f.editor.savedFrom.isEmpty() && f.terminal.timerStates.isEmpty());
}

void TestCompileRun::SelectionAndLastDefinition()
{
    // A LIB.KVR beside the source and one in the program folder: the
    // selection is compiled from the program folder, so that one wins.
    CompileFixture f;
    const QString main = f.Write("src/MAIN.KVR", {"x"});
    f.Write("src/LIB.KVR", {"FROM SOURCE FOLDER"});
    WriteAll(f.paths->ProgramFolder() + "LIB.KVR", "FROM PROGRAM FOLDER\r\n");
    const QString text = QStringLiteral("0 DROP\r\n: A 1 ;\r\nINCLUDE LIB\r\n2 DROP");
    f.editor.windows.insert(1, {main.toUpper(), text, 8, int(text.size()) - 8});
    f.driver->CompileSelected(1);
    const QString selected = f.paths->ProgramFolder() + "SELECTED.KVR";
    QCOMPARE(ReadAll(selected), QByteArray(": A 1 ;\r\nINCLUDE LIB\r\n2 DROP\r\n\r\n"));
    QCOMPARE(f.Sent(), (QStringList{": A 1 ;", "FROM PROGRAM FOLDER", "2 DROP"}));
    QCOMPARE(f.editor.savedFrom, QList<int>{1});

    // From the last definition: the text from the cursor's definition on
    // is selected and compiled, also in terminal mode.
    CompileFixture g;
    g.context->settings.computerType = QStringLiteral("Terminal");
    const QString defs = QStringLiteral(": A 1 ;\r\n: B 2 ;\r\n3 B");
    g.editor.windows.insert(1, {"/W/MAIN.KVR", defs, 12, 0});
    g.driver->CompileFromLastDefinition(1);
    QCOMPARE(g.editor.windows[1].selStart, 9);
    QCOMPARE(g.editor.windows[1].selLength, int(defs.size()) - 9);
    QCOMPARE(g.Sent(), (QStringList{": B 2 ;", "3 B"}));
}

void TestCompileRun::ErrorLineShown_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("open");  // files with an editor window before the run
    QTest::addColumn<QString>("shownIn");
    QTest::addColumn<int>("line");
    QTest::addColumn<bool>("loaded");
    QTest::newRow("line 5 of the main file") << QStringList{"MAIN.KVR", "1\n2\n3\n4\nBAD"}
                                             << QStringList{"OTHER.KVR", "MAIN.KVR"} << "MAIN.KVR" << 5 << false;
    QString many;
    for (int i = 1; i < 1234; ++i)
        many += "1 DROP\n";
    QTest::newRow("line 1234 selects line 123") << QStringList{"MAIN.KVR", many + "BAD"} << QStringList{"MAIN.KVR"}
                                                << "MAIN.KVR" << 123 << false;
    QTest::newRow("include beside the main file, not open: loaded")
        << QStringList{"MAIN.KVR", "INCLUDE LIB\n1 DROP", "LIB.KVR", "2 DROP\nBAD"} << QStringList{"MAIN.KVR"}
        << "LIB.KVR" << 2 << true;
    QTest::newRow("include through a folder, already open: that window")
        << QStringList{"MAIN.KVR", "INCLUDE SUB\\LIB\n1 DROP", "SUB/LIB.KVR", "2 DROP\nBAD"}
        << QStringList{"MAIN.KVR", "SUB/LIB.KVR"} << "SUB/LIB.KVR" << 2 << false;
}

void TestCompileRun::ErrorLineShown()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, open);
    QFETCH(QString, shownIn);
    QFETCH(int, line);
    QFETCH(bool, loaded);
    CompileFixture f;
    f.board.Lacks("BAD");
    for (int i = 0; i < open.size(); ++i)
        f.editor.windows.insert(i + 1, {LogicalName(f.dir.filePath(open[i])), {}});
    const QString main = f.Compile(files);
    const QString window = LogicalName(f.dir.filePath(shownIn));
    QCOMPARE(f.editor.shownLines, (ShownLines{{window, line}}));
    QCOMPARE(f.editor.loaded, loaded ? QStringList{f.dir.filePath(shownIn)} : QStringList());
    QCOMPARE(f.driver->LastErrorEditor(), f.editor.active);
    // Report lines that name a file and line open it there: the INCLUDE
    // line and the error; past the last, nothing.
    if (files.size() > 2) {
        f.editor.shownLines.clear();
        QVERIFY(f.driver->ShowReportLine(0) && f.driver->ShowReportLine(1) && !f.driver->ShowReportLine(2));
        QCOMPARE(f.editor.shownLines, (ShownLines{{LogicalName(main), 1}, {window, line}}));
    }

    // A compiled selection's error is shown in the window it came from.
    CompileFixture g;
    g.board.Lacks("BAD");
    const QString text = QStringLiteral("1 DROP\r\n2 DROP\r\n3 DROP\r\nBAD\r\n4 DROP");
    g.editor.windows.insert(2, {LogicalName(main), text, 8, int(text.size()) - 8});
    g.driver->CompileSelected(2);
    QCOMPARE(g.editor.shownLines, (ShownLines{{LogicalName(main), 4}}));
    QCOMPARE(g.driver->LastErrorEditor(), 2);
}

void TestCompileRun::ProgressCountsKnownFiles()
{
    CompileFixture f;
    CompileProgress progress(*f.driver, f.clock);
    QStringList texts;
    connect(&progress, &CompileProgress::Updated, [&texts](const QString &text) { texts.append(text); });
    const QString main = f.Write("MAIN.KVR", {"INCLUDE LIB", "\\ note", "1 DROP"});
    WriteAll(f.dir.filePath("LIB.KVR"), "A\nB\rC"); // every kind of line end, none at the end
    f.driver->CompileFile(main);
    // At the first line only MAIN.KVR is known; LIB.KVR's lines join when it opens.
    QCOMPARE(texts.first(), QStringLiteral("MAIN.KVR line 1 - 1 of 3 lines - 0:00"));
    QCOMPARE(texts.last(), QString());
    QCOMPARE(f.Sent(), (QStringList{"A", "B", "C", "1 DROP"}));
    const CompileProgress::Snapshot &now = progress.Current();
    QCOMPARE(now.file, main);
    QCOMPARE(now.line, 3);
    QCOMPARE(now.done, 6);
    QCOMPARE(now.known, 6);
}

void TestCompileRun::ContinueAfterFix_data()
{
    QTest::addColumn<QStringList>("files");     // when the compile stopped
    QTest::addColumn<QStringList>("fixed");     // when Continue is chosen
    QTest::addColumn<int>("resumedAt");         // line of MAIN.KVR resumed at; 0 when a full compile is offered
    QTest::addColumn<QString>("question");
    QTest::addColumn<QStringList>("sent");      // what Continue sends (a full compile after Yes)
    QTest::newRow("restart at a multi-line definition's first line")
        << QStringList{"MAIN.KVR", "1 DROP\n: TWO\nBAD\n;\n3 DROP"} << QStringList{"MAIN.KVR", "1 DROP\n: TWO\n2\n;\n3 DROP"}
        << 2 << "" << QStringList{": TWO", "2", ";", "3 DROP"};
    QTest::newRow("a semicolon in a comment or string does not end the definition")
        << QStringList{"MAIN.KVR", ": TWO ( ; ) .\" ; \" \\ ;\nBAD ;"}
        << QStringList{"MAIN.KVR", ": TWO ( ; ) .\" ; \" \\ ;\n2 ;"} << 1 << ""
        << QStringList{": TWO ( ; ) .\" ; \" \\ ;", "2 ;"};
    QTest::newRow("a comment added above is no change")
        << QStringList{"MAIN.KVR", "1 DROP\nBAD"} << QStringList{"MAIN.KVR", "\\ fixed below\n1 DROP\n6 DROP"} << 3 << ""
        << QStringList{"6 DROP"};
    QTest::newRow("change detected in an include file")
        << QStringList{"MAIN.KVR", "INCLUDE LIB\nBAD", "LIB.KVR", "1 DROP"}
        << QStringList{"MAIN.KVR", "INCLUDE LIB\n4 DROP", "LIB.KVR", "1  DROP"} << 0 << "LIB.KVR line 1 has changed"
        << QStringList{"1  DROP", "4 DROP"};
    QTest::newRow("change of a conditional result detected")
        << QStringList{"MAIN.KVR", "#CONDITION A\n#IF A\n1 DROP\n#ELSE\n2 DROP\n#ENDIF\nBAD"}
        << QStringList{"MAIN.KVR", "#CONDITION B\n#IF A\n1 DROP\n#ELSE\n2 DROP\n#ENDIF\n5 DROP"} << 0
        << "MAIN.KVR line 5 has changed" << QStringList{"2 DROP", "5 DROP"};
    QTest::newRow("after a clean finish a full compile is offered")
        << QStringList{"MAIN.KVR", "1 DROP"} << QStringList{"MAIN.KVR", "1 DROP"} << 0 << "finished"
        << QStringList{"1 DROP"};
}

void TestCompileRun::ContinueAfterFix()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, fixed);
    QFETCH(int, resumedAt);
    QFETCH(QString, question);
    QFETCH(QStringList, sent);
    CompileFixture f;
    f.board.Lacks("BAD");
    f.board.replies.insert("BAD ;", "BAD ; BAD ?  - not found\r\n");
    for (qsizetype i = 0; i < files.size(); i += 2)
        f.Write(files[i], files[i + 1].split('\n'));
    const QString path = f.dir.filePath("MAIN.KVR").toUpper();
    f.driver->CompileFile(path);
    for (qsizetype i = 0; i < fixed.size(); i += 2)
        f.Write(fixed[i], fixed[i + 1].split('\n'));
    f.transport.lines.clear();
    f.prompts.Clear();
    f.driver->ContinueLastCompile();
    QCOMPARE(f.Sent(), sent);
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
    if (resumedAt > 0) {
        QCOMPARE(f.report->Lines().first(), "CONTINUED at " + ShortenPath(path) + " line " + QString::number(resumedAt));
        QVERIFY(f.prompts.shown.isEmpty());
    } else {
        QCOMPARE(f.prompts.shown.size(), 1);
        QVERIFY2(f.prompts.shown.first().text.contains(question), qPrintable(f.prompts.shown.first().text));
        QCOMPARE(f.prompts.shown.first().buttons, PromptButtons::YesNo);
        QVERIFY(!f.report->Lines().join('\n').contains("CONTINUED"));
    }
}

QTEST_GUILESS_MAIN(TestCompileRun)
#include "tst_compilerun.moc"
