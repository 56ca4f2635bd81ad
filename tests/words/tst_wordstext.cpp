// Text rules of the words database: string and bracket blanking, which
// tokens are counted, the report heading.
#include "words/WordsText.h"
#include <QtTest>

using namespace kvr;

class TestWordsText : public QObject {
    Q_OBJECT
private slots:
    void BlankStrings_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no quote: unchanged") << "4410ANS" << "A B" << "A B";
        QTest::newRow(".\" text") << "4410ANS" << ".\" hi DUP\" DUP" << ".\"       \" DUP ";
        QTest::newRow("S\" opens on 4410ANS") << "4410ANS" << "S\" X\" 1" << "S\"  \" 1 ";
        QTest::newRow("S\" is no opener on Fig") << "4410Fig" << "S\" X\"" << "S\" X\" ";
        QTest::newRow("a blank opens on Fig") << "6630Fig" << "A \" X\"" << "A \"  \" ";
        QTest::newRow("a blank is no opener on 4410ANS") << "4410ANS" << "A \" X\"" << "A \" X\" ";
        QTest::newRow("ABORT\" is no opener") << "4410ANS" << "ABORT\" no\"" << "ABORT\" no\" ";
        QTest::newRow("two strings, blanks between them stay code") << "4410Fig" << ".\" A\" X .\" B\""
                                                                   << ".\"  \" X .\"  \" ";
        QTest::newRow("no closing quote: to the end") << "4410ANS" << ".\" abc" << ".\"     ";
        QTest::newRow("quote at the end") << "4410ANS" << "X .\"" << "X .\" ";
    }
    void BlankStrings()
    {
        QFETCH(QString, type);
        QFETCH(QString, line);
        QFETCH(QString, expected);
        kvr::BlankStrings(line, type);
        QCOMPARE(line, expected);
    }

    void BlankBrackets_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow("interpreted text") << " [ CHAR A ] LITERAL " << " [        ] LITERAL ";
        QTest::newRow("['] keeps its name") << " ['] DUP " << " ['] DUP ";
        QTest::newRow("[CHAR]") << " [CHAR] X " << " [C   ] X ";
        QTest::newRow("two pairs") << " [ A ] B [ C ] " << " [   ] B [   ] ";
        QTest::newRow("no closing bracket: to the end") << " X [ Y " << " X [   ";
    }
    void BlankBrackets()
    {
        QFETCH(QString, line);
        QFETCH(QString, expected);
        kvr::BlankBrackets(line);
        QCOMPARE(line, expected);
    }

    void CountedTokens_data()
    {
        QTest::addColumn<QString>("token");
        QTest::addColumn<bool>("counted");
        QTest::newRow("empty") << "" << false;
        QTest::newRow("-1") << "-1" << false;
        QTest::newRow("-1 leading a word") << "-1X" << false;
        QTest::newRow("-1.4 rounds to -1") << "-1.4" << false;
        QTest::newRow("-0.6 rounds to -1") << "-0.6" << false;
        QTest::newRow("-1. is -1") << "-1." << false;
        QTest::newRow("-1.5 rounds to -2") << "-1.5" << true;
        QTest::newRow("-0.5 rounds to 0") << "-0.5" << true;
        QTest::newRow("0") << "0" << true;
        QTest::newRow("1+") << "1+" << true;
        QTest::newRow("-10") << "-10" << true;
        QTest::newRow("--1 is no number") << "--1" << true;
        QTest::newRow("a word") << "DUP" << true;
    }
    void CountedTokens()
    {
        QFETCH(QString, token);
        QFETCH(bool, counted);
        QCOMPARE(IsCountedToken(token), counted);
    }

    void Heading()
    {
        const QString line = HeadingLine(QStringLiteral("REPORT ON X.KVR"), QDateTime(QDate(2024, 12, 1), QTime(7, 3)));
        QCOMPARE(line, QString("REPORT ON X.KVR").leftJustified(63) + "01 Dec 2024  07:03");
        QCOMPARE(PadToColumn(QString(40, 'W'), 33), QString(40, 'W') + " ");
    }
};

QTEST_GUILESS_MAIN(TestWordsText)
#include "tst_wordstext.moc"
