// What the words window shows of a record, and the terminal's completion,
// without a window.
#include "words/WordsBrowser.h"
#include <QtTest>

using namespace kvr;

namespace {

WordRecord Record(const QString &word, std::optional<QString> file, std::optional<qint32> references)
{
    WordRecord record;
    record.word = word;
    record.file = std::move(file);
    record.references = references;
    return record;
}

} // namespace

class TestWordsBrowser : public QObject {
    Q_OBJECT
private slots:
    void RecordTexts_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("user");
        QTest::addColumn<int>("references"); // -1: never referenced
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("fileText");
        QTest::addColumn<QString>("referencesText");
        const QString rom = "In Forth ROM (or library file if indicated)";
        QTest::newRow("ROM word has no marker") << "DUP" << false << 4 << " DUP        " << rom << "References: 4";
        QTest::newRow("unreferenced ROM word") << "ROT" << false << -1 << " ROT        " << rom << "UNREFERENCED";
        QTest::newRow("referenced user word") << "SQUARE" << true << 1 << " SQUARE     |" << "File: LIB.KVR"
                                              << "References: 1";
        QTest::newRow("unreferenced user word, cut to 11")
            << "VERY-LONG-NAME" << true << -1 << QString(" VERY-LONG-N") + QChar(31) << "File: LIB.KVR"
            << "UNREFERENCED";
        QTest::newRow("register notation not counted") << "@Rx+" << false << -1 << " @Rx+       " << rom << "not counted";
        QTest::newRow("string notation not counted") << "x\"" << false << -1 << " x\"         " << rom << "not counted";
        QTest::newRow("user word named like a notation")
            << "Rx" << true << -1 << QString(" Rx         ") + QChar(31) << "File: LIB.KVR" << "UNREFERENCED";
    }
    void RecordTexts()
    {
        QFETCH(QString, word);
        QFETCH(bool, user);
        QFETCH(int, references);
        const WordRecord record = Record(word, user ? std::optional<QString>("LIB.KVR") : std::nullopt,
                                         references < 0 ? std::nullopt : std::optional<qint32>(references));
        QTEST(WordsBrowser::ListEntry(record), "entry");
        QTEST(WordsBrowser::FileText(record), "fileText");
        QTEST(WordsBrowser::ReferencesText(record), "referencesText");
    }

    void Layout()
    {
        // Rows: the editor font size times 12 plus 3, in tenths of a point.
        QCOMPARE(ListRowHeight(10, 72), 13);
        QCOMPARE(ListRowHeight(20, 144), 49);
        // The report text: from 0.09 to 0.91 of the height, the width less the margins.
        QCOMPARE(ReportTextGeometry(QSize(1000, 500)), QRect(2, 45, 996, 410));
    }

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
        const QStringList words{"DUP", "SQUARE", "SQUASH", "SWAP"};
        QTEST(kvr::Completion(words, line), "rest");
    }
};

QTEST_GUILESS_MAIN(TestWordsBrowser)
#include "tst_wordsbrowser.moc"
