// The report window and the Compile menus of editor windows, offscreen.
#include "CompileFixture.h"
#include "compiler/ui/CompileMenus.h"
#include "compiler/ui/CompilerWindows.h"
#include "compiler/ui/frmStatus.h"
#include "app/IniFile.h"
#include "link/ui/frmEmulator.h"
#include <QLabel>
#include <QScrollBar>
#include <QAction>
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestCompilerWindows : public QObject {
    Q_OBJECT
private slots:
    void ReportLinesTrimmedAndSelected();
    void ColorsFromSettingsAndDialogs();
    void PrintEmptyReport();
    void PrintToPdf_data();
    void PrintToPdf();
    void ResizeOnlyInNormalState();
    void WindowGeometry_data();
    void WindowGeometry();
    void WindowFitsLongestLine();
    void ReportKeys();
    void CompileMenuItems();
    void ChecksFollowInEveryWindow();
    void RecentFilesListed();
    void PathsItemsInOptionsMenu();
    void ProgressLabelsInTerminalWindow();

private:
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
    };

    // An editor window as the editor pool makes it: a widget with an empty
    // Compile menu and an Options menu.
    static QWidget *EditorWindow(QMdiArea *area)
    {
        auto *window = new QWidget;
        window->setObjectName("frmNotePad");
        auto *bar = new QMenuBar(window);
        bar->addMenu("&Compile")->setObjectName("mnuCompile");
        bar->addMenu("&Options")->setObjectName("mnuOptions");
        area->addSubWindow(window)->show();
        return window;
    }
};

void TestCompilerWindows::ReportLinesTrimmedAndSelected()
{
    Windows w;
    QListWidget *list = w.List();
    QVERIFY(list);
    w.compiler->Report().AddReportLine("  first  ");
    w.compiler->Report().AddReportLine("second");
    QCOMPARE(list->count(), 2);
    QCOMPARE(list->item(0)->text(), QStringLiteral("first"));
    QCOMPARE(list->currentRow(), 1);
    QCOMPARE(w.f.prompts.beeps, 2);
    w.f.context->settings.quiet = QStringLiteral("ON");
    w.compiler->Report().AddReportLine("third");
    QCOMPARE(w.f.prompts.beeps, 2);
    w.compiler->Report().ClearReport();
    QCOMPARE(list->count(), 0);
    QVERIFY(w.compiler->StatusWindow()->isVisible());
}

void TestCompilerWindows::ColorsFromSettingsAndDialogs()
{
    Windows w;
    QListWidget *list = w.List();
    QCOMPARE(list->palette().color(QPalette::Base), w.f.context->settings.Color(ColorWindow::StatusBox, false));
    QCOMPARE(list->palette().color(QPalette::Text), w.f.context->settings.Color(ColorWindow::StatusBox, true));

    QSignalSpy written(w.f.context.get(), &AppContext::SettingsWritten);
    const QColor before = list->palette().color(QPalette::Base);
    w.f.prompts.colors.enqueue(QColor(10, 20, 30));
    w.compiler->StatusWindow()->findChild<QAction *>("staOCBackground")->trigger();
    QCOMPARE(list->palette().color(QPalette::Base), QColor(10, 20, 30));
    QCOMPARE(w.f.context->settings.Color(ColorWindow::StatusBox, false), QColor(10, 20, 30));
    QCOMPARE(written.count(), 1);
    // Each dialog is titled and starts from the colour it changes.
    QCOMPARE(w.f.prompts.shown.last().kind, QStringLiteral("color"));
    QCOMPARE(w.f.prompts.shown.last().caption, QStringLiteral("Report background color"));
    QCOMPARE(w.f.prompts.shown.last().text, before.name());

    w.f.prompts.colors.enqueue(std::nullopt); // cancelled: nothing changes
    w.compiler->StatusWindow()->findChild<QAction *>("staOCText")->trigger();
    QCOMPARE(written.count(), 1);
    w.f.prompts.colors.enqueue(QColor(200, 100, 50));
    w.compiler->StatusWindow()->findChild<QAction *>("staOCText")->trigger();
    QCOMPARE(list->palette().color(QPalette::Text), QColor(200, 100, 50));
    QCOMPARE(w.f.prompts.shown.last().caption, QStringLiteral("Report foreground color"));
    QCOMPARE(w.f.context->settings.Color(ColorWindow::StatusBox, true), QColor(200, 100, 50));
}

