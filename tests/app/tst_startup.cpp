#include "TempDir.h"
#include "TestClock.h"
#include "app/AppContext.h"
#include "app/BoardChoice.h"
#include "app/Calibration.h"
#include "app/Caption.h"
#include "app/LockFile.h"
#include "app/ScriptedPrompts.h"
#include "app/StartUp.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

class TestStartUp : public QObject {
    Q_OBJECT

private slots:
    void lockQuestion_data()
    {
        QTest::addColumn<bool>("lockExists");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("goesOn");
        QTest::newRow("no lock: no question") << false << int(PromptAnswer::Ok) << true;
        QTest::newRow("OK ends the program") << true << int(PromptAnswer::Ok) << false;
        QTest::newRow("Cancel deletes and goes on") << true << int(PromptAnswer::Cancel) << true;
    }
    void lockQuestion()
    {
        QFETCH(bool, lockExists);
        QFETCH(int, answer);
        QFETCH(bool, goesOn);
        QTemporaryDir dir;
        const QString lock = dir.filePath(QStringLiteral("kvr-pc.lck"));
        if (lockExists)
            test::WriteAll(lock, "left by a crash");
        ScriptedPrompts prompts;
        prompts.answers.enqueue(PromptAnswer(answer));
        QCOMPARE(AcquireLock(lock, prompts), goesOn);
        QCOMPARE(prompts.shown.size(), lockExists ? 1 : 0);
        if (lockExists) {
            const RecordedPrompt &box = prompts.shown.first();
            QCOMPARE(box.text, QStringLiteral("It appears that KVR-PC for Windows is already running.\n\n"
                                              "Click Cancel if you are sure that it is not."));
            QCOMPARE(box.caption, QStringLiteral("KVR-PC for Windows"));
            QCOMPARE(box.icon, PromptIcon::Exclamation);
            QCOMPARE(box.buttons, PromptButtons::OkCancel);
        }
        // OK leaves the other copy's file alone; otherwise the file is ours.
        QCOMPARE(test::ReadAll(lock),
                 goesOn ? QByteArray("KVR-PC for Windows lock file: can be deleted.\r\n")
                        : QByteArray("left by a crash"));
        ReleaseLock(lock);
        QVERIFY(!QFile::exists(lock));
    }

