// The help pages and window, the outside tools' command lines and printing:
// F1 in each window finds its page, the menus open theirs, the pages match
// the programs' own help, printing makes PDF pages.
#include "DataTable.h"
#include "TempDir.h"
#include "TestClock.h"
#include "app/PrintLayout.h"
#include "app/ScriptedPrompts.h"
#include "app/ui/frmDelay.h"
#include "app/ui/frmMDI.h"
#include "editor/EditorHost.h"
#include "editor/ui/frmNotePad.h"
#include "help/ExternalTools.h"
#include "help/HelpLibrary.h"
#include "help/HelpTopics.h"
#include "help/ui/HelpWindows.h"
#include "help/ui/frmBrowser.h"
#include "pc/MainAssembly.h"
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

namespace {
const QString PagesFolder = QStringLiteral(KVR_SOURCE_DATA_DIR "/help/");

QString Title(const QString &topic) { return "KVR-PC Help - " + PageTitle(QString::fromUtf8(ReadAll(PagesFolder + topic + ".html"))); }

QString Run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(30000);
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

QSet<QString> LongOptions(const QString &text)
{
    static const QRegularExpression option(QStringLiteral("--[a-z][a-z-]*"));
    QSet<QString> found;
    for (const auto &match : option.globalMatch(text))
        found.insert(match.captured());
    return found;
}

// The command-line page's section `id`, up to the next heading.
QString Section(const QString &id)
{
    const QString html = QString::fromUtf8(ReadAll(PagesFolder + "commandline.html"));
    const qsizetype start = html.indexOf(QStringLiteral("<h2 id=\"%1\">").arg(id));
    return start < 0 ? QString() : html.mid(start, html.indexOf("<h2", start + 1) - start);
}

struct Program {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context{Paths(dir.path()), prompts, clock};
    frmMDI frame{context};
    MainAssembly assembly{context, frame, PcCommandLine{}};
    Program() { frame.show(); }
    frmBrowser *Browser() { return assembly.Help().Browser(); }
    QString BrowserTitle() { return Browser() && Browser()->isVisible() ? Browser()->windowTitle() : QString(); }
};
} // namespace

class TestHelp : public QObject {
    Q_OBJECT

private slots:
    void topicOfFocus_data()
    {
        Columns<QStringList, QString>({"names", "topic"});
        QTest::newRow("delay combo") << QStringList{"qt_spinbox_lineedit", "CmbDelay", "frmDelay"} << "intercharacter";
        QTest::newRow("report list") << QStringList{"List1", "frmStatus", "qt_scrollarea_viewport"} << "compilationreportwindow";
        QTest::newRow("upload address") << QStringList{"txtInput(0)", "frmPROMUp"} << "promfileupload";
        QTest::newRow("editor inside the frame") << QStringList{"Text1", "frmNotePad", "MdiArea", "frmMDI"} << "editorwindow";
        QTest::newRow("terminal") << QStringList{"", "frmEmulator", "MdiArea", "frmMDI"} << "interactivewindow";
        QTest::newRow("re-flash") << QStringList{"cmdProceed", "frmReFlash"} << "reflash";
        QTest::newRow("programmer download") << QStringList{"txtCommand", "frmPROMDown"} << "promdownload";
        QTest::newRow("frame alone") << QStringList{"MdiArea", "frmMDI"} << "index";
        QTest::newRow("unknown window") << QStringList{"x", "y"} << "";
    }
    void topicOfFocus() { QTEST(TopicFor(Cell<QStringList>("names")), "topic"); }

    // Every page the program names is shipped, titled, without dead links.
    void shippedPages()
    {
        const QStringList dead = DeadLinks(PagesFolder);
        QVERIFY2(dead.isEmpty(), qPrintable(dead.join('\n')));
        for (const char *topic : {"index", "intercharacter", "interactivewindow", "editorwindow", "compilationreportwindow",
                                  "promfileupload", "reflash", "promdownload", "wordswindow", "computer", "gettingstarted",
                                  "helpwindow", "kvr4410f", "kvr6630", "changes", "romupdates", "commandline",
                                  "troubleshooting", "sourcerules"})
            QVERIFY2(!TopicFile(PagesFolder, topic).isEmpty() && Title(topic).size() > 15, topic);
        // Only names of pages in the folder, as spelt.
        for (const char *topic : {"nosuchpage", "../help/index", "INDEX", ""})
            QVERIFY2(TopicFile(PagesFolder, topic).isEmpty(), topic);
    }

