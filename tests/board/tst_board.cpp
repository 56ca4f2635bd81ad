// The simulated board as the PC sees it over TCP and its pseudo-terminal:
// each type's dialect and words, and the lines the PC's link, compiler and
// PROM transfer send.
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

const QByteArray Startup = "        DECIMAL 21 11 2026 NOW 13 45 10 HRS ";
const QByteArray Forget = "' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !";

// The notation entries of every template: ways of writing, not board words.
QSet<QString> NotationEntries()
{
    QSet<QString> names;
    QFile file(qEnvironmentVariable("KVR_SOURCE_DIR") + "/data/words/notation.words");
    file.open(QIODevice::ReadOnly);
    for (const QByteArray &line : file.readAll().split('\n'))
        if (!line.startsWith("\\ ") && !line.trimmed().isEmpty())
            names << QString::fromLatin1(line).section(QLatin1Char(' '), 0, 0, QString::SectionSkipEmpty).trimmed();
    return names;
}

} // namespace

class TestBoard : public QObject {
    Q_OBJECT
private slots:
    void wordsAreTheTemplates_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("computer");
        QTest::newRow("4410ANS") << "4410ANS" << "4410ANS";
        QTest::newRow("4410F") << "4410F" << "4410ANS";
        QTest::newRow("4410Fig") << "4410Fig" << "4410Fig";
        QTest::newRow("6630Fig") << "6630Fig" << "6630Fig";
    }
    void wordsAreTheTemplates()
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
            if (!line.isEmpty() && !notation.contains(QString::fromLatin1(line)))
                board << QString::fromLatin1(line);
        WordsDatabase database(DatabaseBuilder::TemplatePath(Paths().GeneratedDataFolder(), computer));
        WordTable table;
        QVERIFY(database.Open() && database.LoadWords(table));
        QSet<QString> rom;
        for (const WordRecord *record : table.InIndexOrder())
            if (!notation.contains(record->word))
                rom << record->word;
        QVERIFY(rom.size() > 150);
        QStringList missing(rom.cbegin(), rom.cend()), extra(board.cbegin(), board.cend());
        missing.removeIf([&](const QString &word) { return board.contains(word); });
        extra.removeIf([&](const QString &word) { return rom.contains(word); });
        QCOMPARE(missing.join(' '), QString()); // on the board
        QCOMPARE(extra.join(' '), QString());   // in the template
    }

    // The set-up lines each answer " ok"; then the line is sent and what the
    // board prints after its echo is compared (up to a final '*').
    void replies_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QByteArrayList>("setUp");
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("output");
        const auto row = [](const char *type, const char *name, const QByteArrayList &setUp, const QByteArray &line,
                            const QByteArray &output) {
            QTest::addRow("%s %s", type, name) << type << setUp << line << output;
        };
        for (const char *fig : {"4410Fig", "6630Fig"}) {
            row(fig, "-DUP copies non-zero", {}, "5 -DUP . .", "5 5  ok");
            row(fig, "-DUP leaves zero alone", {}, "7 0 -DUP . .", "0 7  ok");
            row(fig, "<BUILDS DOES>", {": CONST <BUILDS , DOES> @ ;", "7 CONST SEVEN"}, "SEVEN .", "7  ok");
            row(fig, "' gives the parameter field", {": SQ DUP * ;"}, "3 ' SQ CFA EXECUTE .", "9  ok");
            row(fig, "' compiles it", {": SQ DUP * ;", ": P ' SQ ;"}, "P NFA ID.", "SQ  ok");
            row(fig, "NFA and PFA", {": SQ DUP * ;"}, "' SQ NFA PFA ' SQ = .", "-1  ok");
            row(fig, "LFA links to the word before", {": ONE ;", ": TWO ;"}, "' TWO LFA @ PFA NFA ID.", "ONE  ok");
            row(fig, "LATEST", {": NEWEST ;"}, "LATEST ID.", "NEWEST  ok");
            row(fig, "SMUDGE hides", {": HIDDEN 1 ;", "SMUDGE"}, "HIDDEN", "HIDDEN ?  - NOT FOUND");
            row(fig, "SMUDGE shows again", {": HIDDEN 1 ;", "SMUDGE", "SMUDGE"}, "HIDDEN .", "1  ok");
            row(fig, "FORGET", {": KEEP ;", ": MARK ;", ": LATER ;", "FORGET MARK"}, "LATER", "LATER ?  - NOT FOUND");
            row(fig, "FORGET keeps the earlier", {": KEEP 4 ;", ": MARK ;", "FORGET MARK"}, "KEEP .", "4  ok");
            row(fig, "FORGET of a ROM word", {}, "FORGET DUP", "DUP ?  - IN PROTECTED DICTIONARY");
            row(fig, "VARIABLE takes a value", {"5 VARIABLE V"}, "V @ .", "5  ok");
            row(fig, "LEAVE ends at LOOP", {": T 5 0 DO I . LEAVE 9 . LOOP ;"}, "T", "0 9  ok");
            row(fig, "?TERMINAL", {}, "?TERMINAL .", "0  ok");
            row(fig, "MESSAGE", {}, "2 MESSAGE", "DICTIONARY FULL ok");
            row(fig, "?COMP", {}, "?COMP", "?COMP ?  - COMPILATION ONLY");
            row(fig, "no ANS word", {}, "1 2 NIP", "NIP ?  - NOT FOUND");
            row(fig, "no host word", {}, "NOOP", "NOOP ?  - NOT FOUND");
            row(fig, "no floating-point number", {}, "1E .", "1E ?  - NOT FOUND");
            row(fig, "dictionary full", {}, "300000 ALLOT", "ALLOT ?  - DICTIONARY FULL");
            row(fig, "forget line of the PROM upload", {": KEEP 7 ;", ": JOB ; DIS", "0 VARIABLE TALLY",
                "' JOB 4 - DUP @ CONTEXT @ ! 4 - DP !"}, "KEEP . TALLY", "7 TALLY ?  - NOT FOUND");
        }
        row("4410ANS", "FORGET", {": MARK ;", ": LATER ;", "FORGET MARK"}, "LATER", "LATER ?  - undefined word");
        row("4410ANS", "FORGET of a ROM word", {}, "FORGET DUP", "DUP ?  - invalid FORGET");
        row("4410ANS", "' gives the xt", {": SQ DUP * ;"}, "3 ' SQ EXECUTE .", "9  ok");
        row("4410ANS", "no fig word", {}, "1 -DUP", "-DUP ?  - undefined word");
        row("4410ANS", "no host word", {}, "NOOP", "NOOP ?  - undefined word");
        row("4410ANS", "no floating-point number", {}, "1E0 .", "1E0 ?  - undefined word");
        row("4410ANS", ".S", {}, "1 -2 3 .S", "<3> 1 -2 3  ok");
        row("4410ANS", "dictionary overflow", {}, "300000 ALLOT", "ALLOT ?  - dictionary overflow");
        row("4410ANS", "redefinition", {": SQ DUP * ;"}, ": SQ DUP DUP * * ;", "SQ NOT UNIQUE  ok");
        for (const auto &[type, here] : {std::pair{"4410ANS", "3C00"}, {"4410Fig", "2E00"}, {"6630Fig", "B400"}})
            row(type, "HERE, as the compiler reads it", {}, "BASE @ HEX HERE U. BASE !", QByteArray(here) + "  ok");
        row("4410ANS", "start-up line", {""}, Startup + "W! START", " ok");
        row("4410Fig", "start-up line", {""}, Startup + "W! IBM ABORT", "\r\x0BKVR4410 fig-FORTH V2.7  (simulated board) ok");
        row("6630Fig", "start-up line", {"", "$B400 $820 ! $A000 $81E ! $A000 $1400 BLANKS"}, Startup + "IBM ABORT",
            "\r\x0BKVR6630 fig-FORTH V1.9  (simulated board) ok");
        row("4410ANS", "clock set by the start-up line", {Startup + "W! START"}, ".CLOCK", "21/11/2026 13:45:1*");
        row("4410ANS", "forget line of the PROM upload", {": KEEP 7 ;", ": JOB ; DIS", "$FD12 $FD14 !",
            "VARIABLE TALLY", Forget, ": JOB ;"}, "KEEP . TALLY", "7 TALLY ?  - undefined word");
        row("4410ANS", "forget line without the program", {}, Forget, "JOB ?  - undefined word");
    }
    void replies()
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
        const QByteArray reply = wire->Converse(line);
        if (output.endsWith('*'))
            QVERIFY2(reply.startsWith(line + ' ' + output.chopped(1)), reply.constData());
        else
            QCOMPARE(reply, line + ' ' + output);
        // The board is at its prompt again.
        QCOMPARE(wire->Converse("1 2 + ."), QByteArray("1 2 + . 3  ok"));
    }
};

QTEST_GUILESS_MAIN(TestBoard)
#include "tst_board.moc"
