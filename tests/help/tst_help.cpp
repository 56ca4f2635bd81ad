// The help library, the outside tools' command lines, print layout, the
// tools settings and the command-line page against kvr's own help.
#include "TempDir.h"
#include "app/PrintLayout.h"
#include "app/Settings.h"
#include "help/ExternalTools.h"
#include "help/HelpLibrary.h"
#include "help/HelpTopics.h"
#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

namespace {

QString SourceHelpFolder()
{
    return QStringLiteral(KVR_SOURCE_DATA_DIR "/help/");
}

QString Kvr()
{
    return qEnvironmentVariable("KVR_BIN_DIR") + QStringLiteral("/kvr");
}

QString Run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(30000))
        return {};
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

// The text of the page's section `id`, up to the next heading of its level.
QString Section(const QString &html, const QString &id)
{
    const qsizetype start = html.indexOf(QStringLiteral("<h2 id=\"%1\">").arg(id));
    if (start < 0)
        return {};
    const qsizetype end = html.indexOf(QStringLiteral("<h2"), start + 1);
    return html.mid(start, end < 0 ? -1 : end - start);
}

} // namespace

class TestHelp : public QObject {
    Q_OBJECT
private slots:
    void TopicOfFocus_data();
    void TopicOfFocus();
    void ShippedPagesHaveNoDeadLinks();
    void DeadLinksFound_data();
    void DeadLinksFound();
    void TopicFileStaysInFolder_data();
    void TopicFileStaysInFolder();
    void EveryNamedTopicHasATitledPage_data();
    void EveryNamedTopicHasATitledPage();
    void WordListParsing_data();
    void WordListParsing();
    void BoardPageWordLists();
    void TerminalChoice_data();
    void TerminalChoice();
    void ProgrammerCommand_data();
    void ProgrammerCommand();
    void PrintLines_data();
    void PrintLines();
    void Pagination_data();
    void Pagination();
    void ToolsSettingsRoundTrip();
    void CommandLinePage_data();
    void CommandLinePage();
};

void TestHelp::TopicOfFocus_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QString>("topic");
    QTest::newRow("delay combo") << QStringList{"qt_spinbox_lineedit", "CmbDelay", "frmDelay"} << "intercharacter";
    QTest::newRow("report list") << QStringList{"List1", "frmStatus", "qt_scrollarea_viewport"}
                                 << "compilationreportwindow";
    QTest::newRow("upload address") << QStringList{"txtInput(0)", "frmPROMUp"} << "promfileupload";
    QTest::newRow("editor inside the frame") << QStringList{"Text1", "frmNotePad", "MdiArea", "frmMDI"}
                                             << "editorwindow";
    QTest::newRow("terminal") << QStringList{"", "frmEmulator", "MdiArea", "frmMDI"} << "interactivewindow";
    QTest::newRow("re-flash") << QStringList{"cmdProceed", "frmReFlash"} << "reflash";
    QTest::newRow("programmer download") << QStringList{"txtCommand", "frmPROMDown"} << "promdownload";
    QTest::newRow("frame alone") << QStringList{"MdiArea", "frmMDI"} << "index";
    QTest::newRow("unknown window") << QStringList{"x", "y"} << "";
}

void TestHelp::TopicOfFocus()
{
    QFETCH(QStringList, names);
    QFETCH(QString, topic);
    QCOMPARE(TopicFor(names), topic);
}

void TestHelp::ShippedPagesHaveNoDeadLinks()
{
    QVERIFY(QDir(SourceHelpFolder()).entryList({"*.html"}).size() > 10);
    const QStringList dead = DeadLinks(SourceHelpFolder());
    QVERIFY2(dead.isEmpty(), qPrintable(dead.join('\n')));
}

void TestHelp::DeadLinksFound_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<QStringList>("dead");
    QTest::newRow("page and anchor exist") << R"(<a href="b.html#x">b</a>)" << QStringList{};
    QTest::newRow("missing page") << R"(<a href="c.html">c</a>)" << QStringList{"a.html: c.html"};
    QTest::newRow("missing anchor") << R"(<a href="b.html#y">b</a>)" << QStringList{"a.html: b.html#y"};
    QTest::newRow("missing image") << R"(<img src="pic.png">)" << QStringList{"a.html: pic.png"};
    QTest::newRow("anchor in the same page") << R"(<h2 id="here">h</h2><a href="#here">h</a>)" << QStringList{};
    QTest::newRow("dead anchor in the same page") << R"(<a href="#nowhere">h</a>)" << QStringList{"a.html: #nowhere"};
    QTest::newRow("empty link") << R"(<a href="">h</a>)" << QStringList{"a.html: "};
    QTest::newRow("web address left to the browser") << R"(<a href="https://example.org/x">w</a>)"
                                                     << QStringList{};
}