    void deadLinksFound_data()
    {
        Columns<QString, QStringList>({"body", "dead"});
        QTest::newRow("page and anchor exist") << R"(<a href="b.html#x">b</a>)" << QStringList{};
        QTest::newRow("missing page") << R"(<a href="c.html">c</a>)" << QStringList{"a.html: c.html"};
        QTest::newRow("missing anchor") << R"(<a href="b.html#y">b</a>)" << QStringList{"a.html: b.html#y"};
        QTest::newRow("missing image") << R"(<img src="pic.png">)" << QStringList{"a.html: pic.png"};
        QTest::newRow("anchor in the same page") << R"(<h2 id="here">h</h2><a href="#here">h</a>)" << QStringList{};
        QTest::newRow("dead anchor in the same page") << R"(<a href="#nowhere">h</a>)" << QStringList{"a.html: #nowhere"};
        QTest::newRow("empty link") << R"(<a href="">h</a>)" << QStringList{"a.html: "};
        QTest::newRow("web address left to the browser") << R"(<a href="https://example.org/x">w</a>)" << QStringList{};
    }
    void deadLinksFound()
    {
        QTemporaryDir dir;
        WriteAll(dir.filePath("a.html"), Cell<QString>("body").toUtf8());
        WriteAll(dir.filePath("b.html"), R"(<h1 id="x">B</h1>)");
        QTEST(DeadLinks(dir.path()), "dead");
    }

    void wordList_data()
    {
        Columns<QString, QStringList, int>({"text", "first", "count"}); // first: name, stack, description
        QTest::newRow("word with stack") << "DUP  ( x -- x x )   Copies x.\n" << QStringList{"DUP", "( x -- x x )", "Copies x."} << 1;
        QTest::newRow("comments and blank lines skipped") << "\\ list\n\nDROP ( x -- )  Drops x.\n\\ end\nSWAP ( a b -- b a ) S.\n"
                                                          << QStringList{"DROP", "( x -- )", "Drops x."} << 2;
        QTest::newRow("no stack picture") << "(  Starts a comment.\n" << QStringList{"(", "", "Starts a comment."} << 1;
        QTest::newRow("word alone, CR LF ends") << "COLD\r\n" << QStringList{"COLD", "", ""} << 1;
        QTest::newRow("unclosed stack picture kept as text") << "X ( a b  Odd.\n" << QStringList{"X", "", "( a b  Odd."} << 1;
    }
    void wordList()
    {
        const QList<WordEntry> words = ParseWordList(Cell<QString>("text"));
        QTEST(int(words.size()), "count");
        QTEST((QStringList{words[0].name, words[0].stack, words[0].description}), "first");
        // On a board page the list stands where its marker was, escaped.
        QTemporaryDir dir;
        WriteAll(dir.filePath("one.words"), Cell<QString>("text").toUtf8() + "Z ( -- ) <x>.\n");
        const QString page = FillWordLists("<p>a</p><!--words one missing--><p>b</p>", dir.path());
        QVERIFY(page.startsWith("<p>a</p>") && page.endsWith("<p>b</p>") && !page.contains("<!--words"));
        QVERIFY(page.contains("<td><tt>" + words[0].name.toHtmlEscaped() + "</tt></td>"));
        QVERIFY(page.contains("<td><tt>Z</tt></td><td><tt>( -- )</tt></td><td>&lt;x&gt;.</td>"));
        QVERIFY(page.contains("The list missing comes with the words database templates"));
    }

    void terminalChoice_data()
    {
        Columns<QString, QString, QStringList, QStringList>({"configured", "environment", "installed", "expected"});
        const QStringList all{"xterm", "konsole", "x-terminal-emulator"};
        QTest::newRow("configured command with arguments wins") << "xterm -fa \"Mono 12\"" << "konsole" << all << QStringList{"/bin/xterm", "-fa", "Mono 12"};
        QTest::newRow("then $TERMINAL") << "" << "konsole" << all << QStringList{"/bin/konsole"};
        QTest::newRow("then x-terminal-emulator") << "" << "" << all << QStringList{"/bin/x-terminal-emulator"};
        QTest::newRow("configured but not installed falls through") << "gnome-terminal" << "" << all << QStringList{"/bin/x-terminal-emulator"};
        QTest::newRow("none found") << "" << "konsole" << QStringList{"xterm"} << QStringList{};
    }
    void terminalChoice()
    {
        const QStringList installed = Cell<QStringList>("installed");
        const auto find = [&](const QString &name) { return installed.contains(name) ? "/bin/" + name : QString(); };
        QTEST(TerminalCommandLine(Cell<QString>("configured"), Cell<QString>("environment"), find), "expected");
    }

