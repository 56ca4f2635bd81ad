#include "TempDir.h"
#include "app/FilePaths.h"
#include "app/Paths.h"
#include "app/Text.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

class TestPaths : public QObject {
    Q_OBJECT

private slots:
    void resolvesWithoutRegardToCase_data()
    {
        QTest::addColumn<QString>("logical");
        QTest::addColumn<QString>("resolved");
        QTest::newRow("upper-cased path") << "SRC/LIB/UTIL.KVR" << "Src/lib/Util.kvr";
        QTest::newRow("exact spelling") << "Src/lib/Math.kvr" << "Src/lib/Math.kvr";
        QTest::newRow("exact match wins") << "SRC/LIB/MATH.KVR" << "Src/lib/MATH.KVR";
        QTest::newRow("backslashes") << "SRC\\LIB\\UTIL.KVR" << "Src/lib/Util.kvr";
        QTest::newRow("new file keeps its name") << "SRC/LIB/NEW.KVR" << "Src/lib/NEW.KVR";
        QTest::newRow("missing folder stops matching") << "NONE/LIB/UTIL.KVR" << "NONE/LIB/UTIL.KVR";
    }
    void resolvesWithoutRegardToCase()
    {
        QFETCH(QString, logical);
        QFETCH(QString, resolved);
        QTemporaryDir dir;
        test::WriteAll(dir.filePath(QStringLiteral("Src/lib/Math.kvr")), "a");
        test::WriteAll(dir.filePath(QStringLiteral("Src/lib/MATH.KVR")), "b");
        test::WriteAll(dir.filePath(QStringLiteral("Src/lib/Util.kvr")), "c");
        const QString root = dir.path() + QLatin1Char('/');
        QCOMPARE(ResolvePath(root + logical), root + resolved);
    }

    void existenceTests()
    {
        QTemporaryDir dir;
        test::WriteAll(dir.filePath(QStringLiteral("Prog.Kvr")), "x");
        QVERIFY(FileExistsCI(dir.filePath(QStringLiteral("PROG.KVR"))));
        QVERIFY(!FileExistsCI(dir.filePath(QStringLiteral("PROG.KV"))));
        QVERIFY(!FileExistsCI(QString()));
        QVERIFY(DirExistsCI(dir.path()));
        QVERIFY(!FileExistsCI(dir.path())); // a folder is not a file
    }

    void seedsProgramFolderOnce()
    {
        QTemporaryDir dir;
        const QString data = dir.filePath(QStringLiteral("install"));
        test::WriteAll(data + QStringLiteral("/KVR4410/PROGINT.KVR"), "shipped");
        test::WriteAll(data + QStringLiteral("/KVR6630/W6630FIG.TXT"), "words");
        test::WriteAll(data + QStringLiteral("/OTHER/X.KVR"), "not copied");
        Paths paths(dir.filePath(QStringLiteral("cfg")));
        paths.Prepare(data);
        QCOMPARE(test::ReadAll(paths.ProgramFolder() + QStringLiteral("KVR4410/PROGINT.KVR")), QByteArray("shipped"));
        QVERIFY(QFile::exists(paths.ProgramFolder() + QStringLiteral("KVR6630/W6630FIG.TXT")));
        QVERIFY(!QFile::exists(paths.ProgramFolder() + QStringLiteral("OTHER/X.KVR")));
        // A file the user changed is not overwritten at the next start.
        test::WriteAll(paths.ProgramFolder() + QStringLiteral("KVR4410/PROGINT.KVR"), "edited");
        paths.Prepare(data);
        QCOMPARE(test::ReadAll(paths.ProgramFolder() + QStringLiteral("KVR4410/PROGINT.KVR")), QByteArray("edited"));
        QVERIFY(paths.WindowsFolder().endsWith(QLatin1Char('/')));
        QCOMPARE(paths.LockFile(), paths.WindowsFolder() + QStringLiteral("kvr-pc.lck"));
    }

    void numericConversion_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "10000" << 10000.0;
        QTest::newRow("leading blanks") << "  42abc" << 42.0;
        QTest::newRow("decimal") << "1.629" << 1.629;
        QTest::newRow("a second point ends the number") << "1.5.2" << 1.5;
        QTest::newRow("negative") << "-1" << -1.0;
        QTest::newRow("not a number") << "COM10" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("NUL padded") << QStringLiteral("255") + QChar(0) << 255.0;
    }
    void numericConversion()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(Val(text), value);
    }

    void shortenPath_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("shown");
        QTest::newRow("38 kept") << QString(38, QLatin1Char('a')) << QString(38, QLatin1Char('a'));
        QTest::newRow("39 shortened") << QStringLiteral("b") + QString(38, QLatin1Char('a'))
                                      << QStringLiteral("...") + QString(34, QLatin1Char('a'));
    }
    void shortenPath()
    {
        QFETCH(QString, path);
        QFETCH(QString, shown);
        QCOMPARE(ShortenPath(path), shown);
    }
};

QTEST_GUILESS_MAIN(TestPaths)
#include "tst_paths.moc"
