// Each board type speaks its own dialect: it has exactly the ROM words of
// its words template, its fig-FORTH or ANS behaviour where the two differ,
// errors in its own words, and listings that come back as one reply.
#include "BoardRunner.h"
#include "WireClient.h"
#include "app/Paths.h"
#include "words/DatabaseBuilder.h"
#include "words/WordsDatabase.h"

#include <QFile>
#include <QSet>
#include <QtTest>

using namespace kvr;
using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

// The notation entries of every template: ways of writing, not board words.
QSet<QString> NotationEntries()
{
    QFile file(qEnvironmentVariable("KVR_SOURCE_DIR") + QStringLiteral("/data/words/notation.words"));
    QSet<QString> names;
    if (!file.open(QIODevice::ReadOnly))
        return names;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QString name = QString::fromLatin1(line).section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty);
        if (!name.isEmpty() && !line.startsWith("\\ "))
            names << name.trimmed();
    }
    return names;
}

QString Sorted(const QSet<QString> &words)
{
    QStringList list(words.cbegin(), words.cend());
    list.sort();
    return list.join(QLatin1Char(' '));
}

} // namespace

class TestBoardDialects : public QObject {
    Q_OBJECT
private slots:
    void wordsAreTheTemplates_data();
    void wordsAreTheTemplates();
    void behaviour_data();
    void behaviour();
    void listingsAreOneReply_data();
    void listingsAreOneReply();
};

void TestBoardDialects::wordsAreTheTemplates_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("computer");
    QTest::newRow("4410ANS") << "4410ANS" << "4410ANS";
    QTest::newRow("4410F") << "4410F" << "4410ANS";
    QTest::newRow("4410Fig") << "4410Fig" << "4410Fig";
    QTest::newRow("6630Fig") << "6630Fig" << "6630Fig";
}

void TestBoardDialects::wordsAreTheTemplates()
{
    QFETCH(QString, type);
    QFETCH(QString, computer);
    const QSet<QString> notation = NotationEntries();
    QVERIFY(notation.contains(QStringLiteral("$xxxx")));

    QProcess lister;
    lister.start(BoardRunner::Program(), {QStringLiteral("--type"), type, QStringLiteral("--list-words")});
    QVERIFY(lister.waitForFinished(30000));
    QCOMPARE(lister.exitCode(), 0);
    QSet<QString> board;
    for (const QByteArray &line : lister.readAllStandardOutput().split('\n'))
        if (!line.isEmpty())
            board << QString::fromLatin1(line);
    board -= notation;

    WordsDatabase database(DatabaseBuilder::TemplatePath(Paths().GeneratedDataFolder(), computer));
    WordTable table;
    QVERIFY(database.Open() && database.LoadWords(table));
    QSet<QString> rom;
    for (const WordRecord *record : table.InIndexOrder())
        if (!notation.contains(record->word))
            rom << record->word;
    QVERIFY(rom.size() > 150);

    QVERIFY2((rom - board).isEmpty(), qPrintable(QStringLiteral("missing on the board: ") + Sorted(rom - board)));
    QVERIFY2((board - rom).isEmpty(), qPrintable(QStringLiteral("not in the template: ") + Sorted(board - rom)));
}