    void programmerCommand_data()
    {
        Columns<QString, QStringList, QString>({"command", "expected", "shown"});
        QTest::newRow("minipro") << "minipro -p {device} -w {file}" << QStringList{"minipro", "-p", "AT28C256", "-w", "/w/my prog.MOT"}
                                 << R"(minipro -p AT28C256 -w "/w/my prog.MOT")";
        QTest::newRow("placeholder inside an argument") << "prog --image={file}" << QStringList{"prog", "--image=/w/my prog.MOT"}
                                                        << R"(prog "--image=/w/my prog.MOT")";
        QTest::newRow("quoted program path") << R"("/opt/my tools/prog" {file})" << QStringList{"/opt/my tools/prog", "/w/my prog.MOT"}
                                             << R"("/opt/my tools/prog" "/w/my prog.MOT")";
        QTest::newRow("empty") << "  " << QStringList{} << "";
    }
    void programmerCommand()
    {
        const QStringList line = ProgrammerCommandLine(Cell<QString>("command"), "/w/my prog.MOT", "AT28C256");
        QTEST(line, "expected");
        QTEST(ShownCommandLine(line), "shown");
    }

    void printLines_data()
    {
        Columns<QString, int, QStringList>({"text", "columns", "lines"});
        QTest::newRow("CR LF lines, final end closes") << "A\r\nB\r\n" << 10 << QStringList{"A", "B"};
        QTest::newRow("empty lines kept") << "A\n\nB" << 10 << QStringList{"A", "", "B"};
        QTest::newRow("long line continued") << "ABCDEFG" << 3 << QStringList{"ABC", "DEF", "G"};
        QTest::newRow("exactly the width") << "ABC\rD" << 3 << QStringList{"ABC", "D"};
        QTest::newRow("empty text") << "" << 5 << QStringList{""};
    }
    void printLines() { QTEST(PrintLines(Cell<QString>("text"), Cell<int>("columns")), "lines"); }

    void pagination_data()
    {
        Columns<int, int, int, QList<int>, int>({"lines", "first", "next", "sizes", "formFeed"}); // formFeed: that line, -1 none
        QTest::newRow("nothing still one page") << 0 << 5 << 4 << QList<int>{0} << -1;
        QTest::newRow("fills the first page exactly") << 5 << 5 << 4 << QList<int>{5} << -1;
        QTest::newRow("one line over") << 6 << 5 << 4 << QList<int>{5, 1} << -1;
        QTest::newRow("further pages hold their own count") << 14 << 5 << 4 << QList<int>{5, 4, 4, 1} << -1;
        QTest::newRow("capacity below one taken as one") << 2 << 0 << -3 << QList<int>{1, 1} << -1;
        QTest::newRow("form feed ends the page") << 9 << 5 << 4 << QList<int>{2, 4, 2} << 2;
        QTest::newRow("form feed on a full page adds none") << 8 << 5 << 4 << QList<int>{5, 2} << 5;
    }
    void pagination()
    {
        QStringList text;
        for (int i = 0; i < Cell<int>("lines"); ++i)
            text << (i == Cell<int>("formFeed") ? QStringLiteral("\f") : QString::number(i));
        QList<int> sizes;
        const QList<QStringList> pages = Paginate(text, Cell<int>("first"), Cell<int>("next"));
        for (const QStringList &page : pages)
            sizes << int(page.size());
        QTEST(sizes, "sizes");
        QVERIFY(text.isEmpty() || pages.last().last() == text.last()); // nothing lost, order kept
    }

