#include "TestClock.h"
#include "app/ScriptedPrompts.h"
#include "app/ui/frmMDI.h"
#include "pc/CommandLine.h"
#include <QAction>
#include <QMenu>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

class TestFrame : public QObject {
    Q_OBJECT

    struct Fixture {
        QTemporaryDir dir;
        ScriptedPrompts prompts;
        TestClock clock;
        AppContext context{Paths(dir.path()), prompts, clock};
        frmMDI frame{context};
    };

private slots:
    void menuCaptions_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("caption");
        const QList<QPair<QString, QString>> items = {
            {"mnuFile", "&File"}, {"mnuFNew", "&New"}, {"mnuFOpen", "&Open"}, {"mnuFDelete", "&Kill"},
            {"mnuFCapture", "&Capture to file"}, {"mnuFExtEditor", "&External editor"},
            {"mnuFShell", "&DOS window"}, {"mnuFExit", "E&xit"}, {"mnuPROM", "&PROMs"},
            {"mnuPUp", "&Upload from KVR"}, {"mnuPDown", "&Download to programmer"},
            {"mnuPFlash", "&Re-Flash KVR4410F"}, {"mnuDictionary", "Dictionar&y "},
            {"mnuZap", "&Zap dictionary"}, {"mnuOptions", "&Options"}, {"mnuOQuestions", "&KVR computer"},
            {"mnuODelay", "&Intercharacter delay"}, {"mnuOTimeout", "&Timeout"},
            {"mnuOTimeoutArray(0)", "20 secs."}, {"mnuOTimeoutArray(4)", "1 sec."},
            {"mnuOBaud", "Baud &Rate"}, {"mnuOBaudArray(0)", "3840&0"}, {"mnuOBaudArray(3)", "4&800"},
            {"mnuOBaudArray(7)", "&300"}, {"mnuOComPort", "Com &Port"}, {"mnuOP(0)", "Remote"},
            {"mnuOP(1)", "COM&1"}, {"mnuOP(9)", "COM&9"}, {"mnuOP(10)", "COM10"}, {"mnuOP(20)", "COM20"},
            {"mnuIP", "&Remote KVR computer"}, {"mnuOCapsLock", "Caps &Lock"},
            {"mnuOColors", "Interactive &Colors"}, {"mnuOCBackground", "&Background"},
            {"mnuOCText", "&Text"}, {"mnuOFont", "&Font"}, {"mnuWindow", "&Window"},
            {"mnuWCascade", "&Cascade source"}, {"mnuWHorizontal", "Tile &Horizontal"},
            {"mnuWVertical", "Tile &Vertical"}, {"mnuWArrange", "&Arrange icons"},
            {"mnuD", "&Definitions"}, {"mnuDView", "&View database"}, {"mnuManual", "&Manual"},
            {"mnuMkvr4410", "KVR&4410F Manual"}, {"mnuMkvr6630", "KVR&6630 Manual"},
            {"mnuMReadme", "&Latest information"}, {"mnuMUpdates", "ROM &Updates"},
            {"mnuMWords", "&Forth words"}, {"mnuHelp", "&Help"},
            {"mnuOnScreen", "Development system &Help"}, {"mnuAbout", "&About"}};
        for (const auto &[name, caption] : items)
            QTest::newRow(qPrintable(name)) << name << caption;
    }
    void menuCaptions()
    {
        QFETCH(QString, name);
        QFETCH(QString, caption);
        Fixture f;
        QAction *action = f.frame.Item(name);
        QVERIFY2(action, qPrintable(name));
        QCOMPARE(action->text(), caption);
    }

    void topLevelMenuOrder()
    {
        Fixture f;
        QStringList names;
        for (QAction *a : f.frame.menuBar()->actions())
            names << a->objectName();
        QCOMPARE(names, (QStringList{"mnuFile", "mnuPROM", "mnuDictionary", "mnuOptions", "mnuWindow", "mnuD",
                                     "mnuManual", "mnuHelp"}));
        QStringList file;
        for (QAction *a : f.frame.Menu(QStringLiteral("mnuFile"))->actions())
            if (!a->isSeparator())
                file << a->objectName();
        QCOMPARE(file.mid(0, 7), (QStringList{"mnuFNew", "mnuFOpen", "mnuFDelete", "mnuFCapture",
                                              "mnuFExtEditor", "mnuFShell", "mnuFExit"}));
        QCOMPARE(file.last(), QStringLiteral("mnuRecentFile(8)"));
    }

    void optionItemsTickAndWrite_data()
    {
        QTest::addColumn<QString>("item");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("timeout 20 s") << "mnuOTimeoutArray(0)" << "Timeout" << "20000";
        QTest::newRow("timeout 1 s") << "mnuOTimeoutArray(4)" << "Timeout" << "1000";
        QTest::newRow("baud 38400") << "mnuOBaudArray(0)" << "Baud rate" << "38400";
        QTest::newRow("baud 2400") << "mnuOBaudArray(4)" << "Baud rate" << "2400";
        QTest::newRow("baud 300") << "mnuOBaudArray(7)" << "Baud rate" << "300";
    }
    void optionItemsTickAndWrite()
    {
        QFETCH(QString, item);
        QFETCH(QString, key);
        QFETCH(QString, value);
        Fixture f;
        f.frame.Item(item)->trigger();
        const QString prefix = item.left(item.indexOf(QLatin1Char('(')));
        for (int i = 0; i < 8; ++i)
            if (QAction *a = f.frame.Item(frmMDI::ArrayName(prefix, i)))
                QCOMPARE(a->isChecked(), a->objectName() == item);
        QFile ini(f.context.paths.SettingsFile());
        QVERIFY(ini.open(QIODevice::ReadOnly));
        QVERIFY(ini.readAll().contains((key + QLatin1Char('=') + value + QStringLiteral("\r\n")).toLatin1()));
    }

    void portItemsAskTheLink()
    {
        Fixture f;
        QSignalSpy spy(&f.frame, &frmMDI::PortRequested);
        f.frame.Item(QStringLiteral("mnuOP(12)"))->trigger();
        f.frame.Item(QStringLiteral("mnuOP(0)"))->trigger();
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0).at(0).toInt(), 12);
        QCOMPARE(spy.at(1).at(0).toInt(), 0);
        // Until the link has switched, the tick stays on the port in use.
        QVERIFY(f.frame.Item(QStringLiteral("mnuOP(1)"))->isChecked());
        f.context.settings.commPort = QStringLiteral("COM12");
        f.context.WriteSettings();
        QVERIFY(f.frame.Item(QStringLiteral("mnuOP(12)"))->isChecked());
        QVERIFY(!f.frame.Item(QStringLiteral("mnuOP(1)"))->isChecked());
        QCOMPARE(f.frame.windowTitle(), QStringLiteral("KVR-PC for Windows - KVR4410 ANS Forth - COM12"));
    }

    void captionFollowsTcpState()
    {
        Fixture f;
        bool connected = false;
        f.frame.SetTcpConnectedProvider([&] { return connected; });
        f.context.settings.commPort = QStringLiteral("COM0");
        f.context.settings.remoteIp = QStringLiteral("127.0.0.1");
        f.frame.UpdateCaption();
        QVERIFY(f.frame.windowTitle().endsWith(QStringLiteral(" - no connection")));
        connected = true;
        f.frame.UpdateCaption();
        QCOMPARE(f.frame.windowTitle(),
                 QStringLiteral("KVR-PC for Windows - KVR4410 ANS Forth - IP addresss 127.0.0.1 port 4000 - connected"));
    }

    void terminalTypeDisablesBoardCommands()
    {
        Fixture f;
        QVERIFY(f.frame.Item(QStringLiteral("mnuZap"))->isEnabled());
        f.context.settings.computerType = QStringLiteral("Terminal");
        f.context.WriteSettings();
        QVERIFY(!f.frame.Item(QStringLiteral("mnuZap"))->isEnabled());
        QVERIFY(!f.frame.Item(QStringLiteral("mnuPFlash"))->isEnabled());
        QVERIFY(f.frame.Item(QStringLiteral("mnuPUp"))->isEnabled());
        QVERIFY(f.frame.Item(QStringLiteral("mnuFOpen"))->isEnabled());
    }

    void terminalColourChosen()
    {
        Fixture f;
        f.prompts.colors.enqueue(QColor(10, 20, 30));
        f.frame.Item(QStringLiteral("mnuOCText"))->trigger();
        QCOMPARE(f.context.settings.Color(ColorWindow::Emulator, true), QColor(10, 20, 30));
        QCOMPARE(f.context.settings.Color(ColorWindow::Emulator, false), QColor(0, 0, 0));
        f.frame.Item(QStringLiteral("mnuOCBackground"))->trigger(); // cancelled: unchanged
        QCOMPARE(f.context.settings.Color(ColorWindow::Emulator, false), QColor(0, 0, 0));
    }

    void windowMenuListsChildWindows()
    {
        Fixture f;
        f.frame.show();
        QMdiSubWindow *terminal = f.frame.MdiArea()->addSubWindow(new QWidget);
        terminal->setWindowTitle(QStringLiteral("Interactive window"));
        QMdiSubWindow *editor = f.frame.MdiArea()->addSubWindow(new QWidget);
        editor->setWindowTitle(QStringLiteral("Source code 1"));
        terminal->show();
        editor->show();
        terminal->hide(); // closed with its title-bar button
        f.frame.UpdateWindowList();
        f.frame.UpdateWindowList(); // rebuilt, not appended to
        QAction *first = f.frame.Item(QStringLiteral("mnuWList(1)"));
        QVERIFY(first);
        QCOMPARE(first->text(), QStringLiteral("&1 Source code 1"));
        QVERIFY(!f.frame.Item(QStringLiteral("mnuWList(2)")));
        QSignalSpy requested(&f.frame, &frmMDI::TerminalRequested);
        f.frame.Item(QStringLiteral("mnuWTerminal"))->trigger();
        QCOMPARE(requested.size(), 1);
    }

    void closeGuardCanAbandonExit()
    {
        Fixture f;
        bool allow = false;
        f.frame.SetCloseGuard([&] { return allow; });
        QSignalSpy closing(&f.frame, &frmMDI::Closing);
        f.frame.show();
        QVERIFY(!f.frame.close());
        QCOMPARE(closing.count(), 0);
        allow = true;
        QVERIFY(f.frame.close());
        QCOMPARE(closing.count(), 1);
    }

    void commandLine_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("port");
        QTest::addColumn<bool>("bad");
        QTest::newRow("file only") << QStringList{"prog.kvr"} << "prog.kvr" << "" << "" << false;
        QTest::newRow("simulator")
            << QStringList{"--simulator", "127.0.0.1:4001", "a.kvr"} << "a.kvr" << "127.0.0.1" << "4001" << false;
        QTest::newRow("simulator without port") << QStringList{"--simulator", "localhost"} << "" << "" << "" << true;
        QTest::newRow("settings dir needs a value") << QStringList{"--settings-dir"} << "" << "" << "" << true;
        QTest::newRow("two files") << QStringList{"a.kvr", "b.kvr"} << "a.kvr" << "" << "" << true;
        QTest::newRow("unknown option") << QStringList{"--fast"} << "" << "" << "" << true;
    }
    void commandLine()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, file);
        QFETCH(QString, host);
        QFETCH(QString, port);
        QFETCH(bool, bad);
        const PcCommandLine parsed = ParsePcCommandLine(args);
        QCOMPARE(!parsed.error.isEmpty(), bad);
        QCOMPARE(parsed.file, file);
        QCOMPARE(parsed.simulatorHost, host);
        QCOMPARE(parsed.simulatorPort, port);
    }
};

QTEST_MAIN(TestFrame)
#include "tst_frame.moc"
