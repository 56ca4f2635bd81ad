// The editing rules over the text-box model, without a window.
#include "editor/EditCommands.h"
#include "editor/LineTracker.h"
#include <QtTest>

using namespace kvr;

namespace {
// Applies an action to a text the way the text box would.
QString Applied(const QString &text, const EditAction &action)
{
    QString result = text;
    if (action.changesText)
        result.replace(action.start, action.removed, action.inserted);
    return result;
}
} // namespace

class TestEditCommands : public QObject {
    Q_OBJECT

private slots:
    void lineInfo_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("length");
        QTest::newRow("empty text") << "" << 0 << 0 << 0;
        QTest::newRow("first line") << "ABC\r\nDE" << 2 << 0 << 3;
        QTest::newRow("caret on the CR") << "ABC\r\nDE" << 3 << 0 << 3;
        QTest::newRow("caret between CR and LF") << "ABC\r\nDE" << 4 << 0 << 3;
        QTest::newRow("second line start") << "ABC\r\nDE" << 5 << 5 << 2;
        QTest::newRow("empty last line") << "ABC\r\n" << 5 << 5 << 0;
        QTest::newRow("beyond the end clamps") << "AB" << 9 << 0 << 2;
    }
    void lineInfo()
    {
        QFETCH(QString, text);
        QFETCH(int, position);
        const LineInfo info = GetLineInfo(text, position);
        QTEST(info.start, "start");
        QTEST(info.length, "length");
    }

    void enter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("caretAfter");
        QTest::newRow("end of indented line repeats the indent")
            << "    DUP" << 7 << "    DUP\r\n    " << 13;
        QTest::newRow("middle of the line splits without indent")
            << "    DUP DROP" << 8 << "    DUP \r\nDROP" << 10;
        QTest::newRow("end of unindented line") << "X\r\nY" << 1 << "X\r\n\r\nY" << 3;
        QTest::newRow("blank-only line keeps its blanks") << "   " << 3 << "   \r\n   " << 8;
        QTest::newRow("empty text") << "" << 0 << "\r\n" << 2;
    }
    void enter()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        const EditAction action = EnterAction(text, caret, 0);
        QTEST(Applied(text, action), "expected");
        QTEST(action.selStart, "caretAfter");
    }

    void tab_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<int>("spaces");
        QTest::addColumn<int>("inserted"); // -1: nothing happens
        QTest::newRow("column 6, width 4: two blanks") << "ABCDEF" << 6 << 4 << 2;
        QTest::newRow("column 8, width 4: four blanks") << "ABCDEFGH" << 8 << 4 << 4;
        QTest::newRow("column 0, width 3") << "" << 0 << 3 << 3;
        QTest::newRow("column 5, width 3") << "ABCDE" << 5 << 3 << 1;
        QTest::newRow("second line counts from its start") << "XXXXXXX\r\nAB" << 11 << 4 << 2;
        QTest::newRow("length 78 with four due: nothing")
            << QString(76, QLatin1Char('A')) + QStringLiteral("BB") << 76 << 4 << -1;
        QTest::newRow("length 78 with two due: fits to 80")
            << QString(78, QLatin1Char('A')) << 78 << 4 << 2;
        QTest::newRow("length 77 with four due: 81 refused")
            << QString(77, QLatin1Char('A')) << 4 << 4 << -1;
    }
    void tab()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(int, spaces);
        QFETCH(int, inserted);
        const auto action = TabAction(text, caret, 0, spaces);
        if (inserted < 0) {
            QVERIFY(!action);
            return;
        }
        QVERIFY(action);
        QCOMPARE(action->inserted, QString(inserted, QLatin1Char(' ')));
        QCOMPARE(action->start, caret);
        QCOMPARE(action->selStart, caret + inserted);
    }

    void tabWithoutSpacesIsNotAnEdit()
    {
        QVERIFY(!TabAction(QStringLiteral("ABC"), 1, 0, 0));
    }

    void upDown_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<bool>("up");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("caretAfter"); // -1: no action
        const QString ten = QStringLiteral("0123456789ABC");
        QTest::newRow("down from column 10 onto an empty line pads ten blanks")
            << ten + QStringLiteral("\r\n\r\nZ") << 10 << false
            << ten + QStringLiteral("\r\n          \r\nZ") << 15 + 10;
        QTest::newRow("down onto a longer line keeps the column")
            << QStringLiteral("ABC\r\nDEFGH") << 2 << false << QStringLiteral("ABC\r\nDEFGH") << 7;
        QTest::newRow("up onto a shorter line pads it")
            << QStringLiteral("AB\r\nCDEFG") << 9 << true << QStringLiteral("AB   \r\nCDEFG") << 5;
        QTest::newRow("up on the first line: nothing") << QStringLiteral("ABC\r\nD") << 2 << true
                                                        << QStringLiteral("ABC\r\nD") << -1;
        QTest::newRow("down on the last line: nothing") << QStringLiteral("ABC\r\nD") << 6 << false
                                                         << QStringLiteral("ABC\r\nD") << -1;
        QTest::newRow("down onto the empty line after the last line end")
            << QStringLiteral("ABC\r\n") << 3 << false << QStringLiteral("ABC\r\n   ") << 8;
    }
    void upDown()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(bool, up);
        QFETCH(int, caretAfter);
        const auto action = UpDownAction(text, caret, 0, up);
        if (caretAfter < 0) {
            QVERIFY(!action);
            return;
        }
        QVERIFY(action);
        QTEST(Applied(text, *action), "expected");
        QCOMPARE(action->selStart, caretAfter);
        QCOMPARE(action->selLength, 0);
    }

    void upCollapsesTheSelectionToItsEnd()
    {
        // Selection from 1 over "BC\r\nDE": the caret is its end, column 2.
        const auto action = UpDownAction(QStringLiteral("ABC\r\nDEF"), 1, 6, true);
        QVERIFY(action);
        QCOMPARE(action->selStart, 2);
        QCOMPARE(action->selLength, 0);
    }

    void deleteKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("selStart");
        QTest::addColumn<int>("selLength");
        QTest::addColumn<QString>("expected"); // empty with noAction
        QTest::addColumn<bool>("noAction");
        QTest::newRow("before a line end takes the CR LF pair")
            << "AB\r\nCD" << 2 << 0 << "ABCD" << false;
        QTest::newRow("an ordinary character") << "ABC" << 1 << 0 << "AC" << false;
        QTest::newRow("a selection") << "ABCDE" << 1 << 3 << "AE" << false;
        QTest::newRow("at the end of the text: nothing") << "ABC" << 3 << 0 << "" << true;
        QTest::newRow("lone CR at the end") << "AB\r" << 2 << 0 << "AB" << false;
    }
    void deleteKey()
    {
        QFETCH(QString, text);
        QFETCH(int, selStart);
        QFETCH(int, selLength);
        QFETCH(bool, noAction);
        const auto action = DeleteAction(text, selStart, selLength);
        QCOMPARE(!action, noAction);
        if (action) {
            QTEST(Applied(text, *action), "expected");
            QCOMPARE(action->selStart, selStart);
        }
    }

    void invertCase_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("letters") << "Dup DROP swap" << "dUP drop SWAP";
        QTest::newRow("digits and signs kept") << "2@ ( n -- )" << "2@ ( N -- )";
        QTest::newRow("accented letters kept") << QString::fromLatin1("\xe9\xc9z") << QString::fromLatin1("\xe9\xc9Z");
        QTest::newRow("brackets beside the letter range kept") << "@[`{" << "@[`{";
    }
    void invertCase()
    {
        QFETCH(QString, text);
        QTEST(InvertCase(text), "expected");
    }

    void dateStamp_data()
    {
        QTest::addColumn<QDateTime>("when");
        QTest::addColumn<QString>("expected");
        QTest::newRow("example") << QDateTime(QDate(2004, 3, 7), QTime(14, 5, 59)) << "07 Mar 04  14:05";
        QTest::newRow("December, midnight") << QDateTime(QDate(2026, 12, 31), QTime(0, 0)) << "31 Dec 26  00:00";
        QTest::newRow("January") << QDateTime(QDate(2000, 1, 1), QTime(9, 30)) << "01 Jan 00  09:30";
    }
    void dateStamp()
    {
        QFETCH(QDateTime, when);
        QTEST(DateStamp(when), "expected");
    }

    void discardedChars_data()
    {
        QTest::addColumn<uint>("code");
        QTest::addColumn<bool>("discarded");
        QTest::newRow("backspace passes") << 8u << false;
        QTest::newRow("enter passes") << 13u << false;
        QTest::newRow("tab swallowed") << 9u << true;
        QTest::newRow("ctrl+A code swallowed") << 1u << true;
        QTest::newRow("blank") << 32u << false;
        QTest::newRow("254 passes") << 254u << false;
        QTest::newRow("255 swallowed") << 255u << true;
        QTest::newRow("euro sign swallowed") << 0x20acu << true;
    }
    void discardedChars()
    {
        QFETCH(uint, code);
        QTEST(IsDiscardedChar(code), "discarded");
    }

    void tabSetting_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<int>("value");
        QTest::newRow("0") << "0" << 0;
        QTest::newRow("2") << "2" << 2;
        QTest::newRow("4") << "4" << 4;
        QTest::newRow("5 is treated as 0") << "5" << 0;
        QTest::newRow("garbage") << "xx" << 0;
    }
    void tabSetting()
    {
        QFETCH(QString, setting);
        QTEST(TabSpacesValue(setting), "value");
    }

    void lineSelection_data()
    {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        // "AB\r\nCDE\r\nF": LFs at 3 and 8.
        QTest::newRow("line 1") << 1 << 0 << 3;
        QTest::newRow("line 2") << 2 << 4 << 8;
        QTest::newRow("last line without LF ends at the text end") << 3 << 9 << 10;
        QTest::newRow("past the end") << 7 << 10 << 10;
    }
    void lineSelection()
    {
        QFETCH(int, line);
        const LineRange range = LineSelection(QStringLiteral("AB\r\nCDE\r\nF"), line);
        QTEST(range.start, "start");
        QTEST(range.end, "end");
    }

    void crLf_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("LF") << "A\nB" << "A\r\nB";
        QTest::newRow("CR") << "A\rB" << "A\r\nB";
        QTest::newRow("CR LF kept") << "A\r\nB\r\n" << "A\r\nB\r\n";
        QTest::newRow("LF CR is two line ends") << "A\n\rB" << "A\r\n\r\nB";
    }
    void crLf()
    {
        QFETCH(QString, text);
        QTEST(ToCrLf(text), "expected");
    }

    // Typing simulated: caret advances by one per character.
    void trackerBoxFromThe81stCharacter()
    {
        LineTracker tracker;
        tracker.Reset(0, 0);
        int length = 0;
        auto measure = [&] { return length; };
        for (int caret = 1; caret <= 80; ++caret) {
            length = caret;
            QVERIFY2(!tracker.Changed(caret, 1, 0, measure), qPrintable(QString::number(caret)));
        }
        length = 81;
        QVERIFY(tracker.Changed(81, 1, 0, measure));
        QCOMPARE(tracker.LineLength(), 81);
        length = 82;
        QVERIFY(tracker.Changed(82, 1, 0, measure)); // again on every further character
    }

    void trackerBackspaceAndJumps()
    {
        LineTracker tracker;
        int measured = 0;
        auto measure = [&] { return measured; };
        tracker.Reset(82, 82);
        QVERIFY(!tracker.Changed(81, 0, 1, measure)); // Backspace at the end
        QCOMPARE(tracker.LineLength(), 81);
        QVERIFY(!tracker.Changed(81, 0, 1, measure)); // Delete in front of the caret
        QCOMPARE(tracker.LineLength(), 80);
        measured = 12;
        QVERIFY(!tracker.Changed(30, 5, 0, measure)); // a paste: measured afresh
        QCOMPARE(tracker.LineLength(), 12);
        measured = 90;
        QVERIFY(tracker.Changed(200, 1, 0, measure)); // typed after a caret jump
        QCOMPARE(tracker.LineLength(), 90);
        measured = 101;
        QVERIFY(tracker.Changed(200, 0, 1, measure, true)); // Delete joining two lines
        QCOMPARE(tracker.LineLength(), 101);
    }
};

QTEST_APPLESS_MAIN(TestEditCommands)
#include "tst_editcommands.moc"
