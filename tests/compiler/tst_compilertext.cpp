// The text rules of compiling: directives, compacted lines, INCLUDE and
// #CONDITION names, report lines, where INCLUDE files are sought, and the
// flat file Unravel makes of a tree of INCLUDE files.
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ScriptedPrompts.h"
#include "compiler/CompileDriver.h"
#include "compiler/CompileProgress.h"
#include "compiler/ConditionalCompilation.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceFiles.h"
#include "compiler/SourceText.h"
#include "compiler/Unravel.h"
#include "DataTable.h"
#include "TempDir.h"
#include "TestClock.h"
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

class TestCompilerText : public QObject {
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
    void EvaluateDirective_data();
    void EvaluateDirective();
    void TextRules_data();
    void TextRules();
    void FindSourceFile_data();
    void FindSourceFile();
    void UnravelOutput_data()
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
    void UnravelOutput()
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

    void UnravelMessages_data()
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
    }
    void UnravelMessages()
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

void TestCompilerText::EvaluateDirective_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("result");
    QTest::addColumn<int>("newState");
    QTest::addColumn<QString>("newLine");
    const QString D = QStringLiteral("DEBUG");
    QTest::newRow("#IF matching word is taken and emptied") << 0 << D << "#IF DEBUG" << 1 << 1 << "";
    QTest::newRow("#IF other word skips") << 0 << "TEST" << "#IF DEBUG" << 0 << 4 << "#IF DEBUG";
    QTest::newRow("#if debug \\ comment, lower case") << 0 << D << "#if debug \\ on" << 1 << 1 << "";
    QTest::newRow("#IF alone is no directive") << 0 << "" << "#IF" << 1 << 0 << "#IF";
    for (int s = 1; s <= 7; ++s)
        QTest::addRow("#IF inside a block (state %d) is an error", s) << s << D << "#IF DEBUG" << -1 << s << "#IF DEBUG";
    for (int s : {1, 2, 5})
        QTest::addRow("#ELSE after a taken branch (state %d)", s) << s << D << "#ELSE" << 0 << 6 << "#ELSE";
    for (int s : {4, 7})
        QTest::addRow("#ELSE with no branch taken (state %d)", s) << s << D << "#ELSE \\ c" << 1 << 3 << "";
    for (int s : {0, 3, 6}) {
        QTest::addRow("#ELSE out of order (state %d)", s) << s << D << "#ELSE" << -1 << s << "#ELSE";
        QTest::addRow("#ELSEIF out of order (state %d)", s) << s << D << "#ELSEIF DEBUG" << -1 << s << "#ELSEIF DEBUG";
    }
    for (int s : {1, 2, 5})
        QTest::addRow("#ELSEIF after a taken branch (state %d)", s) << s << D << "#ELSEIF DEBUG" << 0 << 5 << "#ELSEIF DEBUG";
    for (int s : {4, 7}) {
        QTest::addRow("#ELSEIF matching, none taken (state %d)", s) << s << D << "#elseif debug \\ c" << 1 << 2 << "";
        QTest::addRow("#ELSEIF not matching (state %d)", s) << s << D << "#ELSEIF TEST" << 0 << 7 << "#ELSEIF TEST";
    }
    QTest::newRow("#ELSEIF a longer word does not match") << 4 << D << "#ELSEIF DEBUG2" << 0 << 7 << "#ELSEIF DEBUG2";
    QTest::newRow("#ENDIF outside a block is an error") << 0 << D << "#ENDIF" << -1 << 0 << "#ENDIF";
    for (int s = 1; s <= 7; ++s)
        QTest::addRow("#ENDIF closes state %d", s) << s << D << "#endif \\ done" << 1 << 0 << "";
    for (int s = 0; s <= 7; ++s)
        QTest::addRow("ordinary line in state %d", s) << s << D << ": X ;" << (s <= 3 ? 1 : 0) << s << ": X ;";
}