void TestHelp::DeadLinksFound()
{
    QFETCH(QString, body);
    QFETCH(QStringList, dead);
    QTemporaryDir dir;
    test::WriteAll(dir.filePath("a.html"), body.toUtf8());
    test::WriteAll(dir.filePath("b.html"), R"(<h1 id="x">B</h1>)");
    QCOMPARE(DeadLinks(dir.path()), dead);
}

void TestHelp::TopicFileStaysInFolder_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<bool>("found");
    QTest::newRow("page") << "index" << true;
    QTest::newRow("missing page") << "nosuchpage" << false;
    QTest::newRow("path out of the folder") << "../help/index" << false;
    QTest::newRow("upper case is another name") << "INDEX" << false;
    QTest::newRow("empty") << "" << false;
}

void TestHelp::TopicFileStaysInFolder()
{
    QFETCH(QString, topic);
    QFETCH(bool, found);
    QCOMPARE(!TopicFile(SourceHelpFolder(), topic).isEmpty(), found);
}

void TestHelp::EveryNamedTopicHasATitledPage_data()
{
    QTest::addColumn<QString>("topic");
    for (const char *topic : {"index", "intercharacter", "interactivewindow", "editorwindow",
                              "compilationreportwindow", "promfileupload", "reflash", "promdownload", "wordswindow",
                              "computer", "gettingstarted", "helpwindow", "kvr4410f", "kvr6630", "changes",
                              "romupdates", "commandline", "troubleshooting", "sourcerules"})
        QTest::newRow(topic) << QString::fromLatin1(topic);
}

void TestHelp::EveryNamedTopicHasATitledPage()
{
    QFETCH(QString, topic);
    const QString file = TopicFile(SourceHelpFolder(), topic);
    QVERIFY2(!file.isEmpty(), qPrintable(topic));
    QVERIFY(!PageTitle(QString::fromUtf8(test::ReadAll(file))).isEmpty());
}

void TestHelp::WordListParsing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("first"); // name, stack, description of the first word
    QTest::addColumn<int>("count");
    QTest::newRow("word with stack") << "DUP  ( x -- x x )   Copies x.\n" << QStringList{"DUP", "( x -- x x )", "Copies x."}
                                     << 1;
    QTest::newRow("comments and blank lines skipped") << "\\ list\n\nDROP ( x -- )  Drops x.\n\\ end\nSWAP ( a b -- b a ) S.\n"
                                                      << QStringList{"DROP", "( x -- )", "Drops x."} << 2;
    QTest::newRow("no stack picture") << "(  Starts a comment.\n" << QStringList{"(", "", "Starts a comment."} << 1;
    QTest::newRow("word alone, CR LF ends") << "COLD\r\n" << QStringList{"COLD", "", ""} << 1;
    QTest::newRow("unclosed stack picture kept as text") << "X ( a b  Odd.\n" << QStringList{"X", "", "( a b  Odd."} << 1;
}

void TestHelp::WordListParsing()
{
    QFETCH(QString, text);
    QFETCH(QStringList, first);
    QFETCH(int, count);
    const QList<WordEntry> words = ParseWordList(text);
    QCOMPARE(words.size(), count);
    QCOMPARE((QStringList{words[0].name, words[0].stack, words[0].description}), first);
}

void TestHelp::BoardPageWordLists()
{
    QTemporaryDir words;
    test::WriteAll(words.filePath("one.words"), "DUP ( x -- x x ) Copies <x>.\n");
    const QString page = "<p>a</p><!--words one missing--><p>b</p>";
    const QString filled = FillWordLists(page, words.path());
    QVERIFY(filled.startsWith("<p>a</p>"));
    QVERIFY(filled.endsWith("<p>b</p>"));
    QVERIFY(filled.contains("<td><tt>DUP</tt></td><td><tt>( x -- x x )</tt></td><td>Copies &lt;x&gt;.</td>"));
    QVERIFY(filled.contains("The list missing comes with the words database templates"));
    QVERIFY(!filled.contains("<!--words"));
}

