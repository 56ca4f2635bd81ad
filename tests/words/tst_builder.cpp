// Make database on small programs the tests write: the records the reading
// loop makes, the references it counts, the refusals, questions and
// messages of the command, the suggestions report and its closing
// sections; and a real program of over a thousand lines.
#include "WordsFixture.h"
#include "words/WordsDatabase.h"
#include "words/WordsText.h"
#include <QRegularExpression>

using namespace kvr;
using namespace kvr::test;

class TestBuilder : public QObject {
    Q_OBJECT
private slots:
    void Definitions_data()
    {
        QTest::addColumn<QStringList>("files"); // MAIN.KVR's lines, then name and lines of others
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("one-line definitions, several on a line")
            << QStringList{"VARIABLE A VARIABLE B 5 CONSTANT C", "A B C"}
            << QStringList{"A|VARIABLE A VARIABLE B 5 CONSTANT C|MAIN.KVR|1",
                           "B|VARIABLE A VARIABLE B 5 CONSTANT C|MAIN.KVR|1",
                           "C|VARIABLE A VARIABLE B 5 CONSTANT C|MAIN.KVR|1"};
        QTest::newRow("CREATE inside a colon definition: it ends at the first ;")
            << QStringList{": MAKER   ", "  CREATE ,", "  DOES> @ ;  \\ done", "MAKER X  X"}
            << QStringList{"MAKER|: MAKER\n  CREATE ,\n  DOES> @ ;  \\ done|MAIN.KVR|1"};
        QTest::newRow("a defining line ends a colon definition and is scanned again")
            << QStringList{": A 1", "2", "VARIABLE V : B A ;"}
            << QStringList{"A|: A 1\n2|MAIN.KVR|-", "B|VARIABLE V : B A ;|MAIN.KVR|-", "V|VARIABLE V : B A ;|MAIN.KVR|-"};
        QTest::newRow("code to END-CODE; a table over empty and comma lines")
            << QStringList{"CODE C1 NOP", "NEXT END-CODE", "C1", "CODE C2 NOP", "CREATE T 1 ,", "2 ,", "", "3", "4"}
            << QStringList{"C1|CODE C1 NOP\nNEXT END-CODE|MAIN.KVR|1", "C2|CODE C2 NOP|MAIN.KVR|-",
                           "T|CREATE T 1 ,\n2 ,\n\n3|MAIN.KVR|-"};
        QTest::newRow("INCLUDE ends a definition; the file's words are its own")
            << QStringList{": A 1", "INCLUDE LIB", "A", "LIB.KVR", ": L A ;"}
            << QStringList{"A|: A 1|MAIN.KVR|2", "L|: L A ;|LIB.KVR|-"};
        QTest::newRow("a definition named like a ROM word replaces it")
            << QStringList{": DUP OVER ;", "DUP dup"} << QStringList{"DUP|: DUP OVER ;|MAIN.KVR|2"};
        QTest::newRow("a file included twice is read once")
            << QStringList{"INCLUDE LIB", "L", "INCLUDE LIB", "LIB.KVR", ": L ;"}
            << QStringList{"L|: L ;|LIB.KVR|1"};
    }
    void Definitions()
    {
        QFETCH(QStringList, files);
        QFETCH(QStringList, expected);
        WordsFixture f;
        qsizetype split = files.indexOf(QStringLiteral("LIB.KVR"));
        if (split < 0)
            split = files.size();
        f.Write(QStringLiteral("MAIN.KVR"), files.mid(0, split));
        if (split < files.size())
            f.Write(files[split], files.mid(split + 1));
        f.Make();
        QCOMPARE(f.builder->LastEnd(), DatabaseBuilder::End::Finished);
        QCOMPARE(f.UserWords(), expected);
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
        QTest::newRow("a reference before the definition is not counted")
            << "4410ANS" << QStringList{"LATER", ": LATER ;", "LATER"} << QStringList{"LATER=1"};
        QTest::newRow("a redefinition starts from Null") << "4410ANS" << QStringList{": W ;", "W W", ": W ;"}
                                                         << QStringList{"W=-"};
        QTest::newRow("comments are not counted, case is not minded")
            << "4410ANS" << QStringList{"dup ( SWAP ) Dup \\ OVER"} << QStringList{"DUP=2", "SWAP=-", "OVER=-"};
    }
    void References()
    {
        QFETCH(QString, type);
        QFETCH(QStringList, lines);
        QFETCH(QStringList, counts);
        WordsFixture f(type);
        f.Write(QStringLiteral("MAIN.KVR"), lines);
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
        QTest::newRow("no template") << "Terminal" << 0 << "MAIN.KVR" << "TEMPLATE";
        QTest::newRow("compiling") << "4410ANS" << int(BusyState::Compiling) << "MAIN.KVR"
                                   << "Wait until compiling complete before making database";
        QTest::newRow("not a .KVR file") << "4410ANS" << int(BusyState::BuildingDatabase) << "MAIN.TXT"
                                         << "Extension not .KVR, can not make database";
    }
    void Refusals()
    {
        QFETCH(QString, type);
        QFETCH(int, busy);
        QFETCH(QString, name);
        QFETCH(QString, message);
        WordsFixture f(type);
        f.context->busyState = BusyState(busy);
        f.builder->MakeDatabase(f.Write(name, {"1"}));
        if (message == QLatin1String("TEMPLATE"))
            message = DatabaseBuilder::FaultyDatabaseMessage(f.context->paths.ProgramFolder() + "KVRTerm/WTerminal.MDB");
        QCOMPARE(f.prompts.MessageTexts(), QStringList{message});
        QCOMPARE(f.prompts.shown.first().icon, PromptIcon::Exclamation);
        QCOMPARE(int(f.context->busyState), busy);
        QCOMPARE(f.settingsWrites, 0);
    }

