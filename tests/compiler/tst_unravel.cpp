// Unravel INCLUDEs: the flat file a tree of files gives, with and without
// stripping, and the questions and messages of the command.
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
    QStringList m_dialogs;
    QString m_working;

    QString Path(const QString &name) const { return m_dir.filePath("src/" + name); }
    QString Out() const { return m_dir.filePath(QStringLiteral("out.kvr")); }
    // Files as name, text pairs, written with CR LF; unravels the first
    // with these answers and these names from the save dialog.
    void Unravel(const QStringList &files, const QList<PromptAnswer> &answers, QStringList names)
    {
        QDir(m_dir.filePath("src")).removeRecursively();
        QFile::remove(Out());
        for (qsizetype i = 0; i + 1 < files.size(); i += 2)
            WriteAll(Path(files[i]), files[i + 1].toLatin1().replace("\n", "\r\n"));
        m_prompts.Clear();
        m_prompts.answers << answers;
        m_dialogs.clear();
        AppContext context(Paths(m_dir.filePath("settings")), m_prompts, m_clock);
        Unraveller unraveller(context);
        unraveller.askSaveName = [&](const QString &caption) {
            m_dialogs << caption;
            return names.isEmpty() ? QString() : names.takeFirst();
        };
        unraveller.setWorkingFileName = [this](const QString &name) { m_working = name; };
        QDir::setCurrent(QDir::rootPath()); // INCLUDE files are found beside the source
        unraveller.Unravel(Path(files.first()).toUpper());
    }
    QByteArray Written() const { return ReadAll(Out()).replace("\r\n", "\n"); }

