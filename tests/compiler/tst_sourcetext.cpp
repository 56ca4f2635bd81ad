#include "compiler/CompileDriver.h"
#include "compiler/SourceText.h"
#include <QtTest>

using namespace kvr;

class TestSourceText : public QObject {
    Q_OBJECT
private slots:
    void CompactLine_data();
    void CompactLine();
    void AddDefaultExtension_data();
    void AddDefaultExtension();
    void IncludeName_data();
    void IncludeName();
    void ConditionWord_data();
    void ConditionWord();
    void ErrorLineNumber_data();
    void ErrorLineNumber();
    void LastDefinitionStart_data();
    void LastDefinitionStart();
};

void TestSourceText::CompactLine_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("compact");
    QTest::newRow("definition with comment") << ": SQ  DUP *  ;  \\ square" << ": SQ DUP * ;";
    QTest::newRow("blanks inside quotes kept") << ".\" A  ( B )\"" << ".\" A  ( B )\"";
    QTest::newRow("quote then code collapses again") << ".\" A  B\"   CR  X" << ".\" A  B\" CR X";
    QTest::newRow("empty stays empty") << "" << "";
    QTest::newRow("backslash first empties") << "\\ comment" << "";
    QTest::newRow("leading blanks trimmed") << "   DUP   DROP   " << "DUP DROP";
    QTest::newRow("paren comment where a word begins") << ": X ( n -- n ) DUP ;" << ": X DUP ;";
    QTest::newRow("paren comment at line start") << "( stack ) 1 2 +" << "1 2 +";
    QTest::newRow("paren inside a word kept") << "X( Y )" << "X( Y )";
    QTest::newRow("paren without blank kept") << "(X) DUP" << "(X) DUP";
    QTest::newRow("unclosed paren comment runs to the end") << "DUP ( never closed" << "DUP ";
    QTest::newRow("backslash without blank before it kept") << "DUP\\ X" << "DUP\\ X";
    QTest::newRow("backslash without blank after it kept") << "DUP \\X Y" << "DUP \\X Y";
    QTest::newRow("cut ignores quotes") << ".\" a \\ b\" DUP" << ".\" a";
    QTest::newRow("tab is not a blank") << "\tDUP  X" << "\tDUP X";
}

void TestSourceText::CompactLine()
{
    QFETCH(QString, line);
    QFETCH(QString, compact);
    kvr::CompactLine(line);
    QCOMPARE(line, compact);
}

void TestSourceText::AddDefaultExtension_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected");
    QTest::newRow("bare name") << "LIB" << "LIB.KVR";
    QTest::newRow("dot not in last four") << "A.LONG" << "A.LONG.KVR";
    QTest::newRow("short extension kept") << "X.F" << "X.F";
    QTest::newRow("lower case, blanks") << "  lib.kvr " << "LIB.KVR";
    QTest::newRow("dot in folder only") << "..\\OLD\\LIB" << "..\\OLD\\LIB.KVR";
    QTest::newRow("dot three from the end") << "AB.CD" << "AB.CD";
}

void TestSourceText::AddDefaultExtension()
{
    QFETCH(QString, name);
    QFETCH(QString, expected);
    kvr::AddDefaultExtension(name);
    QCOMPARE(name, expected);
}

void TestSourceText::IncludeName_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "INCLUDE LIB" << "LIB.KVR";
    QTest::newRow("lower-case name with comment") << "INCLUDE lib \\ comment" << "LIB.KVR";
    QTest::newRow("paren comment") << "INCLUDE UTIL.KVR ( tools )" << "UTIL.KVR";
    QTest::newRow("backslash wins over paren") << "INCLUDE A ( x ) \\ y" << "A ( X ).KVR";
    QTest::newRow("folder with backslashes") << "INCLUDE ..\\COMMON\\IO" << "..\\COMMON\\IO.KVR";
    QTest::newRow("blanks around") << "INCLUDE    MATH   " << "MATH.KVR";
}

void TestSourceText::IncludeName()
{
    QFETCH(QString, line);
    QFETCH(QString, name);
    QCOMPARE(kvr::IncludeName(line), name);
}

void TestSourceText::ConditionWord_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("word");
    QTest::newRow("word and comment") << "#CONDITION DEBUG \\ set" << "DEBUG";
    QTest::newRow("lower case") << "#condition test" << "TEST";
    QTest::newRow("word alone") << "#CONDITION KVR6630" << "KVR6630";
    QTest::newRow("two blanks take the rest") << "#CONDITION  X" << " X";
}

void TestSourceText::ConditionWord()
{
    QFETCH(QString, line);
    QFETCH(QString, word);
    QCOMPARE(kvr::ConditionWord(line), word);
}

void TestSourceText::ErrorLineNumber_data()
{
    QTest::addColumn<QString>("reportLine");
    QTest::addColumn<int>("number");
    QTest::newRow("line 12") << "/W/APP.KVR - line 12: FOO ?  - not found" << 12;
    QTest::newRow("line 1234 reads three digits") << "/W/APP.KVR - line 1234: X ?  - y" << 123;
    QTest::newRow("line 7") << "/W/A.KVR - line 7: CONDITIONAL COMPILATION ERROR" << 7;
    QTest::newRow("no line") << "HALTED COMPILE WITH F2" << 0;
}

void TestSourceText::ErrorLineNumber()
{
    QFETCH(QString, reportLine);
    QFETCH(int, number);
    QCOMPARE(kvr::ErrorLineNumber(reportLine), number);
}

void TestSourceText::LastDefinitionStart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<int>("start");
    const QString text = QStringLiteral(": A 1 ;\r\n: B 2 ;\r\n  : C ;\r\nX");
    QTest::newRow("cursor in first definition: whole text") << text << 3 << 0;
    QTest::newRow("cursor in second definition") << text << 12 << 9;
    QTest::newRow("indented colon is no definition") << text << 24 << 9;
    QTest::newRow("cursor right on the colon") << text << 9 << 9;
    QTest::newRow("no definition at all") << QStringLiteral("1 2 +\r\n3 4") << 8 << 0;
}

void TestSourceText::LastDefinitionStart()
{
    QFETCH(QString, text);
    QFETCH(int, cursor);
    QFETCH(int, start);
    QCOMPARE(kvr::LastDefinitionStart(text, cursor), start);
}

QTEST_GUILESS_MAIN(TestSourceText)
#include "tst_sourcetext.moc"
