// The report window, the Compile menus of editor windows and the progress
// labels of the terminal window, offscreen.
#include "CompileFixture.h"
#include "app/IniFile.h"
#include "compiler/ui/CompileMenus.h"
#include "compiler/ui/CompilerWindows.h"
#include "compiler/ui/frmStatus.h"
#include "link/ui/frmEmulator.h"
#include <QAction>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QScrollBar>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestCompilerWindows : public QObject {
    Q_OBJECT
private slots:
    void ReportLinesColorsAndPrint();
    void WindowGeometry_data();
    void WindowGeometry();
    void ReportKeys();
    void CompileMenus();
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
};

void TestCompilerWindows::ReportLinesColorsAndPrint()
{
    Windows w;
    QListWidget *list = w.List();
    w.compiler->Report().AddReportLine("  first  ");
    w.compiler->Report().AddReportLine("second");
    QCOMPARE(list->item(0)->text(), QStringLiteral("first"));
    QCOMPARE(list->currentRow(), 1);
    QCOMPARE(w.f.prompts.beeps, 2);
    w.f.context->settings.quiet = QStringLiteral("ON");
    w.compiler->Report().AddReportLine("third");
    QCOMPARE(w.f.prompts.beeps, 2);

    // The colour dialog starts from the colour it changes; the choice is kept.
    const QColor before = list->palette().color(QPalette::Base);
    QCOMPARE(before, w.f.context->settings.Color(ColorWindow::StatusBox, false));
    w.f.prompts.colors.enqueue(QColor(10, 20, 30));
    w.compiler->StatusWindow()->findChild<QAction *>("staOCBackground")->trigger();
    QCOMPARE(w.f.prompts.shown.last().text, before.name());
    QCOMPARE(list->palette().color(QPalette::Base), QColor(10, 20, 30));
    QCOMPARE(w.f.context->settings.Color(ColorWindow::StatusBox, false), QColor(10, 20, 30));

    // A long report prints on several pages.
    for (int i = 1; i <= 300; ++i)
        w.compiler->Report().AddReportLine(QStringLiteral("/W/MAIN.KVR - line %1: FILE X.KVR INCLUDED").arg(i));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(w.f.dir.filePath("report.pdf"));
    QVERIFY(w.compiler->StatusWindow()->PrintReport(printer));
    QVERIFY(ReadAll(w.f.dir.filePath("report.pdf")).count("/Type /Page") >= 3); // the page tree and two pages
}

void TestCompilerWindows::WindowGeometry_data()
{
    QTest::addColumn<QRect>("current");
    QTest::addColumn<int>("needed");
    QTest::addColumn<QRect>("expected");
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

void TestCompilerWindows::ReportKeys()
{
    Windows w;
    QSignalSpy help(w.compiler.get(), &CompilerWindows::HelpRequested);
    QListWidget *list = w.List();
    QTest::keyClick(list, Qt::Key_F1);
    QCOMPARE(help.count(), 1);
    QTest::keyClick(list, Qt::Key_F2);
    QCOMPARE(w.f.context->compileOutcome, CompileOutcome::HaltRequested);
    QCOMPARE(w.f.terminal.interrupts, 1);

    // Tab goes to the editor window the compiler last showed a line in;
    // Enter and double-click on the error line go to its window and line.
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
    for (const bool enter : {true, false}) {
        activateSecond();
        w.f.editor.shownLines.clear();
        list->setCurrentRow(0);
        const QPoint at = list->visualItemRect(list->item(0)).center();
        if (enter)
            QTest::keyClick(list, Qt::Key_Return);
        else
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at), QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        QCOMPARE(w.f.editor.shownLines, (ShownLines{{main.toUpper(), 1}}));
        QCOMPARE(w.area->activeSubWindow()->widget(), first);
    }
}