void TestCompilerText::EvaluateDirective()
{
    QFETCH(int, state);
    QFETCH(QString, condition);
    QFETCH(QString, line);
    QFETCH(int, result);
    QFETCH(int, newState);
    QFETCH(QString, newLine);
    QCOMPARE(kvr::EvaluateDirective(line, state, condition), result);
    QCOMPARE(state, newState);
    QCOMPARE(line, newLine);
}

// Each row: a rule, its input ("|" parts several arguments) and the result.
void TestCompilerText::TextRules_data()
{
    Columns<QString, QString, QString>({"rule", "input", "expected"});
    const auto row = RuleRow;
    row("compact: definition with comment", "compact", ": SQ  DUP *  ;  \\ square", ": SQ DUP * ;");
    row("compact: blanks inside quotes kept", "compact", ".\" A  ( B )\"   CR  X", ".\" A  ( B )\" CR X");
    row("compact: backslash first empties", "compact", "\\ comment", "");
    row("compact: paren comment where a word begins", "compact", "( s ) : X ( n -- n ) DUP ;", ": X DUP ;");
    row("compact: paren inside a word kept", "compact", "X( Y ) (X) DUP", "X( Y ) (X) DUP");
    row("compact: unclosed paren runs to the end", "compact", "DUP ( never closed", "DUP ");
    row("compact: paren closed on the last character", "compact", "DUP ( x)", "DUP ");
    row("compact: backslash needs blanks around it", "compact", "DUP\\ X \\X Y", "DUP\\ X \\X Y");
    row("extension: bare name", "ext", "LIB", "LIB.KVR");
    row("extension: short extension kept", "ext", "  x.f ", "X.F");
    row("extension: dot in a folder only", "ext", "..\\OLD\\LIB", "..\\OLD\\LIB.KVR");
    row("include: lower-case name with comment", "include", "INCLUDE   lib   \\ comment", "LIB.KVR");
    row("include: paren comment", "include", "INCLUDE UTIL.KVR ( tools )", "UTIL.KVR");
    row("include: backslash wins over paren", "include", "INCLUDE A ( x ) \\ y", "A ( X ).KVR");
    row("condition: word and comment", "cond", "#condition debug \\ set", "DEBUG");
    row("error line: 12", "errline", "/W/APP.KVR - line 12: FOO ?  - not found", "12");
    row("error line: 1234 reads three digits", "errline", "/W/APP.KVR - line 1234: X ?  - y", "123");
    row("error line: none", "errline", "HALTED COMPILE WITH F2", "0");
    row("error line: a folder holding \"line\"", "errline", "/home/caroline/APP.KVR - line 7: X ?  - y", "7");
    const QString defs = QStringLiteral("|: A 1 ;\r\n: B 2 ;\r\n  : C ;\r\nX");
    row("last definition: in the first, whole text", "lastdef", "3" + defs, "0");
    row("last definition: in the second", "lastdef", "12" + defs, "9");
    row("last definition: indented colon is none", "lastdef", "24" + defs, "9");
    row("split: unix path", "split", "/work/app/MAIN.KVR", "/work/app|MAIN.KVR");
    row("split: mixed separators, last wins", "split", "..\\OLD/X\\LIB.KVR", "..\\OLD/X|LIB.KVR");
    row("split: only a leading separator", "split", "\\LIB.KVR", ".|LIB.KVR");
    row("add path: separator and semicolon added", "addpath", "|/srv/forth", "/srv/forth" + QString(QDir::separator()) + ";");
    row("add path: semicolon kept as typed", "addpath", "|d:\\x;", "d:\\x;");
    row("add path: trailing backslash kept", "addpath", "a\\;|b\\", "a\\;b\\;");
    row("add path: empty answer changes nothing", "addpath", "a\\;|", "a\\;");
    row("progress: hours", "progress", "3725000", "LIB.KVR line 7 - 20 of 90 lines - 1:02:05");
}