    void QuestionsAndBusyState()
    {
        WordsFixture f;
        const QString main = f.Write(QStringLiteral("MAIN.KVR"), {"5 CONSTANT", ": A ;"});
        WriteAll(ResolvePath(DatabaseBuilder::DerivedPath(main, ".MDB")), "an older database");
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
        const QStringList texts = f.prompts.MessageTexts();
        QCOMPARE(texts.size(), 4);
        QCOMPARE(texts[0], texts[1]);
        QCOMPARE(texts[1], "File " + main + " and any INCLUDE files will be analysed.  Definitions identified will be "
                           "added to a database of existing Forth ROM words.\n\nAfterwards, the database is "
                           "accessible:\n  1. Using ctrl/F1\n  2. From the 'Definitions' menu.\n\nDo you want to make "
                           "a new database?");
        QCOMPARE(texts[2], "While making the database your source code can be scanned for suggested improvements, "
                           "but the process then takes a longer time.\n\nDo you want to have the suggestions?");
        QCOMPARE(texts[3], "There may be definition without any word name on this line:\n5 CONSTANT\nIt is in file "
                               + main + ".  Database construction will continue.");
        QCOMPARE(f.prompts.shown[3].icon, PromptIcon::Information);
        QCOMPARE(f.UserWords(), QStringList{"A|: A ;|MAIN.KVR|-"});
    }

    void EndsEarly_data()
    {
        QTest::addColumn<bool>("stop");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("message");
        QTest::newRow("Stop") << true << int(DatabaseBuilder::End::Stopped) << "";
        QTest::newRow("missing INCLUDE file") << false << int(DatabaseBuilder::End::FileNotFound)
                                              << "Can't open file NOWHERE.KVR";
    }
    void EndsEarly()
    {
        QFETCH(bool, stop);
        QFETCH(int, end);
        QFETCH(QString, message);
        WordsFixture f;
        f.Write(QStringLiteral("MAIN.KVR"), {": A ;", ": B ;", "INCLUDE NOWHERE", ": C ;"});
        connect(f.builder.get(), &DatabaseBuilder::LineRead, this, [&] {
            if (stop)
                f.builder->Stop();
        });
        f.Make(true);
        QCOMPARE(int(f.builder->LastEnd()), end);
        QCOMPARE(f.prompts.MessageTexts().mid(2), message.isEmpty() ? QStringList{} : QStringList{message});
        QCOMPARE(f.UserWords(), (stop ? QStringList{"A|: A ;|MAIN.KVR|-"}
                                      : QStringList{"A|: A ;|MAIN.KVR|-", "B|: B ;|MAIN.KVR|-"}));
        QCOMPARE(f.Report().size(), 4); // heading, caution lines, no closing sections
        QCOMPARE(int(f.context->busyState), 0);
    }

    void FaultyTemplate()
    {
        WordsFixture f;
        WriteAll(DatabaseBuilder::TemplatePath(f.context->paths.ProgramFolder(), "4410ANS"), "not a database");
        f.Write(QStringLiteral("MAIN.KVR"), {": A ;"});
        f.Make();
        QCOMPARE(f.prompts.MessageTexts().last(),
                 DatabaseBuilder::FaultyDatabaseMessage(DatabaseBuilder::DerivedPath(f.Main(), ".MDB")));
        QCOMPARE(f.builder->LastEnd(), DatabaseBuilder::End::FaultyDatabase);
    }