void TestCompilerWindows::CompileMenus()
{
    Windows w;
    IniFile ini;
    const QString other = w.f.Write("OTHER.KVR", {"1 DROP"});
    for (const auto &[key, value] : {std::pair{"RecentFile1", "/W/A&B.KVR"}, {"RecentFile3", "Not Used"}})
        ini.SetValue("Recent Files", key, value);
    ini.SetValue("Recent Files", "RecentFile2", other);
    QVERIFY(ini.Save(w.f.paths->SettingsFile()));
    w.f.context->settings.quickCompile = QStringLiteral("ON");
    QWidget *a = w.EditorWindow(1);
    QWidget *b = w.EditorWindow(5);
    const QMenu *menu = a->findChild<QMenu *>("mnuCompile");
    const std::tuple<const char *, const char *, QKeySequence> items[] = {
        {"mnuCThisWindow", "&This window", QKeySequence(Qt::Key_F8)},
        {"mnuCSelected", "&Selected Text", QKeySequence(Qt::CTRL | Qt::Key_F8)},
        {"mnuCLast", "From &Last definition", QKeySequence(Qt::SHIFT | Qt::Key_F8)},
        {"mnuCContinue", "C&ontinue compile", QKeySequence(Qt::Key_F9)},
        {"mnuCQuick", "&Quick compile", QKeySequence()},
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

    // Ticks follow in every window, from the menu and from a compiled QUICK line.
    QAction *quickB = b->findChild<QAction *>("mnuCQuick");
    QVERIFY(quickB->isChecked());
    a->findChild<QAction *>("mnuCQuick")->trigger();
    QCOMPARE(w.f.context->settings.quickCompile, QStringLiteral("OFF"));
    QVERIFY(!quickB->isChecked());
    w.compiler->Driver().CompileFile(w.f.Write("MAIN.KVR", {"QUICK ON"}));
    QVERIFY(quickB->isChecked() && a->findChild<QAction *>("mnuCNoDisplay")->isChecked());

    // A recent file is saved from its window and compiled.
    w.f.transport.lines.clear();
    b->findChild<QAction *>("mnuCRecentFile(2)")->trigger();
    QCOMPARE(w.f.editor.savedFrom, QList<int>{5});
    QCOMPARE(w.f.editor.opened, QStringList{other});
    QCOMPARE(w.f.Sent(), QStringList{"1 DROP"});
    w.f.prompts.inputs.enqueue(QStringLiteral("/srv/lib/"));
    a->findChild<QMenu *>("mnuOPath")->findChild<QAction *>("mnuOPAdd")->trigger();
    QCOMPARE(w.f.context->settings.extraSearchPaths, QStringLiteral("/srv/lib/;"));
}

void TestCompilerWindows::ProgressLabelsInTerminalWindow()
{
    CompileFixture f;
    frmEmulator emulator(*f.context, *f.link);
    emulator.resize(800, 480);
    emulator.show();
    CompileDriver driver(*f.context, *f.link, &emulator.Logic(), &f.editor, *f.report);
    f.context->settings.noCompileDisplay = QStringLiteral("ON");
    // A colour the window has not been told about: the labels take it when they appear.
    f.context->settings.SetColor(ColorWindow::Emulator, true, QColor(1, 2, 3));
    auto *bar = emulator.findChild<QLabel *>("lblCompilation");
    auto *caption = emulator.findChild<QLabel *>("lblProgress");
    QRect barAt, captionAt;
    QString blocks;
    QColor color;
    f.board.onLine = [&](const QByteArray &line) {
        if (line == "3 DROP" && bar->isVisible() && caption->isVisible())
            barAt = bar->geometry(), captionAt = caption->geometry(), blocks = bar->text(),
            color = bar->palette().color(QPalette::WindowText);
    };
    f.board.Lacks("BAD");
    driver.CompileFile(f.Write("MAIN.KVR", {"1 DROP", "2 DROP", "3 DROP", "BAD"}));
    QCOMPARE(color, QColor(1, 2, 3));
    const int middle = (emulator.width() - emulator.findChild<QScrollBar *>("vsbScrollBack")->width()) / 2;
    QVERIFY2(qAbs(barAt.center().x() - middle) <= 1, qPrintable(QString::number(barAt.center().x())));
    QVERIFY(qAbs(barAt.center().y() - emulator.height() / 2) <= 1);
    QVERIFY(qAbs(captionAt.center().x() - middle) <= 1);
    QCOMPARE(captionAt.bottom() + 1, barAt.top());
    QCOMPARE(blocks.size(), 2); // one block per reply line so far
    QVERIFY(!bar->isVisible() && !caption->isVisible()); // gone after the run, which ended on an error
}

QTEST_MAIN(TestCompilerWindows)
#include "tst_compilerwindows.moc"