void TestCompilerWindows::PrintEmptyReport()
{
    Windows w;
    w.compiler->StatusWindow()->findChild<QAction *>("mnuPPrint")->trigger();
    QCOMPARE(w.f.prompts.MessageTexts(),
             QStringList{"Compilation report window is empty, use only after a compilation."});
    QCOMPARE(w.f.prompts.shown.first().icon, PromptIcon::Information);
}

void TestCompilerWindows::PrintToPdf_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<bool>("severalPages");
    QTest::newRow("three lines, one page") << 3 << false;
    QTest::newRow("three hundred lines, several pages") << 300 << true;
}

void TestCompilerWindows::PrintToPdf()
{
    QFETCH(int, lines);
    QFETCH(bool, severalPages);
    Windows w;
    for (int i = 1; i <= lines; ++i)
        w.compiler->Report().AddReportLine(QStringLiteral("/W/MAIN.KVR - line %1: FILE X.KVR INCLUDED").arg(i));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const QString pdf = w.f.dir.path() + "/report.pdf";
    printer.setOutputFileName(pdf);
    QVERIFY(w.compiler->StatusWindow()->PrintReport(printer));
    const QByteArray bytes = test::ReadAll(pdf);
    QVERIFY(bytes.startsWith("%PDF"));
    const int pages = bytes.count("/Type /Page\n") + bytes.count("/Type /Page\r") + bytes.count("/Type /Page ")
                      + bytes.count("/Type /Page/");
    QVERIFY2(severalPages ? pages >= 2 : pages == 1, qPrintable(QString::number(pages)));
}

void TestCompilerWindows::ResizeOnlyInNormalState()
{
    Windows w;
    w.compiler->BringReportForward();
    auto *sub = qobject_cast<QMdiSubWindow *>(w.compiler->StatusWindow()->parentWidget());
    QVERIFY(sub);
    sub->resize(400, 200);
    QListWidget *list = w.List();
    QTRY_COMPARE(list->width(), w.compiler->StatusWindow()->width());
    const QSize before = list->size();
    sub->showMaximized();
    QTRY_VERIFY(w.compiler->StatusWindow()->width() > before.width());
    QCOMPARE(list->size(), before);
    sub->showNormal();
    sub->resize(300, 150);
    QTRY_COMPARE(list->width(), w.compiler->StatusWindow()->width());
}

void TestCompilerWindows::WindowGeometry_data()
{
    QTest::addColumn<QRect>("current");
    QTest::addColumn<int>("needed");
    QTest::addColumn<QRect>("expected");
    const QSize area(1000, 600);
    QTest::newRow("grows to the longest line") << QRect(0, 0, 300, 100) << 500 << QRect(0, 0, 500, 100);
    QTest::newRow("never wider than 90 per cent") << QRect(0, 0, 300, 100) << 5000 << QRect(0, 0, 900, 100);
    QTest::newRow("moved left to stay inside") << QRect(700, 50, 200, 100) << 600 << QRect(400, 50, 600, 100);
    QTest::newRow("never shrinks") << QRect(10, 0, 600, 100) << 50 << QRect(10, 0, 600, 100);
}

void TestCompilerWindows::WindowGeometry()
{
    QFETCH(QRect, current);
    QFETCH(int, needed);
    QFETCH(QRect, expected);
    QCOMPARE(ReportWindowGeometry(current, QSize(1000, 600), needed), expected);
}

