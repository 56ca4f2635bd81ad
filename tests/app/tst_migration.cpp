#include "TempDir.h"
#include "app/Migration.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

namespace {
// A KVR.CFG of 20 lines with the given lines filled in.
QByteArray LegacyFile(const QMap<int, QByteArray> &lines, int count = 20)
{
    QByteArray text;
    for (int i = 1; i <= count; ++i)
        text += lines.value(i) + "\r\n";
    return text;
}
} // namespace

class TestMigration : public QObject {
    Q_OBJECT

private slots:
    void version15ForcesSwitchesAndTimeout()
    {
        Settings s;
        s.version = QStringLiteral("1.5");
        s.quiet = s.quickCompile = QStringLiteral("ON");
        s.timeout = QStringLiteral("2000");
        s.delay4410 = s.delay6630 = QStringLiteral("5");
        MigrateSettings(s, {});
        QCOMPARE(s.quiet, QStringLiteral("OFF"));
        QCOMPARE(s.quickCompile, QStringLiteral("OFF"));
        QCOMPARE(s.timeout, QStringLiteral("10000"));
        QCOMPARE(s.version, QStringLiteral("3.20"));
    }

    void recentVersionKeepsSwitches()
    {
        Settings s;
        s.version = QStringLiteral("3.10");
        s.quiet = QStringLiteral("ON");
        s.timeout = QStringLiteral("2000");
        s.delay4410 = s.delay6630 = QStringLiteral("5");
        MigrateSettings(s, {});
        QCOMPARE(s.quiet, QStringLiteral("ON"));
        QCOMPARE(s.timeout, QStringLiteral("2000"));
    }

    void calibratesOnlyWhileADelayIsUndetermined_data()
    {
        QTest::addColumn<QString>("d4410");
        QTest::addColumn<QString>("d6630");
        QTest::addColumn<bool>("calibrated");
        QTest::newRow("both set") << "10" << "100" << false;
        QTest::newRow("4410 undetermined") << "-1" << "100" << true;
        QTest::newRow("6630 undetermined") << "10" << "-1" << true;
    }
    void calibratesOnlyWhileADelayIsUndetermined()
    {
        QFETCH(QString, d4410);
        QFETCH(QString, d6630);
        QFETCH(bool, calibrated);
        Settings s;
        s.version = QStringLiteral("3.20");
        s.delay4410 = d4410;
        s.delay6630 = d6630;
        bool called = false;
        MigrationInput in;
        in.calibrate = [&](Settings &) { called = true; };
        MigrateSettings(s, in);
        QCOMPARE(called, calibrated);
    }

    // Calibration runs first, the legacy import after it: an imported delay wins.
    void migrationOrder()
    {
        QTemporaryDir dir;
        test::WriteAll(dir.filePath(QStringLiteral("KVR.CFG")),
                       LegacyFile({{1, "2.00"}, {18, "200"}}));
        Settings s;
        QStringList order;
        MigrationInput in;
        in.legacyFolder = dir.path() + QLatin1Char('/');
        in.windowsFolder = QStringLiteral("/win/");
        in.commandLineFile = QStringLiteral("/home/u/prog.kvr");
        in.calibrate = [&](Settings &x) {
            order << QStringLiteral("calibrate");
            x.delay4410 = QStringLiteral("999");
        };
        MigrateSettings(s, in);
        QCOMPARE(order, QStringList{QStringLiteral("calibrate")});
        QCOMPARE(s.delay4410, QStringLiteral("27")); // 200 * 0.25 - 23
        QCOMPARE(s.version, QStringLiteral("3.20"));
        QCOMPARE(s.currentFile, QStringLiteral("/HOME/U/PROG.KVR"));
    }