    void caption_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("port");
        QTest::addColumn<bool>("connected");
        QTest::addColumn<QString>("down");
        QTest::addColumn<QString>("caption");
        QTest::newRow("serial ANS") << "4410ANS" << "COM1" << false << QString()
                                    << "KVR-PC for Windows - KVR4410 ANS Forth - COM1";
        QTest::newRow("serial Fig COM12") << "4410Fig" << "COM12" << false << QString()
                                          << "KVR-PC for Windows - KVR4410 Fig-Forth - COM12";
        QTest::newRow("6630") << "6630Fig" << "COM2" << true << QString() << "KVR-PC for Windows - KVR6630 Fig-Forth - COM2";
        QTest::newRow("terminal") << "Terminal" << "COM3" << false << QString()
                                  << "KVR-PC for Windows - terminal emulator - COM3";
        QTest::newRow("unknown type") << "Z80" << "COM1" << false << QString() << "KVR-PC for Windows -  - COM1";
        QTest::newRow("tcp not connected")
            << "4410ANS" << "COM0" << false << QString()
            << "KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 10.1.2.3 port 4000 - no connection";
        QTest::newRow("tcp connected")
            << "4410ANS" << "COM0" << true << QString()
            << "KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 10.1.2.3 port 4000 - connected";
        QTest::newRow("serial link lost") << "4410ANS" << "COM9" << false << "device /dev/ttyUSB0 is gone"
                                          << "KVR-PC for Windows - KVR4410 ANS Forth - COM9 - link down: "
                                             "device /dev/ttyUSB0 is gone";
        QTest::newRow("tcp link lost") << "4410ANS" << "COM0" << false << "peer closed"
                                       << "KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 10.1.2.3 port "
                                          "4000 - link down: peer closed";
    }
    void caption()
    {
        QFETCH(QString, type);
        QFETCH(QString, port);
        QFETCH(bool, connected);
        QFETCH(QString, down);
        QFETCH(QString, caption);
        Settings s;
        s.computerType = type;
        s.commPort = port;
        s.remoteIp = QStringLiteral("10.1.2.3");
        QCOMPARE(CaptionText(s, connected, down), caption);
    }

    void calibrationArithmetic_data()
    {
        QTest::addColumn<quint32>("start");
        QTest::addColumn<quint32>("end");
        QTest::addColumn<QString>("d4410");
        QTest::addColumn<QString>("d6630");
        QTest::newRow("660 ms") << 5000u << 5660u << "10000" << "100000";
        QTest::newRow("equal readings") << 77u << 77u << "6600000" << "66000000";
        QTest::newRow("rounds down") << 0u << 7u << "942857" << "9428571";
        QTest::newRow("tick count wraps") << 0xFFFFFF00u << 0x00000194u << "10000" << "100000";
    }
    void calibrationArithmetic()
    {
        QFETCH(quint32, start);
        QFETCH(quint32, end);
        QFETCH(QString, d4410);
        QFETCH(QString, d6630);
        TestClock clock;
        clock.scriptedTicks = {start, end};
        Settings s;
        CalibrateDelay(s, clock);
        QCOMPARE(clock.readings, 2);
        QCOMPARE(s.delay4410, d4410);
        QCOMPARE(s.delay6630, d6630);
    }

    void delayDialogChoice_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QString>("d4410");
        QTest::addColumn<QString>("d6630");
        QTest::newRow("6630 number leaves 4410") << "6630Fig" << " 1234 " << "11" << "1234";
        QTest::newRow("4410 number leaves 6630") << "4410Fig" << "99" << "99" << "22";
        QTest::newRow("terminal uses 4410") << "Terminal" << "7" << "7" << "22";
        QTest::newRow("default measures both") << "6630Fig" << " default" << "10000" << "100000";
    }
    void delayDialogChoice()
    {
        QFETCH(QString, type);
        QFETCH(QString, choice);
        QFETCH(QString, d4410);
        QFETCH(QString, d6630);
        Settings s;
        s.computerType = type;
        s.delay4410 = QStringLiteral("11");
        s.delay6630 = QStringLiteral("22");
        TestClock clock;
        clock.scriptedTicks = {100, 760};
        ApplyDelayChoice(s, choice, clock);
        QCOMPARE(s.delay4410, d4410);
        QCOMPARE(s.delay6630, d6630);
    }

    void startUpWritesCompleteFileAndUpperCasesTheFile()
    {
        QTemporaryDir dir;
        ScriptedPrompts prompts;
        TestClock clock;
        clock.stepPerReading = 330;
        AppContext context(Paths(dir.path()), prompts, clock);
        test::WriteAll(dir.filePath(QStringLiteral("src/prog.kvr")), ": X ;\r\n");
        StartUpOptions options;
        options.commandLineFile = dir.filePath(QStringLiteral("src/prog.kvr"));
        QCOMPARE(StartUp(context, options), StartUpResult::Continue);
        QCOMPARE(context.settings.currentFile, options.commandLineFile.toUpper());
        QCOMPARE(context.settings.delay4410, QStringLiteral("20000"));
        QCOMPARE(QDir::currentPath(), QDir(dir.filePath(QStringLiteral("src"))).canonicalPath());
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("kvr-pc.lck"))));
        Settings back;
        ReadSettings(back, dir.filePath(QStringLiteral("KVR-PC.INI")), QString());
        QCOMPARE(back.version, QStringLiteral("3.20"));
        QCOMPARE(back.currentFile, options.commandLineFile.toUpper());
        QVERIFY(prompts.shown.isEmpty());
    }

    void sessionLinkIsNotSaved()
    {
        QTemporaryDir dir;
        ScriptedPrompts prompts;
        TestClock clock;
        AppContext context(Paths(dir.path()), prompts, clock);
        context.settings.commPort = QStringLiteral("COM3");
        context.SetSessionLink(QStringLiteral("127.0.0.1"), QStringLiteral("4123"));
        QCOMPARE(context.settings.commPort, QStringLiteral("COM0"));
        context.settings.timeout = QStringLiteral("2000");
        context.WriteSettings();
        Settings saved;
        ReadSettings(saved, context.paths.SettingsFile(), QString());
        QCOMPARE(saved.commPort, QStringLiteral("COM3"));
        QCOMPARE(saved.remotePort, QStringLiteral("4000"));
        QCOMPARE(saved.timeout, QStringLiteral("2000"));

        // Once the user picks a link, it is theirs to keep.
        context.settings.commPort = QStringLiteral("COM5");
        context.WriteSettings();
        ReadSettings(saved, context.paths.SettingsFile(), QString());
        QCOMPARE(saved.commPort, QStringLiteral("COM5"));
    }

    void boardChoice_data()
    {
        QTest::addColumn<QString>("port");
        QTest::addColumn<int>("chosen");
        QTest::addColumn<QString>("ip");
        QTest::addColumn<bool>("switchLink");
        QTest::newRow("same serial port") << "COM2" << 2 << "1.2.3.4" << false;
        QTest::newRow("other serial port") << "COM2" << 3 << "1.2.3.4" << true;
        QTest::newRow("serial to remote") << "COM2" << 0 << "1.2.3.4" << true;
        QTest::newRow("same remote") << "COM0" << 0 << "1.2.3.4" << false;
        QTest::newRow("new remote address") << "COM0" << 0 << "5.6.7.8" << true;
    }
    void boardChoice()
    {
        QFETCH(QString, port);
        QFETCH(int, chosen);
        QFETCH(QString, ip);
        QFETCH(bool, switchLink);
        Settings s;
        s.commPort = port;
        s.remoteIp = QStringLiteral("1.2.3.4");
        const bool result = ApplyBoardChoice(s, {QStringLiteral("6630Fig"), chosen, ip, s.remotePort});
        QCOMPARE(result, switchLink);
        QCOMPARE(s.computerType, QStringLiteral("6630Fig"));
        QCOMPARE(s.commPort, port); // the link switches the port itself
    }
};

QTEST_GUILESS_MAIN(TestStartUp)
#include "tst_startup.moc"
