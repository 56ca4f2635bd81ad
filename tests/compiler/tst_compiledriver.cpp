// The compile driver: refusals, the Compile menu commands, the selection
// file, the progress display and the failing line shown in an editor.
#include "CompileFixture.h"
#include "compiler/CompileProgress.h"
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestCompileDriver : public QObject {
    Q_OBJECT
private slots:
    void Refusals_data();
    void Refusals();
    void TerminalModeCommands_data();
    void TerminalModeCommands();
    void NoSelection();
    void SelectionFileInProgramFolder();
    void FromLastDefinition();
    void ThisWindowSavesAndCompilesCurrentFile();
    void RecentFileCompile();
    void ErrorLineSelected_data();
    void ErrorLineSelected();
    void ErrorInIncludeShownInItsWindow_data();
    void ErrorInIncludeShownInItsWindow();
    void SelectionErrorShownInSourceWindow();
    void NoEditorHost();
    void Toggles();
    void ProgressLabelsOnEveryExit_data();
    void ProgressLabelsOnEveryExit();
    void ReportClearedAndBroughtForward();
    void ProgressCountsKnownFiles();
    void ProgressText_data();
    void ProgressText();
    void ContinueAfterFix_data();
    void ContinueAfterFix();
};

void TestCompileDriver::Refusals_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("busy");
    QTest::addColumn<QString>("message");
    QTest::newRow("database being built") << "MAIN.KVR" << int(BusyState::BuildingDatabase)
                                          << "Wait until database complete before compiling";
    QTest::newRow("lower-case extension") << "MAIN.kvr" << 0 << "Extension not .KVR, can not compile";
    QTest::newRow("other extension") << "MAIN.TXT" << 0 << "Extension not .KVR, can not compile";
}

void TestCompileDriver::Refusals()
{
    QFETCH(QString, name);
    QFETCH(int, busy);
    QFETCH(QString, message);
    CompileFixture f;
    const QString path = f.Write(name, {"1 DROP"});
    f.context->busyState = BusyState(busy);
    f.report->AddReportLine(QStringLiteral("old line"));
    f.driver->CompileFile(path);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{message});
    QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
    QCOMPARE(f.prompts.shown.first().caption, AppTitle);
    QCOMPARE(int(f.context->busyState), busy);
    QCOMPARE(f.report->Lines(), QStringList{"old line"});
    QVERIFY(f.terminal.timerStates.isEmpty());
    QVERIFY(f.transport.lines.isEmpty());
}

void TestCompileDriver::TerminalModeCommands_data()
{
    QTest::addColumn<int>("command");
    QTest::newRow("This window") << 0;
    QTest::newRow("Selected Text") << 1;
    QTest::newRow("recent file") << 2;
}

void TestCompileDriver::TerminalModeCommands()
{
    QFETCH(int, command);
    CompileFixture f;
    f.context->settings.computerType = QStringLiteral("Terminal");
    const QString main = f.Write("MAIN.KVR", {"1 DROP"});
    f.context->settings.currentFile = main;
    f.editor.windows.insert(1, {main, "1 DROP", 0, 6});
    if (command == 0)
        f.driver->CompileThisWindow(1);
    else if (command == 1)
        f.driver->CompileSelected(1);
    else
        f.driver->CompileRecentFile(1, main);
    QCOMPARE(f.prompts.MessageTexts(),
             QStringList{"KVR-PC for Windows is in Terminal emulator, not development mode. Select computer using "
                         "interactive window options menu."});
    QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
    QVERIFY(f.transport.lines.isEmpty());
    QVERIFY(f.editor.savedFrom.isEmpty());
}

void TestCompileDriver::NoSelection()
{
    CompileFixture f;
    f.editor.windows.insert(1, {"/W/MAIN.KVR", "1 DROP", 3, 0});
    f.driver->CompileSelected(1);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{"No text selected. Mark text to compile first."});
    QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Information);
    QVERIFY(f.transport.lines.isEmpty());
}