    void legacyImport()
    {
        QTemporaryDir dir;
        test::WriteAll(dir.filePath(QStringLiteral("kvr.cfg")),
                       LegacyFile({{1, "1.90xx"},
                                   {2, "com2  "},
                                   {4, "6630"},
                                   {5, "edit"},
                                   {6, "c:\\kvr\\prog.kvr   "},
                                   {7, "OMIT"},
                                   {8, "capture.def"},
                                   {9, "19200"},
                                   {18, "1000"},
                                   {19, "ON"},
                                   {20, "ON"}}));
        Settings s;
        QVERIFY(ReadLegacyConfig(s, dir.path() + QLatin1Char('/'), QStringLiteral("/win/")));
        QCOMPARE(s.version, QStringLiteral("1.90"));
        QCOMPARE(s.commPort, QStringLiteral("COM2"));
        QCOMPARE(s.computerType, QStringLiteral("6630Fig"));
        QCOMPARE(s.externalEditor, QStringLiteral("/win/EDIT.COM"));
        QCOMPARE(s.currentFile, QStringLiteral("C:\\KVR\\PROG.KVR"));
        QCOMPARE(s.openingDialogue, QStringLiteral("OFF"));
        QCOMPARE(s.captureToDisk, QStringLiteral("CAPTURE.DEF"));
        QCOMPARE(s.baudRate, QStringLiteral("19200"));
        QCOMPARE(s.delay4410, QStringLiteral("227"));
        QCOMPARE(s.delay6630, QStringLiteral("2270"));
        QCOMPARE(s.quiet, QStringLiteral("OFF")); // inverted sense
        QCOMPARE(s.quickCompile, QStringLiteral("ON"));
        QCOMPARE(s.noCompileDisplay, QStringLiteral("ON"));
    }

    void legacyLineRules_data()
    {
        QTest::addColumn<int>("line");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QByteArray>("version");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("expected");
        QTest::newRow("model ANY is terminal") << 4 << QByteArray("any") << QByteArray("2.0") << "type" << "Terminal";
        QTest::newRow("other model is 4410 ANS") << 4 << QByteArray("4410") << QByteArray("2.0") << "type" << "4410ANS";
        QTest::newRow("editor with dot kept") << 5 << QByteArray("vi.exe") << QByteArray("2.0") << "editor" << "/win/VI.EXE";
        QTest::newRow("empty file is Not Used") << 6 << QByteArray("") << QByteArray("2.0") << "file" << "Not Used";
        QTest::newRow("dialogue not OMIT is ON") << 7 << QByteArray("SHOW") << QByteArray("2.0") << "dialogue" << "ON";
        QTest::newRow("quiet OFF line means ON") << 19 << QByteArray("OFF") << QByteArray("2.0") << "quiet" << "ON";
        QTest::newRow("old version forces quiet off") << 19 << QByteArray("OFF") << QByteArray("1.5") << "quiet" << "OFF";
        // The version is kept to four characters, so "1.849" reads as 1.84.
        QTest::newRow("version 1.849 reads as 1.84") << 8 << QByteArray("CAPTURE.DEF") << QByteArray("1.849") << "capture" << "Not Used";
        QTest::newRow("old capture default dropped") << 8 << QByteArray("CAPTURE.DEF") << QByteArray("1.80") << "capture" << "Not Used";
        QTest::newRow("capture default kept from 1.85") << 8 << QByteArray("CAPTURE.DEF") << QByteArray("1.85") << "capture" << "CAPTURE.DEF";
        QTest::newRow("negative delay becomes 0") << 18 << QByteArray("40") << QByteArray("2.0") << "delay" << "0";
        QTest::newRow("delay whole part") << 18 << QByteArray("95") << QByteArray("2.0") << "delay" << "0";
        QTest::newRow("delay rounds down") << 18 << QByteArray("103") << QByteArray("2.0") << "delay" << "2";
    }
    void legacyLineRules()
    {
        QFETCH(int, line);
        QFETCH(QByteArray, value);
        QFETCH(QByteArray, version);
        QFETCH(QString, field);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        QMap<int, QByteArray> lines{{1, version}};
        lines[line] = value;
        test::WriteAll(dir.filePath(QStringLiteral("KVR.CFG")), LegacyFile(lines));
        Settings s;
        QVERIFY(ReadLegacyConfig(s, dir.path() + QLatin1Char('/'), QStringLiteral("/win/")));
        const QMap<QString, QString> fields{{"type", s.computerType},   {"editor", s.externalEditor},
                                            {"file", s.currentFile},    {"dialogue", s.openingDialogue},
                                            {"quiet", s.quiet},         {"capture", s.captureToDisk},
                                            {"delay", s.delay4410}};
        QCOMPARE(fields.value(field), expected);
    }

    void shortLegacyFileIsIgnored()
    {
        QTemporaryDir dir;
        test::WriteAll(dir.filePath(QStringLiteral("KVR.CFG")), LegacyFile({{2, "COM4"}}, 19));
        Settings s;
        QVERIFY(!ReadLegacyConfig(s, dir.path() + QLatin1Char('/'), QStringLiteral("/win/")));
        QCOMPARE(s.commPort, QStringLiteral("COM1"));
    }
};

QTEST_GUILESS_MAIN(TestMigration)
#include "tst_migration.moc"
