// Unravel INCLUDEs: the flat file a tree of files gives, with and without
// stripping, the questions and messages of the command, and the line map.
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "compiler/Unravel.h"
#include "TempDir.h"
#include "TestClock.h"
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestUnravel : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    ScriptedPrompts m_prompts;
    TestClock m_clock;
    std::unique_ptr<AppContext> m_context;
    QStringList m_dialogs;
    QStringList m_names; // answers of the save dialog
    QString m_working;

    QString Path(const QString &name) const { return m_dir.filePath(QStringLiteral("src/") + name); }
    // Files given as name, text pairs; lines end in CR LF on disk.
    void WriteFiles(const QStringList &files)
    {
        for (qsizetype i = 0; i + 1 < files.size(); i += 2)
            WriteAll(Path(files[i]), files[i + 1].toLatin1().replace("\n", "\r\n"));
    }
    QString Main() const { return Path(QStringLiteral("MAIN.KVR")).toUpper(); }
    void Unravel(const QString &source)
    {
        Unraveller unraveller(*m_context);
        unraveller.askSaveName = [this](const QString &caption) {
            m_dialogs << caption;
            return m_names.isEmpty() ? QString() : m_names.takeFirst();
        };
        unraveller.setWorkingFileName = [this](const QString &name) { m_working = name; };
        unraveller.Unravel(source);
    }
    QByteArray Output(const QString &name = QStringLiteral("OUT.KVR")) const
    {
        return ReadAll(m_dir.filePath(name)).replace("\r\n", "\n");
    }