    // Whatever commands this kvr has, each against its own section: the same
    // options, and every exit status its help names explained.
    void commandLinePage_data()
    {
        Columns<QString, QStringList>({"section", "arguments"});
        const QString help = Run(qEnvironmentVariable("KVR_BIN_DIR") + "/kvr", {"--help"});
        QVERIFY2(help.contains("Commands:"), qPrintable(help));
        QTest::newRow("kvr") << "kvr" << QStringList{"--help"};
        QTest::newRow("kvr-pc") << "kvr-pc" << QStringList{"--help"};
        const QString commands = help.mid(help.indexOf("Commands:"));
        static const QRegularExpression command(QStringLiteral("^  ([a-z]+) "), QRegularExpression::MultilineOption);
        for (const auto &match : command.globalMatch(commands.left(commands.indexOf("\n\n"))))
            QTest::newRow(qPrintable("kvr " + match.captured(1))) << "kvr-" + match.captured(1) << QStringList{match.captured(1), "--help"};
    }
    void commandLinePage()
    {
        QFETCH(QString, section);
        const QString help = Run(qEnvironmentVariable("KVR_BIN_DIR") + (section == "kvr-pc" ? "/kvr-pc" : "/kvr"), Cell<QStringList>("arguments"));
        QVERIFY(!help.isEmpty());
        const QSet<QString> inHelp = LongOptions(help), onPage = LongOptions(Section(section));
        QVERIFY2(!Section(section).isEmpty() && inHelp == onPage,
                 qPrintable(QStringList((inHelp - onPage).values()).join(' ') + " | " + QStringList((onPage - inHelp).values()).join(' ')));
        static const QRegularExpression status(QStringLiteral("\\b([0-4]) (finished|stopped|board|bad|halted|image|flash|"
                                                              "written|made|a fault|no link|an INCLUDE)"));
        for (const auto &match : status.globalMatch(help))
            QVERIFY2(Section("exit").contains("<td>" + match.captured(1) + "</td>"), qPrintable(match.captured()));
    }

    void f1OpensThePageOfTheFocus_data()
    {
        Columns<QString, QString>({"window", "topic"});
        QTest::newRow("editor") << "frmNotePad" << "editorwindow";
        QTest::newRow("interactive window") << "frmEmulator" << "interactivewindow";
        QTest::newRow("compilation report") << "frmStatus" << "compilationreportwindow";
        QTest::newRow("delay dialog") << "frmDelay" << "intercharacter";
    }
    void f1OpensThePageOfTheFocus()
    {
        Program p;
        p.frame.Item("mnuFNew")->trigger();
        frmDelay delay(p.context, &p.frame);
        QWidget *target = Cell<QString>("window") == "frmDelay" ? &delay : p.frame.findChild<QWidget *>(Cell<QString>("window"));
        target->show();
        if (auto *sub = qobject_cast<QMdiSubWindow *>(target->parentWidget())) {
            sub->show();
            p.frame.MdiArea()->setActiveSubWindow(sub);
        }
        QWidget *focus = target->focusProxy() ? target->focusProxy() : target;
        for (const char *inner : {"List1", "CmbDelay"})
            if (QWidget *w = target->findChild<QWidget *>(inner))
                focus = w;
        focus->setFocus();
        QTRY_VERIFY(focus->hasFocus());
        if (target == &delay) { // Ctrl+F1 is the words window's key, not help
            QTest::keyClick(focus, Qt::Key_F1, Qt::ControlModifier);
            QVERIFY(p.BrowserTitle().isEmpty());
        }
        QTest::keyClick(focus, Qt::Key_F1);
        QTRY_COMPARE(p.BrowserTitle(), Title(Cell<QString>("topic")));
        QVERIFY(p.prompts.shown.isEmpty());
    }

    void menuItemsOpenTheirPages_data()
    {
        Columns<QString, QString>({"item", "topic"});
        QTest::newRow("development system help") << "mnuOnScreen" << "index";
        QTest::newRow("KVR4410F manual") << "mnuMkvr4410" << "kvr4410f";
        QTest::newRow("KVR6630 manual") << "mnuMkvr6630" << "kvr6630";
        QTest::newRow("latest information") << "mnuMReadme" << "changes";
        QTest::newRow("ROM updates") << "mnuMUpdates" << "romupdates";
    }
    void menuItemsOpenTheirPages()
    {
        Program p;
        p.frame.Item(Cell<QString>("item"))->trigger();
        QTRY_COMPARE(p.BrowserTitle(), Title(Cell<QString>("topic")));
        QVERIFY(!p.Browser()->Page()->toPlainText().contains("<!--words"));
    }