void TestHelp::TerminalChoice_data()
{
    QTest::addColumn<QString>("configured");
    QTest::addColumn<QString>("environment");
    QTest::addColumn<QStringList>("installed");
    QTest::addColumn<QStringList>("expected");
    const QStringList all{"xterm", "konsole", "x-terminal-emulator"};
    QTest::newRow("configured command with arguments wins")
        << "xterm -fa \"Mono 12\"" << "konsole" << all << QStringList{"/bin/xterm", "-fa", "Mono 12"};
    QTest::newRow("then $TERMINAL") << "" << "konsole" << all << QStringList{"/bin/konsole"};
    QTest::newRow("then x-terminal-emulator") << "" << "" << all << QStringList{"/bin/x-terminal-emulator"};
    QTest::newRow("configured but not installed falls through")
        << "gnome-terminal" << "" << all << QStringList{"/bin/x-terminal-emulator"};
    QTest::newRow("none found") << "" << "konsole" << QStringList{"xterm"} << QStringList{};
}

void TestHelp::TerminalChoice()
{
    QFETCH(QString, configured);
    QFETCH(QString, environment);
    QFETCH(QStringList, installed);
    QFETCH(QStringList, expected);
    const auto find = [&](const QString &name) {
        return installed.contains(name) ? QStringLiteral("/bin/") + name : QString();
    };
    QCOMPARE(TerminalCommandLine(configured, environment, find), expected);
}

void TestHelp::ProgrammerCommand_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("shown");
    QTest::newRow("minipro") << "minipro -p {device} -w {file}"
                             << QStringList{"minipro", "-p", "AT28C256", "-w", "/w/my prog.MOT"}
                             << R"(minipro -p AT28C256 -w "/w/my prog.MOT")";
    QTest::newRow("placeholder inside an argument") << "prog --image={file}"
                                                    << QStringList{"prog", "--image=/w/my prog.MOT"}
                                                    << R"(prog "--image=/w/my prog.MOT")";
    QTest::newRow("quoted program path") << R"("/opt/my tools/prog" {file})"
                                         << QStringList{"/opt/my tools/prog", "/w/my prog.MOT"}
                                         << R"("/opt/my tools/prog" "/w/my prog.MOT")";
    QTest::newRow("empty") << "  " << QStringList{} << "";
}

void TestHelp::ProgrammerCommand()
{
    QFETCH(QString, command);
    QFETCH(QStringList, expected);
    QFETCH(QString, shown);
    const QStringList line = ProgrammerCommandLine(command, "/w/my prog.MOT", "AT28C256");
    QCOMPARE(line, expected);
    QCOMPARE(ShownCommandLine(line), shown);
}

void TestHelp::PrintLines_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("columns");
    QTest::addColumn<QStringList>("lines");
    QTest::newRow("CR LF lines, final end closes") << "A\r\nB\r\n" << 10 << QStringList{"A", "B"};
    QTest::newRow("empty lines kept") << "A\n\nB" << 10 << QStringList{"A", "", "B"};
    QTest::newRow("long line continued") << "ABCDEFG" << 3 << QStringList{"ABC", "DEF", "G"};
    QTest::newRow("exactly the width") << "ABC\rD" << 3 << QStringList{"ABC", "D"};
    QTest::newRow("empty text") << "" << 5 << QStringList{""};
}

void TestHelp::PrintLines()
{
    QFETCH(QString, text);
    QFETCH(int, columns);
    QFETCH(QStringList, lines);
    QCOMPARE(kvr::PrintLines(text, columns), lines);
}

void TestHelp::Pagination_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("next");
    QTest::addColumn<QList<int>>("sizes");
    QTest::addColumn<int>("formFeed"); // the line that is a form feed; -1 none
    QTest::newRow("nothing still one page") << 0 << 5 << 4 << QList<int>{0} << -1;
    QTest::newRow("fills the first page exactly") << 5 << 5 << 4 << QList<int>{5} << -1;
    QTest::newRow("one line over") << 6 << 5 << 4 << QList<int>{5, 1} << -1;
    QTest::newRow("further pages hold their own count") << 14 << 5 << 4 << QList<int>{5, 4, 4, 1} << -1;
    QTest::newRow("capacity below one taken as one") << 2 << 0 << -3 << QList<int>{1, 1} << -1;
    QTest::newRow("form feed ends the page") << 9 << 5 << 4 << QList<int>{2, 4, 2} << 2;
    QTest::newRow("form feed on a full page adds none") << 8 << 5 << 4 << QList<int>{5, 2} << 5;
}

