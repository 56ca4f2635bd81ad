#include "compiler/ConditionalCompilation.h"
#include <QtTest>

using namespace kvr;

class TestConditional : public QObject {
    Q_OBJECT
private slots:
    void EvaluateDirective_data();
    void EvaluateDirective();
    void BlockAcrossManyLines_data();
    void BlockAcrossManyLines();
};

void TestConditional::EvaluateDirective_data()
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
    QTest::newRow("#if debug in lower case") << 0 << D << "#if debug" << 1 << 1 << "";
    QTest::newRow("#IF word followed by comment") << 0 << D << "#IF DEBUG \\ on" << 1 << 1 << "";
    QTest::newRow("#IF  X has the empty word, matching no condition") << 0 << "" << "#IF  X" << 1 << 1 << "";
    QTest::newRow("#IF  X does not match X") << 0 << "X" << "#IF  X" << 0 << 4 << "#IF  X";
    QTest::newRow("#IF alone is no directive") << 0 << "" << "#IF" << 1 << 0 << "#IF";
    QTest::newRow("#IF alone in a skipped branch is skipped") << 4 << "" << "#IF" << 0 << 4 << "#IF";
    QTest::newRow("#IFDEF is no directive") << 0 << D << "#IFDEF DEBUG" << 1 << 0 << "#IFDEF DEBUG";
    for (int s = 1; s <= 7; ++s)
        QTest::addRow("#IF inside a block (state %d) is an error", s) << s << D << "#IF DEBUG" << -1 << s << "#IF DEBUG";

    for (int s : {1, 2, 5})
        QTest::addRow("#ELSE after a taken branch (state %d)", s) << s << D << "#ELSE" << 0 << 6 << "#ELSE";
    for (int s : {4, 7})
        QTest::addRow("#ELSE with no branch taken (state %d)", s) << s << D << "#ELSE" << 1 << 3 << "";
    for (int s : {0, 3, 6})
        QTest::addRow("#ELSE out of order (state %d)", s) << s << D << "#ELSE" << -1 << s << "#ELSE";
    QTest::newRow("#ELSE with a comment") << 4 << D << "#ELSE \\ other" << 1 << 3 << "";
    QTest::newRow("#ELSEIF without a blank counts as #ELSE") << 4 << D << "#ELSEIF" << 1 << 3 << "";
    QTest::newRow("#else in lower case") << 1 << D << "#else" << 0 << 6 << "#else";

    for (int s : {1, 2, 5})
        QTest::addRow("#ELSEIF after a taken branch (state %d)", s) << s << D << "#ELSEIF DEBUG" << 0 << 5 << "#ELSEIF DEBUG";
    for (int s : {4, 7}) {
        QTest::addRow("#ELSEIF matching, none taken (state %d)", s) << s << D << "#ELSEIF DEBUG" << 1 << 2 << "";
        QTest::addRow("#ELSEIF not matching (state %d)", s) << s << D << "#ELSEIF TEST" << 0 << 7 << "#ELSEIF TEST";
    }
    QTest::newRow("#ELSEIF a longer word does not match") << 4 << D << "#ELSEIF DEBUG2" << 0 << 7 << "#ELSEIF DEBUG2";
    QTest::newRow("#elseif debug \\ c matches") << 4 << D << "#elseif debug \\ c" << 1 << 2 << "";
    for (int s : {0, 3, 6})
        QTest::addRow("#ELSEIF out of order (state %d)", s) << s << D << "#ELSEIF DEBUG" << -1 << s << "#ELSEIF DEBUG";

    QTest::newRow("#ENDIF outside a block is an error") << 0 << D << "#ENDIF" << -1 << 0 << "#ENDIF";
    for (int s = 1; s <= 7; ++s)
        QTest::addRow("#ENDIF closes state %d", s) << s << D << "#ENDIF" << 1 << 0 << "";
    QTest::newRow("#endif \\ comment") << 4 << D << "#endif \\ done" << 1 << 0 << "";

    for (int s = 0; s <= 7; ++s)
        QTest::addRow("ordinary line in state %d", s) << s << D << ": X ;" << (s <= 3 ? 1 : 0) << s << ": X ;";
}

void TestConditional::EvaluateDirective()
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

void TestConditional::BlockAcrossManyLines_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QStringList>("compiled");
    const QStringList block = {"#IF A", "a", "#ELSEIF B", "b", "#ELSEIF C", "c", "#ELSE", "e", "#ENDIF", "z"};
    QTest::newRow("first branch") << "A" << QStringList{"a", "z"};
    QTest::newRow("second branch") << "B" << QStringList{"b", "z"};
    QTest::newRow("third branch") << "C" << QStringList{"c", "z"};
    QTest::newRow("else branch") << "Q" << QStringList{"e", "z"};
}

void TestConditional::BlockAcrossManyLines()
{
    QFETCH(QString, condition);
    QFETCH(QStringList, compiled);
    int state = 0;
    QStringList got;
    for (QString line : {"#IF A", "a", "#ELSEIF B", "b", "#ELSEIF C", "c", "#ELSE", "e", "#ENDIF", "z"}) {
        const int r = kvr::EvaluateDirective(line, state, condition);
        QVERIFY(r >= 0);
        if (r == 1 && !line.isEmpty())
            got.append(line);
    }
    QCOMPARE(got, compiled);
    QCOMPARE(state, 0);
}

QTEST_GUILESS_MAIN(TestConditional)
#include "tst_conditional.moc"
