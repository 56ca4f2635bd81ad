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
    QString main;

    explicit Desk(bool suggestions = false)
    {
        frame.setCentralWidget(area);
        frame.show();
        QApplication::setActiveWindow(&frame);
        main = f.Write("MAIN.KVR", {": SQUARE  DUP * ;", ": TWICE  SQUARE SQUARE ;", ": UNUSED  TWICE ;",
                                    "VARIABLE LONG-NAMED-1", "VARIABLE LONG-NAMED-2"});
        f.Make(suggestions);
        window->SetClock([] { return QDateTime(QDate(2024, 3, 7), QTime(9, 5)); });
        f.prompts.Clear();
    }
    QString Text(const char *name) const { return window->findChild<QLineEdit *>(name)->text(); }
    QWidget *Editor(int index) { return dynamic_cast<QWidget *>(editors.Pool().Document(index)->Object()); }
    void Select(const QString &word) { window->SelectWord(word); }
    QString Database() const { return DatabaseBuilder::DerivedPath(main, ".MDB"); }
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
        QStringList entries;
        for (int i = 0; i < d.list->count(); ++i)
            entries << d.list->item(i)->text();
        // Two words sharing their first 11 characters give two entries.
        const QString unused = QString(QChar(31));
        QCOMPARE(entries.filter("LONG-NAMED-"), (QStringList{" LONG-NAMED-" + unused, " LONG-NAMED-" + unused}));
        QVERIFY(entries.contains(" SQUARE     |"));
        QVERIFY(entries.contains(" DUP        "));

        // Selecting the second shows the first of them.
        d.list->setCurrentRow(entries.lastIndexOf(" LONG-NAMED-" + unused));
        QCOMPARE(d.window->findChild<QPlainTextEdit *>("txtWords")->toPlainText(), "VARIABLE LONG-NAMED-1");
        QCOMPARE(d.Text("txtReferences"), "UNREFERENCED");
        QCOMPARE(d.Text("txtFile"), "File: " + ShortenPath(d.main));
        d.Select("square");
        QCOMPARE(d.list->currentItem()->text(), " SQUARE     |");
        QCOMPARE(d.Text("txtReferences"), "References: 2");
        d.Select("DUP");
        QCOMPARE(d.Text("txtFile"), "In Forth ROM (or library file if indicated)");
        // A seek past the last word lands on the last record.
        const WordsBrowser &browser = d.window->Browser();
        QCOMPARE(browser.Seek(" ~~~"), browser.Records().size() - 1);
        QCOMPARE(browser.Seek(" LONG-NAMED-2"), browser.Seek(" LONG-NAMED-1"));

        // The filter narrows the list as it is typed, without regard to case.
        QTest::keyClicks(d.window->findChild<QLineEdit *>("txtFilter"), "qua");
        QCOMPARE(d.list->count(), 1);
        QCOMPARE(d.list->item(0)->text(), " SQUARE     |");
        QCOMPARE(d.Text("txtReferences"), "References: 2");

        // OK closes the window and the database.
        d.window->findChild<QPushButton *>("CmdOK")->click();
        QVERIFY(d.window->parentWidget()->isHidden());
        QVERIFY(!browser.IsOpen());
        // So does closing its window any other way.
        QVERIFY(d.words.ShowDatabase());
        QVERIFY(browser.IsOpen());
        d.window->parentWidget()->close();
        QVERIFY(!browser.IsOpen());
    }

    void JumpToDefinitionAndUses()
    {
        Desk d;
        d.editors.Pool().OpenFile(d.main);
        const int editor = d.editors.Pool().ActiveIndex();
        QVERIFY(d.words.ShowDatabase("SQUARE"));
        QTest::keyClick(d.list, Qt::Key_Return);
        QCOMPARE(d.editors.Pool().ActiveIndex(), editor);
        const QString text = d.editors.Pool().Text(editor);
        const auto selected = [&] {
            return text.mid(d.editors.Pool().SelStart(editor), d.editors.Pool().SelLength(editor)).trimmed();
        };
        QCOMPARE(selected(), ": SQUARE  DUP * ;");
        QListWidget *usedBy = d.window->findChild<QListWidget *>("lstUsedBy");
        QCOMPARE(usedBy->count(), 2);
        QCOMPARE(usedBy->item(0)->text(), ShortenPath(d.main) + "  line 2");
        d.words.ShowDatabase("SQUARE");
        emit usedBy->itemActivated(usedBy->item(1));
        QCOMPARE(selected(), ": TWICE  SQUARE SQUARE ;");
        // A ROM word has nowhere to go.
        d.words.ShowDatabase("DUP");
        QTest::keyClick(d.list, Qt::Key_Return);
        QCOMPARE(d.f.prompts.beeps, 1);
    }

    void ReportToFile()
    {
        Desk d(true);
        d.words.ShowDatabase();
        const QString target = d.f.dir.filePath("report.txt");
        d.f.prompts.fileNames << target;
        d.window->findChild<QPushButton *>("cmdFileIt")->click();
        const RecordedPrompt dialog = d.f.prompts.shown.value(0);
        QCOMPARE(dialog.caption, "Save report as file");
        QCOMPARE(dialog.text, "Text files (*.txt);;All files (*)");
        QCOMPARE(dialog.items.value(0), ResolvePath(DatabaseBuilder::DerivedPath(d.main, ".TXT")));

        const QString file = ShortenPath(d.main);
        // The heading runs past column 63: one blank before the date.
        QStringList expected{"ALPHANUMERIC DEFINITIONS IN " + file + " 07 Mar 2024  09:05"};
        expected << CautionLines();
        const auto block = [&](const QString &word, const QString &where, const QString &count, const QStringList &text) {
            expected << QString(79, '-') << (word.leftJustified(20) + where).leftJustified(65) + count << ""
                     << text << "";
        };
        const QString rom = "In Forth ROM (or library file if indicated)";
        // A ROM word's text is the template's.
        const auto romText = [&](const QString &word) {
            for (const WordRecord *record : d.window->Browser().Records())
                if (record->word == word && !record->IsUserWord())
                    return record->definition.split("\r\n");
            return QStringList{"absent"};
        };
        // Unreferenced ROM words are left out; the rest in index order.
        block("*", rom, "1 reference", romText("*"));
        block(":", rom, "3 references", romText(":"));
        block(";", rom, "3 references", romText(";"));
        block("DUP", rom, "1 reference", romText("DUP"));
        block("LONG-NAMED-1", "File " + file, "UNREFERENCED", {"VARIABLE LONG-NAMED-1"});
        block("LONG-NAMED-2", "File " + file, "UNREFERENCED", {"VARIABLE LONG-NAMED-2"});
        block("SQUARE", "File " + file, "2 references", {": SQUARE  DUP * ;"});
        block("TWICE", "File " + file, "1 reference", {": TWICE  SQUARE SQUARE ;"});
        block("UNUSED", "File " + file, "UNREFERENCED", {": UNUSED  TWICE ;"});
        block("VARIABLE", rom, "2 references", romText("VARIABLE"));
        expected << QString(QChar(12)) << "";
        const QStringList suggestions = ReadTextLines(d.Suggestions());
        QVERIFY(suggestions.size() > 20);
        expected << suggestions;
        QCOMPARE(ReadTextLines(target), expected);
        QCOMPARE(test::ReadAll(target).count("\r\n"), expected.size());

        // Cancelling the dialog or the overwrite question writes nothing.
        QFile::remove(target);
        d.f.prompts.fileNames << "";
        d.window->FileReport();
        QVERIFY(!QFile::exists(target));
        test::WriteAll(target, "keep");
        d.f.prompts.fileNames << target;
        d.f.prompts.answers << PromptAnswer::Cancel;
        d.window->FileReport();
        QCOMPARE(d.f.prompts.MessageTexts().last(), "File " + LogicalName(target) + " already exists. Overwrite?");
        QCOMPARE(test::ReadAll(target), QByteArray("keep"));
    }

    void PrintThroughPrintFile_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("printed");
        QTest::newRow("no PRINT.TXT before") << false << int(PromptAnswer::Ok) << true;
        QTest::newRow("overwritten") << true << int(PromptAnswer::Ok) << true;
        QTest::newRow("kept") << true << int(PromptAnswer::Cancel) << false;
    }
    void PrintThroughPrintFile()
    {
        QFETCH(bool, exists);
        QFETCH(int, answer);
        QFETCH(bool, printed);
        Desk d;
        d.words.ShowDatabase();
        const QString printFile = d.f.folder + "/PRINT.TXT";
        if (exists)
            test::WriteAll(printFile, "old");
        d.f.prompts.answers << PromptAnswer(answer);
        const QString pdf = d.f.dir.filePath("words.pdf");
        QStringList linesWhilePrinting;
        d.window->SetPrinter([&](const PrintJob &job) {
            linesWhilePrinting = ReadTextLines(printFile);
            QPrinter printer(QPrinter::HighResolution);
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(pdf);
            QVERIFY(PrintPages(printer, job));
        });
        d.window->findChild<QPushButton *>("cmdPrint")->click();
        QCOMPARE(d.f.prompts.MessageTexts().size(), exists ? 1 : 0);
        QCOMPARE(QFileInfo(pdf).size() > 1000, printed);
        QCOMPARE(QFile::exists(printFile), !printed);
        if (printed)
            QVERIFY(linesWhilePrinting.value(0).startsWith("ALPHANUMERIC DEFINITIONS IN "));
        else
            QCOMPARE(test::ReadAll(printFile), QByteArray("old"));
    }

    void SuggestionsView_data()
    {
        QTest::addColumn<int>("lines"); // -1: no report file
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("view");
        QTest::newRow("no report") << -1 << "There is no suggestions file." << int(frmWords::View::List);
        QTest::newRow("empty report") << 0 << "No suggestions for improvement of \r\n" << int(frmWords::View::List);
        QTest::newRow("report") << 3 << "" << int(frmWords::View::Report);
        QTest::newRow("too much for the window") << 1000 << "The information is too much to fit in the window, "
                                                              "please print by selecting 'Print' to see it all"
                                                 << int(frmWords::View::Report);
    }
    void SuggestionsView()
    {
        QFETCH(int, lines);
        QFETCH(QString, message);
        QFETCH(int, view);
        Desk d;
        d.words.ShowDatabase();
        QStringList report;
        for (int i = 0; i < lines; ++i)
            report << QString("%1 %2").arg(i, 4).arg(QString(76, 'x'));
        if (lines >= 0)
            QVERIFY(WriteTextLines(d.Suggestions(), report).isEmpty());
        d.window->findChild<QPushButton *>("cmdSuggest")->click();
        QCOMPARE(d.f.prompts.MessageTexts().value(0).left(message.size()), message);
        QCOMPARE(int(d.window->CurrentView()), view);
        if (view == int(frmWords::View::List))
            return;
        QCOMPARE(d.window->findChild<QLabel *>("lblMaking")->text(), "Report on source file " + ShortenPath(d.main));
        auto *text = d.window->findChild<QPlainTextEdit *>("txtWords");
        const QString shown = text->toPlainText();
        QVERIFY(shown.size() <= ReportViewCapacity);
        QVERIFY(shown.startsWith(report.first() + "\n"));
        QCOMPARE(shown.endsWith(report.last() + "\n"), lines < 1000);
        QCOMPARE(text->geometry(), ReportTextGeometry(d.window->size()));
        QVERIFY(d.window->findChild<QPushButton *>("CmdPrintSug")->isVisible());
        QVERIFY(!d.window->findChild<QPushButton *>("cmdPrint")->isVisible());
        // OK leaves the report for the list.
        d.window->findChild<QPushButton *>("CmdOK")->click();
        QCOMPARE(d.window->CurrentView(), frmWords::View::List);
        QVERIFY(d.list->isVisible());
        QVERIFY(d.window->isVisible());
    }

    void WaysIn_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("shown");
        for (const char *way : {"mnuMWords", "mnuDView", "ctrl+F1"}) {
            QTest::addRow("%s, Terminal", way) << "Terminal" << way << false;
            // Ctrl+F1 shows the current database, whatever the template.
            QTest::addRow("%s, template missing", way) << "4410Fig" << way << (way == QLatin1String("ctrl+F1"));
            QTest::addRow("%s", way) << "4410ANS" << way << true;
        }
    }
    void WaysIn()
    {
        QFETCH(QString, type);
        QFETCH(QString, way);
        QFETCH(bool, shown);
        Desk d;
        d.editors.Pool().OpenFile(d.main);
        const int editor = d.editors.Pool().ActiveIndex();
        d.editors.Pool().Select(editor, d.editors.Pool().Text(editor).indexOf("TWICE ;") + 2, 0);
        d.f.context->settings.computerType = type;
        const QString fig = ResolvePath(DatabaseBuilder::TemplatePath(d.f.context->paths.ProgramFolder(), "4410Fig"));
        QFile::remove(fig);
        const QString before = d.f.context->settings.wordsDatabase;
        d.f.prompts.fileNames << ResolvePath(before);
        if (way == "mnuMWords")
            d.words.BrowseRomWords();
        else if (way == "mnuDView")
            d.Editor(editor)->findChild<QAction *>("mnuDView")->trigger();
        else
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F1, Qt::ControlModifier);
        QCOMPARE(d.window->isVisible(), shown);
        const QStringList messages = d.f.prompts.MessageTexts();
        if (type == "Terminal")
            QVERIFY(d.f.prompts.shown.isEmpty());
        else if (!shown)
            QVERIFY2(messages.size() == 1 && messages[0].contains("W4410Fig.MDB is missing"), qPrintable(messages.join("|")));
        if (!shown)
            return;
        QVERIFY(messages.isEmpty());
        if (way == "mnuMWords") {
            QCOMPARE(ResolvePath(d.f.context->settings.wordsDatabase),
                     ResolvePath(DatabaseBuilder::TemplatePath(d.f.context->paths.ProgramFolder(), type)));
            QVERIFY(d.list->findItems(" DUP        ", Qt::MatchExactly).size() == 1);
            QVERIFY(d.list->findItems(" SQUARE     |", Qt::MatchExactly).isEmpty());
        } else if (way == "mnuDView") {
            const RecordedPrompt dialog = d.f.prompts.shown.value(0);
            QCOMPARE(dialog.caption, "Choose Forth words database");
            QCOMPARE(dialog.text, "Database files (*.mdb)");
            QCOMPARE(d.f.context->settings.wordsDatabase, LogicalName(ResolvePath(before)));
        } else {
            QCOMPARE(d.list->currentItem()->text(), " TWICE      |");
        }
    }

    void ChooserCancelled()
    {
        Desk d;
        const QString before = d.f.context->settings.wordsDatabase;
        d.f.prompts.fileNames << "";
        d.words.ChooseDatabase();
        QCOMPARE(d.f.context->settings.wordsDatabase, before);
        QVERIFY(!d.window->isVisible());
    }
};


QTEST_MAIN(TestWordsWindows)
#include "tst_wordswindows.moc"