private slots:
    void init()
    {
        m_context = std::make_unique<AppContext>(Paths(m_dir.filePath(QStringLiteral("settings"))), m_prompts, m_clock);
        m_prompts.Clear();
        m_dialogs.clear();
        m_names = {m_dir.filePath(QStringLiteral("out.kvr"))};
        QDir(m_dir.filePath(QStringLiteral("src"))).removeRecursively();
        QFile::remove(m_dir.filePath(QStringLiteral("out.kvr")));
    }

    void Output_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<bool>("strip");
        QTest::addColumn<QString>("expected");
        QTest::newRow("included twice, directly and through a parent: written once")
            << QStringList{"MAIN.KVR", "A\nINCLUDE LIB\nINCLUDE MID\nINCLUDE LIB\nZ", "MID.KVR", "M\nINCLUDE LIB",
                           "LIB.KVR", "L"}
            << false << "A\nL\nM\nZ\n";
        QTest::newRow("lower case or indented INCLUDE is an ordinary line")
            << QStringList{"MAIN.KVR", "include lib\n INCLUDE LIB", "LIB.KVR", "L"} << false
            << "include lib\n INCLUDE LIB\n";
        QTest::newRow("comment after the name") << QStringList{"MAIN.KVR", "INCLUDE UTILS \\ lcd\nX", "UTILS.KVR", "U"}
                                                << false << "U\nX\n";
        QTest::newRow("a name with a dot gets no extension")
            << QStringList{"MAIN.KVR", "INCLUDE A.LONG", "A.LONG", "DOT", "A.LONG.KVR", "WRONG"} << false << "DOT\n";
        QTest::newRow("unstripped: comments and blank lines kept, trailing blanks gone")
            << QStringList{"MAIN.KVR", "\\ note   \n\n: A  1  ;  ( c )   \n( set up )"} << false
            << "\\ note\n\n: A  1  ;  ( c )\n( set up )\n";
        QTest::newRow("stripped: comment lines and empty lines dropped, comment-only line empty")
            << QStringList{"MAIN.KVR", "\\ note\n   \\ indented\n\n: A  1  ;  ( c ) \\ x\n( set up )\n.\"  a   b\""}
            << true << ": A 1 ;\n\n.\"  a   b\"\n";
        QTest::newRow("the main file included by a child is read once more")
            << QStringList{"MAIN.KVR", "A\nINCLUDE SUB", "SUB.KVR", "S\nINCLUDE MAIN"} << false << "A\nS\nA\n";
        QStringList many{"MAIN.KVR", QString()};
        QString expected;
        for (int i = 1; i <= 101; ++i) {
            many[1] += QStringLiteral("INCLUDE F%1\n").arg(i);
            many << QStringLiteral("F%1.KVR").arg(i) << QStringLiteral("F%1").arg(i);
            if (i <= 100)
                expected += QStringLiteral("F%1\n").arg(i);
        }
        QTest::newRow("the 101st file is dropped silently") << many << false << expected;
    }
    void Output()
    {
        QFETCH(QStringList, files);
        QFETCH(bool, strip);
        QFETCH(QString, expected);
        WriteFiles(files);
        m_prompts.answers << (strip ? PromptAnswer::Yes : PromptAnswer::No);
        QDir::setCurrent(QDir::rootPath()); // INCLUDE files are found beside the source
        Unravel(Main());
        QCOMPARE(m_prompts.MessageTexts(), QStringList{Unraveller::Question(Main())});
        QCOMPARE(m_dialogs, QStringList{"unravelled file"});
        QCOMPARE(m_working, m_dir.filePath(QStringLiteral("out.kvr")).toUpper());
        QCOMPARE(QString::fromLatin1(Output(QStringLiteral("out.kvr"))), expected);
    }

    void QuestionAndRefusal()
    {
        QVERIFY(Unraveller::Question(QStringLiteral("X.KVR"))
                == "File X.KVR will have any INCLUDE files expanded in-line and the result will be written to a "
                   "file.\n\nDo you want to eliminate comment and excess white space  in the process? \n\n"
                   "YES to strip out comments and multiple spaces.\nNO  to unravel the INCLUDEs as they stand.\n"
                   "CANCEL to stop this operation.");
        WriteFiles({"MAIN.KVR", "A", "MAIN.TXT", "A"});
        Unravel(Path(QStringLiteral("MAIN.TXT")).toUpper());
        QCOMPARE(m_prompts.MessageTexts(), QStringList{"Extension not .KVR, can not unravel"});
        QCOMPARE(m_prompts.shown.first().icon, PromptIcon::Exclamation);
        m_prompts.Clear();
        m_prompts.answers << PromptAnswer::Cancel;
        Unravel(Main());
        QCOMPARE(m_prompts.shown.first().buttons, PromptButtons::YesNoCancel);
        QVERIFY(m_dialogs.isEmpty());
    }

    void MissingIncludeKeepsOutput()
    {
        WriteFiles({"MAIN.KVR", "BEFORE\nINCLUDE NOWHERE\nAFTER"});
        m_prompts.answers << PromptAnswer::No;
        Unravel(Main());
        QCOMPARE(m_prompts.MessageTexts().mid(1), (QStringList{"Can't open file NOWHERE.KVR",
                                                               "Halted unravel process, file NOWHERE.KVR not found"}));
        QCOMPARE(m_prompts.shown.last().icon, PromptIcon::Exclamation);
        QCOMPARE(Output(QStringLiteral("out.kvr")), QByteArray("BEFORE\n"));
    }

    void OutputName_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QList<PromptAnswer>>("answers");
        QTest::addColumn<QStringList>("messages");
        const QString out = m_dir.filePath(QStringLiteral("out.kvr"));
        QTest::newRow("existing file, Cancel: asked again")
            << QStringList{m_dir.filePath("old.kvr"), out} << QList<PromptAnswer>{PromptAnswer::Cancel}
            << QStringList{"File " + m_dir.filePath("old.kvr").toUpper() + " already exists. Overwrite?"};
        QTest::newRow("the source itself: asked again")
            << QStringList{Path("main.kvr"), out} << QList<PromptAnswer>{}
            << QStringList{"File " + Path("main.kvr").toUpper() + " is the file being unravelled, choose another name."};
        QTest::newRow("a folder: not a legal file name")
            << QStringList{m_dir.filePath("src")} << QList<PromptAnswer>{}
            << QStringList{"Can't write file " + m_dir.filePath("src").toUpper()
                           + ", it may be write-protected or not a legal file name."};
        QTest::newRow("no such folder: the system's words")
            << QStringList{m_dir.filePath("none/x.kvr")} << QList<PromptAnswer>{}
            << QStringList{"No such file or directory"};
    }
    void OutputName()
    {
        QFETCH(QStringList, names);
        QFETCH(QList<PromptAnswer>, answers);
        QFETCH(QStringList, messages);
        WriteFiles({"MAIN.KVR", "A"});
        WriteAll(m_dir.filePath(QStringLiteral("old.kvr")), "OLD\r\n");
        m_names = names;
        m_prompts.answers << PromptAnswer::No << answers;
        Unravel(Main());
        QCOMPARE(m_prompts.MessageTexts().mid(1), messages);
        QCOMPARE(m_dialogs.size(), names.size());
        QCOMPARE(ReadAll(m_dir.filePath(QStringLiteral("old.kvr"))), QByteArray("OLD\r\n"));
        QCOMPARE(Output(QStringLiteral("out.kvr")), QByteArray(names.size() == 2 ? "A\n" : ""));
    }

    void LineMap()
    {
        WriteFiles({"MAIN.KVR", "A\nINCLUDE LIB\n\nB", "LIB.KVR", "\\ c\nL"});
        const QString main = Main();
        const UnravelResult result =
            UnravelFile(main, m_dir.filePath(QStringLiteral("flat.kvr")), true, Path(QString()) + ";", m_prompts);
        QCOMPARE(result.end, UnravelResult::End::Finished);
        QCOMPARE(result.filesRead, 2);
        QCOMPARE(QString::fromUtf8(LineMapText(result.map)),
                 "1\t" + Path("MAIN.KVR") + "\t1\r\n2\t" + Path("LIB.KVR") + "\t2\r\n3\t" + Path("MAIN.KVR") + "\t4\r\n");
    }
};

QTEST_GUILESS_MAIN(TestUnravel)
#include "tst_unravel.moc"