void TestBoardDialects::behaviour_data()
{
    // The set-up lines each answer " ok"; then the line is sent and what the
    // board prints after its echo is compared.
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArrayList>("setUp");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("output");
    for (const char *fig : {"4410Fig", "6630Fig"}) {
        const auto row = [fig](const char *name, const QByteArrayList &setUp, const char *line, const char *output) {
            QTest::addRow("%s %s", fig, name) << fig << setUp << QByteArray(line) << QByteArray(output);
        };
        row("-DUP copies non-zero", {}, "5 -DUP . .", "5 5  ok");
        row("-DUP leaves zero alone", {}, "7 0 -DUP . .", "0 7  ok");
        row("<BUILDS DOES>", {": CONST <BUILDS , DOES> @ ;", "7 CONST SEVEN"}, "SEVEN .", "7  ok");
        row("' gives the parameter field", {": SQ DUP * ;"}, "3 ' SQ CFA EXECUTE .", "9  ok");
        row("' compiles it", {": SQ DUP * ;", ": P ' SQ ;"}, "P NFA ID.", "SQ  ok");
        row("NFA and PFA", {": SQ DUP * ;"}, "' SQ NFA PFA ' SQ = .", "-1  ok");
        row("LFA links to the word before", {": ONE ;", ": TWO ;"}, "' TWO LFA @ PFA NFA ID.", "ONE  ok");
        row("LATEST", {": NEWEST ;"}, "LATEST ID.", "NEWEST  ok");
        row("SMUDGE hides", {": HIDDEN 1 ;", "SMUDGE"}, "HIDDEN", "HIDDEN ?  - NOT FOUND");
        row("SMUDGE shows again", {": HIDDEN 1 ;", "SMUDGE", "SMUDGE"}, "HIDDEN .", "1  ok");
        row("FORGET", {": KEEP ;", ": MARK ;", ": LATER ;", "FORGET MARK"}, "LATER", "LATER ?  - NOT FOUND");
        row("FORGET keeps the earlier", {": KEEP 4 ;", ": MARK ;", "FORGET MARK"}, "KEEP .", "4  ok");
        row("FORGET of a ROM word", {}, "FORGET DUP", "DUP ?  - IN PROTECTED DICTIONARY");
        row("VARIABLE takes a value", {"5 VARIABLE V"}, "V @ .", "5  ok");
        row("LEAVE ends at LOOP", {": T 5 0 DO I . LEAVE 9 . LOOP ;"}, "T", "0 9  ok");
        row("?TERMINAL", {}, "?TERMINAL .", "0  ok");
        row("MESSAGE", {}, "2 MESSAGE", "DICTIONARY FULL ok");
        row("?COMP", {}, "?COMP", "?COMP ?  - COMPILATION ONLY");
        row("no ANS word", {}, "1 2 NIP", "NIP ?  - NOT FOUND");
        row("no host word", {}, "NOOP", "NOOP ?  - NOT FOUND");
        row("no floating-point number", {}, "1E .", "1E ?  - NOT FOUND");
        row("dictionary full", {}, "300000 ALLOT", "ALLOT ?  - DICTIONARY FULL");
    }
    const auto ans = [](const char *name, const QByteArrayList &setUp, const char *line, const char *output) {
        QTest::addRow("4410ANS %s", name) << "4410ANS" << setUp << QByteArray(line) << QByteArray(output);
    };
    ans("FORGET", {": MARK ;", ": LATER ;", "FORGET MARK"}, "LATER", "LATER ?  - undefined word");
    ans("FORGET of a ROM word", {}, "FORGET DUP", "DUP ?  - invalid FORGET");
    ans("' gives the xt", {": SQ DUP * ;"}, "3 ' SQ EXECUTE .", "9  ok");
    ans("no fig word", {}, "1 -DUP", "-DUP ?  - undefined word");
    ans("no host word", {}, "NOOP", "NOOP ?  - undefined word");
    ans("no floating-point number", {}, "1E0 .", "1E0 ?  - undefined word");
    ans(".S", {}, "1 -2 3 .S", "<3> 1 -2 3  ok");
    ans("dictionary overflow", {}, "300000 ALLOT", "ALLOT ?  - dictionary overflow");
}

void TestBoardDialects::behaviour()
{
    QFETCH(QString, type);
    QFETCH(QByteArrayList, setUp);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, output);
    BoardRunner board;
    const auto wire = board.StartConnected(type);
    QVERIFY2(wire, qPrintable(board.Failure()));
    for (const QByteArray &earlier : setUp)
        QCOMPARE(wire->Converse(earlier), earlier + "  ok");
    QCOMPARE(wire->Converse(line), line + ' ' + output);
}

void TestBoardDialects::listingsAreOneReply_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("rows");   // at least
    QTest::newRow("4410Fig VLIST") << "4410Fig" << QByteArray("VLIST") << 10;
    QTest::newRow("6630Fig VLIST") << "6630Fig" << QByteArray("VLIST") << 10;
    QTest::newRow("4410ANS WORDS") << "4410ANS" << QByteArray("WORDS") << 10;
    QTest::newRow("4410ANS DUMP") << "4410ANS" << QByteArray("$3C00 400 DUMP") << 50;
    QTest::newRow("6630Fig DUMP") << "6630Fig" << QByteArray("$B400 16 DUMP") << 2;
    QTest::newRow("4410Fig .S") << "4410Fig" << QByteArray("1 2 3 .S") << 0;
}

// However long, a listing's rows are broken by CR and vertical tab and the
// reply ends once, so the next line gets its own reply.
void TestBoardDialects::listingsAreOneReply()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, line);
    QFETCH(int, rows);
    BoardRunner board;
    const auto wire = board.StartConnected(type);
    QVERIFY2(wire, qPrintable(board.Failure()));
    const QByteArray listing = wire->Converse(line);
    QVERIFY2(listing.startsWith(line + ' ') && listing.endsWith(" ok"), listing.constData());
    QVERIFY2(listing.count("\r\x0B") >= rows, listing.constData());
    for (const QByteArray &row : listing.split('\x0B'))
        QVERIFY2(row.size() <= 80, row.constData());
    QCOMPARE(wire->Converse("1 2 + ."), QByteArray("1 2 + . 3  ok"));
}

QTEST_GUILESS_MAIN(TestBoardDialects)
#include "tst_board_dialects.moc"