void TestCompilerText::TextRules()
{
    QFETCH(QString, rule);
    QFETCH(QString, input);
    QFETCH(QString, expected);
    const QString first = input.section(QLatin1Char('|'), 0, 0);
    const QString rest = input.section(QLatin1Char('|'), 1);
    QString got = input;
    if (rule == "compact")
        CompactLine(got);
    else if (rule == "ext")
        AddDefaultExtension(got);
    else if (rule == "include")
        got = IncludeName(input);
    else if (rule == "cond")
        got = ConditionWord(input);
    else if (rule == "errline")
        got = QString::number(ErrorLineNumber(input));
    else if (rule == "lastdef")
        got = QString::number(LastDefinitionStart(rest, first.toInt()));
    else if (rule == "split")
        got = SplitPath(input).folder + "|" + SplitPath(input).name;
    else if (rule == "addpath")
        got = AddSearchPath(first, rest);
    else if (rule == "progress")
        got = FormatProgress({"/W/SRC/LIB.KVR", 7, 20, 90, input.toUInt()});
    QCOMPARE(got, expected);
}

void TestCompilerText::FindSourceFile_data()
{
    QTest::addColumn<QStringList>("present"); // below the temp folder ("@"); a trailing "/" makes a folder
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("list");        // empty: top, extra, program folders, home
    QTest::addColumn<QString>("found");       // empty: not found
    const QStringList all = {"top/LIB.KVR", "extra/LIB.KVR", "prog/LIB.KVR", "prog/KVR4410/LIB.KVR",
                             "prog/KVR6630/LIB.KVR", "home/LIB.KVR"};
    for (int i = 0; i < all.size(); ++i)
        QTest::addRow("search order %d: %s", i, qPrintable(all[i])) << all.mid(i) << "LIB.KVR" << "" << all[i];
    QTest::newRow("on-disk name in lower case") << QStringList{"extra/lib.kvr"} << "LIB.KVR" << "" << "extra/LIB.KVR";
    QTest::newRow("text after the last semicolon is never tried")
        << QStringList{"a/LIB.KVR"} << "LIB.KVR" << "/nonexistent/;@/a/" << "";
    QTest::newRow("a folder named like the file is skipped")
        << QStringList{"a/LIB.KVR/", "b/LIB.KVR"} << "LIB.KVR" << "@/a/;@/b/;" << "b/LIB.KVR";
}

void TestCompilerText::FindSourceFile()
{
    QFETCH(QStringList, present);
    QFETCH(QString, name);
    QFETCH(QString, list);
    QFETCH(QString, found);
    QTemporaryDir dir;
    const QString root = dir.path();
    for (const QString &p : present)
        p.endsWith('/') ? void(QDir().mkpath(root + "/" + p)) : WriteAll(root + "/" + p, "X\r\n");
    WriteAll(root + "/OPEN.KVR", "X");
    const QString asked = name;
    name.replace('@', root);
    list.replace('@', root);
    if (list.isEmpty())
        list = SearchList(root + "/top", root + "/extra\\;",
                          root + "/prog/;" + root + "/prog/KVR4410/;" + root + "/prog/KVR6630/;" + root + "/home/;");
    ScriptedPrompts prompts;
    SourceFiles files;
    QVERIFY(files.Open(1, root + "/OPEN.KVR"));
    int number = 0;
    QCOMPARE(kvr::FindSourceFile(name, number, files, list, prompts), !found.isEmpty());
    QCOMPARE(number, 2); // the next free number, found or not
    if (found.isEmpty()) {
        QCOMPARE(prompts.MessageTexts(), QStringList{"Can't open file " + asked});
        QCOMPARE(prompts.shown.first().icon, PromptIcon::Information);
        return;
    }
    QVERIFY(files.IsOpen(number));
    QCOMPARE(QFileInfo(NormalizeSeparators(name)).absoluteFilePath().toUpper(),
             QFileInfo(root + "/" + found).absoluteFilePath().toUpper());
    QVERIFY(prompts.shown.isEmpty());
}

QTEST_GUILESS_MAIN(TestCompilerText)
#include "tst_compilertext.moc"
