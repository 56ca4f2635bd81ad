// Whole compile runs on the in-memory board: what the board gets, the
// report, how a run ends, the commands that start or continue one, and the
// report window and Compile menus offscreen.
#include "CompileFixture.h"
#include "app/IniFile.h"
#include "compiler/ui/CompilerWindows.h"
#include "compiler/ui/frmStatus.h"
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

struct Windows {
    CompileFixture f;
    QMainWindow frame;
    QMdiArea *area = new QMdiArea;
    std::unique_ptr<CompilerWindows> compiler;
    Windows()
    {
        frame.setCentralWidget(area);
        frame.resize(1000, 700);
        frame.show();
        compiler = std::make_unique<CompilerWindows>(*f.context, *f.link, &f.terminal, &f.editor, area);
    }
    QListWidget *List() { return compiler->StatusWindow()->findChild<QListWidget *>("List1"); }
    // An editor window as the editor pool makes it: an empty Compile menu and an Options menu.
    QWidget *EditorWindow(int index)
    {
        auto *window = new QWidget;
        auto *bar = new QMenuBar(window);
        bar->addMenu("&Compile")->setObjectName("mnuCompile");
        bar->addMenu("&Options")->setObjectName("mnuOptions");
        area->addSubWindow(window)->show();
        emit f.editor.EditorCreated(index, window);
        return window;
    }
};

class TestCompileRun : public QObject {
    Q_OBJECT
private slots:
    void Runs_data();
    void Runs();
    void HaltWithF2_data();
    void HaltWithF2();
    void ReceiveQuietAndShown();
    void Refusals_data();
    void Refusals();
    void SelectionFromProgramFolder();
    void ErrorLineShown_data();
    void ErrorLineShown();
    void ContinueAfterFix_data();
    void ContinueAfterFix();
    void ReportWindow();
    void CompileMenus();
};