private slots:
    void Output_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<bool>("strip");
        QTest::addColumn<QString>("expected");
        QTest::newRow("included twice, directly and through a parent: written once")
            << QStringList{"MAIN.KVR", "A\nINCLUDE LIB\nINCLUDE MID\nINCLUDE LIB\nZ", "MID.KVR", "M\nINCLUDE LIB",
                           "LIB.KVR", "L"} << false << "A\nL\nM\nZ\n";
        QTest::newRow("lower case or indented INCLUDE is an ordinary line")
            << QStringList{"MAIN.KVR", "include lib\n INCLUDE LIB", "LIB.KVR", "L"} << false << "include lib\n INCLUDE LIB\n";
        QTest::newRow("comment after the name")
            << QStringList{"MAIN.KVR", "INCLUDE UTILS \\ lcd\nX", "UTILS.KVR", "U"} << false << "U\nX\n";
        QTest::newRow("a name with a dot gets no extension")
            << QStringList{"MAIN.KVR", "INCLUDE A.LONG", "A.LONG", "DOT", "A.LONG.KVR", "WRONG"} << false << "DOT\n";
        QTest::newRow("unstripped: comments and blank lines kept, trailing blanks gone")
            << QStringList{"MAIN.KVR", "\\ note   \n\n: A  1  ;  ( c )   \n( set up )"} << false
            << "\\ note\n\n: A  1  ;  ( c )\n( set up )\n";
        QTest::newRow("stripped: comment and empty lines dropped, comment-only line empty")
            << QStringList{"MAIN.KVR", "\\ note\n   \\ indented\n\n: A  1  ;  ( c ) \\ x\n( set up )\n.\"  a   b\""}
            << true << ": A 1 ;\n\n.\"  a   b\"\n";
        QTest::newRow("the main file included by a child is read once more")
            << QStringList{"MAIN.KVR", "A\nINCLUDE SUB", "SUB.KVR", "S\nINCLUDE MAIN"} << false << "A\nS\nA\n";
        QStringList many{"MAIN.KVR", QString()};
        QString expected;
        for (int i = 1; i <= 101; ++i) {
            many[1] += QStringLiteral("INCLUDE F%1\n").arg(i);
            many << QStringLiteral("F%1.KVR").arg(i) << QStringLiteral("F%1").arg(i);
            expected += i <= 100 ? QStringLiteral("F%1\n").arg(i) : QString();
        }
        QTest::newRow("the 101st file is dropped silently") << many << false << expected;
    }
    void Output()
    {
        QFETCH(QStringList, files);
        QFETCH(bool, strip);
        QFETCH(QString, expected);
        Unravel(files, {strip ? PromptAnswer::Yes : PromptAnswer::No}, {Out()});
        QCOMPARE(m_prompts.MessageTexts(), QStringList{Unraveller::Question(Path("MAIN.KVR").toUpper())});
        QCOMPARE(m_prompts.shown.first().buttons, PromptButtons::YesNoCancel);
        QCOMPARE(m_dialogs, QStringList{"unravelled file"});
        QCOMPARE(m_working, Out().toUpper());
        QCOMPARE(QString::fromLatin1(Written()), expected);
    }

    void Messages_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QList<PromptAnswer>>("answers");
        QTest::addColumn<QStringList>("names");    // answers of the save dialog
        QTest::addColumn<QStringList>("messages"); // after the question
        QTest::addColumn<QByteArray>("output");
        const QString old = m_dir.filePath("old.kvr");
        const QStringList main{"MAIN.KVR", "A"};
        const QList<PromptAnswer> no{PromptAnswer::No};
        QTest::newRow("other extension: refused") << QStringList{"MAIN.TXT", "A"} << no << QStringList{}
                                                  << QStringList{"Extension not .KVR, can not unravel"} << QByteArray();
        QTest::newRow("Cancel: no dialog") << main << QList<PromptAnswer>{PromptAnswer::Cancel} << QStringList{}
                                           << QStringList{} << QByteArray();
        QTest::newRow("missing INCLUDE: halted, what came before kept")
            << QStringList{"MAIN.KVR", "BEFORE\nINCLUDE NOWHERE\nAFTER"} << no << QStringList{Out()}
            << QStringList{"Can't open file NOWHERE.KVR", "Halted unravel process, file NOWHERE.KVR not found"}
            << QByteArray("BEFORE\n");
        QTest::newRow("existing file, Cancel: asked again")
            << main << QList<PromptAnswer>{PromptAnswer::No, PromptAnswer::Cancel} << QStringList{old, Out()}
            << QStringList{"File " + old.toUpper() + " already exists. Overwrite?"} << QByteArray("A\n");
        QTest::newRow("the source itself: asked again")
            << main << no << QStringList{Path("main.kvr"), Out()}
            << QStringList{"File " + Path("main.kvr").toUpper() + " is the file being unravelled, choose another name."}
            << QByteArray("A\n");
        QTest::newRow("a folder: not a legal file name")
            << main << no << QStringList{m_dir.filePath("src")}
            << QStringList{"Can't write file " + m_dir.filePath("src").toUpper()
                           + ", it may be write-protected or not a legal file name."} << QByteArray();
        QTest::newRow("no such folder: the system's words")
            << main << no << QStringList{m_dir.filePath("none/x.kvr")} << QStringList{"No such file or directory"}
            << QByteArray();
    }
    void Messages()
    {
        QFETCH(QStringList, files);
        QFETCH(QList<PromptAnswer>, answers);
        QFETCH(QStringList, names);
        QFETCH(QStringList, messages);
        QFETCH(QByteArray, output);
        WriteAll(m_dir.filePath("old.kvr"), "OLD\r\n");
        Unravel(files, answers, names);
        const QStringList shown = m_prompts.MessageTexts();
        QCOMPARE(files.first().endsWith(".TXT") ? shown : shown.mid(1), messages);
        QCOMPARE(m_dialogs.size(), names.size());
        QCOMPARE(ReadAll(m_dir.filePath("old.kvr")), QByteArray("OLD\r\n"));
        QCOMPARE(Written(), output);
    }
};

QTEST_GUILESS_MAIN(TestUnravel)
#include "tst_unravel.moc"
