// The suggestions analysis line by line: the VALUE, CASE and nested-IF
// rules with their state across lines, the data-line test, and the table
// rules with their notes and repeated rewriting.
#include "words/Suggestions.h"
#include "words/WordsText.h"
#include <QtTest>

using namespace kvr;

namespace {
// In the order of inxError.
QList<SuggestRule> Rules()
{
    return {{"1 +", QString("1+"), {}},
            {"2DUP DROP", QString("OVER"), {}},
            {"OVER OVER", QString("2DUP"), {}},
            {"PICK", std::nullopt, "PICK reaches deep"},
            {"SWAP DROP", QString("NIP"), {}}};
}

QStringList Repeat(const QString &line, int count)
{
    QStringList lines;
    for (int i = 0; i < count; ++i)
        lines << line;
    return lines;
}
} // namespace

class TestSuggestions : public QObject {
    Q_OBJECT
private slots:
    void Blocks_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("expected");
        const QString sep = Separator();
        const QString caseBlock = "Suggest vectored execution table instead of CASE in F.KVR";
        const QStringList caseText{" Eg:  CREATE  ' AAA ,  ' BBB ,  ' CCC ,  where AAA BBB CCC etc are Forth",
                                   " definitions corresponding to clauses inside OF ... ENDOF structures."};
        QTest::newRow("VALUE and a name") << QStringList{"VALUE SPEED"}
                                          << QStringList{sep, "This replacement is necessary in F.KVR", "VALUE SPEED",
                                                         "0 VALUE SPEED"};
        QTest::newRow("initial value before VALUE") << QStringList{"5 VALUE SPEED"} << QStringList{};
        QTest::newRow("a data line is not examined further") << QStringList{"SWAP DROP C,"} << QStringList{};
        QTest::newRow("a replacement") << QStringList{"A SWAP DROP Z"}
                                       << QStringList{sep, "Suggest this replacement in F.KVR", "A SWAP DROP Z", "A NIP Z"};
        QTest::newRow("a rewritten line is searched again by every rule")
            << QStringList{"OVER OVER DROP"}
            << QStringList{sep, "Suggest this replacement in F.KVR", "OVER OVER DROP", "OVER"};
        QTest::newRow("notes are found again after a rewrite")
            << QStringList{"PICK SWAP DROP 1 +"}
            << QStringList{sep, "PICK reaches deep in F.KVR", "PICK reaches deep in F.KVR",
                           "Suggest this replacement in F.KVR", "PICK SWAP DROP 1 +", "PICK NIP 1+"};
        QTest::newRow("a note alone ends with the line") << QStringList{"3 PICK"}
                                                         << QStringList{sep, "PICK reaches deep in F.KVR", "3 PICK"};
        QTest::newRow("words in strings and brackets never match")
            << QStringList{".\" SWAP DROP\" [ SWAP DROP ] S\" PICK\""} << QStringList{};
        const QStringList twelve = QStringList{": W", "CASE"} + Repeat("1 OF 2 ENDOF", 12) + QStringList{"END-CASE ;"};
        QTest::newRow("CASE with 12 OF lines") << twelve << QStringList{};
        QStringList thirteen = twelve;
        thirteen.insert(2, "0 OF 1 ENDOF");
        QTest::newRow("CASE with 13 OF lines") << thirteen << QStringList{sep, caseBlock} + caseText + QStringList{"CASE"};
        QTest::newRow("a second CASE after the count went back to zero")
            << thirteen + QStringList{"X CASE"} + Repeat("1 OF 2 ENDOF", 13) + QStringList{"END-CASE ;"}
            << QStringList{sep, caseBlock} + caseText + QStringList{"CASE", sep, caseBlock} + caseText
                   + QStringList{"X CASE"};
        QTest::newRow("more OF lines without a new CASE: not again")
            << thirteen + Repeat("1 OF 2 ENDOF", 2) + QStringList{"END-CASE"}
            << QStringList{sep, caseBlock} + caseText + QStringList{"CASE"};
        QTest::newRow("seven nested IF lines: one block, the first IF")
            << QStringList{": T", "A IF"} + Repeat("Y IF", 7)
            << QStringList{sep, "Suggest factoring replace nested IFs in F.KVR", "A IF"};
        QTest::newRow("six nested IF lines: none") << QStringList{": T", "A IF"} + Repeat("Y IF", 5) << QStringList{};
        QTest::newRow("a THEN takes one level away") << QStringList{"A IF"} + Repeat("Y IF", 4) + QStringList{"X THEN", "C IF"}
                                             << QStringList{};
        QTest::newRow("a new definition starts the depth afresh")
            << Repeat("Y IF", 4) + QStringList{": N", "A IF"} + Repeat("Y IF", 3) << QStringList{};
    }
    void Blocks()
    {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, expected);
        SuggestionAnalysis analysis(QStringLiteral("4410ANS"), Rules());
        QStringList report;
        for (const QString &line : lines)
            analysis.AnalyseLine(QStringLiteral("F.KVR"), line, report);
        QCOMPARE(report, expected);
    }

    void CyclicTableEnds()
    {
        SuggestionAnalysis analysis(QStringLiteral("4410ANS"), {{"A", QString("B"), {}}, {"B", QString("A"), {}}});
        QStringList report;
        analysis.AnalyseLine(QStringLiteral("F.KVR"), QStringLiteral("A"), report);
        QCOMPARE(report.value(1), QStringLiteral("Suggest this replacement in F.KVR"));
    }
};

QTEST_GUILESS_MAIN(TestSuggestions)
#include "tst_suggestions.moc"
