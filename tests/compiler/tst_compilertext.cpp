// The text rules of compiling: directives, compacted lines, INCLUDE and
// #CONDITION names, report lines, and where INCLUDE files are sought.
#include "app/AppContext.h"
#include "app/FilePaths.h"
#include "app/ScriptedPrompts.h"
#include "compiler/CompileDriver.h"
#include "compiler/CompileProgress.h"
#include "compiler/ConditionalCompilation.h"
#include "compiler/SearchPaths.h"
#include "compiler/SourceFiles.h"
#include "compiler/SourceText.h"
#include "TempDir.h"
#include "TestClock.h"
#include <QtTest>

using namespace kvr;

class TestCompilerText : public QObject {
    Q_OBJECT
private slots:
    void EvaluateDirective_data();
    void EvaluateDirective();
    void TextRules_data();
    void TextRules();
    void FindSourceFile_data();
    void FindSourceFile();
    void AddAndDisplayPaths();
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
    QTest::newRow("#IF  X has the empty word") << 0 << "" << "#IF  X" << 1 << 1 << "";
    QTest::newRow("#IF  X does not match X") << 0 << "X" << "#IF  X" << 0 << 4 << "#IF  X";
    QTest::newRow("#IF alone is no directive") << 0 << "" << "#IF" << 1 << 0 << "#IF";
    QTest::newRow("#IFDEF is no directive") << 0 << D << "#IFDEF DEBUG" << 1 << 0 << "#IFDEF DEBUG";
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
    QTest::newRow("#ELSEIF without a blank counts as #ELSE") << 4 << D << "#ELSEIF" << 1 << 3 << "";
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
    QTest::addColumn<QString>("rule");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");
    auto row = [](const char *name, const char *rule, const QString &in, const QString &out) {
        QTest::newRow(name) << QString::fromLatin1(rule) << in << out;
    };
    row("compact: definition with comment", "compact", ": SQ  DUP *  ;  \\ square", ": SQ DUP * ;");
    row("compact: blanks inside quotes kept", "compact", ".\" A  ( B )\"   CR  X", ".\" A  ( B )\" CR X");
    row("compact: backslash first empties", "compact", "\\ comment", "");
    row("compact: leading blanks trimmed", "compact", "   DUP   DROP   ", "DUP DROP");
    row("compact: paren comment where a word begins", "compact", "( s ) : X ( n -- n ) DUP ;", ": X DUP ;");
    row("compact: paren inside a word kept", "compact", "X( Y ) (X) DUP", "X( Y ) (X) DUP");
    row("compact: unclosed paren runs to the end", "compact", "DUP ( never closed", "DUP ");
    row("compact: paren closed on the last character", "compact", "DUP ( x)", "DUP ");
    row("compact: backslash needs blanks around it", "compact", "DUP\\ X \\X Y", "DUP\\ X \\X Y");
    row("compact: cut ignores quotes", "compact", ".\" a \\ b\" DUP", ".\" a");
    row("compact: tab is not a blank", "compact", "\tDUP  X", "\tDUP X");
    row("extension: bare name", "ext", "LIB", "LIB.KVR");
    row("extension: dot not in the last four", "ext", "A.LONG", "A.LONG.KVR");
    row("extension: short extension kept", "ext", "  x.f ", "X.F");
    row("extension: dot in a folder only", "ext", "..\\OLD\\LIB", "..\\OLD\\LIB.KVR");
    row("include: lower-case name with comment", "include", "INCLUDE   lib   \\ comment", "LIB.KVR");
    row("include: paren comment", "include", "INCLUDE UTIL.KVR ( tools )", "UTIL.KVR");
    row("include: backslash wins over paren", "include", "INCLUDE A ( x ) \\ y", "A ( X ).KVR");
    row("include: folder with backslashes", "include", "INCLUDE ..\\COMMON\\IO", "..\\COMMON\\IO.KVR");
    row("condition: word and comment", "cond", "#condition debug \\ set", "DEBUG");
    row("condition: two blanks take the rest", "cond", "#CONDITION  X", " X");
    row("error line: 12", "errline", "/W/APP.KVR - line 12: FOO ?  - not found", "12");
    row("error line: 1234 reads three digits", "errline", "/W/APP.KVR - line 1234: X ?  - y", "123");
    row("error line: none", "errline", "HALTED COMPILE WITH F2", "0");
    const QString defs = QStringLiteral("|: A 1 ;\r\n: B 2 ;\r\n  : C ;\r\nX");
    row("last definition: in the first, whole text", "lastdef", "3" + defs, "0");
    row("last definition: in the second", "lastdef", "12" + defs, "9");
    row("last definition: indented colon is none", "lastdef", "24" + defs, "9");
    row("last definition: right on the colon", "lastdef", "9" + defs, "9");
    row("split: unix path", "split", "/work/app/MAIN.KVR", "/work/app|MAIN.KVR");
    row("split: mixed separators, last wins", "split", "..\\OLD/X\\LIB.KVR", "..\\OLD/X|LIB.KVR");
    row("split: no folder", "split", "LIB.KVR", ".|LIB.KVR");
    row("split: only a leading separator", "split", "\\LIB.KVR", ".|LIB.KVR");
    row("add path: separator and semicolon added", "addpath", "|/srv/forth", "/srv/forth" + QString(QDir::separator()) + ";");
    row("add path: semicolon kept as typed", "addpath", "|d:\\x;", "d:\\x;");
    row("add path: trailing backslash kept", "addpath", "a\\;|b\\", "a\\;b\\;");
    row("add path: empty answer changes nothing", "addpath", "a\\;|", "a\\;");
    row("progress: seconds", "progress", "4999", "LIB.KVR line 7 - 20 of 90 lines - 0:04");
    row("progress: minutes", "progress", "61000", "LIB.KVR line 7 - 20 of 90 lines - 1:01");
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
    QTest::newRow("missing folder falls back to the bare name")
        << QStringList{"prog/LIB.KVR"} << "/nowhere/at/all/LIB.KVR" << "" << "prog/LIB.KVR";
    QTest::newRow("existing folder opened exactly, before the list")
        << QStringList{"other/LIB.KVR", "top/LIB.KVR"} << "@/other/LIB.KVR" << "" << "other/LIB.KVR";
    QTest::newRow("not found anywhere") << QStringList{} << "NOPE.KVR" << "/nonexistent/;" << "";
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
        p.endsWith('/') ? void(QDir().mkpath(root + "/" + p)) : test::WriteAll(root + "/" + p, "X\r\n");
    test::WriteAll(root + "/OPEN.KVR", "X");
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

void TestCompilerText::AddAndDisplayPaths()
{
    QTemporaryDir dir;
    Paths paths(dir.path());
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context(paths, prompts, clock);
    QSignalSpy written(&context, &AppContext::SettingsWritten);
    for (const QString &answer : {QStringLiteral("d:\\projects\\old\\"), QString()}) {
        prompts.Clear();
        prompts.inputs.enqueue(answer);
        AddOrDisplayPaths(context);
        QCOMPARE(context.settings.extraSearchPaths, QStringLiteral("d:\\projects\\old\\;"));
        QCOMPARE(prompts.shown.size(), 2);
        const QString p = paths.ProgramFolder().chopped(1);
        QCOMPARE(prompts.shown[1].text,
                 "Source files are currently sought in these paths (in this order):\n\nPATH OF TOP LEVEL SOURCE FILE\n"
                 "d:\\projects\\old\\\n" + p + "/\n" + p + "/KVR4410/\n" + p + "/KVR6630/\n" + paths.KvrHomeFolder()
                     + "\nPATHS SET WITH OPERATING SYSTEM APPEND COMMAND");
    }
    QCOMPARE(written.count(), 2);
}

QTEST_GUILESS_MAIN(TestCompilerText)
#include "tst_compilertext.moc"
