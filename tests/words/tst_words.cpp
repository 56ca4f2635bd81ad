// The words database: the text rules of its reading loop, the suggestions
// analysis, the templates, Make database on small programs and a real one,
// and the words window over it.
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ScriptedPrompts.h"
#include "app/Text.h"
#include "app/ui/PagePrinter.h"
#include "editor/ui/EditorWindows.h"
#include "words/DatabaseBuilder.h"
#include "words/Suggestions.h"
#include "words/WordsBrowser.h"
#include "words/WordsDatabase.h"
#include "words/WordsText.h"
#include "words/ui/WordsWindows.h"
#include "TempDir.h"
#include "TestClock.h"
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QPushButton>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

namespace {
const QDateTime When(QDate(2024, 3, 7), QTime(9, 5));

// A settings folder with the real templates, scripted prompts, a fixed
// report date, and readers of what the build left behind.
struct Words {
    // Each build syncs the database many times: a folder in memory keeps it quick.
    QTemporaryDir dir{(QFileInfo(QStringLiteral("/dev/shm")).isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath())
                      + QStringLiteral("/kvr-words-XXXXXX")};
    ScriptedPrompts prompts;
    TestClock clock;
    std::unique_ptr<AppContext> context;
    std::unique_ptr<DatabaseBuilder> builder;
    int settingsWrites = 0;
    // Long enough that stored file names are shortened.
    QString folder = dir.filePath(QStringLiteral("a-folder-with-a-rather-long-name"));

    explicit Words(const QString &type = QStringLiteral("4410ANS"))
    {
        const Paths paths(dir.filePath(QStringLiteral("settings")));
        paths.Prepare();
        context = std::make_unique<AppContext>(paths, prompts, clock);
        context->settings.computerType = type;
        builder = std::make_unique<DatabaseBuilder>(*context);
        builder->SetSettingsWriter([this] { ++settingsWrites; });
        builder->SetClock([] { return When; });
        builder->SetYield({});
    }
    // Writes a source file (lines joined with CR LF); gives its logical name.
    QString Write(const QString &name, const QStringList &lines) const
    {
        WriteAll(folder + '/' + name, (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toLatin1());
        return LogicalName(folder + '/' + name);
    }
    QString Main() const { return LogicalName(folder + QStringLiteral("/MAIN.KVR")); }
    QString Derived(const char *extension) const { return ResolvePath(DatabaseBuilder::DerivedPath(Main(), extension)); }
    // Make database on MAIN.KVR: OK, then Yes or No to the suggestions.
    void Make(bool suggestions = false)
    {
        prompts.answers << PromptAnswer::Ok << (suggestions ? PromptAnswer::Yes : PromptAnswer::No);
        builder->MakeDatabase(Main());
    }
    // Rows of the database as "a|b|c", Null as "-", CR LF as "\n".
    QStringList Rows(const QString &sql) const
    {
        QStringList rows;
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("check"));
            db.setDatabaseName(Derived(".MDB"));
            db.open();
            QSqlQuery query(sql, db);
            while (query.next()) {
                QStringList fields;
                for (int i = 0; i < query.record().count(); ++i)
                    fields << (query.isNull(i) ? QStringLiteral("-") : query.value(i).toString().replace("\r\n", "\n"));
                rows << fields.join('|');
            }
        }
        QSqlDatabase::removeDatabase(QStringLiteral("check"));
        return rows;
    }
    // User words as Word|Definition|file name|References; File must be the
    // shortened Path.
    QStringList UserWords() const
    {
        QStringList rows;
        for (const QString &row : Rows("SELECT Word, Definition, File, \"References\", Path FROM ROM "
                                       "WHERE File IS NOT NULL ORDER BY Word COLLATE NOCASE")) {
            QStringList f = row.split('|');
            f[2] = f[2] == ShortenPath(f[4]) ? f[4].section('/', -1) : "BAD FILE " + f[2];
            rows << f.mid(0, 4).join('|');
        }
        return rows;
    }
    QString References(const QString &word) const
    {
        return Rows("SELECT \"References\" FROM ROM WHERE Word = '" + word + "' COLLATE NOCASE").value(0, "absent");
    }
    QStringList Report() const { return QString::fromLatin1(ReadAll(Derived(".SUG"))).split(QStringLiteral("\r\n")); }
};

// A frame with the editor windows and the words window over a small
// program: SQUARE used twice, TWICE once, three words never.
struct Desk {
    Words f;
    QMainWindow frame;
    QMdiArea *area = new QMdiArea(&frame);
    EditorWindows editors{*f.context, area};
    WordsWindows words{*f.context, &editors.Pool(), area};
    frmWords *window = words.Window();
    QListWidget *list = window->findChild<QListWidget *>("lstWords");
    QString main = f.Write("MAIN.KVR", {": SQUARE  DUP * ;", ": TWICE  SQUARE SQUARE ;", "INCLUDE LIB", ": UNUSED  TWICE ;",
                                        "VARIABLE LONG-NAMED-1", "VARIABLE LONG-NAMED-2"});
    QString lib = f.Write("LIB.KVR", {": L ;"});