void TestHelp::Pagination()
{
    QFETCH(int, lines);
    QFETCH(int, first);
    QFETCH(int, next);
    QFETCH(QList<int>, sizes);
    QFETCH(int, formFeed);
    QStringList text;
    for (int i = 0; i < lines; ++i)
        text << (i == formFeed ? QStringLiteral("\f") : QString::number(i));
    const QList<QStringList> pages = Paginate(text, first, next);
    QList<int> got;
    for (const QStringList &page : pages)
        got << int(page.size());
    QCOMPARE(got, sizes);
    if (lines > 0)
        QCOMPARE(pages.last().last(), text.last()); // nothing lost, order kept
}

void TestHelp::ToolsSettingsRoundTrip()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath("KVR-PC.INI");
    Settings settings;
    QVERIFY(WriteSettings(settings, ini));
    QVERIFY2(!test::ReadAll(ini).contains("[Tools]"), "no tools set: no section");
    settings.programmerCommand = "minipro -p {device} -w {file}";
    settings.programmerDevice = "AT28C256";
    settings.terminalCommand = "xterm";
    settings.websiteAddress = "https://example.org/kvr";
    QVERIFY(WriteSettings(settings, ini));
    Settings read;
    ReadSettings(read, ini, dir.path() + "/");
    QCOMPARE(read.programmerCommand, settings.programmerCommand);
    QCOMPARE(read.programmerDevice, settings.programmerDevice);
    QCOMPARE(read.terminalCommand, settings.terminalCommand);
    QCOMPARE(read.websiteAddress, settings.websiteAddress);
    QCOMPARE(read.pricesAddress, QString());
    // A cleared value is cleared in the file too.
    read.terminalCommand.clear();
    QVERIFY(WriteSettings(read, ini));
    Settings again;
    ReadSettings(again, ini, dir.path() + "/");
    QCOMPARE(again.terminalCommand, QString());
    QCOMPARE(again.programmerDevice, QStringLiteral("AT28C256"));
}

void TestHelp::CommandLinePage_data()
{
    QTest::addColumn<QString>("section");
    QTest::addColumn<QStringList>("arguments");
    // Whatever commands this kvr has, each against its own section.
    const QString help = Run(Kvr(), {"--help"});
    QVERIFY2(help.contains("Commands:"), qPrintable(help));
    QTest::newRow("kvr") << "kvr" << QStringList{"--help"};
    const QString commands = help.mid(help.indexOf("Commands:"));
    static const QRegularExpression commandLine(QStringLiteral("^  ([a-z]+) "), QRegularExpression::MultilineOption);
    int count = 0;
    for (const auto &match : commandLine.globalMatch(commands.left(commands.indexOf("\n\n")))) {
        const QString command = match.captured(1);
        QTest::newRow(qPrintable("kvr " + command)) << "kvr-" + command << QStringList{command, "--help"};
        ++count;
    }
    QVERIFY(count >= 1);
    QTest::newRow("kvr-pc") << "kvr-pc" << QStringList{"--help"};
}

void TestHelp::CommandLinePage()
{
    QFETCH(QString, section);
    QFETCH(QStringList, arguments);
    const QString program = section == "kvr-pc" ? qEnvironmentVariable("KVR_BIN_DIR") + "/kvr-pc" : Kvr();
    const QString help = Run(program, arguments);
    QVERIFY2(!help.isEmpty(), qPrintable(program));
    const QString page = QString::fromUtf8(test::ReadAll(SourceHelpFolder() + "commandline.html"));
    const QString text = Section(page, section);
    QVERIFY2(!text.isEmpty(), qPrintable("the command-line page has no section " + section));
    // Options are compared; the exit status table is checked once below.
    const QSet<QString> inHelp = LongOptions(help);
    const QSet<QString> onPage = LongOptions(text);
    QVERIFY2(inHelp == onPage, qPrintable(QStringLiteral("%1: help only: %2; page only: %3")
                                               .arg(section, QStringList((inHelp - onPage).values()).join(' '),
                                                    QStringList((onPage - inHelp).values()).join(' '))));
    // Every exit status kvr's help names is explained on the page.
    static const QRegularExpression status(QStringLiteral("\\b([0-4]) (finished|stopped|board|bad|halted|image|flash|"
                                                          "written|made|a fault|no link|an INCLUDE)"));
    const QString exits = Section(page, "exit");
    for (const auto &match : status.globalMatch(help))
        QVERIFY2(exits.contains(QStringLiteral("<td>%1</td>").arg(match.captured(1))), qPrintable(match.captured()));
}

QTEST_GUILESS_MAIN(TestHelp)
#include "tst_help.moc"