void TestCompileRun::Runs_data()
{
    QTest::addColumn<QStringList>("files");  // name, text pairs; the first is compiled
    QTest::addColumn<QByteArray>("reply");   // the board's reply to the line "X"; "-": none; "close": the link
                                             // closes; "HERE a": the end address
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
    row("lone CR and LF end lines too", {"MAIN.KVR", "A\rB\nC\n\rD"}, {}, {"A", "B", "C", "D"}, {fin}, ok);
    row("comment lines kept back unless tab-indented, lower-case words sent",
        {"MAIN.KVR", "\\ c\n    \\ indented\n\t\\ tab\ninclude lib\nQUICK\nINCLUDE\n#condition"}, {},
        {"\t\\ tab", "include lib", "QUICK", "INCLUDE", "#condition"}, {fin}, ok);
    row("board error: word and message", x, "X X ?  - undefined word\r\n", x2, {"@MAIN.KVR 2: X ?  - undefined word"}, error);
    row("error word found by looking back", x, "1 2 FOO BAR ?  - nf\r\n", x2, {"@MAIN.KVR 2: BAR ?  - nf"}, error);
    row("look-back limited to 31 characters", x, "A " + QByteArray(40, 'W') + " ?  - msg\r\n", x2,
        {"@MAIN.KVR 2: " + QString(31, 'W') + " ?  - msg"}, error);
    row("redefinition warns and goes on", x, ": X ; X NOT UNIQUE  ok\r\n", x3, {"@MAIN.KVR 2: X NOT UNIQUE", fin}, ok);
    row("no reply: not responding", x, "-", x2, {"KVR4410 NOT RESPONDING"}, mute);
    row("link closes mid-compile", x, "close", x2, {"KVR4410 NOT RESPONDING"}, mute);
    const QStringList one = {"MAIN.KVR", "1 DROP"};
    const int unconfirmed = int(RunEnd::EndUnconfirmed);
    row("end address of three digits", one, "HERE 12A", {"1 DROP"}, {"@MAIN.KVR - FINISHED at 12A"}, ok);
    row("noise is no end address", one, "HERE CHGI", {"1 DROP"}, {"@MAIN.KVR - FINISHED at CHGI"}, unconfirmed);
    row("no end address", one, "HERE", {"1 DROP"}, {"@MAIN.KVR - FINISHED at"}, unconfirmed);
    row("out-of-order directive", {"MAIN.KVR", "1 DROP\n#ENDIF\n2 DROP"}, {}, {"1 DROP"},
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
    const int ok = int(RunEnd::Finished), unconfirmed = int(RunEnd::EndUnconfirmed);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
    CompileFixture f;
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    if (reply.startsWith("HERE"))
        f.board.here = reply.mid(5);
    else if (!reply.isEmpty())
        f.board.replies.insert("X", reply == "-" || reply == "close" ? QByteArray() : reply);
    f.board.onLine = [&](const QByteArray &line) { line == "X" && reply == "close" ? f.transport.Close() : void(); };
    QVERIFY(QDir(f.dir.path()).mkpath("SUB.KVR"));
    f.editor.windows.insert(1, {LogicalName(f.dir.filePath(files.first())), {}});
    f.Compile(files);
    QCOMPARE(f.Sent(), sent);
    std::transform(report.begin(), report.end(), report.begin(), [&f](const QString &l) { return f.Expand(l); });
    QCOMPARE(f.report->Lines(), report);
    QCOMPARE(int(f.driver->State().runEnd), runEnd);
    QVERIFY(f.driver->State().topLevelFile.isEmpty() && !f.driver->State().files.IsOpen(1));
    QVERIFY(f.context->busyState == BusyState::Idle);
    QCOMPARE(f.transport.lines.contains("BASE @ HEX HERE U. BASE !"), runEnd == ok || runEnd == unconfirmed);
    // Whatever the end, the progress display goes and the terminal takes keys again.
    QVERIFY(f.terminal.progressStates.first() && !f.terminal.progressStates.last());
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

// F2 while waiting for a reply: just the halt, even when the interrupt's
// own waits outlast the line's time-out, and when what came is the
// interrupt's own complaint about its " ;".
void TestCompileRun::HaltWithF2_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("the interrupt took the reply away") << QByteArray();
    QTest::newRow("the interrupt's \" ;\" answered") << QByteArray(" ; ?  - interpreting a compile-only word\r\n");
}

void TestCompileRun::HaltWithF2()
{
    QFETCH(QByteArray, reply);
    CompileFixture f;
    f.board.replies.insert("2 DROP", reply);
    f.context->settings.timeout = QStringLiteral("100000");
    quint32 haltedAt = 0;
    f.transport.beforeCount = [&f, &haltedAt] {
        if (f.transport.lines.contains("2 DROP") && f.context->compileOutcome == CompileOutcome::Running) {
            f.driver->HaltCompile();
            haltedAt = f.clock.ticks += 200000;
        }
    };
    f.Compile({"MAIN.KVR", "1 DROP\n2 DROP\n3 DROP"});
    QCOMPARE(f.Sent(), (QStringList{"1 DROP", "2 DROP"}));
    QCOMPARE(f.report->Lines(), QStringList{"HALTED COMPILE WITH F2"});
    QCOMPARE(f.driver->State().runEnd, RunEnd::Halted);
    QCOMPARE(f.terminal.interrupts, 1);
    QVERIFY(f.prompts.shown.isEmpty());
    QVERIFY(f.clock.ticks - haltedAt < 10000); // it did not wait for the time-out
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
    QVERIFY(f.terminal.shown.isEmpty());

    // With display the traffic is painted, the stale second line is not.
    CompileFixture g;
    g.board.replies.insert("A", "A ok\r\nLATER ?  - stale\r\n");
    g.Compile({"MAIN.KVR", "A\nB"});
    QCOMPARE(g.driver->State().runEnd, RunEnd::Finished);
    QVERIFY(g.terminal.shown.startsWith("A ok\r\n") && !g.terminal.shown.contains("LATER"));
}

void TestCompileRun::Refusals_data()
{
    QTest::addColumn<QString>("command"); // file, window, selected, recent
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("setup");   // busy, terminal, unselected
    QTest::addColumn<QString>("message");
    const QString terminal = "KVR-PC for Windows is in Terminal emulator, not development mode. Select computer "
                             "using interactive window options menu.";
    QTest::newRow("database being built") << "file" << "MAIN.KVR" << "busy" << "Wait until database complete before compiling";
    QTest::newRow("other extension") << "file" << "MAIN.TXT" << "" << "Extension not .KVR, can not compile";
    for (const char *command : {"window", "selected", "recent"})
        QTest::addRow("%s in terminal mode", command) << command << "MAIN.KVR" << "terminal" << terminal;
    QTest::newRow("nothing selected") << "selected" << "MAIN.KVR" << "unselected"
                                      << "No text selected. Mark text to compile first.";
}

void TestCompileRun::Refusals()
{
    QFETCH(QString, command);
    QFETCH(QString, name);
    QFETCH(QString, setup);
    QFETCH(QString, message);
    CompileFixture f;
    const QString path = f.Write(name, {"1 DROP"});
    if (setup == "terminal")
        f.context->settings.computerType = QStringLiteral("Terminal");
    const BusyState busy = setup == "busy" ? BusyState::BuildingDatabase : BusyState::Idle;
    f.context->busyState = busy;
    f.context->settings.currentFile = path;
    f.editor.windows.insert(1, {path, "1 DROP", 0, setup == "unselected" ? 0 : 6});
    if (command == "file")
        f.driver->CompileFile(path);
    else if (command == "window")
        f.driver->CompileThisWindow(1);
    else
        command == "selected" ? f.driver->CompileSelected(1) : f.driver->CompileRecentFile(1, path);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{message});
    QCOMPARE(f.prompts.shown.first().icon, setup == "unselected" ? PromptIcon::Information : PromptIcon::Exclamation);
    QCOMPARE(f.context->busyState, busy);
    QVERIFY(f.transport.lines.isEmpty() && f.editor.savedFrom.isEmpty() && f.terminal.timerStates.isEmpty());
}

