// The help window and the frame's help items on the whole windowed program
// (offscreen): F1 in each window finds its page, the menus open theirs,
// the outside tools start or say why not, and printing makes PDF pages.
#include "TempDir.h"
#include "TestClock.h"
#include "app/ScriptedPrompts.h"
#include "app/ui/frmDelay.h"
#include "app/ui/frmMDI.h"
#include "editor/EditorHost.h"
#include "editor/ui/frmNotePad.h"
#include "help/HelpLibrary.h"
#include "help/ui/HelpWindows.h"
#include "help/ui/frmBrowser.h"
#include "pc/MainAssembly.h"
#include <QDesktopServices>
#include <QDir>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPrinter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

namespace {

QString PageTitleOf(const QString &topic)
{
    return PageTitle(QString::fromUtf8(test::ReadAll(QStringLiteral(KVR_SOURCE_DATA_DIR "/help/") + topic + ".html")));
}

// pdftotext of page `page` (0: all pages).
QString PdfText(const QString &pdf, int page = 0)
{
    QStringList arguments{"-layout"};
    if (page > 0)
        arguments << "-f" << QString::number(page) << "-l" << QString::number(page);
    QProcess process;
    process.start("pdftotext", arguments << pdf << "-");
    process.waitForFinished(30000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

int PdfPages(const QString &pdf)
{
    QProcess process;
    process.start("pdfinfo", {pdf});
    process.waitForFinished(30000);
    const QString info = QString::fromUtf8(process.readAllStandardOutput());
    const qsizetype at = info.indexOf("Pages:");
    return at < 0 ? -1 : info.mid(at + 6).section('\n', 0, 0).trimmed().toInt();
}

} // namespace

class UrlCatcher : public QObject {
    Q_OBJECT
public:
    QList<QUrl> opened;
public slots:
    void Open(const QUrl &url) { opened << url; }
};

class TestHelpWindows : public QObject {
    Q_OBJECT

    struct Program {
        QTemporaryDir dir;
        ScriptedPrompts prompts;
        TestClock clock;
        AppContext context{Paths(dir.path()), prompts, clock};
        frmMDI frame{context};
        MainAssembly assembly{context, frame, PcCommandLine{}};
        Program() { frame.show(); }
        HelpWindows &Help() { return assembly.Help(); }
        QString BrowserTitle() const
        {
            frmBrowser *browser = const_cast<Program *>(this)->assembly.Help().Browser();
            return browser && browser->isVisible() ? browser->windowTitle() : QString();
        }
        frmNotePad *NewEditor()
        {
            frame.Item("mnuFNew")->trigger();
            return frame.findChildren<frmNotePad *>().last();
        }
    };

private slots:
    void initTestCase()
    {
        QVERIFY2(!QStandardPaths::findExecutable("pdftotext").isEmpty(), "pdftotext (poppler-utils) is needed");
    }
    void F1OpensThePageOfTheFocus_data();
    void F1OpensThePageOfTheFocus();
    void F1InTheDelayDialog();
    void MenuItemsOpenTheirPages_data();
    void MenuItemsOpenTheirPages();
    void BrowserNavigatesAndFinds();
    void BoardPageListsTheWords();
    void WebItems();
    void AboutNamesVersionsAndBoard();
    void ShellStartsInTheSourceFolder();
    void ShellWithoutTerminalSaysSo();
    void SourcePrintsToPdf_data();
    void SourcePrintsToPdf();
};

void TestHelpWindows::F1OpensThePageOfTheFocus_data()
{
    QTest::addColumn<QString>("window");
    QTest::addColumn<QString>("topic");
    QTest::newRow("editor") << "frmNotePad" << "editorwindow";
    QTest::newRow("interactive window") << "frmEmulator" << "interactivewindow";
    QTest::newRow("compilation report") << "frmStatus" << "compilationreportwindow";
}

void TestHelpWindows::F1OpensThePageOfTheFocus()
{
    QFETCH(QString, window);
    QFETCH(QString, topic);
    Program p;
    p.NewEditor();
    QWidget *target = p.frame.findChild<QWidget *>(window);
    QVERIFY(target);
    if (auto *sub = qobject_cast<QMdiSubWindow *>(target->parentWidget())) {
        sub->show();
        p.frame.MdiArea()->setActiveSubWindow(sub);
    }
    QWidget *focus = target->focusProxy() ? target->focusProxy() : target;
    if (QWidget *list = target->findChild<QWidget *>("List1"))
        focus = list;
    focus->setFocus();
    QTRY_VERIFY(focus->hasFocus());
    QTest::keyClick(focus, Qt::Key_F1);
    QTRY_COMPARE(p.BrowserTitle(), "KVR-PC Help - " + PageTitleOf(topic));
    QVERIFY(p.prompts.shown.isEmpty());
}

void TestHelpWindows::F1InTheDelayDialog()
{
    Program p;
    frmDelay dialog(p.context, &p.frame);
    dialog.show();
    QWidget *combo = dialog.findChild<QWidget *>("CmbDelay");
    QVERIFY(combo);
    combo->setFocus();
    QTRY_VERIFY(combo->hasFocus());
    QTest::keyClick(combo, Qt::Key_F1);
    QTRY_COMPARE(p.BrowserTitle(), "KVR-PC Help - " + PageTitleOf("intercharacter"));
    // Ctrl+F1 is the words window's key, not help.
    p.Help().Browser()->hide();
    QTest::keyClick(combo, Qt::Key_F1, Qt::ControlModifier);
    QVERIFY(!p.Help().Browser()->isVisible());
}

void TestHelpWindows::MenuItemsOpenTheirPages_data()
{
    QTest::addColumn<QString>("item");
    QTest::addColumn<QString>("topic");
    QTest::newRow("development system help") << "mnuOnScreen" << "index";
    QTest::newRow("KVR4410F manual") << "mnuMkvr4410" << "kvr4410f";
    QTest::newRow("KVR6630 manual") << "mnuMkvr6630" << "kvr6630";
    QTest::newRow("latest information") << "mnuMReadme" << "changes";
    QTest::newRow("ROM updates") << "mnuMUpdates" << "romupdates";
}

void TestHelpWindows::MenuItemsOpenTheirPages()
{
    QFETCH(QString, item);
    QFETCH(QString, topic);
    Program p;
    p.frame.Item(item)->trigger();
    QTRY_COMPARE(p.BrowserTitle(), "KVR-PC Help - " + PageTitleOf(topic));
}

void TestHelpWindows::BrowserNavigatesAndFinds()
{
    Program p;
    p.Help().ShowTopic("index");
    frmBrowser *browser = p.Help().Browser();
    auto *back = browser->findChild<QWidget *>("cmdBack");
    QVERIFY(!back->isEnabled());
    browser->Page()->setSource(QUrl("gettingstarted.html"));
    QTRY_COMPARE(browser->windowTitle(), "KVR-PC Help - " + PageTitleOf("gettingstarted"));
    QVERIFY(back->isEnabled());
    QVERIFY(browser->FindText("F8"));
    QVERIFY(browser->Page()->textCursor().hasSelection());
    // Past the last place it starts from the top again.
    for (int i = 0; i < 5; ++i)
        QVERIFY(browser->FindText("F8"));
    QVERIFY(!browser->FindText("no such words here"));
    QCOMPARE(browser->findChild<QLabel *>("lblFind")->text(), "Not on this page");
    QTest::mouseClick(back, Qt::LeftButton);
    QTRY_COMPARE(browser->windowTitle(), "KVR-PC Help - " + PageTitleOf("index"));
    QTest::mouseClick(browser->findChild<QWidget *>("cmdForward"), Qt::LeftButton);
    QTRY_COMPARE(browser->windowTitle(), "KVR-PC Help - " + PageTitleOf("gettingstarted"));
    QTest::mouseClick(browser->findChild<QWidget *>("cmdHome"), Qt::LeftButton);
    QTRY_COMPARE(browser->windowTitle(), "KVR-PC Help - " + PageTitleOf("index"));
    // A missing page is said, not shown blank.
    p.Help().ShowTopic("nosuchpage");
    QCOMPARE(p.prompts.MessageTexts(),
             QStringList{"The help page \"nosuchpage\" is not installed with this copy of KVR-PC."});
}

void TestHelpWindows::BoardPageListsTheWords()
{
    Program p;
    p.frame.Item("mnuMkvr6630")->trigger();
    const QString text = p.Help().Browser()->Page()->toPlainText();
    QVERIFY(!text.contains("<!--words"));
    const QString words = WordListsFolder(p.context.paths);
    if (QFileInfo::exists(words + "fig.words"))
        QVERIFY2(text.contains("DUP"), "the Fig-Forth list is on the page");
    else
        QVERIFY(text.contains("comes with the words database templates"));
}

void TestHelpWindows::WebItems()
{
    Program p;
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler("https", &catcher, "Open");
    p.frame.Item("mnuWebsiteL")->trigger();
    QCOMPARE(p.prompts.MessageTexts(),
             QStringList{"The KVR website has no address set. Give one under \"Website\" in the [Tools] section of "
                         "KVR-PC.INI."});
    QVERIFY(catcher.opened.isEmpty());
    p.context.settings.pricesAddress = "https://example.org/prices";
    p.frame.Item("mnuPrices")->trigger();
    QCOMPARE(catcher.opened, QList<QUrl>{QUrl("https://example.org/prices")});
    QDesktopServices::unsetUrlHandler("https");
}

void TestHelpWindows::AboutNamesVersionsAndBoard()
{
    Program p;
    p.frame.Item("mnuAbout")->trigger();
    QCOMPARE(p.prompts.shown.size(), 1);
    const QString text = p.prompts.shown.first().text;
    QVERIFY2(text.startsWith("KVR-PC version " KVR_VERSION "\n"), qPrintable(text));
    QVERIFY(text.contains("Qt " QT_VERSION_STR));
    QVERIFY(text.contains("Licence"));
    // kvr-board is built beside the tests.
    QVERIFY2(text.contains("Simulated board: kvr-board " KVR_VERSION), qPrintable(text));
}

void TestHelpWindows::ShellStartsInTheSourceFolder()
{
    Program p;
    QDir(p.dir.path()).mkpath("WORK");
    const QString folder = p.dir.filePath("WORK");
    test::WriteAll(folder + "/MAIN.KVR", ": X ;\r\n");
    p.context.settings.currentFile = (folder + "/MAIN.KVR").toUpper();
    const QString out = p.dir.filePath("where.txt");
    p.context.settings.terminalCommand = QStringLiteral("/bin/sh -c \"pwd > '%1'\"").arg(out);
    p.frame.Item("mnuFShell")->trigger();
    QTRY_VERIFY(QFileInfo(out).size() > 0);
    QCOMPARE(QString::fromLocal8Bit(test::ReadAll(out)).trimmed(), QFileInfo(folder).canonicalFilePath());
    QVERIFY(p.prompts.shown.isEmpty());
}

void TestHelpWindows::ShellWithoutTerminalSaysSo()
{
    Program p;
    const QByteArray path = qgetenv("PATH");
    const QByteArray terminal = qgetenv("TERMINAL");
    QTemporaryDir empty;
    qputenv("PATH", empty.path().toLocal8Bit());
    qputenv("TERMINAL", "no-such-terminal");
    p.context.settings.terminalCommand = "also-not-installed";
    p.frame.Item("mnuFShell")->trigger();
    qputenv("PATH", path);
    qputenv("TERMINAL", terminal);
    QCOMPARE(p.prompts.shown.size(), 1);
    QVERIFY(p.prompts.shown.first().text.startsWith("No terminal program was found"));
    QCOMPARE(p.prompts.shown.first().icon, PromptIcon::Exclamation);
}

void TestHelpWindows::SourcePrintsToPdf_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<int>("extraLines");
    QTest::newRow("example, one page") << "HELLO.KVR" << 0;
    QTest::newRow("example grown to several pages") << "SQUARES.KVR" << 250;
}

void TestHelpWindows::SourcePrintsToPdf()
{
    QFETCH(QString, source);
    QFETCH(int, extraLines);
    Program p;
    QByteArray text = test::ReadAll(QStringLiteral(KVR_SOURCE_EXAMPLES_DIR "/") + source);
    QVERIFY(!text.isEmpty());
    for (int i = 1; i <= extraLines; ++i)
        text += QByteArray("\\ line ") + QByteArray::number(i) + "\r\n";
    const QString file = p.dir.filePath(source);
    test::WriteAll(file, text);
    p.assembly.Editors().OpenFile(file.toUpper());
    frmNotePad *editor = p.frame.findChildren<frmNotePad *>().last();
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const QString pdf = p.dir.filePath("source.pdf");
    printer.setOutputFileName(pdf);
    QVERIFY(editor->PrintTo(printer));
    const int pages = PdfPages(pdf);
    QVERIFY2(extraLines == 0 ? pages == 1 : pages >= 3, qPrintable(QString::number(pages)));
    // Every page is headed by the file, the date and its number.
    const QString year = QString::number(QDate::currentDate().year() % 100);
    for (int page = 1; page <= pages; ++page) {
        const QString first = PdfText(pdf, page).trimmed().section('\n', 0, 0);
        QVERIFY2(first.contains(source) && first.contains(year)
                     && first.contains(QStringLiteral("Page %1 of %2").arg(page).arg(pages)),
                 qPrintable(first));
    }
    const QString all = PdfText(pdf);
    QVERIFY(all.contains(QString::fromLatin1(text.split('\r').first())));
    if (extraLines > 0)
        QVERIFY2(all.contains(QStringLiteral("\\ line %1").arg(extraLines)), "the last line is printed");
}

QTEST_MAIN(TestHelpWindows)
#include "tst_helpwindows.moc"