void TestCompileDriver::SelectionFileInProgramFolder()
{
    CompileFixture f;
    // A LIB.KVR beside the source and one in the program folder: the
    // selection is compiled from the program folder, so that one wins.
    const QString main = f.Write("src/MAIN.KVR", {"x"});
    f.Write("src/LIB.KVR", {"FROM SOURCE FOLDER"});
    test::WriteAll(f.paths->ProgramFolder() + "LIB.KVR", "FROM PROGRAM FOLDER\r\n");
    const QString text = QStringLiteral("0 DROP\r\n: A 1 ;\r\nINCLUDE LIB\r\n2 DROP");
    f.editor.windows.insert(1, {main.toUpper(), text, 8, int(text.size()) - 8});
    f.driver->CompileSelected(1);

    const QString selected = f.paths->ProgramFolder() + "SELECTED.KVR";
    QCOMPARE(test::ReadAll(selected), QByteArray(": A 1 ;\r\nINCLUDE LIB\r\n2 DROP\r\n\r\n"));
    QCOMPARE(f.Sent(), (QStringList{": A 1 ;", "FROM PROGRAM FOLDER", "2 DROP"}));
    QCOMPARE(f.editor.savedFrom, QList<int>{1});
    QCOMPARE(f.report->LastLine(), ShortenPath(selected.toUpper()) + " - FINISHED at 1A2B");
}

void TestCompileDriver::FromLastDefinition()
{
    CompileFixture f;
    const QString text = QStringLiteral(": A 1 ;\r\n: B 2 ;\r\n3 B");
    f.editor.windows.insert(1, {"/W/MAIN.KVR", text, 12, 0});
    f.driver->CompileFromLastDefinition(1);
    QCOMPARE(f.editor.windows[1].selStart, 9);
    QCOMPARE(f.editor.windows[1].selLength, int(text.size()) - 9);
    QCOMPARE(f.Sent(), (QStringList{": B 2 ;", "3 B"}));

    CompileFixture g;
    g.context->settings.computerType = QStringLiteral("Terminal"); // no Terminal check here
    g.editor.windows.insert(1, {"/W/MAIN.KVR", text, 3, 0});
    g.driver->CompileFromLastDefinition(1);
    QCOMPARE(g.Sent(), (QStringList{": A 1 ;", ": B 2 ;", "3 B"}));
}

void TestCompileDriver::ThisWindowSavesAndCompilesCurrentFile()
{
    CompileFixture f;
    const QString main = f.Write("MAIN.KVR", {"1 DROP"});
    f.context->settings.currentFile = main;
    f.editor.windows.insert(2, {main, "1 DROP", 0, 0});
    f.driver->CompileThisWindow(2);
    QCOMPARE(f.editor.savedFrom, QList<int>{2});
    QCOMPARE(f.Sent(), QStringList{"1 DROP"});
}

void TestCompileDriver::RecentFileCompile()
{
    CompileFixture f;
    const QString other = f.Write("OTHER.KVR", {"7 DROP"});
    f.context->settings.currentFile = QStringLiteral("/W/MAIN.KVR");
    f.driver->CompileRecentFile(3, other);
    QCOMPARE(f.context->settings.currentFile, other);
    QCOMPARE(f.editor.savedFrom, QList<int>{3});
    QCOMPARE(f.editor.opened, QStringList{other});
    QCOMPARE(f.Sent(), QStringList{"7 DROP"});
}

void TestCompileDriver::ErrorLineSelected_data()
{
    QTest::addColumn<int>("failingLine");
    QTest::addColumn<int>("selectedLine");
    QTest::newRow("line 5") << 5 << 5;
    QTest::newRow("line 1234 selects line 123") << 1234 << 123;
}

void TestCompileDriver::ErrorLineSelected()
{
    QFETCH(int, failingLine);
    QFETCH(int, selectedLine);
    CompileFixture f;
    QStringList lines;
    for (int i = 1; i < failingLine; ++i)
        lines.append(QStringLiteral("%1 DROP").arg(i));
    lines.append(QStringLiteral("BAD"));
    f.board.Lacks("BAD");
    const QString main = f.Write("MAIN.KVR", lines);
    f.editor.windows.insert(1, {"/OTHER.KVR", {}, 0, 0});
    f.editor.windows.insert(4, {main.toUpper(), {}, 0, 0});
    f.driver->CompileFile(main);
    QCOMPARE(f.report->LastLine(), f.Prefix(main, failingLine) + ": BAD ?  - not found");
    QCOMPARE(f.editor.shownLines, (QList<QPair<QString, int>>{{main.toUpper(), selectedLine}}));
    QCOMPARE(f.driver->LastErrorEditor(), 4);
    QVERIFY(f.editor.loaded.isEmpty());
}