void TestCompileRun::SelectionFromProgramFolder()
{
    // A LIB.KVR beside the source and one in the program folder: the
    // selection is compiled from the program folder, so that one wins. Its
    // error is shown in the window the text came from.
    CompileFixture f;
    f.board.Lacks("BAD");
    const QString main = f.Write("src/LIB.KVR", {"FROM SOURCE FOLDER"}).replace("LIB", "MAIN");
    WriteAll(f.paths->ProgramFolder() + "LIB.KVR", "FROM PROGRAM FOLDER\r\n");
    const QString text = QStringLiteral("0 DROP\r\n: A 1 ;\r\nINCLUDE LIB\r\nBAD");
    f.editor.windows.insert(2, {main.toUpper(), text, 8, int(text.size()) - 8});
    f.driver->CompileSelected(2);
    QCOMPARE(ReadAll(f.paths->ProgramFolder() + "SELECTED.KVR"), QByteArray(": A 1 ;\r\nINCLUDE LIB\r\nBAD\r\n\r\n"));
    QCOMPARE(f.Sent(), (QStringList{": A 1 ;", "FROM PROGRAM FOLDER", "BAD"}));
    QVERIFY(f.editor.savedFrom == QList<int>{2} && f.driver->LastErrorEditor() == 2);
    QCOMPARE(f.editor.shownLines, (ShownLines{{main.toUpper(), 4}}));
}

