// The templates made at build time from data/words: their tables, the
// notation entries, and suggestion rules that use only the board's words
// and always come to an end.
#include "app/Paths.h"
#include "words/DatabaseBuilder.h"
#include "words/WordsDatabase.h"
#include <QtTest>

using namespace kvr;

class TestTemplates : public QObject {
    Q_OBJECT
private slots:
    void Rules_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("hasNip");
        QTest::newRow("4410ANS") << "4410ANS" << true;
        QTest::newRow("4410Fig") << "4410Fig" << false;
        QTest::newRow("6630Fig") << "6630Fig" << false;
    }
    void Rules()
    {
        QFETCH(QString, type);
        QFETCH(bool, hasNip);
        const QString path = DatabaseBuilder::TemplatePath(Paths().GeneratedDataFolder(), type);
        WordsDatabase database(path);
        WordTable words;
        QList<SuggestRule> rules;
        QVERIFY2(database.Open() && database.LoadWords(words) && database.LoadRules(rules), qPrintable(path));
        QVERIFY(words.Size() > 100);
        QCOMPARE(words.Find(QStringLiteral("NIP")) != nullptr, hasNip);
        for (const QString &entry : {"^x", "(", "\\", "$xxxx", "Rx", "@Rx", "@-Rx", "@Rx+", "x\""}) {
            const WordRecord *record = words.Find(entry);
            QVERIFY2(record && record->word == entry && !record->file && !record->references, qPrintable(entry));
        }
        for (const WordRecord *record : words.InIndexOrder())
            QVERIFY2(!record->definition.isEmpty() && !record->file && !record->references, qPrintable(record->word));
        QVERIFY(!rules.isEmpty());
        bool nipRule = false;
        for (const SuggestRule &rule : rules) {
            QVERIFY(!rule.error.isEmpty());
            if (!rule.correction) {
                QVERIFY(!rule.notes.isEmpty());
                continue;
            }
            // Fewer words each time: rewriting a line always ends.
            const QStringList replaced = rule.error.split(' ');
            const QStringList replacement = rule.correction->split(' ');
            QVERIFY2(replacement.size() < replaced.size(), qPrintable(rule.error));
            for (const QString &word : replacement)
                QVERIFY2(words.Find(word) && words.Find(word)->word == word, qPrintable(word));
            nipRule = nipRule || *rule.correction == QLatin1String("NIP");
        }
        QCOMPARE(nipRule, hasNip);
    }
};

QTEST_GUILESS_MAIN(TestTemplates)
#include "tst_templates.moc"