void TestCompileDriver::ErrorInIncludeShownInItsWindow_data()
{
    QTest::addColumn<QString>("include");
    QTest::addColumn<QString>("libPath");
    QTest::addColumn<bool>("open");
    QTest::newRow("beside the main file, not open: loaded") << "INCLUDE LIB" << "LIB.KVR" << false;
    QTest::newRow("through a folder, already open: that window")
        << "INCLUDE SUB\\LIB" << "SUB/LIB.KVR" << true;
}

void TestCompileDriver::ErrorInIncludeShownInItsWindow()
{
    QFETCH(QString, include);
    QFETCH(QString, libPath);
    QFETCH(bool, open);
    CompileFixture f;
    f.editor.loadCreatesWindow = true;
    f.board.Lacks("BAD");
    const QString main = f.Write("MAIN.KVR", {include, "1 DROP"});
    const QString lib = f.Write(libPath, {"2 DROP", "BAD"});
    f.editor.windows.insert(1, {LogicalName(main), {}, 0, 0});
    if (open)
        f.editor.windows.insert(2, {LogicalName(lib), {}, 0, 0});
    f.driver->CompileFile(main);
    QCOMPARE(f.editor.loaded, open ? QStringList() : QStringList{lib});
    QCOMPARE(f.editor.shownLines, (QList<QPair<QString, int>>{{LogicalName(lib), 2}}));
    QCOMPARE(f.Sent(), (QStringList{"2 DROP", "BAD"}));

    // Report lines that name a file and line open it there: the include
    // line its INCLUDE, the error its line; past the last, nothing.
    f.editor.shownLines.clear();
    QVERIFY(f.driver->ShowReportLine(0));
    QVERIFY(f.driver->ShowReportLine(1));
    QVERIFY(!f.driver->ShowReportLine(9));
    QCOMPARE(f.editor.shownLines, (QList<QPair<QString, int>>{{LogicalName(main), 1}, {LogicalName(lib), 2}}));
}

// A compiled selection's error is shown in the window the text came from.
void TestCompileDriver::SelectionErrorShownInSourceWindow()
{
    CompileFixture f;
    f.board.Lacks("BAD");
    const QString main = f.Write("MAIN.KVR", {"x"});
    const QString text = QStringLiteral("1 DROP\r\n2 DROP\r\n3 DROP\r\nBAD\r\n4 DROP");
    f.editor.windows.insert(2, {LogicalName(main), text, 8, int(text.size()) - 8});
    f.driver->CompileSelected(2);
    QCOMPARE(f.editor.shownLines, (QList<QPair<QString, int>>{{LogicalName(main), 4}}));
    QVERIFY(f.editor.loaded.isEmpty());
    QCOMPARE(f.driver->LastErrorEditor(), 2);
}

void TestCompileDriver::NoEditorHost()
{
    CompileFixture f;
    f.driver->SetEditorHost(nullptr);
    f.board.Lacks("BAD");
    const QString main = f.Write("MAIN.KVR", {"BAD"});
    f.driver->CompileFile(main);
    QCOMPARE(f.driver->State().runEnd, RunEnd::BoardError);
    QCOMPARE(f.context->busyState, BusyState::Idle);
}