    explicit Desk(bool make = true, bool suggestions = false)
    {
        frame.setCentralWidget(area);
        frame.show();
        QApplication::setActiveWindow(&frame);
        window->SetClock([] { return When; });
        if (make)
            f.Make(suggestions);
        f.prompts.Clear();
    }
    QString Text(const char *name) const { return window->findChild<QLineEdit *>(name)->text(); }
    void Click(const char *name) { window->findChild<QPushButton *>(name)->click(); }
    // The editor window of MAIN.KVR, active, with the caret before `text`.
    QWidget *Editor(const QString &text = QString())
    {
        EditorPool &pool = editors.Pool();
        pool.OpenFile(main);
        pool.Select(pool.ActiveIndex(), pool.Text(pool.ActiveIndex()).indexOf(text), 0);
        return dynamic_cast<QWidget *>(pool.Document(pool.ActiveIndex())->Object());
    }
};
} // namespace

class TestWords : public QObject {
    Q_OBJECT
private slots:
    // Strings blanked by board type ("" blanks the bracketed parts instead).
    void Blanking_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow(".\" text") << "4410ANS" << ".\" hi DUP\" DUP" << ".\"       \" DUP ";
        QTest::newRow("S\" opens on 4410ANS") << "4410ANS" << "S\" X\" 1" << "S\"  \" 1 ";
        QTest::newRow("S\" is no opener on Fig") << "4410Fig" << "S\" X\"" << "S\" X\" ";
        QTest::newRow("a blank opens on Fig") << "6630Fig" << "A \" X\"" << "A \"  \" ";
        QTest::newRow("a blank is no opener on 4410ANS") << "4410ANS" << "A \" X\"" << "A \" X\" ";
        QTest::newRow("ABORT\" is no opener") << "4410ANS" << "ABORT\" no\"" << "ABORT\" no\" ";
        QTest::newRow("two strings, blanks between them stay code") << "4410Fig" << ".\" A\" X .\" B\"" << ".\"  \" X .\"  \" ";
        QTest::newRow("no closing quote: to the end") << "4410ANS" << ".\" abc" << ".\"     ";
        QTest::newRow("quote at the end") << "4410ANS" << "X .\"" << "X .\" ";
        QTest::newRow("interpreted text") << "" << " [ CHAR A ] LITERAL " << " [        ] LITERAL ";
        QTest::newRow("['] keeps its name") << "" << " ['] DUP " << " ['] DUP ";
        QTest::newRow("[CHAR]") << "" << " [CHAR] X " << " [C   ] X ";
        QTest::newRow("two pairs") << "" << " [ A ] B [ C ] " << " [   ] B [   ] ";
        QTest::newRow("no closing bracket: to the end") << "" << " X [ Y " << " X [   ";
    }
    void Blanking()
    {
        QFETCH(QString, type);
        QFETCH(QString, line);
        type.isEmpty() ? BlankBrackets(line) : BlankStrings(line, type);
        QTEST(line, "expected");
    }

    // -1, and whatever rounds to it, is never counted.
    void CountedTokens_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<bool>("counted");
        for (const char *token : {"", "-1", "-1X", "-1.4", "-0.6", "-1."})
            QTest::addRow("not counted: '%s'", token) << token << false;
        for (const char *token : {"-1.5", "-0.5", "0", "1+", "-10", "--1", "DUP"})
            QTest::addRow("counted: '%s'", token) << token << true;
    }
    void CountedTokens()
    {
        QFETCH(QString, token);
        QTEST(IsCountedToken(token), "counted");
    }

    // The suggestions analysis line by line, with a small rule table.
    void Suggestions_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("expected");
        const QString sep = Separator(), replace = "Suggest this replacement in F.KVR";
        const QStringList caseBlock{sep, "Suggest vectored execution table instead of CASE in F.KVR",
                                    " Eg:  CREATE  ' AAA ,  ' BBB ,  ' CCC ,  where AAA BBB CCC etc are Forth",
                                    " definitions corresponding to clauses inside OF ... ENDOF structures."};
        const auto repeat = [](const QString &line, int count) { return QStringList(count, line); };
        QTest::newRow("VALUE and a name") << QStringList{"VALUE SPEED"}
                                          << QStringList{sep, "This replacement is necessary in F.KVR", "VALUE SPEED", "0 VALUE SPEED"};
        QTest::newRow("initial value before VALUE") << QStringList{"5 VALUE SPEED"} << QStringList{};
        QTest::newRow("a data line is not examined further") << QStringList{"SWAP DROP C,"} << QStringList{};
        QTest::newRow("a replacement") << QStringList{"A SWAP DROP Z"} << QStringList{sep, replace, "A SWAP DROP Z", "A NIP Z"};
        QTest::newRow("a rewritten line is searched again by every rule")
            << QStringList{"OVER OVER DROP"} << QStringList{sep, replace, "OVER OVER DROP", "OVER"};
        QTest::newRow("notes are found again after a rewrite")
            << QStringList{"PICK SWAP DROP 1 +"} << QStringList{sep, "PICK reaches deep in F.KVR", "PICK reaches deep in F.KVR",
                                                                replace, "PICK SWAP DROP 1 +", "PICK NIP 1+"};
        QTest::newRow("a note alone ends with the line") << QStringList{"3 PICK"} << QStringList{sep, "PICK reaches deep in F.KVR", "3 PICK"};
        QTest::newRow("words in strings and brackets never match") << QStringList{".\" SWAP DROP\" [ SWAP DROP ] S\" PICK\""}
                                                                   << QStringList{};
        const QStringList twelve = QStringList{": W", "CASE"} + repeat("1 OF 2 ENDOF", 12) + QStringList{"END-CASE ;"};
        const QStringList thirteen = QStringList{": W", "CASE", "0 OF 1 ENDOF"} + twelve.mid(2);
        QTest::newRow("CASE with 12 OF lines") << twelve << QStringList{};
        QTest::newRow("CASE with 13 OF lines") << thirteen << caseBlock + QStringList{"CASE"};
        QTest::newRow("a second CASE after the count went back to zero")
            << thirteen + QStringList{"X CASE"} + repeat("1 OF 2 ENDOF", 13) + QStringList{"END-CASE ;"}
            << caseBlock + QStringList{"CASE"} + caseBlock + QStringList{"X CASE"};
        QTest::newRow("more OF lines without a new CASE: not again")
            << thirteen + repeat("1 OF 2 ENDOF", 2) + QStringList{"END-CASE"} << caseBlock + QStringList{"CASE"};
        QTest::newRow("seven nested IF lines: one block, the first IF")
            << QStringList{": T", "A IF"} + repeat("Y IF", 7) << QStringList{sep, "Suggest factoring replace nested IFs in F.KVR", "A IF"};
        QTest::newRow("six nested IF lines: none") << QStringList{": T", "A IF"} + repeat("Y IF", 5) << QStringList{};
        QTest::newRow("a THEN takes one level away") << QStringList{"A IF"} + repeat("Y IF", 4) + QStringList{"X THEN", "C IF"}
                                                     << QStringList{};
        QTest::newRow("a new definition starts the depth afresh")
            << repeat("Y IF", 4) + QStringList{": N", "A IF"} + repeat("Y IF", 3) << QStringList{};
    }
    void Suggestions()
    {
        QFETCH(QStringList, lines);
        SuggestionAnalysis analysis(QStringLiteral("4410ANS"), {{"1 +", QString("1+"), {}},
                                                                {"2DUP DROP", QString("OVER"), {}},
                                                                {"OVER OVER", QString("2DUP"), {}},
                                                                {"PICK", std::nullopt, "PICK reaches deep"},
                                                                {"SWAP DROP", QString("NIP"), {}}});
        QStringList report;
        for (const QString &line : lines)
            analysis.AnalyseLine(QStringLiteral("F.KVR"), line, report);
        QTEST(report, "expected");
    }
    void RulesThatUndoEachOtherEnd()
    {
        SuggestionAnalysis analysis(QStringLiteral("4410ANS"), {{"A", QString("B"), {}}, {"B", QString("A"), {}}});
        QStringList report;
        analysis.AnalyseLine(QStringLiteral("F.KVR"), QStringLiteral("A"), report);
        QCOMPARE(report.value(1), QStringLiteral("Suggest this replacement in F.KVR"));
    }

    // The templates made at build time: notation entries, no user data,
    // and rules that use only the board's words and always end.
    void Templates_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("hasNip");
        QTest::newRow("4410ANS") << "4410ANS" << true;
        QTest::newRow("4410Fig") << "4410Fig" << false;
        QTest::newRow("6630Fig") << "6630Fig" << false;
    }
    void Templates()
    {
        QFETCH(QString, type);
        QFETCH(bool, hasNip);
        WordsDatabase database(DatabaseBuilder::TemplatePath(Paths().GeneratedDataFolder(), type));
        WordTable words;
        QList<SuggestRule> rules;
        QVERIFY(database.Open() && database.LoadWords(words) && database.LoadRules(rules) && !rules.isEmpty());
        QVERIFY(words.Size() > 100);
        QCOMPARE(words.Find(QStringLiteral("NIP")) != nullptr, hasNip);
        for (const QString &entry : {"^x", "(", "\\", "$xxxx", "Rx", "@Rx", "@-Rx", "@Rx+", "x\""})
            QVERIFY2(words.Find(entry) && words.Find(entry)->word == entry, qPrintable(entry));
        for (const WordRecord *record : words.InIndexOrder())
            QVERIFY2(!record->definition.isEmpty() && !record->file && !record->references, qPrintable(record->word));
        bool nipRule = false;
        for (const SuggestRule &rule : rules) {
            QVERIFY(!rule.error.isEmpty() && (rule.correction || !rule.notes.isEmpty()));
            const QStringList replacement = rule.correction ? rule.correction->split(' ') : QStringList();
            // Fewer words each time: rewriting a line always ends.
            QVERIFY2(replacement.size() < rule.error.split(' ').size(), qPrintable(rule.error));
            for (const QString &word : replacement)
                QVERIFY2(words.Find(word) && words.Find(word)->word == word, qPrintable(word));
            nipRule = nipRule || rule.correction == QStringLiteral("NIP");
        }
        QCOMPARE(nipRule, hasNip);
    }

    // What the words window shows of a record.
    void RecordTexts_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("user");
        QTest::addColumn<int>("references"); // -1: never referenced
        QTest::addColumn<QString>("texts");
        const QString rom = "In Forth ROM (or library file if indicated)", unused = QChar(31);
        QTest::newRow("ROM word has no marker") << "DUP" << false << 4 << " DUP        |" + rom + "|References: 4";
        QTest::newRow("unreferenced ROM word") << "ROT" << false << -1 << " ROT        |" + rom + "|UNREFERENCED";
        QTest::newRow("referenced user word") << "SQUARE" << true << 1 << " SQUARE     ||File: LIB.KVR|References: 1";
        QTest::newRow("unreferenced user word, cut to 11") << "VERY-LONG-NAME" << true << -1
                                                           << " VERY-LONG-N" + unused + "|File: LIB.KVR|UNREFERENCED";
        QTest::newRow("register notation not counted") << "@Rx+" << false << -1 << " @Rx+       |" + rom + "|not counted";
        QTest::newRow("string notation not counted") << "x\"" << false << -1 << " x\"         |" + rom + "|not counted";
        QTest::newRow("user word named like a notation") << "Rx" << true << -1 << " Rx         " + unused + "|File: LIB.KVR|UNREFERENCED";
    }
    void RecordTexts()
    {
        QFETCH(QString, word);
        QFETCH(bool, user);
        QFETCH(int, references);
        WordRecord r;
        r.word = word;
        r.file = user ? std::optional<QString>("LIB.KVR") : std::nullopt;
        r.references = references < 0 ? std::nullopt : std::optional<qint32>(references);
        QTEST(QStringList({WordsBrowser::ListEntry(r), WordsBrowser::FileText(r), WordsBrowser::ReferencesText(r)}).join('|'), "texts");
    }

    // The terminal's completion from the database's words.
    void Completion_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("rest");
        QTest::newRow("the only candidate, with a blank") << "5 SQUAR" << "E ";
        QTest::newRow("what the candidates share") << "5 sq" << "UA";
        QTest::newRow("nothing shared beyond the typed") << "SQUA" << "";
        QTest::newRow("no candidate") << "5 XYZ" << "";
        QTest::newRow("line ends with a blank") << "5 " << "";
        QTest::newRow("after the last candidate") << "SWAPS" << "";
    }
    void Completion()
    {
        QFETCH(QString, line);
        QTEST(kvr::Completion({"DUP", "SQUARE", "SQUASH", "SWAP"}, line), "rest");
    }

    void Layout()
    {
        // List rows: the editor font size times 12 plus 3, in tenths of a point.
        QCOMPARE(ListRowHeight(10, 72), 13);
        QCOMPARE(ListRowHeight(20, 144), 49);
        // The report text: from 0.09 to 0.91 of the height, the width less the margins.
        QCOMPARE(ReportTextGeometry(QSize(1000, 500)), QRect(2, 45, 996, 410));
    }

    // The records of small programs: MAIN.KVR's lines, then LIB.KVR and its lines.
    void Definitions_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("one-line definitions, several on a line")
            << QStringList{"VARIABLE A VARIABLE B 5 CONSTANT C", "A B C"}
            << QStringList{"A|VARIABLE A VARIABLE B 5 CONSTANT C|MAIN.KVR|1", "B|VARIABLE A VARIABLE B 5 CONSTANT C|MAIN.KVR|1",
                           "C|VARIABLE A VARIABLE B 5 CONSTANT C|MAIN.KVR|1"};
        QTest::newRow("CREATE inside a colon definition: it ends at the first ;")
            << QStringList{": MAKER   ", "  CREATE ,", "  DOES> @ ;  \\ done", "MAKER X  X"}
            << QStringList{"MAKER|: MAKER\n  CREATE ,\n  DOES> @ ;  \\ done|MAIN.KVR|1"};
        QTest::newRow("a defining line ends a colon definition and is scanned again")
            << QStringList{": A 1", "2", "VARIABLE V : B A ;"}
            << QStringList{"A|: A 1\n2|MAIN.KVR|-", "B|VARIABLE V : B A ;|MAIN.KVR|-", "V|VARIABLE V : B A ;|MAIN.KVR|-"};
        QTest::newRow("code to END-CODE; a table over empty and comma lines")
            << QStringList{"CODE C1 NOP", "NEXT END-CODE", "C1", "CODE C2 NOP", "CREATE T 1 ,", "2 ,", "", "3", "4"}
            << QStringList{"C1|CODE C1 NOP\nNEXT END-CODE|MAIN.KVR|1", "C2|CODE C2 NOP|MAIN.KVR|-", "T|CREATE T 1 ,\n2 ,\n\n3|MAIN.KVR|-"};
        QTest::newRow("INCLUDE ends a definition; the file's words are its own")
            << QStringList{": A 1", "INCLUDE LIB", "A", "LIB.KVR", ": L A ;"} << QStringList{"A|: A 1|MAIN.KVR|2", "L|: L A ;|LIB.KVR|-"};
        QTest::newRow("a definition named like a ROM word replaces it") << QStringList{": DUP OVER ;", "DUP dup"}
                                                                        << QStringList{"DUP|: DUP OVER ;|MAIN.KVR|2"};
        QTest::newRow("a file included twice is read once") << QStringList{"INCLUDE LIB", "L", "INCLUDE LIB", "LIB.KVR", ": L ;"}
                                                            << QStringList{"L|: L ;|LIB.KVR|1"};
    }
    void Definitions()
    {
        QFETCH(QStringList, files);
        Words f;
        const qsizetype split = files.contains("LIB.KVR") ? files.indexOf("LIB.KVR") : files.size();
        f.Write("MAIN.KVR", files.mid(0, split));
        f.Write("LIB.KVR", files.mid(split + 1));
        f.Make();
        QCOMPARE(f.builder->LastEnd(), DatabaseBuilder::End::Finished);
        QTEST(f.UserWords(), "expected");
    }

    void References_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("counts"); // WORD=count, "-" for Null
        QTest::newRow("-1 never counted; 0 and 1 where the ROM has them")
            << "4410Fig" << QStringList{": -1X ;", ": -1.5X ;", "0 1 -1 -1X -1.5X 1"} << QStringList{"0=1", "1=2", "-1X=-", "-1.5X=1"};
        QTest::newRow("no number words in the ANS ROM") << "4410ANS" << QStringList{"0 1"} << QStringList{"0=absent"};
        QTest::newRow("strings: S\" and .\" open on the ANS board")
            << "4410ANS" << QStringList{": T .\" DUP\" S\" SWAP\" ABORT\" OVER X\" ;"} << QStringList{"DUP=-", "SWAP=-", "OVER=1"};
        QTest::newRow("strings: .\" and a blank open on Fig boards")
            << "6630Fig" << QStringList{": T .\" DUP\" S\" SWAP X\" \" ROT\" ;"} << QStringList{"DUP=-", "SWAP=1", "ROT=-"};
        QTest::newRow("a reference before the definition is not counted") << "4410ANS" << QStringList{"LATER", ": LATER ;", "LATER"}
                                                                           << QStringList{"LATER=1"};
        QTest::newRow("a redefinition starts from Null") << "4410ANS" << QStringList{": W ;", "W W", ": W ;"} << QStringList{"W=-"};
        QTest::newRow("comments are not counted, case is not minded")
            << "4410ANS" << QStringList{"dup ( SWAP ) Dup \\ OVER"} << QStringList{"DUP=2", "SWAP=-", "OVER=-"};
    }
    void References()
    {
        QFETCH(QString, type);
        QFETCH(QStringList, lines);
        QFETCH(QStringList, counts);
        Words f(type);
        f.Write("MAIN.KVR", lines);
        f.Make();
        for (const QString &count : counts)
            QCOMPARE(count.section('=', 0, 0) + "=" + f.References(count.section('=', 0, 0)), count);
    }

    void Refusals_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("busy");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("message");
        const QString notKvr = "Extension not .KVR, can not make database";
        QTest::newRow("no template") << "Terminal" << 0 << "MAIN.KVR" << "TEMPLATE";
        QTest::newRow("compiling") << "4410ANS" << int(BusyState::Compiling) << "MAIN.KVR"
                                   << "Wait until compiling complete before making database";
        QTest::newRow("not a .KVR file") << "4410ANS" << int(BusyState::BuildingDatabase) << "MAIN.TXT" << notKvr;
        QTest::newRow(".KVR not at the end") << "4410ANS" << 0 << "MAIN.KVR.TXT" << notKvr;
    }
    void Refusals()
    {
        QFETCH(QString, type);
        QFETCH(int, busy);
        QFETCH(QString, name);
        QFETCH(QString, message);
        Words f(type);
        f.context->busyState = BusyState(busy);
        f.builder->MakeDatabase(f.Write(name, {"1"}));
        if (message == "TEMPLATE")
            message = DatabaseBuilder::FaultyDatabaseMessage(f.context->paths.ProgramFolder() + "KVRTerm/WTerminal.MDB");
        QCOMPARE(f.prompts.MessageTexts(), QStringList{message});
        QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
        QCOMPARE(int(f.context->busyState), busy);
        QCOMPARE(f.settingsWrites, 0);
    }

    void QuestionsAndBusyState()
    {
        Words f;
        const QString main = f.Write("MAIN.KVR", {"5 CONSTANT", ": A ;"});
        WriteAll(f.Derived(".MDB"), "an older database");
        QList<int> busy;
        connect(f.builder.get(), &DatabaseBuilder::LineRead, this, [&] { busy << int(f.context->busyState); });
        f.prompts.answers << PromptAnswer::Cancel;
        f.builder->MakeDatabase(main);
        QVERIFY(busy.isEmpty());
        f.Make();
        QCOMPARE(busy, (QList<int>{2, 2}));
        QCOMPARE(int(f.context->busyState), 0);
        QCOMPARE(f.context->settings.wordsDatabase, DatabaseBuilder::DerivedPath(main, ".MDB"));
        QCOMPARE(f.settingsWrites, 1);
        // The question again, the suggestions question, then the nameless definition.
        const QStringList texts = f.prompts.MessageTexts();
        QCOMPARE(texts.size(), 4);
        QVERIFY(texts[0] == texts[1] && texts[1].startsWith("File " + main + " and any INCLUDE files will be analysed."));
        QCOMPARE(texts[3], "There may be definition without any word name on this line:\n5 CONSTANT\nIt is in file " + main
                               + ".  Database construction will continue.");
        QCOMPARE(f.prompts.shown[3].icon, PromptIcon::Information);
        QCOMPARE(f.UserWords(), QStringList{"A|: A ;|MAIN.KVR|-"});
    }

    void EndsEarly_data()
    {
        QTest::addColumn<bool>("stop");
        QTest::addColumn<int>("end");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QStringList>("words");
        QTest::newRow("Stop") << true << int(DatabaseBuilder::End::Stopped) << QStringList{} << QStringList{"A|: A ;|MAIN.KVR|-"};
        QTest::newRow("missing INCLUDE file") << false << int(DatabaseBuilder::End::FileNotFound)
                                              << QStringList{"Can't open file NOWHERE.KVR"}
                                              << QStringList{"A|: A ;|MAIN.KVR|-", "B|: B ;|MAIN.KVR|-"};
        QTest::newRow("faulty template") << false << int(DatabaseBuilder::End::FaultyDatabase) << QStringList{"FAULTY"} << QStringList{};
    }
    void EndsEarly()
    {
        QFETCH(bool, stop);
        QFETCH(QStringList, messages);
        Words f;
        f.Write("MAIN.KVR", {": A ;", ": B ;", "INCLUDE NOWHERE", ": C ;"});
        connect(f.builder.get(), &DatabaseBuilder::LineRead, this, [&] { stop ? f.builder->Stop() : void(); });
        if (messages.value(0) == "FAULTY") {
            WriteAll(DatabaseBuilder::TemplatePath(f.context->paths.ProgramFolder(), "4410ANS"), "not a database");
            messages = {DatabaseBuilder::FaultyDatabaseMessage(DatabaseBuilder::DerivedPath(f.Main(), ".MDB"))};
        }
        f.Make(true);
        QTEST(int(f.builder->LastEnd()), "end");
        QCOMPARE(f.prompts.MessageTexts().mid(2), messages);
        if (!messages.value(0).contains("faulty")) {
            QTEST(f.UserWords(), "words");
            QCOMPARE(f.Report().size(), 4); // heading, caution lines, no closing sections
        }
        QCOMPARE(int(f.context->busyState), 0);
    }

    void Report_data()
    {
        // After the heading and caution lines; SRC is the source, ROM-n the
        // template's word count less n.
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("expected");
        const QString sep = Separator();
        const QStringList totals{"Forth ROM definitions     used:   ", "Forth ROM definitions not used:   ",
                                 "User defined words        used:   ", "User defined words    not used:   "};
        QTest::newRow("nothing used") << QStringList{"\\ empty"}
                                      << QStringList{"   No referenced definitions found in SRC", "", sep, "Total number of definitions used: 0",
                                                     "", totals[0] + "0", totals[1] + "ROM-0", totals[2] + "0", totals[3] + "0", "", ""};
        QTest::newRow("unreferenced and once referenced words, a suggestion")
            << QStringList{": ONCE SWAP DROP ;", ": TWICE ONCE ;", "TWICE TWICE", ": GONE ;"}
            << QStringList{sep, "Suggest this replacement in SRC", ": ONCE SWAP DROP ;", ": ONCE NIP ;", sep, "Files needed for SRC", "",
                           "SRC", "", sep, "Total number of definitions used: 6", "", totals[0] + "4", totals[1] + "ROM-4",
                           totals[2] + "2", totals[3] + "1", "", sep, "These definitions are not referenced.",
                           "Since they are user defined they are candidates for deletion.", "There is only one of these definitions.",
                           "", "GONE" + QString(28, ' ') + "SRC", "", sep, "These definitions have been referenced only once.",
                           "Since they are userdefined it may be possible to move them to in-line code",
                           "to save PROM space, possibly at the expense of making the code less readable.",
                           "There is only one of these definitions.", "", "ONCE" + QString(28, ' ') + "SRC", "", ""};
    }
    void Report()
    {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, expected);
        Words f;
        f.Write("MAIN.KVR", lines);
        f.Make(true);
        const QString source = ShortenPath(f.Main());
        QVERIFY(source.startsWith("...")); // shortened everywhere
        expected.replaceInStrings("SRC", source);
        WordsDatabase rom(DatabaseBuilder::TemplatePath(f.context->paths.ProgramFolder(), "4410ANS"));
        WordTable table;
        QVERIFY(rom.Open() && rom.LoadWords(table));
        const qsizetype romWords = table.InIndexOrder().size();
        QVERIFY(romWords > 150);
        for (QString &line : expected) {
            const QRegularExpressionMatch less = QRegularExpression("ROM-(\\d+)$").match(line);
            if (less.hasMatch())
                line = line.left(less.capturedStart()) + QString::number(romWords - less.captured(1).toInt());
        }
        QCOMPARE(f.Report(), QStringList{("REPORT ON " + source).leftJustified(63) + "07 Mar 2024  09:05"} + CautionLines() + expected);
    }

    // gforth's core word tests (1,300 lines with their tester), counted by
    // hand: SWAP stands 26 times in code (twice on one line that starts
    // with a tab), ROT four times (twice as rot); BITSSET? is used on 4 lines
    // after its definition, not in the comment that names it; of the two GDX
    // on one line only the first is a definition, referenced once after.
    void RealProgram()
    {
        QString suite;
        for (const QString &version : QDir(QStringLiteral("/usr/share/gforth")).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            if (QFile::exists("/usr/share/gforth/" + version + "/test/coretest.fs"))
                suite = "/usr/share/gforth/" + version + "/test/";
        QVERIFY2(!suite.isEmpty(), "gforth-common's coretest.fs is not installed");
        Words f;
        f.context->settings.extraSearchPaths = suite + ";";
        f.Write("MAIN.KVR", {"INCLUDE TTESTER.FS", "INCLUDE TESTER.FS", "INCLUDE CORETEST.FS"});
        f.Make(true);
        QCOMPARE(f.builder->LastEnd(), DatabaseBuilder::End::Finished);
        QCOMPARE(f.References("SWAP") + ' ' + f.References("ROT"), QStringLiteral("26 4"));
        QCOMPARE(f.Rows("SELECT \"References\", File, Line FROM ROM WHERE Word = 'BITSSET?'"),
                 QStringList{"4|" + ShortenPath(suite + "CORETEST.FS") + "|25"});
        QCOMPARE(f.Rows("SELECT Definition, \"References\" FROM ROM WHERE Word = 'GDX'"),
                 QStringList{"{ : GDX   123 ; : GDX   GDX 234 ; -> }|1"});
        QCOMPARE(f.Rows("SELECT COUNT(*) FROM tblReferences WHERE Word = 'SWAP'"), QStringList{"26"});
    }

    void ReferenceSites()
    {
        Words f;
        f.Write("MAIN.KVR", {": A ;", "INCLUDE LIB", "A"});
        const QString lib = f.Write("LIB.KVR", {"", "A A"});
        f.Make();
        QCOMPARE(f.Rows("SELECT Word, File, Line FROM tblReferences WHERE Word = 'A' ORDER BY rowid"),
                 (QStringList{"A|" + lib + "|2", "A|" + lib + "|2", "A|" + f.Main() + "|3"}));
        QCOMPARE(f.Rows("SELECT Line, Path FROM ROM WHERE Word = 'A'"), QStringList{"1|" + f.Main()});
    }

    // Make database from the editor's menu: the window shows the file being
    // read, Escape stops the build, then closes the window.
    void MakingAndStop()
    {
        Desk d(false);
        QWidget *editor = d.Editor();
        QAction *make = editor->findChild<QMenu *>("mnuD")->findChild<QAction *>("mnuDMake");
        QStringList making;
        connect(&d.words.Builder(), &DatabaseBuilder::LineRead, this, [&] {
            making << d.window->findChild<QLabel *>("lblMaking")->text();
            QVERIFY(d.window->findChild<QPushButton *>("cmdESC")->isVisible() && !d.list->isVisible() && !make->isEnabled());
            if (making.size() == 4) {
                QPushButton *stop = d.window->findChild<QPushButton *>("cmdESC");
                stop->setFocus();
                QTest::keyClick(stop, Qt::Key_Escape);
            }
        });
        d.f.prompts.answers << PromptAnswer::Ok << PromptAnswer::No;
        make->trigger();
        QCOMPARE(d.words.Builder().LastEnd(), DatabaseBuilder::End::Stopped);
        const QString reading = "Processing file\n" + ShortenPath(d.main);
        QCOMPARE(making, (QStringList{reading, reading, reading, "Processing file\n" + ShortenPath(d.f.folder.toUpper() + "/LIB.KVR")}));
        QVERIFY(make->isEnabled() && !d.window->findChild<QPushButton *>("cmdESC")->isVisible() && d.list->isVisible());
        QCOMPARE(d.list->findItems(" DUP        ", Qt::MatchExactly).size(), 1);
        QCOMPARE(d.window->windowTitle(), "Database of definitions in " + ShortenPath(d.main));
        // After the build Escape presses OK; the editor is active again, so keys reach it.
        d.list->setFocus();
        QTest::keyClick(d.list, Qt::Key_Escape);
        QVERIFY(d.window->parentWidget()->isHidden());
        QVERIFY(d.area->activeSubWindow() && d.area->activeSubWindow()->widget() == editor);
        // The next build shows the window again, with its contents.
        d.f.prompts.answers << PromptAnswer::Ok << PromptAnswer::No;
        make->trigger();
        QCOMPARE(d.words.Builder().LastEnd(), DatabaseBuilder::End::Finished);
        QVERIFY(d.window->isVisible() && d.list->isVisible());
    }

    void ListAndJump()
    {
        Desk d;
        QVERIFY(d.words.ShowDatabase());
        QCOMPARE(d.list->visualItemRect(d.list->item(0)).height(), ListRowHeight(10, d.list->logicalDpiY()));
        // Two words sharing their first 11 characters: two entries, and
        // selecting the second shows the first.
        const QList<QListWidgetItem *> both = d.list->findItems(" LONG-NAMED-" + QString(QChar(31)), Qt::MatchExactly);
        QCOMPARE(both.size(), 2);
        d.list->setCurrentItem(both.last());
        QCOMPARE(d.window->findChild<QPlainTextEdit *>("txtWords")->toPlainText(), "VARIABLE LONG-NAMED-1");
        QCOMPARE(d.Text("txtReferences"), "UNREFERENCED");
        QCOMPARE(d.window->Browser().Seek(" ~~~"), d.window->Browser().Records().size() - 1); // not found: the last
        // The filter narrows the list as it is typed, without regard to case.
        QTest::keyClicks(d.window->findChild<QLineEdit *>("txtFilter"), "qua");
        QCOMPARE(d.list->count(), 1);
        QCOMPARE(d.list->currentItem()->text() + d.Text("txtReferences"), " SQUARE     |References: 2");
        // Enter selects the definition in its editor; a use site, the line that uses it.
        EditorPool &pool = d.editors.Pool();
        d.Editor();
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
        // OK, or closing the window any other way, closes the database.
        QVERIFY(d.words.ShowDatabase());
        d.Click("CmdOK");
        QVERIFY(d.window->parentWidget()->isHidden() && !d.window->Browser().IsOpen());
        QVERIFY(d.words.ShowDatabase());
        d.window->parentWidget()->close();
        QVERIFY(!d.window->Browser().IsOpen());
    }

    // The alphanumeric report: unreferenced ROM words left out, the rest in
    // index order, then the suggestions after a form feed.
    void ReportToFile()
    {
        Desk d(true, true);
        d.words.ShowDatabase();
        const QString target = d.f.dir.filePath("report.txt");
        d.f.prompts.fileNames << target;
        d.Click("cmdFileIt");
        const RecordedPrompt dialog = d.f.prompts.shown.value(0);
        QCOMPARE(dialog.caption + " | " + dialog.text, "Save report as file | Text files (*.txt);;All files (*)");
        QCOMPARE(dialog.items.value(0), d.f.Derived(".TXT"));
        const QString file = "File " + ShortenPath(d.main), rom = "In Forth ROM (or library file if indicated)";
        // The heading runs past column 63: one blank before the date.
        QStringList expected = QStringList{"ALPHANUMERIC DEFINITIONS IN " + ShortenPath(d.main) + " 07 Mar 2024  09:05"} + CautionLines();
        for (const WordRecord *record : d.window->Browser().Records()) {
            if (!record->file && !record->references)
                continue;
            const QString count = !record->references ? "UNREFERENCED" : *record->references == 1 ? "1 reference"
                                                                        : QString::number(*record->references) + " references";
            expected << QString(79, '-') << (record->word.leftJustified(20) + (record->file ? "File " + ShortenPath(*record->file) : rom)).leftJustified(65) + count
                     << "" << record->definition.split("\r\n") << "";
        }
        QVERIFY(expected.contains((QString("SQUARE").leftJustified(20) + file).leftJustified(65) + "2 references"));
        QVERIFY(expected.contains((QString("TWICE").leftJustified(20) + file).leftJustified(65) + "1 reference"));
        QVERIFY(expected.contains((QString("DUP").leftJustified(20) + rom).leftJustified(65) + "1 reference"));
        expected << QString(QChar(12)) << "" << ReadTextLines(d.f.Derived(".SUG"));
        QCOMPARE(ReadTextLines(target), expected);
        QCOMPARE(ReadAll(target).count("\r\n"), expected.size());
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
            WriteAll(printFile, "old");
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
        QCOMPARE(d.f.prompts.MessageTexts(), exists ? QStringList{"File " + LogicalName(printFile) + " already exists. Overwrite?"} : QStringList());
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
            QVERIFY(WriteTextLines(d.f.Derived(".SUG"), report).isEmpty());
        d.Click("cmdSuggest");
        QCOMPARE(d.f.prompts.MessageTexts().value(0).left(message.size()), message);
        QCOMPARE(d.window->CurrentView(), lines > 0 ? frmWords::View::Report : frmWords::View::List);
        if (lines <= 0)
            return;
        QCOMPARE(d.window->findChild<QLabel *>("lblMaking")->text(), "Report on source file " + ShortenPath(d.main));
        const auto *text = d.window->findChild<QPlainTextEdit *>("txtWords");
        QCOMPARE(text->geometry(), ReportTextGeometry(d.window->size()));
        QVERIFY(text->toPlainText().size() <= ReportViewCapacity && text->toPlainText().startsWith(report.first() + "\n"));
        QCOMPARE(text->toPlainText().endsWith(report.last() + "\n"), lines < 1000);
        d.Click("CmdOK"); // back to the list
        QVERIFY(d.window->CurrentView() == frmWords::View::List && d.list->isVisible());
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
        QWidget *editor = d.Editor("TWICE ;");
        d.f.context->settings.computerType = type;
        QFile::remove(ResolvePath(DatabaseBuilder::TemplatePath(d.f.context->paths.ProgramFolder(), "4410Fig")));
        d.f.prompts.fileNames << ResolvePath(d.f.context->settings.wordsDatabase);
        if (way == "mnuDView")
            editor->findChild<QAction *>("mnuDView")->trigger();
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

QTEST_MAIN(TestWords)
#include "tst_words.moc"