void TestCompilerWindows::WindowFitsLongestLine()
{
    Windows w;
    w.compiler->BringReportForward();
    auto *sub = qobject_cast<QMdiSubWindow *>(w.compiler->StatusWindow()->parentWidget());
    sub->setGeometry(600, 10, 250, 150);
    const QString line = QStringLiteral("/HOME/USER/PROJECTS/ROBOT/MAIN.KVR - line 12: FILE MOTORCONTROL.KVR INCLUDED");
    w.compiler->Report().AddReportLine(line);
    const QRect area(QPoint(0, 0), w.area->viewport()->size());
    QVERIFY(area.contains(sub->geometry()));
    QVERIFY(sub->width() > 250);
    QListWidget *list = w.List();
    QTRY_VERIFY(list->viewport()->width() >= list->fontMetrics().horizontalAdvance(line));
    for (int i = 0; i < 20; ++i)
        w.compiler->Report().AddReportLine(line + line);
    QVERIFY(area.contains(sub->geometry()));
    QVERIFY(sub->width() <= area.width() * 9 / 10);
}

void TestCompilerWindows::ReportKeys()
{
    Windows w;
    QSignalSpy help(w.compiler.get(), &CompilerWindows::HelpRequested);
    QListWidget *list = w.List();
    QTest::keyClick(list, Qt::Key_F1);
    QCOMPARE(help.count(), 1);
    QCOMPARE(help.first().first().toString(), QStringLiteral("compilationreportwindow"));

    QTest::keyClick(list, Qt::Key_F2);
    QCOMPARE(w.f.context->compileOutcome, CompileOutcome::HaltRequested);
    QCOMPARE(w.f.terminal.interrupts, 1);

    // Tab goes to the editor window the compiler last showed a line in.
    QWidget *first = EditorWindow(w.area);
    QWidget *second = EditorWindow(w.area);
    emit w.f.editor.EditorCreated(1, first);
    emit w.f.editor.EditorCreated(2, second);
    w.f.board.Lacks("BAD");
    const QString main = w.f.Write("MAIN.KVR", {"BAD"});
    w.f.editor.windows.insert(1, {main.toUpper(), {}, 0, 0});
    w.f.driver.reset();
    w.compiler->Driver().CompileFile(main);
    QCOMPARE(w.compiler->Driver().LastErrorEditor(), 1);
    w.area->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(second->parentWidget()));
    QTest::keyClick(list, Qt::Key_Tab);
    QCOMPARE(w.area->activeSubWindow()->widget(), first);

    // Enter and double-click on the error line go to its window and line.
    w.compiler->BringReportForward();
    list->window()->show();
    QVERIFY(QTest::qWaitForWindowExposed(list->window()));
    for (const bool enter : {true, false}) {
        w.area->setActiveSubWindow(qobject_cast<QMdiSubWindow *>(second->parentWidget()));
        w.f.editor.shownLines.clear();
        list->setCurrentRow(0);
        if (enter)
            QTest::keyClick(list, Qt::Key_Return);
        else {
            const QPoint at = list->visualItemRect(list->item(0)).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        }
        QCOMPARE(w.f.editor.shownLines, (QList<QPair<QString, int>>{{main.toUpper(), 1}}));
        QCOMPARE(w.area->activeSubWindow()->widget(), first);
    }
}