    void Report_data()
    {
        QTest::addColumn<QStringList>("lines");
        // After the heading and caution lines; SRC is the source, ROM-n the
        // template's word count less n.
        QTest::addColumn<QStringList>("expected");
        const QString sep = Separator();
        QTest::newRow("nothing used") << QStringList{"\\ empty"}
                                      << QStringList{"   No referenced definitions found in SRC", "", sep,
                                                     "Total number of definitions used: 0", "",
                                                     "Forth ROM definitions     used:   0",
                                                     "Forth ROM definitions not used:   ROM-0",
                                                     "User defined words        used:   0",
                                                     "User defined words    not used:   0", "", ""};
        QTest::newRow("unreferenced and once referenced words, a suggestion")
            << QStringList{": ONCE SWAP DROP ;", ": TWICE ONCE ;", "TWICE TWICE", ": GONE ;"}
            << QStringList{sep, "Suggest this replacement in SRC", ": ONCE SWAP DROP ;", ": ONCE NIP ;", sep,
                           "Files needed for SRC", "", "SRC", "", sep, "Total number of definitions used: 6", "",
                           "Forth ROM definitions     used:   4", "Forth ROM definitions not used:   ROM-4",
                           "User defined words        used:   2", "User defined words    not used:   1", "", sep,
                           "These definitions are not referenced.",
                           "Since they are user defined they are candidates for deletion.",
                           "There is only one of these definitions.", "", "GONE" + QString(28, ' ') + "SRC", "", sep,
                           "These definitions have been referenced only once.",
                           "Since they are userdefined it may be possible to move them to in-line code",
                           "to save PROM space, possibly at the expense of making the code less readable.",
                           "There is only one of these definitions.", "", "ONCE" + QString(28, ' ') + "SRC", "", ""};
    }
    void Report()
    {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, expected);
        WordsFixture f;
        f.Write(QStringLiteral("MAIN.KVR"), lines);
        f.Make(true);
        const QString source = ShortenPath(f.Main());
        QVERIFY(source.startsWith("...")); // shortened everywhere
        expected.replaceInStrings(QStringLiteral("SRC"), source);
        WordsDatabase rom(DatabaseBuilder::TemplatePath(f.context->paths.ProgramFolder(), "4410ANS"));
        WordTable table;
        QVERIFY(rom.Open() && rom.LoadWords(table));
        const int romWords = static_cast<int>(table.InIndexOrder().size());
        QVERIFY(romWords > 150);
        for (QString &line : expected) {
            const QRegularExpressionMatch less = QRegularExpression(QStringLiteral("ROM-(\\d+)$")).match(line);
            if (less.hasMatch())
                line.replace(less.capturedStart(), less.capturedLength(), QString::number(romWords - less.captured(1).toInt()));
        }
        QCOMPARE(f.Report(), QStringList{("REPORT ON " + source).leftJustified(63) + "07 Mar 2024  09:05"}
                                 + CautionLines() + expected);
    }

    // gforth's core word tests (1,300 lines with their tester), counted by
    // hand: SWAP stands 26 times in code (twice on one line that starts
    // with a tab), ROT four times (twice as rot); BITSSET? is used on 4 lines after its
    // definition, not in the comment that names it; of the two GDX on one
    // line only the first is a definition, referenced once after.
    void RealProgram()
    {
        QString suite;
        for (const QString &version : QDir(QStringLiteral("/usr/share/gforth")).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            if (QFile::exists("/usr/share/gforth/" + version + "/test/coretest.fs"))
                suite = "/usr/share/gforth/" + version + "/test/";
        QVERIFY2(!suite.isEmpty(), "gforth-common's coretest.fs is not installed");
        WordsFixture f;
        f.context->settings.extraSearchPaths = suite + ";";
        f.Write(QStringLiteral("MAIN.KVR"), {"INCLUDE TTESTER.FS", "INCLUDE TESTER.FS", "INCLUDE CORETEST.FS"});
        f.Make(true);
        QCOMPARE(f.builder->LastEnd(), DatabaseBuilder::End::Finished);
        QCOMPARE(f.References("SWAP"), QStringLiteral("26"));
        QCOMPARE(f.References("ROT"), QStringLiteral("4"));
        QCOMPARE(f.Rows("SELECT \"References\", File, Line FROM ROM WHERE Word = 'BITSSET?'"),
                 QStringList{"4|" + ShortenPath(suite + "CORETEST.FS") + "|25"});
        QCOMPARE(f.Rows("SELECT Definition, \"References\" FROM ROM WHERE Word = 'GDX'"),
                 QStringList{"{ : GDX   123 ; : GDX   GDX 234 ; -> }|1"});
        QCOMPARE(f.Rows("SELECT COUNT(*) FROM tblReferences WHERE Word = 'SWAP'"), QStringList{"26"});
    }

    void ReferenceSites()
    {
        WordsFixture f;
        f.Write(QStringLiteral("MAIN.KVR"), {": A ;", "INCLUDE LIB", "A"});
        const QString lib = f.Write(QStringLiteral("LIB.KVR"), {"", "A A"});
        f.Make();
        const QString main = f.Main();
        QCOMPARE(f.Rows("SELECT Word, File, Line FROM tblReferences WHERE Word = 'A' ORDER BY rowid"),
                 (QStringList{"A|" + lib + "|2", "A|" + lib + "|2", "A|" + main + "|3"}));
        QCOMPARE(f.Rows("SELECT Line, Path FROM ROM WHERE Word = 'A'"), QStringList{"1|" + main});
    }
};

QTEST_GUILESS_MAIN(TestBuilder)
#include "tst_builder.moc"