void TestCompileDriver::Toggles()
{
    CompileFixture f;
    QSignalSpy quick(f.driver.get(), &CompileDriver::QuickCompileChanged);
    QSignalSpy display(f.driver.get(), &CompileDriver::NoCompileDisplayChanged);
    QSignalSpy written(f.context.get(), &AppContext::SettingsWritten);
    f.driver->ToggleQuickCompile(false);
    QCOMPARE(f.context->settings.quickCompile, QStringLiteral("ON"));
    f.driver->ToggleQuickCompile(true);
    QCOMPARE(f.context->settings.quickCompile, QStringLiteral("OFF"));
    f.driver->ToggleNoCompileDisplay(false);
    QCOMPARE(f.context->settings.noCompileDisplay, QStringLiteral("ON"));
    QVERIFY(f.driver->State().noDisplay);
    QCOMPARE(quick.count(), 2);
    QCOMPARE(quick.at(0).at(0).toBool(), true);
    QCOMPARE(quick.at(1).at(0).toBool(), false);
    QCOMPARE(display.count(), 1);
    QCOMPARE(written.count(), 3);
}

void TestCompileDriver::ProgressLabelsOnEveryExit_data()
{
    QTest::addColumn<QStringList>("source");
    QTest::newRow("finished") << QStringList{"1 DROP"};
    QTest::newRow("board error") << QStringList{"BAD"};
    QTest::newRow("over-long line") << QStringList{QString(81, 'A')};
    QTest::newRow("F2") << QStringList{"HALT", "2 DROP"};
}

void TestCompileDriver::ProgressLabelsOnEveryExit()
{
    QFETCH(QStringList, source);
    CompileFixture f;
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    f.terminal.progressText = QStringLiteral("stale");
    f.board.Lacks("BAD");
    f.board.onLine = [&f](const QByteArray &line) {
        if (line == "HALT")
            f.driver->HaltCompile();
    };
    f.driver->CompileFile(f.Write("MAIN.KVR", source));
    QCOMPARE(f.terminal.progressStates.first(), true);
    QCOMPARE(f.terminal.progressStates.last(), false);
    QCOMPARE(f.driver->State().progressCapacity, 3);
    QVERIFY(f.terminal.progressText != QStringLiteral("stale"));
    QCOMPARE(f.terminal.timerStates, (QList<bool>{false, true}));
}

void TestCompileDriver::ReportClearedAndBroughtForward()
{
    CompileFixture f;
    f.report->AddReportLine(QStringLiteral("  from before  "));
    QCOMPARE(f.report->Lines(), QStringList{"from before"});
    QSignalSpy forward(f.report.get(), &CompileReport::BringForwardRequested);
    f.driver->CompileFile(f.Write("MAIN.KVR", {"1 DROP"}));
    QCOMPARE(f.report->Lines().size(), 1);
    QVERIFY(f.report->LastLine().endsWith("FINISHED at 1A2B"));
    QVERIFY(forward.count() >= 2);
    QVERIFY(f.terminal.broughtForward >= 2);
}

void TestCompileDriver::ProgressCountsKnownFiles()
{
    CompileFixture f;
    CompileProgress progress(*f.driver, f.clock);
    QStringList texts;
    connect(&progress, &CompileProgress::Updated, [&texts](const QString &text) { texts.append(text); });
    const QString main = f.Write("MAIN.KVR", {"INCLUDE LIB", "\\ note", "1 DROP"});
    test::WriteAll(f.dir.path() + "/LIB.KVR", "A\nB\rC"); // every kind of line end, none at the end
    f.driver->CompileFile(main);
    // At the first line only MAIN.KVR is known; LIB.KVR's lines join when it opens.
    QCOMPARE(texts.first(), QStringLiteral("MAIN.KVR line 1 - 1 of 3 lines - 0:00"));
    QCOMPARE(texts.last(), QString());
    const CompileProgress::Snapshot &now = progress.Current();
    QCOMPARE(now.file, main);
    QCOMPARE(now.line, 3);
    QCOMPARE(now.done, 6);
    QCOMPARE(now.known, 6);
    QVERIFY(now.elapsedMs > 0);
}

void TestCompileDriver::ProgressText_data()
{
    QTest::addColumn<int>("elapsedMs");
    QTest::addColumn<QString>("text");
    QTest::newRow("seconds") << 4999 << "LIB.KVR line 7 - 20 of 90 lines - 0:04";
    QTest::newRow("minutes") << 61000 << "LIB.KVR line 7 - 20 of 90 lines - 1:01";
    QTest::newRow("hours") << 3725000 << "LIB.KVR line 7 - 20 of 90 lines - 1:02:05";
}