void TestCompilerWindows::CompileMenuItems()
{
    Windows w;
    QWidget *window = EditorWindow(w.area);
    emit w.f.editor.EditorCreated(1, window);
    const QMenu *menu = window->findChild<QMenu *>("mnuCompile");
    struct Item { const char *name; const char *caption; QKeySequence key; };
    const Item items[] = {
        {"mnuCThisWindow", "&This window", QKeySequence(Qt::Key_F8)},
        {"mnuCSelected", "&Selected Text", QKeySequence(Qt::CTRL | Qt::Key_F8)},
        {"mnuCLast", "From &Last definition", QKeySequence(Qt::SHIFT | Qt::Key_F8)},
        {"mnuCContinue", "C&ontinue compile", QKeySequence(Qt::Key_F9)},
        {"mnuCQuick", "&Quick compile", QKeySequence()},
        {"mnuCNoDisplay", "&No compile display", QKeySequence()},
    };
    for (const Item &item : items) {
        QAction *action = menu->findChild<QAction *>(item.name);
        QVERIFY2(action, item.name);
        QCOMPARE(action->text(), QString::fromLatin1(item.caption));
        QCOMPARE(action->shortcut(), item.key);
    }
    // Installing twice (a second EditorCreated) adds nothing.
    const int count = menu->actions().size();
    emit w.f.editor.EditorCreated(1, window);
    QCOMPARE(menu->actions().size(), count);

    // F8 in the window compiles its file.
    w.f.context->settings.computerType = QStringLiteral("Terminal");
    window->setFocus();
    QTRY_VERIFY(window->hasFocus() || QApplication::focusWidget());
    menu->findChild<QAction *>("mnuCThisWindow")->trigger();
    QCOMPARE(w.f.prompts.MessageTexts().size(), 1);
    QVERIFY(w.f.prompts.MessageTexts().first().contains("is in Terminal emulator"));
}

void TestCompilerWindows::ChecksFollowInEveryWindow()
{
    Windows w;
    w.f.context->settings.quickCompile = QStringLiteral("ON");
    QWidget *a = EditorWindow(w.area);
    QWidget *b = EditorWindow(w.area);
    emit w.f.editor.EditorCreated(1, a);
    emit w.f.editor.EditorCreated(2, b);
    QAction *quickA = a->findChild<QAction *>("mnuCQuick");
    QAction *quickB = b->findChild<QAction *>("mnuCQuick");
    QVERIFY(quickA->isChecked() && quickB->isChecked());
    quickA->trigger();
    QCOMPARE(w.f.context->settings.quickCompile, QStringLiteral("OFF"));
    QVERIFY(!quickA->isChecked());
    QVERIFY(!quickB->isChecked());
    b->findChild<QAction *>("mnuCNoDisplay")->trigger();
    QCOMPARE(w.f.context->settings.noCompileDisplay, QStringLiteral("ON"));
    QVERIFY(a->findChild<QAction *>("mnuCNoDisplay")->isChecked());
    QVERIFY(w.compiler->Driver().State().noDisplay);

    // A "QUICK ON" line of a compiled file ticks both items everywhere.
    w.f.context->settings.noCompileDisplay = QStringLiteral("OFF");
    w.f.context->WriteSettings();
    QVERIFY(!b->findChild<QAction *>("mnuCNoDisplay")->isChecked());
    w.compiler->Driver().CompileFile(w.f.Write("MAIN.KVR", {"QUICK ON"}));
    QVERIFY(a->findChild<QAction *>("mnuCQuick")->isChecked());
    QVERIFY(b->findChild<QAction *>("mnuCNoDisplay")->isChecked());
}

void TestCompilerWindows::RecentFilesListed()
{
    Windows w;
    IniFile ini;
    ini.SetValue("Recent Files", "RecentFile1", "/W/A&B.KVR");
    ini.SetValue("Recent Files", "RecentFile2", "/W/OTHER.KVR");
    ini.SetValue("Recent Files", "RecentFile3", "Not Used");
    QVERIFY(ini.Save(w.f.paths->SettingsFile()));
    QWidget *window = EditorWindow(w.area);
    emit w.f.editor.EditorCreated(5, window);
    QAction *first = window->findChild<QAction *>("mnuCRecentFile(1)");
    QVERIFY(first->isVisible());
    QCOMPARE(first->text(), QStringLiteral("/W/A&&B.KVR"));
    QVERIFY(window->findChild<QAction *>("mnuCRecentFile(2)")->isVisible());
    QVERIFY(!window->findChild<QAction *>("mnuCRecentFile(3)")->isVisible());
    QVERIFY(window->findChild<QAction *>("mnuCRecentFile(0)")->isVisible());

    const QString other = w.f.Write("OTHER.KVR", {"1 DROP"});
    ini.SetValue("Recent Files", "RecentFile2", other);
    QVERIFY(ini.Save(w.f.paths->SettingsFile()));
    w.compiler->Menus().RefreshRecentFiles();
    window->findChild<QAction *>("mnuCRecentFile(2)")->trigger();
    QCOMPARE(w.f.editor.savedFrom, QList<int>{5});
    QCOMPARE(w.f.editor.opened, QStringList{other});
    QCOMPARE(w.f.Sent(), QStringList{"1 DROP"});
}

