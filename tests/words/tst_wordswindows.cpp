// The words database in the windows: the editor's Definitions and Unravel
// items, frmWords showing the build's progress, Stop, its list, the
// reports, the suggestions view, and the ways into it.
#include "WordsFixture.h"
#include "compiler/ui/UnravelMenu.h"
#include "editor/ui/EditorWindows.h"
#include "words/ui/WordsWindows.h"
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QPushButton>
#include "app/ui/PagePrinter.h"
#include "words/WordsText.h"

using namespace kvr;
using namespace kvr::test;

namespace {

// A frame with the editor windows and the words window, and a database made
// of a small program: SQUARE used twice, TWICE once, three words never.
struct Desk {
    WordsFixture f;
    QMainWindow frame;
    QMdiArea *area = new QMdiArea(&frame);
    EditorWindows editors{*f.context, area};
    WordsWindows words{*f.context, &editors.Pool(), area};
    frmWords *window = words.Window();
    QListWidget *list = window->findChild<QListWidget *>("lstWords");
    QString main = f.Write("MAIN.KVR", {": SQUARE  DUP * ;", ": TWICE  SQUARE SQUARE ;", ": UNUSED  TWICE ;",
                                        "VARIABLE LONG-NAMED-1", "VARIABLE LONG-NAMED-2"});

    explicit Desk(bool suggestions = false)
    {
        frame.setCentralWidget(area);
        frame.show();
        QApplication::setActiveWindow(&frame);
        f.Make(suggestions);
        window->SetClock([] { return QDateTime(QDate(2024, 3, 7), QTime(9, 5)); });
        f.prompts.Clear();
    }
    QString Text(const char *name) const { return window->findChild<QLineEdit *>(name)->text(); }
    void Click(const char *name) { window->findChild<QPushButton *>(name)->click(); }
    QString Suggestions() const { return ResolvePath(DatabaseBuilder::DerivedPath(main, ".SUG")); }
};

} // namespace

class TestWordsWindows : public QObject {
    Q_OBJECT
private slots:
    void MakingViewAndStop()
    {
        WordsFixture f;
        QMainWindow frame;
        auto *area = new QMdiArea(&frame);
        frame.setCentralWidget(area);
        EditorWindows editors(*f.context, area);
        WordsWindows words(*f.context, &editors.Pool(), area);
        UnravelMenu unravel(*f.context, editors.Pool());
        words.Builder().SetClock([] { return QDateTime(QDate(2024, 3, 7), QTime(9, 5)); });
        frame.show();
        QApplication::setActiveWindow(&frame);
        const QString main = f.Write("MAIN.KVR", {": A ;", "INCLUDE LIB", ": B ;", ": C ;"});
        f.Write("LIB.KVR", {": L ;"});
        editors.Pool().OpenFile(main);
        QWidget *editor = editors.Pool().Document(1) ? dynamic_cast<QWidget *>(editors.Pool().Document(1)->Object()) : nullptr;
        QVERIFY(editor);
        QAction *make = editor->findChild<QMenu *>("mnuD")->findChild<QAction *>("mnuDMake");
        QCOMPARE(make->text(), QStringLiteral("&Make database"));
        QCOMPARE(editor->findChild<QMenu *>("mnuD")->title(), QStringLiteral("&Definitions"));
        QCOMPARE(editor->findChild<QAction *>("mnuFUnravel")->text(), QStringLiteral("&Unravel INCLUDEs"));

        frmWords *window = words.Window();
        QStringList making;
        int line = 0;
        connect(&words.Builder(), &DatabaseBuilder::LineRead, this, [&] {
            making << window->findChild<QLabel *>("lblMaking")->text();
            QVERIFY(window->findChild<QPushButton *>("cmdESC")->isVisible());
            QVERIFY(!window->findChild<QListWidget *>("lstWords")->isVisible());
            QVERIFY(!make->isEnabled());
            if (++line == 3) {
                // Escape presses Stop while the build runs.
                QPushButton *stop = window->findChild<QPushButton *>("cmdESC");
                stop->setFocus();
                QTest::keyClick(stop, Qt::Key_Escape);
            }
        });
        f.prompts.answers << PromptAnswer::Ok << PromptAnswer::No;
        make->trigger();
        QCOMPARE(words.Builder().LastEnd(), DatabaseBuilder::End::Stopped);
        QCOMPARE(making, (QStringList{"Processing file\n" + ShortenPath(main), "Processing file\n" + ShortenPath(main),
                                      "Processing file\n" + ShortenPath(f.folder.toUpper() + "/LIB.KVR")}));
        QVERIFY(make->isEnabled());
        QVERIFY(!window->findChild<QPushButton *>("cmdESC")->isVisible());
        QVERIFY(window->findChild<QListWidget *>("lstWords")->isVisible());
        // A user word never referenced is marked with character 31.
        QListWidget *list = window->findChild<QListWidget *>("lstWords");
        QCOMPARE(list->findItems(QString(" A          ") + QChar(31), Qt::MatchExactly).size(), 1);
        QCOMPARE(list->findItems(" DUP        ", Qt::MatchExactly).size(), 1);
        QCOMPARE(window->windowTitle(), "Database of definitions in " + ShortenPath(main));

        // After the build Escape presses OK, which closes the window.
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Escape);
        QVERIFY(window->parentWidget()->isHidden());
        // The editor the build came from is active again, so keys reach it.
        QVERIFY(area->activeSubWindow());
        QCOMPARE(area->activeSubWindow()->widget(), editor);