    // Back to the page before; find goes round the page; a missing page is said.
    void browserNavigatesAndFinds()
    {
        Program p;
        p.assembly.Help().ShowTopic("index");
        p.Browser()->Page()->setSource(QUrl("gettingstarted.html"));
        QTRY_COMPARE(p.BrowserTitle(), Title("gettingstarted"));
        for (int i = 0; i < 6; ++i)
            QVERIFY(p.Browser()->FindText("F8") && p.Browser()->Page()->textCursor().hasSelection());
        QVERIFY(!p.Browser()->FindText("no such words here"));
        QCOMPARE(p.Browser()->findChild<QLabel *>("lblFind")->text(), "Not on this page");
        QTest::mouseClick(p.Browser()->findChild<QWidget *>("cmdBack"), Qt::LeftButton);
        QTRY_COMPARE(p.BrowserTitle(), Title("index"));
        p.assembly.Help().ShowTopic("nosuchpage");
        QCOMPARE(p.prompts.MessageTexts(), QStringList{"The help page \"nosuchpage\" is not installed with this copy of KVR-PC."});
    }

    // The DOS window opens in the current source's folder, or says there is
    // no terminal program.
    void shell()
    {
        Program p;
        const QString folder = p.dir.filePath("WORK"), out = p.dir.filePath("where.txt");
        WriteAll(folder + "/MAIN.KVR", ": X ;\r\n");
        p.context.settings.currentFile = (folder + "/MAIN.KVR").toUpper();
        p.context.settings.terminalCommand = QStringLiteral("/bin/sh -c \"pwd > '%1'\"").arg(out);
        p.frame.Item("mnuFShell")->trigger();
        QTRY_VERIFY(QFileInfo(out).size() > 0);
        QCOMPARE(QString::fromLocal8Bit(ReadAll(out)).trimmed(), QFileInfo(folder).canonicalFilePath());
        QVERIFY(p.prompts.shown.isEmpty());
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", p.dir.path().toLocal8Bit());
        qputenv("TERMINAL", "no-such-terminal");
        p.context.settings.terminalCommand = "also-not-installed";
        p.frame.Item("mnuFShell")->trigger();
        qputenv("PATH", path);
        qunsetenv("TERMINAL");
        QVERIFY(p.prompts.MessageTexts().value(0).startsWith("No terminal program was found"));
        QCOMPARE(p.prompts.shown.value(0).icon, PromptIcon::Exclamation);
    }

    // A source of several pages prints whole, each page headed by the file,
    // the date and its number.
    void sourcePrintsToPdf()
    {
        Program p;
        QByteArray text = ReadAll(QStringLiteral(KVR_SOURCE_EXAMPLES_DIR "/SQUARES.KVR"));
        for (int i = 1; i <= 250; ++i)
            text += "\\ line " + QByteArray::number(i) + "\r\n";
        const QString file = p.dir.filePath("SQUARES.KVR"), pdf = p.dir.filePath("source.pdf");
        WriteAll(file, text);
        p.assembly.Editors().OpenFile(file.toUpper());
        QPrinter printer(QPrinter::HighResolution);
        printer.setOutputFormat(QPrinter::PdfFormat);
        printer.setOutputFileName(pdf);
        QVERIFY(p.frame.findChildren<frmNotePad *>().last()->PrintTo(printer));
        const QStringList pages = Run("pdftotext", {"-layout", pdf, "-"}).split('\f', Qt::SkipEmptyParts);
        QVERIFY2(pages.size() >= 3, "pdftotext (poppler-utils) is needed");
        for (int page = 1; page <= pages.size(); ++page) {
            const QString first = pages[page - 1].trimmed().section('\n', 0, 0);
            QVERIFY2(first.contains("SQUARES.KVR") && first.contains(QString::number(QDate::currentDate().year() % 100))
                         && first.contains(QStringLiteral("Page %1 of %2").arg(page).arg(pages.size())), qPrintable(first));
        }
        QVERIFY(pages.first().contains(QString::fromLatin1(text.split('\r').first())) && pages.last().contains("\\ line 250"));
    }
};

QTEST_MAIN(TestHelp)
#include "tst_help.moc"
