#include "TempDir.h"
#include "app/IniFile.h"
#include "app/Migration.h"
#include "app/Settings.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_ini = m_dir.filePath(QStringLiteral("KVR-PC.INI"));
        QFile::remove(m_ini);
    }

    void missingFileGivesDefaults()
    {
        Settings s;
        ReadSettings(s, m_ini, QStringLiteral("/win/"));
        QCOMPARE(s.version, QStringLiteral("0.00"));
        QCOMPARE(s.commPort, QStringLiteral("COM1"));
        QCOMPARE(s.externalEditor, QStringLiteral("/win/NOTEPAD.EXE"));
        QCOMPARE(s.currentFile, NotUsed);
        QCOMPARE(s.remoteIp, QStringLiteral("255.255.255.255"));
        QCOMPARE(s.Color(ColorWindow::Editor, false), QColor(255, 255, 0));
        QCOMPARE(s.Color(ColorWindow::StatusBox, false), QColor(0, 255, 255));
        QCOMPARE(s.Color(ColorWindow::Emulator, true), QColor(255, 255, 255));
    }

    void keptLengths_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("written");
        QTest::addColumn<QString>("kept");
        QTest::newRow("COM10 kept whole") << "Communications port" << "COM10" << "COM10";
        QTest::newRow("COM100 cut to five") << "Communications port" << "COM100" << "COM10";
        QTest::newRow("long IP address cut to 15")
            << "Remote KVR computer IP address" << "192.168.100.100.5" << "192.168.100.100";
        QTest::newRow("version cut to four") << "KVR-PC version" << "3.2000" << "3.20";
        QTest::newRow("computer type eight") << "KVR computer type" << "TerminalX" << "Terminal";
        QTest::newRow("font name twenty")
            << "Font Name" << "ABCDEFGHIJKLMNOPQRSTUVWXYZ" << "ABCDEFGHIJKLMNOPQRST";
        QTest::newRow("value cut at NUL") << "Timeout" << QStringLiteral("12") + QChar(0) + QStringLiteral("34")
                                          << "12";
        QTest::newRow("quoted value unquoted") << "Baud rate" << "\"19200\"" << "19200";
        QTest::newRow("single-quoted value unquoted") << "Baud rate" << "'2400'" << "2400";
        QTest::newRow("key matched without case") << "BAUD RATE" << "4800" << "4800";
    }
    void keptLengths()
    {
        QFETCH(QString, key);
        QFETCH(QString, written);
        QFETCH(QString, kept);
        test::WriteAll(m_ini, "[Parameters]\r\n" + key.toLatin1() + '=' + written.toLatin1() + "\r\n");
        Settings s;
        ReadSettings(s, m_ini, QStringLiteral("/win/"));
        const QString values[] = {s.commPort, s.remoteIp, s.version, s.computerType, s.fontName,
                                  s.timeout, s.baudRate};
        QVERIFY2(std::find(std::begin(values), std::end(values), kept) != std::end(values),
                 qPrintable(kept));
    }

    void boldWrittenUnderLongNameIsNotReadBack()
    {
        Settings s;
        s.fontBold = QStringLiteral("ON");
        QVERIFY(WriteSettings(s, m_ini));
        const QByteArray file = test::ReadAll(m_ini);
        QVERIFY(file.contains("Font Bold, ON or OFF=ON\r\n"));
        Settings back;
        ReadSettings(back, m_ini, QStringLiteral("/win/"));
        QCOMPARE(back.fontBold, QStringLiteral("OFF"));

        test::WriteAll(m_ini, file + "[Parameters]\r\n");
        IniFile ini;
        ini.Load(m_ini);
        ini.SetValue(QStringLiteral("Parameters"), QStringLiteral("Font Bold"), QStringLiteral("ON"));
        ini.Save(m_ini);
        ReadSettings(back, m_ini, QStringLiteral("/win/"));
        QCOMPARE(back.fontBold, QStringLiteral("ON"));
    }

    void writesEveryKeyInTableOrder()
    {
        Settings s;
        QVERIFY(WriteSettings(s, m_ini));
        const QString text = QStringLiteral("\r\n") + QString::fromLatin1(test::ReadAll(m_ini));
        const QStringList expected = {
            "[Parameters]", "KVR-PC version=", "Communications port=", "KVR computer type=",
            "External editor=", "Current .KVR file=", "Opening dialogue=", "Wizard question=",
            "Capture to disk=", "Quiet, ON or OFF=", "Quick compile, ON or OFF=",
            "No compile display, ON or OFF=", "Current Forth words database=", "Baud rate=",
            "Intercharacter delay - KVR4410=", "Intercharacter delay - KVR6630=", "Timeout=",
            "Font Size=", "Font Name=", "Font Bold, ON or OFF=", "Caps Lock, ON or OFF=",
            "Source window TAB spaces=", "Extra source file search paths=",
            "Remote KVR computer IP address=", "Remote KVR computer IP port=", "[Colors]",
            "Emulator   background   red=0", "Emulator   background green=0",
            "Emulator   background  blue=0", "Emulator   foreground   red=255",
            "Emulator   foreground green=255", "Emulator   foreground  blue=255",
            "Editor     background   red=255", "Editor     background green=255",
            "Editor     background  blue=0", "Editor     foreground   red=0",
            "Editor     foreground green=0", "Editor     foreground  blue=0",
            "Status box background   red=0", "Status box background green=255",
            "Status box background  blue=255", "Status box foreground   red=0",
            "Status box foreground green=0", "Status box foreground  blue=0"};
        qsizetype from = 0;
        for (const QString &line : expected) {
            const qsizetype at = text.indexOf(QStringLiteral("\r\n") + line, from);
            QVERIFY2(at >= 0, qPrintable(QStringLiteral("missing or out of order: ") + line));
            from = at + 2 + line.size();
        }
    }

    void otherSectionsSurviveAWrite()
    {
        test::WriteAll(m_ini, "[Recent Files]\r\nFile1=C:\\A.KVR\r\n[Parameters]\r\nBaud rate=4800\r\n");
        Settings s;
        ReadSettings(s, m_ini, QStringLiteral("/win/"));
        QVERIFY(WriteSettings(s, m_ini));
        const QByteArray text = test::ReadAll(m_ini);
        QVERIFY(text.startsWith("[Parameters]\r\n"));
        QVERIFY(text.contains("[Recent Files]\r\nFile1=C:\\A.KVR\r\n"));
        QVERIFY(text.contains("Baud rate=4800\r\n"));
    }

    void linesTheProgramDoesNotOwnSurvive()
    {
        const QByteArray before = "; kept by hand\r\n[Parameters]\r\n; the lab board is slow\r\n"
                                  "Baud rate = \"4800\"\r\nbaud rate=9600\r\n\r\n[Tools]\r\nEditor=vim\r\n";
        IniFile ini;
        ini.Parse(before);
        QCOMPARE(ini.Bytes(), before); // nothing changed: every byte as it was
        QCOMPARE(ini.Value(QStringLiteral("parameters"), QStringLiteral("BAUD RATE"), {}), QStringLiteral("4800"));

        test::WriteAll(m_ini, before);
        Settings s;
        ReadSettings(s, m_ini, QStringLiteral("/win/"));
        QVERIFY(WriteSettings(s, m_ini));
        const QByteArray after = test::ReadAll(m_ini);
        for (const char *kept : {"; kept by hand\r\n[Parameters]\r\n; the lab board is slow\r\n",
                                 "Baud rate = \"4800\"\r\n", "baud rate=9600\r\n", "[Tools]\r\nEditor=vim\r\n"})
            QVERIFY2(after.contains(kept), kept);
    }

    void anyPathRoundTrips_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("path");
        QTest::newRow("older Latin-1 file") << QByteArray("[Parameters]\r\nCurrent .KVR file=/home/J\xfcrgen/A.KVR\r\n")
                                            << QStringLiteral("/home/J\u00fcrgen/A.KVR");
        QTest::newRow("Polish name") << QByteArray() << QStringLiteral("/home/\u0141ukasz/A.KVR");
        QTest::newRow("Cyrillic name") << QByteArray() << QStringLiteral("/home/\u0414\u0438\u043c\u0430/A.KVR");
    }
    void anyPathRoundTrips()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, path);
        Settings s;
        if (!file.isEmpty()) {
            test::WriteAll(m_ini, file);
            ReadSettings(s, m_ini, QStringLiteral("/win/"));
            QCOMPARE(s.currentFile, path);
        }
        s.currentFile = path;
        QVERIFY(WriteSettings(s, m_ini));
        Settings back;
        ReadSettings(back, m_ini, QStringLiteral("/win/"));
        QCOMPARE(back.currentFile, path);
    }

    void serialDevicesEditable()
    {
        test::WriteAll(m_ini, "[Serial devices]\r\ncom3=/dev/ttyXR0\r\n");
        Settings s;
        ReadSettings(s, m_ini, QStringLiteral("/win/"));
        QCOMPARE(s.SerialDevice(QStringLiteral("COM3")), QStringLiteral("/dev/ttyXR0"));
        QCOMPARE(s.SerialDevice(QStringLiteral("COM1")), QStringLiteral("/dev/ttyS0"));
        QVERIFY(s.SerialDevice(QStringLiteral("COM5")).startsWith(QStringLiteral("/dev/ttyUSB")));
    }

    void failedWriteLeavesOldFile()
    {
        Settings s;
        QVERIFY(WriteSettings(s, m_ini));
        const QByteArray before = test::ReadAll(m_ini);
        s.baudRate = QStringLiteral("300");
        bool written = true;
        {
            // A full disk: writes past a few bytes fail with EFBIG.
            test::FileSizeLimit limit(64);
            written = WriteSettings(s, m_ini);
        }
        QVERIFY(!written);
        QCOMPARE(test::ReadAll(m_ini), before);
    }

private:
    QTemporaryDir m_dir;
    QString m_ini;
};

QTEST_GUILESS_MAIN(TestSettings)
#include "tst_settings.moc"