void TestCompileDriver::ProgressText()
{
    QFETCH(int, elapsedMs);
    QFETCH(QString, text);
    QCOMPARE(FormatProgress({"/W/SRC/LIB.KVR", 7, 20, 90, quint32(elapsedMs)}), text);
}

void TestCompileDriver::ContinueAfterFix_data()
{
    QTest::addColumn<QStringList>("main");      // MAIN.KVR when the compile stopped
    QTest::addColumn<QStringList>("lib");       // LIB.KVR then
    QTest::addColumn<QStringList>("mainAfter"); // the files when Continue is chosen
    QTest::addColumn<QStringList>("libAfter");
    QTest::addColumn<int>("resumedAt");   // line of MAIN.KVR the run resumes at; 0 when it cannot
    QTest::addColumn<QString>("question"); // what the offer of a full compile names
    QTest::addColumn<QStringList>("sent"); // what Continue sends (a full compile after Yes)

    QTest::newRow("restart at a multi-line definition's first line")
        << QStringList{"1 DROP", ": TWO", "BAD", ";", "3 DROP"} << QStringList{}
        << QStringList{"1 DROP", ": TWO", "2", ";", "3 DROP"} << QStringList{} << 2 << ""
        << QStringList{": TWO", "2", ";", "3 DROP"};
    QTest::newRow("a semicolon in a comment or string does not end the definition")
        << QStringList{": TWO ( ; ) .\" ; \" \\ ;", "BAD ;"} << QStringList{}
        << QStringList{": TWO ( ; ) .\" ; \" \\ ;", "2 ;"} << QStringList{} << 1 << ""
        << QStringList{": TWO ( ; ) .\" ; \" \\ ;", "2 ;"};
    QTest::newRow("a comment added above is no change")
        << QStringList{"1 DROP", "BAD"} << QStringList{} << QStringList{"\\ fixed below", "1 DROP", "6 DROP"}
        << QStringList{} << 3 << "" << QStringList{"6 DROP"};
    QTest::newRow("change detected in an include file")
        << QStringList{"INCLUDE LIB", "BAD"} << QStringList{"1 DROP"} << QStringList{"INCLUDE LIB", "4 DROP"}
        << QStringList{"1  DROP"} << 0 << "LIB.KVR line 1 has changed" << QStringList{"1  DROP", "4 DROP"};
    QTest::newRow("change of a conditional result detected")
        << QStringList{"#CONDITION A", "#IF A", "1 DROP", "#ELSE", "2 DROP", "#ENDIF", "BAD"} << QStringList{}
        << QStringList{"#CONDITION B", "#IF A", "1 DROP", "#ELSE", "2 DROP", "#ENDIF", "5 DROP"} << QStringList{}
        << 0 << "MAIN.KVR line 5 has changed" << QStringList{"2 DROP", "5 DROP"};
    QTest::newRow("after a clean finish a full compile is offered")
        << QStringList{"1 DROP"} << QStringList{} << QStringList{"1 DROP"} << QStringList{} << 0 << "finished"
        << QStringList{"1 DROP"};
}

void TestCompileDriver::ContinueAfterFix()
{
    QFETCH(QStringList, main);
    QFETCH(QStringList, lib);
    QFETCH(QStringList, mainAfter);
    QFETCH(QStringList, libAfter);
    QFETCH(int, resumedAt);
    QFETCH(QString, question);
    QFETCH(QStringList, sent);
    CompileFixture f;
    f.board.Lacks("BAD");
    f.board.replies.insert("BAD ;", "BAD ; BAD ?  - not found\r\n");
    const QString path = f.Write("MAIN.KVR", main).toUpper();
    if (!lib.isEmpty())
        f.Write("LIB.KVR", lib);
    f.driver->CompileFile(path);
    f.Write("MAIN.KVR", mainAfter);
    if (!libAfter.isEmpty())
        f.Write("LIB.KVR", libAfter);
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

QTEST_GUILESS_MAIN(TestCompileDriver)
#include "tst_compiledriver.moc"