        // The next build shows the window again, with its contents.
        f.prompts.answers << PromptAnswer::Ok << PromptAnswer::No;
        make->trigger();
        QCOMPARE(words.Builder().LastEnd(), DatabaseBuilder::End::Finished);
        QVERIFY(window->isVisible());
        QVERIFY(list->isVisible());
    }


    void ListView()
    {
        Desk d;
        QVERIFY(d.words.ShowDatabase());
        QCOMPARE(d.window->windowTitle(), "Database of definitions in " + ShortenPath(d.main));
        QCOMPARE(d.list->visualItemRect(d.list->item(0)).height(), ListRowHeight(10, d.list->logicalDpiY()));
        // Two words sharing their first 11 characters: two entries, and
        // selecting the second shows the first.
        const QString unused = " LONG-NAMED-" + QString(QChar(31));
        const QList<QListWidgetItem *> both = d.list->findItems(unused, Qt::MatchExactly);
        QCOMPARE(both.size(), 2);
        d.list->setCurrentItem(both.last());
        QCOMPARE(d.window->findChild<QPlainTextEdit *>("txtWords")->toPlainText(), "VARIABLE LONG-NAMED-1");
        QCOMPARE(d.Text("txtReferences"), "UNREFERENCED");
        d.window->SelectWord("square");
        QCOMPARE(d.list->currentItem()->text(), " SQUARE     |");
        QCOMPARE(d.Text("txtReferences"), "References: 2");
        const WordsBrowser &browser = d.window->Browser();
        QCOMPARE(browser.Seek(" ~~~"), browser.Records().size() - 1); // nothing found: the last record
        // The filter narrows the list as it is typed, without regard to case.
        QTest::keyClicks(d.window->findChild<QLineEdit *>("txtFilter"), "qua");
        QCOMPARE(d.list->count(), 1);
        QCOMPARE(d.Text("txtReferences"), "References: 2");
        // OK, or closing the window any other way, closes the database.
        d.Click("CmdOK");
        QVERIFY(d.window->parentWidget()->isHidden());
        QVERIFY(!browser.IsOpen());
        QVERIFY(d.words.ShowDatabase());
        d.window->parentWidget()->close();
        QVERIFY(!browser.IsOpen());
    }

    void JumpToDefinitionAndUses()
    {
        Desk d;
        EditorPool &pool = d.editors.Pool();
        pool.OpenFile(d.main);
        const int editor = pool.ActiveIndex();
        const auto selected = [&] { return pool.Text(editor).mid(pool.SelStart(editor), pool.SelLength(editor)).trimmed(); };
        QVERIFY(d.words.ShowDatabase("SQUARE"));
        QTest::keyClick(d.list, Qt::Key_Return);
        QCOMPARE(selected(), ": SQUARE  DUP * ;");
        QListWidget *usedBy = d.window->findChild<QListWidget *>("lstUsedBy");
        QCOMPARE(usedBy->count(), 2);
        QCOMPARE(usedBy->item(0)->text(), ShortenPath(d.main) + "  line 2");
        emit usedBy->itemActivated(usedBy->item(1));
        QCOMPARE(selected(), ": TWICE  SQUARE SQUARE ;");
    }

    void ReportToFile()
    {
        Desk d(true);
        d.words.ShowDatabase();
        const QString target = d.f.dir.filePath("report.txt");
        d.f.prompts.fileNames << target;
        d.Click("cmdFileIt");
        const RecordedPrompt dialog = d.f.prompts.shown.value(0);
        QCOMPARE(dialog.caption + " | " + dialog.text, "Save report as file | Text files (*.txt);;All files (*)");
        QCOMPARE(dialog.items.value(0), ResolvePath(DatabaseBuilder::DerivedPath(d.main, ".TXT")));

        const QString file = "File " + ShortenPath(d.main), rom = "In Forth ROM (or library file if indicated)";
        // The heading runs past column 63: one blank before the date.
        QStringList expected{"ALPHANUMERIC DEFINITIONS IN " + ShortenPath(d.main) + " 07 Mar 2024  09:05"};
        expected << CautionLines();
        const auto block = [&](const QString &word, const QString &where, const QString &count, QString text = {}) {
            // A ROM word's text is the template's.
            for (const WordRecord *record : d.window->Browser().Records())
                if (text.isEmpty() && record->word == word)
                    text = record->definition;
            expected << QString(79, '-') << (word.leftJustified(20) + where).leftJustified(65) + count << ""
                     << text.split("\r\n") << "";
        };
        // Unreferenced ROM words are left out; the rest in index order.
        block("*", rom, "1 reference");
        block(":", rom, "3 references");
        block(";", rom, "3 references");
        block("DUP", rom, "1 reference");
        block("LONG-NAMED-1", file, "UNREFERENCED", "VARIABLE LONG-NAMED-1");
        block("LONG-NAMED-2", file, "UNREFERENCED", "VARIABLE LONG-NAMED-2");
        block("SQUARE", file, "2 references", ": SQUARE  DUP * ;");
        block("TWICE", file, "1 reference", ": TWICE  SQUARE SQUARE ;");
        block("UNUSED", file, "UNREFERENCED", ": UNUSED  TWICE ;");
        block("VARIABLE", rom, "2 references");
        const QStringList suggestions = ReadTextLines(d.Suggestions());
        QVERIFY(suggestions.size() > 20);
        expected << QString(QChar(12)) << "" << suggestions;
        QCOMPARE(ReadTextLines(target), expected);
        QCOMPARE(test::ReadAll(target).count("\r\n"), expected.size());
    }

    void PrintThroughPrintFile_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::addColumn<bool>("overwrite");
        QTest::newRow("no PRINT.TXT before") << false << true;
        QTest::newRow("overwritten") << true << true;
        QTest::newRow("kept") << true << false;
    }
    void PrintThroughPrintFile()
    {
        QFETCH(bool, exists);
        QFETCH(bool, overwrite);
        Desk d;
        d.words.ShowDatabase();
        const QString printFile = d.f.folder + "/PRINT.TXT", pdf = d.f.dir.filePath("words.pdf");
        if (exists)
            test::WriteAll(printFile, "old");
        d.f.prompts.answers << (overwrite ? PromptAnswer::Ok : PromptAnswer::Cancel);
        QString firstLine;
        d.window->SetPrinter([&](const PrintJob &job) {
            firstLine = ReadTextLines(printFile).value(0);
            QPrinter printer(QPrinter::HighResolution);
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
            QVERIFY(PrintPages(printer, job));
        });
        d.Click("cmdPrint");
        QCOMPARE(d.f.prompts.MessageTexts(), exists ? QStringList{"File " + LogicalName(printFile) + " already exists. Overwrite?"}
                                                    : QStringList());
        QCOMPARE(QFileInfo(pdf).size() > 1000, overwrite);
        QCOMPARE(firstLine.startsWith("ALPHANUMERIC DEFINITIONS IN "), overwrite);
        QCOMPARE(QFile::exists(printFile), !overwrite); // deleted after printing
    }

    void SuggestionsView_data()
    {
        QTest::addColumn<int>("lines"); // -1: no report file
        QTest::addColumn<QString>("message");
        QTest::newRow("no report") << -1 << "There is no suggestions file. Without one you cannot do this operation.  "
                                            "Continue by choosing 'OK'. \n\nTo make a suggestions file";
        QTest::newRow("empty report") << 0 << "No suggestions for improvement of \r\n";
        QTest::newRow("report") << 3 << "";
        QTest::newRow("too much for the window") << 1000 << "The information is too much to fit in the window, "
                                                              "please print by selecting 'Print' to see it all";
    }
    void SuggestionsView()
    {
        QFETCH(int, lines);
        QFETCH(QString, message);
        Desk d;
        d.words.ShowDatabase();
        QStringList report;
        for (int i = 0; i < lines; ++i)
            report << QString("%1 %2").arg(i, 4).arg(QString(76, 'x'));
        if (lines >= 0)
            QVERIFY(WriteTextLines(d.Suggestions(), report).isEmpty());
        d.Click("cmdSuggest");
        QCOMPARE(d.f.prompts.MessageTexts().value(0).left(message.size()), message);
        QCOMPARE(d.window->CurrentView(), lines > 0 ? frmWords::View::Report : frmWords::View::List);
        if (lines <= 0)
            return;
        QCOMPARE(d.window->findChild<QLabel *>("lblMaking")->text(), "Report on source file " + ShortenPath(d.main));
        const auto *text = d.window->findChild<QPlainTextEdit *>("txtWords");
        QCOMPARE(text->geometry(), ReportTextGeometry(d.window->size()));
        const QString shown = text->toPlainText();
        QVERIFY(shown.size() <= ReportViewCapacity && shown.startsWith(report.first() + "\n"));
        QCOMPARE(shown.endsWith(report.last() + "\n"), lines < 1000);
        d.Click("CmdOK"); // back to the list
        QCOMPARE(d.window->CurrentView(), frmWords::View::List);
        QVERIFY(d.list->isVisible());
    }

    void WaysIn_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("way");
        for (const char *way : {"mnuDView", "ctrl+F1"}) {
            QTest::addRow("%s, Terminal", way) << "Terminal" << way;
            QTest::addRow("%s", way) << "4410ANS" << way;
        }
        QTest::newRow("template missing") << "4410Fig" << "mnuDView";
    }
    void WaysIn()
    {
        QFETCH(QString, type);
        QFETCH(QString, way);
        Desk d;
        EditorPool &pool = d.editors.Pool();
        pool.OpenFile(d.main);
        const int editor = pool.ActiveIndex();
        pool.Select(editor, pool.Text(editor).indexOf("TWICE ;") + 2, 0);
        d.f.context->settings.computerType = type;
        QFile::remove(ResolvePath(DatabaseBuilder::TemplatePath(d.f.context->paths.ProgramFolder(), "4410Fig")));
        const QString before = d.f.context->settings.wordsDatabase;
        d.f.prompts.fileNames << ResolvePath(before);
        if (way == "mnuDView")
            dynamic_cast<QWidget *>(pool.Document(editor)->Object())->findChild<QAction *>("mnuDView")->trigger();
        else
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F1, Qt::ControlModifier);
        QCOMPARE(d.window->isVisible(), type == "4410ANS");
        const QStringList messages = d.f.prompts.MessageTexts();
        if (type == "Terminal")
            QVERIFY(d.f.prompts.shown.isEmpty());
        else if (type == "4410Fig")
            QVERIFY2(messages.size() == 1 && messages[0].contains("W4410Fig.MDB is missing"), qPrintable(messages.join("|")));
        else if (way == "mnuDView")
            QCOMPARE(d.f.prompts.shown.value(0).caption + " | " + d.f.prompts.shown.value(0).text,
                     "Choose Forth words database | Database files (*.mdb)");
        else
            QCOMPARE(d.list->currentItem()->text(), " TWICE      |"); // the word under the caret
    }
};

QTEST_MAIN(TestWordsWindows)
#include "tst_wordswindows.moc"
