#include "link/ScreenModel.h"
#include <QtTest>

using namespace kvr;

class TestScreenModel : public QObject {
    Q_OBJECT

private slots:
    void controlCodes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<int>("row");
        QTest::addColumn<int>("column");
        QTest::newRow("plain text") << QByteArray("ok") << QStringList{"ok"} << 0 << 2;
        QTest::newRow("CR LF starts the next row") << QByteArray("a\r\nb") << QStringList{"a", "b"} << 1 << 1;
        QTest::newRow("LF alone also goes to column 0") << QByteArray("abc\nd") << QStringList{"abc", "d"} << 1 << 1;
        QTest::newRow("vertical tab acts as LF") << QByteArray("abc\x0b" "d") << QStringList{"abc", "d"} << 1 << 1;
        QTest::newRow("CR overwrites from column 0") << QByteArray("abc\rX") << QStringList{"Xbc"} << 0 << 1;
        QTest::newRow("form feed clears and homes") << QByteArray("abc\r\ndef\x0cZ") << QStringList{"Z"} << 0 << 1;
        QTest::newRow("backspace erases under and after the cursor")
            << QByteArray("abcd\r\x1c\x1c\x08") << QStringList{"a"} << 0 << 1;
        QTest::newRow("backspace then retype") << QByteArray("ab\x08X") << QStringList{"aX"} << 0 << 2;
        QTest::newRow("backspace over the first character") << QByteArray("a\x08") << QStringList{""} << 0 << 0;
        QTest::newRow("backspace at column 0 does nothing")
            << QByteArray("ab\r\nc\r\x08") << QStringList{"ab", "c"} << 1 << 0;
        QTest::newRow("code 28 moves right without writing")
            << QByteArray("ab\r\x1cX") << QStringList{"aX"} << 0 << 2;
        QTest::newRow("code 30 moves up one row")
            << QByteArray("a\r\nbb\x1eX") << QStringList{"a X", "bb"} << 0 << 3;
        QTest::newRow("bell is not painted") << QByteArray("a\x07" "b") << QStringList{"ab"} << 0 << 2;
        QTest::newRow("other control codes are ignored")
            << QByteArray("a\x01\x02\x09\x1b\x1d\x1f" "b") << QStringList{"ab"} << 0 << 2;
        QTest::newRow("high bytes are painted as Latin-1")
            << QByteArray("\xe9\x7f") << QStringList{QString(QChar(0xE9)) + QChar(0x7F)} << 0 << 2;
    }
    void controlCodes()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, rows);
        QFETCH(int, row);
        QFETCH(int, column);
        ScreenModel screen(25);
        screen.Feed(bytes);
        QCOMPARE(screen.ScreenText(), rows.join(QLatin1Char('\n')));
        QCOMPARE(screen.Row(), row);
        QCOMPARE(screen.Column(), column);
        for (int r = 0; r < screen.Rows(); ++r)
            QCOMPARE(screen.Line(r).size(), qsizetype(ScreenModel::LineLength));
    }

    void bellsAreCounted()
    {
        ScreenModel screen;
        QCOMPARE(screen.Feed("\x07x\x07\x07"), 3);
        QCOMPARE(screen.Feed("plain"), 0);
    }

    void cursorUpFromTopWrapsToLastRow()
    {
        ScreenModel screen(10);
        screen.Feed("ab\x1e" "X");
        QCOMPARE(screen.Row(), 9);
        QCOMPARE(screen.Column(), 3);
        QCOMPARE(screen.Text(9), QStringLiteral("  X"));
        QCOMPARE(screen.Text(0), QStringLiteral("ab"));
    }

    void wrapAtRightEdge_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<int>("column");
        QTest::newRow("exactly full row does not wrap yet") << 4 << QByteArray("abcd") << QStringList{"abcd"} << 4;
        QTest::newRow("fifth character wraps to column 0") << 4 << QByteArray("abcde") << QStringList{"abcd", "e"} << 1;
        QTest::newRow("CR LF after a full row gives no empty row")
            << 4 << QByteArray("abcd\r\ne") << QStringList{"abcd", "e"} << 1;
        QTest::newRow("code 28 wraps like a character")
            << 4 << QByteArray("abcd\x1c" "e") << QStringList{"abcd", " e"} << 2;
        QTest::newRow("window wider than a line wraps at 400")
            << 1000 << QByteArray(401, 'x') << QStringList{QString(400, QLatin1Char('x')), "x"} << 1;
    }
    void wrapAtRightEdge()
    {
        QFETCH(int, columns);
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, rows);
        QFETCH(int, column);
        ScreenModel screen(25);
        screen.SetVisibleColumns(columns);
        screen.Feed(bytes);
        QCOMPARE(screen.ScreenText(), rows.join(QLatin1Char('\n')));
        QCOMPARE(screen.Column(), column);
    }

    void scrollsPastLastRowIntoScrollBack()
    {
        ScreenModel screen(3, 2);
        screen.Feed("1\r\n2\r\n3\r\n4\r\n5");
        QCOMPARE(screen.Row(), 2);
        QCOMPARE(screen.ScreenText(), QStringLiteral("3\n4\n5"));
        // The scroll-back keeps only its limit, oldest dropped first.
        QCOMPARE(screen.ScrollBack().size(), 2);
        QCOMPARE(screen.ScrollBack().at(0).trimmed(), QStringLiteral("1"));
        QCOMPARE(screen.ScrollBack().at(1).trimmed(), QStringLiteral("2"));
    }

    void clearKeepsUsedRowsInScrollBack()
    {
        ScreenModel screen(10, 100);
        screen.Feed("a\r\nb\x0c");
        QCOMPARE(screen.ScrollBack().size(), 2);
        QCOMPARE(screen.ScreenText(), QString());
        QCOMPARE(screen.Row(), 0);
        QCOMPARE(screen.Column(), 0);
        screen.Clear(); // an empty screen adds nothing
        QCOMPARE(screen.ScrollBack().size(), 2);
    }

    void longStreamStaysBounded()
    {
        ScreenModel screen(50, 100);
        QByteArray chunk;
        for (int i = 0; i < 1000; ++i)
            chunk += "line " + QByteArray::number(i) + "\r\n";
        screen.Feed(chunk);
        QCOMPARE(screen.Rows(), 50);
        QCOMPARE(screen.ScrollBack().size(), 100);
        QCOMPARE(screen.Text(48), QStringLiteral("line 999"));
        QCOMPARE(screen.Row(), 49);
    }
};

QTEST_GUILESS_MAIN(TestScreenModel)
#include "tst_screen_model.moc"