void TestCompilerWindows::PathsItemsInOptionsMenu()
{
    Windows w;
    QWidget *window = EditorWindow(w.area);
    emit w.f.editor.EditorCreated(1, window);
    QMenu *paths = window->findChild<QMenu *>("mnuOPath");
    QVERIFY(paths);
    QCOMPARE(paths->title(), QStringLiteral("Source file &Paths"));
    w.f.prompts.inputs.enqueue(QStringLiteral("/srv/lib"));
    paths->findChild<QAction *>("mnuOPAdd")->trigger();
    QCOMPARE(w.f.context->settings.extraSearchPaths, QStringLiteral("/srv/lib") + QDir::separator() + ";");
    paths->findChild<QAction *>("mnuOPDefault")->trigger();
    QVERIFY(w.f.context->settings.extraSearchPaths.isEmpty());
}

void TestCompilerWindows::ProgressLabelsInTerminalWindow()
{
    CompileFixture f;
    frmEmulator emulator(*f.context, *f.link);
    emulator.resize(800, 480);
    emulator.show();
    CompileDriver driver(*f.context, *f.link, &emulator.Logic(), &f.editor, *f.report);
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    // A colour set in the record that the window has not been told about:
    // the labels must take it when they appear.
    f.context->settings.SetColor(ColorWindow::Emulator, true, QColor(1, 2, 3));
    auto *bar = emulator.findChild<QLabel *>("lblCompilation");
    auto *caption = emulator.findChild<QLabel *>("lblProgress");
    QVERIFY(bar && caption);
    QCOMPARE(caption->text(), QStringLiteral("Compilation in progress"));
    QVERIFY(!bar->isVisible());

    bool seen = false;
    bool visible = false;
    QColor color;
    QRect barAt, captionAt;
    QString blocks;
    f.board.onLine = [&](const QByteArray &line) {
        if (line != "3 DROP")
            return;
        seen = true;
        visible = bar->isVisible() && caption->isVisible();
        color = bar->palette().color(QPalette::WindowText);
        barAt = bar->geometry();
        captionAt = caption->geometry();
        blocks = bar->text();
    };
    f.board.Lacks("BAD");
    driver.CompileFile(f.Write("MAIN.KVR", {"1 DROP", "2 DROP", "3 DROP", "BAD"}));
    QVERIFY(seen);
    QVERIFY(visible);
    QCOMPARE(color, QColor(1, 2, 3));
    const int innerWidth = emulator.width() - emulator.findChild<QScrollBar *>("vsbScrollBack")->width();
    QVERIFY2(qAbs(barAt.center().x() - innerWidth / 2) <= 1, qPrintable(QString::number(barAt.center().x())));
    QVERIFY(qAbs(barAt.center().y() - emulator.height() / 2) <= 1);
    QVERIFY(qAbs(captionAt.center().x() - innerWidth / 2) <= 1);
    QCOMPARE(captionAt.bottom() + 1, barAt.top());
    QCOMPARE(blocks.size(), 2); // one block per reply line so far
    // Gone again after the run, which ended on an error.
    QCOMPARE(driver.State().runEnd, RunEnd::BoardError);
    QVERIFY(!bar->isVisible());
    QVERIFY(!caption->isVisible());
}

QTEST_MAIN(TestCompilerWindows)
#include "tst_compilerwindows.moc"