void TestCompileRun::ErrorLineShown_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("open"); // files with an editor window before the run
    QTest::addColumn<QString>("shownIn");
    QTest::addColumn<int>("line");
    QTest::newRow("line 5 of the main file, other windows open")
        << QStringList{"MAIN.KVR", "1\n2\n3\n4\nBAD"} << QStringList{"OTHER.KVR", "MAIN.KVR"} << "MAIN.KVR" << 5;
    QTest::newRow("include beside the main file, not open: loaded")
        << QStringList{"MAIN.KVR", "INCLUDE LIB\n1 DROP", "LIB.KVR", "2 DROP\nBAD"} << QStringList{"MAIN.KVR"} << "LIB.KVR" << 2;
    QTest::newRow("include through a folder, already open: that window")
        << QStringList{"MAIN.KVR", "INCLUDE SUB\\LIB\n1 DROP", "SUB/LIB.KVR", "2 DROP\nBAD"}
        << QStringList{"MAIN.KVR", "SUB/LIB.KVR"} << "SUB/LIB.KVR" << 2;
}

void TestCompileRun::ErrorLineShown()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, open);
    QFETCH(QString, shownIn);
    QFETCH(int, line);
    CompileFixture f;
    f.board.Lacks("BAD");
    for (int i = 0; i < open.size(); ++i)
        f.editor.windows.insert(i + 1, {LogicalName(f.dir.filePath(open[i])), {}});
    const QString main = f.Compile(files);
    const QString window = LogicalName(f.dir.filePath(shownIn));
    QCOMPARE(f.editor.shownLines, (ShownLines{{window, line}}));
    QCOMPARE(f.editor.loaded, open.contains(shownIn) ? QStringList() : QStringList{f.dir.filePath(shownIn)});
    QCOMPARE(f.driver->LastErrorEditor(), f.editor.active);
    // Report lines that name a file and line open it there: the INCLUDE
    // line and the error; past the last, nothing.
    if (files.size() > 2) {
        f.editor.shownLines.clear();
        QVERIFY(f.driver->ShowReportLine(0) && f.driver->ShowReportLine(1) && !f.driver->ShowReportLine(2));
        QCOMPARE(f.editor.shownLines, (ShownLines{{LogicalName(main), 1}, {window, line}}));
    }
}

void TestCompileRun::ContinueAfterFix_data()
{
    QTest::addColumn<QStringList>("files"); // when the compile stopped
    QTest::addColumn<QStringList>("fixed"); // when Continue is chosen
    QTest::addColumn<int>("resumedAt");     // line of MAIN.KVR; 0: a full compile is offered
    QTest::addColumn<QString>("question");
    QTest::addColumn<QStringList>("sent");  // what Continue sends (a full compile after Yes)
    const QString def = QStringLiteral(": TWO ( ; ) .\" ; \" \\ ;");
    QTest::newRow("restart at a multi-line definition's first line") << QStringList{"MAIN.KVR", "1 DROP\n: TWO\nBAD\n;\n3 DROP"}
        << QStringList{"MAIN.KVR", "1 DROP\n: TWO\n2\n;\n3 DROP"} << 2 << "" << QStringList{": TWO", "2", ";", "3 DROP"};
    QTest::newRow("a semicolon in a comment or string does not end the definition") << QStringList{"MAIN.KVR", def + "\nBAD ;"}
        << QStringList{"MAIN.KVR", def + "\n2 ;"} << 1 << "" << QStringList{def, "2 ;"};
    QTest::newRow("change detected in an include file") << QStringList{"MAIN.KVR", "INCLUDE LIB\nBAD", "LIB.KVR", "1 DROP"}
        << QStringList{"MAIN.KVR", "INCLUDE LIB\n4 DROP", "LIB.KVR", "1  DROP"} << 0 << "LIB.KVR line 1 has changed"
        << QStringList{"1  DROP", "4 DROP"};
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
    const QString main = f.Compile(files);
    f.WriteFiles(fixed);
    f.transport.lines.clear();
    f.prompts.Clear();
    f.driver->ContinueLastCompile();
    QCOMPARE(f.Sent(), sent);
    QCOMPARE(f.driver->State().runEnd, RunEnd::Finished);
    if (resumedAt > 0) {
        QCOMPARE(f.report->Lines().first(), "CONTINUED at " + ShortenPath(main) + " line " + QString::number(resumedAt));
        QVERIFY(f.prompts.shown.isEmpty());
    } else { // a full compile is offered, and taken
        QCOMPARE(f.prompts.shown.size(), 1);
        QVERIFY2(f.prompts.shown.first().text.contains(question), qPrintable(f.prompts.shown.first().text));
        QVERIFY(f.prompts.shown.first().buttons == PromptButtons::YesNo && !f.report->Lines().join('\n').contains("CONTINUED"));
    }
}

void TestCompileRun::ReportWindow()
{
    // Report lines are trimmed, the last one current, without a beep when quiet.
    Windows w;
    QListWidget *list = w.List();
    w.f.context->settings.quiet = QStringLiteral("ON");
    w.compiler->Report().AddReportLine("  first  ");
    w.compiler->Report().AddReportLine("second");
    QCOMPARE(list->item(0)->text(), QStringLiteral("first"));
    QCOMPARE(list->currentRow(), 1);
    QCOMPARE(w.f.prompts.beeps, 0);
    QTest::keyClick(list, Qt::Key_F2);
    QCOMPARE(w.f.context->compileOutcome, CompileOutcome::HaltRequested);
    QCOMPARE(w.f.terminal.interrupts, 1);

    // Tab goes to the editor window the compiler last showed a line in; a
    // double-click on the error line goes to its window and line.
    QWidget *first = w.EditorWindow(1);
    QWidget *second = w.EditorWindow(2);
    auto activateSecond = [&] { w.area->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(second->parentWidget())); };
    w.f.board.Lacks("BAD");
    const QString main = w.f.Write("MAIN.KVR", {"BAD"});
    w.f.editor.windows.insert(1, {main.toUpper(), {}});
    w.compiler->Driver().CompileFile(main);
    activateSecond();
    QTest::keyClick(list, Qt::Key_Tab);
    QCOMPARE(w.area->activeSubWindow()->widget(), first);
    w.compiler->BringReportForward();
    QVERIFY(QTest::qWaitForWindowExposed(list->window()));
    activateSecond();
    w.f.editor.shownLines.clear();
    const QPoint at = list->visualItemRect(list->item(0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    QCOMPARE(w.f.editor.shownLines, (ShownLines{{main.toUpper(), 1}}));
    QCOMPARE(w.area->activeSubWindow()->widget(), first);
}

void TestCompileRun::CompileMenus()
{
    Windows w;
    IniFile ini;
    for (const auto &[key, value] : {std::pair{"RecentFile1", "/W/A&B.KVR"}, {"RecentFile3", "Not Used"}})
        ini.SetValue("Recent Files", key, value);
    QVERIFY(ini.Save(w.f.paths->SettingsFile()));
    QWidget *a = w.EditorWindow(1);
    const QMenu *menu = a->findChild<QMenu *>("mnuCompile");
    const std::tuple<const char *, const char *, QKeySequence> items[] = {
        {"mnuCThisWindow", "&This window", QKeySequence(Qt::Key_F8)},
        {"mnuCSelected", "&Selected Text", QKeySequence(Qt::CTRL | Qt::Key_F8)},
        {"mnuCLast", "From &Last definition", QKeySequence(Qt::SHIFT | Qt::Key_F8)},
        {"mnuCContinue", "C&ontinue compile", QKeySequence(Qt::Key_F9)},
        {"mnuCRecentFile(1)", "/W/A&&B.KVR", QKeySequence()},
    };
    for (const auto &[name, caption, key] : items) {
        QAction *action = menu->findChild<QAction *>(name);
        QVERIFY2(action && action->isVisible(), name);
        QCOMPARE(action->text(), QString::fromLatin1(caption));
        QCOMPARE(action->shortcut(), key);
    }
    QVERIFY(!a->findChild<QAction *>("mnuCRecentFile(3)")->isVisible());
    const int count = menu->actions().size();
    emit w.f.editor.EditorCreated(1, a); // installing twice adds nothing
    QCOMPARE(menu->actions().size(), count);
}

QTEST_MAIN(TestCompileRun)
#include "tst_compilerun.moc"
