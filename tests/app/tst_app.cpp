// The program's frame and start: settings file, older settings, paths,
// the lock file, the caption, menus and the command line.
#include "DataTable.h"
#include "TempDir.h"
#include "TestClock.h"
#include "app/AppContext.h"
#include "app/BoardChoice.h"
#include "app/Calibration.h"
#include "app/Caption.h"
#include "app/FilePaths.h"
#include "app/IniFile.h"
#include "app/LockFile.h"
#include "app/Migration.h"
#include "app/ScriptedPrompts.h"
#include "app/StartUp.h"
#include "app/Text.h"
#include "app/ui/frmMDI.h"
#include "pc/CommandLine.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

namespace {
QString Field(const Settings &s, const QString &name)
{
    const QMap<QString, QString> fields{
        {"version", s.version}, {"port", s.commPort}, {"type", s.computerType}, {"editor", s.externalEditor},
        {"file", s.currentFile}, {"dialogue", s.openingDialogue}, {"capture", s.captureToDisk}, {"quiet", s.quiet},
        {"quick", s.quickCompile}, {"display", s.noCompileDisplay}, {"baud", s.baudRate}, {"d4410", s.delay4410},
        {"d6630", s.delay6630}, {"timeout", s.timeout}, {"font", s.fontName}, {"bold", s.fontBold}, {"ip", s.remoteIp},
        {"com3", s.SerialDevice("COM3")}, {"com1", s.SerialDevice("COM1")}, {"com5", s.SerialDevice("COM5").left(11)}};
    return fields.value(name, QStringLiteral("?"));
}

// A KVR.CFG of `count` lines with the given lines filled in.
void WriteLegacy(const QString &folder, const QMap<int, QByteArray> &lines, int count = 20)
{
    QByteArray text;
    for (int i = 1; i <= count; ++i)
        text += lines.value(i) + "\r\n";
    WriteAll(folder + "/KVR.CFG", text);
}

struct Frame {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context{Paths(dir.path()), prompts, clock};
    frmMDI frame{context};
    QAction *Item(const QString &name) const { return frame.Item(name); }
};
} // namespace

class TestApp : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString Ini() const { return m_dir.filePath("KVR-PC.INI"); }
    Settings Read() const
    {
        Settings s;
        ReadSettings(s, Ini(), "/win/");
        return s;
    }

private slots:
    void init() { QFile::remove(Ini()); }

    // What a settings file holds (none when empty; a bare line goes under
    // [Parameters]) and what is kept of it, again after a write.
    void settingsRead_data()
    {
        Columns<QByteArray, QString, QString>({"file", "field", "kept"});
        const auto row = [](const char *name, const QByteArray &line, const char *field, const QString &kept) {
            QTest::newRow(name) << (line.isEmpty() || line.startsWith('[') ? line : "[Parameters]\r\n" + line + "\r\n") << QString(field) << kept;
        };
        row("no file: editor in the Windows folder", "", "editor", "/win/NOTEPAD.EXE");
        row("no file: current file", "", "file", NotUsed);
        row("COM10 kept whole", "Communications port=COM10", "port", "COM10");
        row("COM100 cut to five", "Communications port=COM100", "port", "COM10");
        row("IP address cut to 15", "Remote KVR computer IP address=192.168.100.100.5", "ip", "192.168.100.100");
        row("version cut to four", "KVR-PC version=3.2000", "version", "3.20");
        row("computer type cut to eight", "KVR computer type=TerminalX", "type", "Terminal");
        row("font name cut to twenty", "Font Name=ABCDEFGHIJKLMNOPQRSTUVWXYZ", "font", "ABCDEFGHIJKLMNOPQRST");
        row("value cut at NUL", QByteArray("Timeout=12\0" "34", 13), "timeout", "12");
        row("double-quoted value", "Baud rate=\"19200\"", "baud", "19200");
        row("single-quoted value", "Baud rate='2400'", "baud", "2400");
        row("key matched without case", "BAUD RATE=4800", "baud", "4800");
        row("older Latin-1 file", "Current .KVR file=/home/J\xfcrgen/A.KVR", "file", QString::fromUtf8("/home/J\xc3\xbcrgen/A.KVR"));
        row("Polish name", "Current .KVR file=/home/\xc5\x81ukasz/A.KVR", "file", QString::fromUtf8("/home/\xc5\x81ukasz/A.KVR"));
        // Bold is written under a longer name than it is read by.
        row("bold under the name it is written by is not read", "Font Bold, ON or OFF=ON", "bold", "OFF");
        row("bold under the short name", "Font Bold=ON", "bold", "ON");
        row("serial device set per port", "[Serial devices]\r\ncom3=/dev/ttyXR0\r\n", "com3", "/dev/ttyXR0");
        row("serial device defaults", "", "com1", "/dev/ttyS0");
        row("USB serial device defaults", "", "com5", "/dev/ttyUSB");
    }
    void settingsRead()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, field);
        if (!file.isEmpty())
            WriteAll(Ini(), file);
        QTEST(Field(Read(), field), "kept");
        if (field == "bold")
            return;
        QVERIFY(WriteSettings(Read(), Ini()));
        QTEST(Field(Read(), field), "kept");
    }

    // Lines the program does not own stay byte for byte; its own keys keep
    // the names older versions wrote.
    void foreignLinesSurviveAWrite()
    {
        const QByteArray before = "; kept by hand\r\n[Parameters]\r\n; the lab board is slow\r\nBaud rate = \"4800\"\r\n"
                                  "baud rate=9600\r\n\r\n[Tools]\r\nEditor=vim\r\n[Recent Files]\r\nFile1=C:\\A.KVR\r\n";
        IniFile ini;
        ini.Parse(before);
        QCOMPARE(ini.Bytes(), before);
        QCOMPARE(ini.Value("parameters", "BAUD RATE", {}), QStringLiteral("4800"));
        WriteAll(Ini(), before);
        QVERIFY(WriteSettings(Read(), Ini()));
        const QByteArray after = ReadAll(Ini());
        for (const char *kept : {"; kept by hand\r\n[Parameters]\r\n; the lab board is slow\r\n", "Baud rate = \"4800\"\r\n",
                                 "baud rate=9600\r\n", "[Tools]\r\nEditor=vim\r\n", "[Recent Files]\r\nFile1=C:\\A.KVR\r\n",
                                 "Font Bold, ON or OFF=OFF\r\n", "[Colors]\r\nEmulator   background   red=0\r\n"})
            QVERIFY2(after.contains(kept), kept);
    }

    // A full disk: the old file stays whole.
    void failedWriteLeavesOldFile()
    {
        WriteAll(Ini(), "[Parameters]\r\nBaud rate=4800\r\n");
        bool written = true;
        {
            FileSizeLimit full(64);
            written = WriteSettings(Settings(), Ini());
        }
        QVERIFY(!written);
        QCOMPARE(ReadAll(Ini()), QByteArray("[Parameters]\r\nBaud rate=4800\r\n"));
    }

    // At each start: a delay still undetermined is measured; settings of
    // version 1.5 get the switches off and a 10 s timeout.
    void migrate_data()
    {
        Columns<QString, QString, QString, QString>({"version", "d4410", "d6630", "after"}); // quiet quick timeout measured
        QTest::newRow("1.5: switches off, timeout 10 s") << "1.5" << "5" << "5" << "OFF OFF 10000 no";
        QTest::newRow("3.10 keeps the switches") << "3.10" << "5" << "5" << "ON ON 2000 no";
        QTest::newRow("4410 delay undetermined") << "3.20" << "-1" << "100" << "ON ON 2000 yes";
        QTest::newRow("6630 delay undetermined") << "3.20" << "10" << "-1" << "ON ON 2000 yes";
    }
    void migrate()
    {
        Settings s;
        s.version = Cell<QString>("version");
        s.quiet = s.quickCompile = QStringLiteral("ON");
        s.timeout = QStringLiteral("2000");
        s.delay4410 = Cell<QString>("d4410");
        s.delay6630 = Cell<QString>("d6630");
        bool measured = false;
        MigrationInput in;
        in.calibrate = [&](Settings &) { measured = true; };
        MigrateSettings(s, in);
        QTEST(QStringList({s.quiet, s.quickCompile, s.timeout, measured ? "yes" : "no"}).join(' '), "after");
        QCOMPARE(s.version, QStringLiteral("3.20"));
    }

    // Calibration runs first, the older settings' import after it: an
    // imported delay wins. The command line's file is upper-cased.
    void migrationOrder()
    {
        WriteLegacy(m_dir.path(), {{1, "2.00"}, {18, "200"}});
        Settings s;
        MigrationInput in;
        in.legacyFolder = m_dir.path() + '/';
        in.commandLineFile = QStringLiteral("/home/u/prog.kvr");
        in.calibrate = [&](Settings &x) { x.delay4410 = QStringLiteral("999"); };
        MigrateSettings(s, in);
        QCOMPARE(s.delay4410, QStringLiteral("27")); // 200 * 0.25 - 23
        QCOMPARE(s.currentFile, QStringLiteral("/HOME/U/PROG.KVR"));
    }

    // One line of an older KVR.CFG (line 1 the version) and what it becomes.
    void legacyLines_data()
    {
        Columns<int, QByteArray, QByteArray, QString, QString>({"line", "value", "version", "field", "expected"});
        const auto row = [](const char *name, int line, const char *value, const char *field, const char *expected, const char *version = "2.0") {
            QTest::newRow(name) << line << QByteArray(value) << QByteArray(version) << QString(field) << QString(expected);
        };
        row("version cut to four", 1, "1.90xx", "version", "1.90", "1.90xx");
        row("port trimmed, upper case", 2, "com2  ", "port", "COM2");
        row("model ANY is terminal", 4, "any", "type", "Terminal");
        row("other model is 4410 ANS", 4, "4410", "type", "4410ANS");
        row("editor without dot is a .COM in the Windows folder", 5, "edit", "editor", "/win/EDIT.COM");
        row("editor with dot kept", 5, "vi.exe", "editor", "/win/VI.EXE");
        row("file trimmed, upper case", 6, "c:\\kvr\\prog.kvr   ", "file", "C:\\KVR\\PROG.KVR");
        row("empty file is Not Used", 6, "", "file", "Not Used");
        row("dialogue OMIT is OFF", 7, "OMIT", "dialogue", "OFF");
        row("dialogue not OMIT is ON", 7, "SHOW", "dialogue", "ON");
        row("capture default dropped before 1.85", 8, "capture.def", "capture", "Not Used", "1.80");
        row("version 1.849 reads as 1.84", 8, "CAPTURE.DEF", "capture", "Not Used", "1.849");
        row("capture default kept from 1.85", 8, "capture.def", "capture", "CAPTURE.DEF", "1.85");
        row("delay scaled for the 4410", 18, "1000", "d4410", "227");
        row("negative delay becomes 0", 18, "40", "d4410", "0");
        row("delay rounds down", 18, "103", "d4410", "2");
        row("quiet OFF line means ON", 19, "OFF", "quiet", "ON");
        row("old version forces quiet off", 19, "OFF", "quiet", "OFF", "1.5");
        row("quick compile", 20, "ON", "quick", "ON");
        row("no compile display follows quick compile", 20, "ON", "display", "ON");
    }
    void legacyLines()
    {
        QMap<int, QByteArray> lines{{1, Cell<QByteArray>("version")}};
        lines[Cell<int>("line")] = Cell<QByteArray>("value");
        WriteLegacy(m_dir.path(), lines);
        Settings s;
        QVERIFY(ReadLegacyConfig(s, m_dir.path() + '/', "/win/"));
        QTEST(Field(s, Cell<QString>("field")), "expected");
        WriteLegacy(m_dir.path(), {{2, "COM4"}}, 19); // too short: ignored
        QVERIFY(!ReadLegacyConfig(s, m_dir.path() + '/', "/win/"));
    }

    void lockQuestion_data()
    {
        Columns<bool, int, bool>({"lockExists", "answer", "goesOn"});
        QTest::newRow("no lock: no question") << false << int(PromptAnswer::Ok) << true;
        QTest::newRow("OK ends the program") << true << int(PromptAnswer::Ok) << false;
        QTest::newRow("Cancel deletes and goes on") << true << int(PromptAnswer::Cancel) << true;
    }
    void lockQuestion()
    {
        QFETCH(bool, lockExists);
        QFETCH(bool, goesOn);
        const QString lock = m_dir.filePath("kvr-pc.lck");
        if (lockExists)
            WriteAll(lock, "left by a crash");
        ScriptedPrompts prompts;
        prompts.answers.enqueue(PromptAnswer(Cell<int>("answer")));
        QCOMPARE(AcquireLock(lock, prompts), goesOn);
        QCOMPARE(prompts.MessageTexts(), lockExists ? QStringList{"It appears that KVR-PC for Windows is already running.\n\n"
                                                                  "Click Cancel if you are sure that it is not."} : QStringList());
        QVERIFY(!lockExists || prompts.shown[0].buttons == PromptButtons::OkCancel);
        // OK leaves the other copy's file alone; otherwise the file is ours.
        QCOMPARE(ReadAll(lock), goesOn ? QByteArray("KVR-PC for Windows lock file: can be deleted.\r\n") : QByteArray("left by a crash"));
        ReleaseLock(lock);
        QVERIFY(!QFile::exists(lock));
    }

    void caption_data()
    {
        Columns<QString, QString, bool, QString, QString>({"type", "port", "connected", "down", "caption"});
        const QString tcp = QStringLiteral("KVR4410 ANS Forth - IP addresss 10.1.2.3 port 4000 - ");
        QTest::newRow("serial ANS") << "4410ANS" << "COM1" << false << "" << "KVR4410 ANS Forth - COM1";
        QTest::newRow("serial Fig COM12") << "4410Fig" << "COM12" << false << "" << "KVR4410 Fig-Forth - COM12";
        QTest::newRow("6630") << "6630Fig" << "COM2" << true << "" << "KVR6630 Fig-Forth - COM2";
        QTest::newRow("terminal") << "Terminal" << "COM3" << false << "" << "terminal emulator - COM3";
        QTest::newRow("unknown type") << "Z80" << "COM1" << false << "" << " - COM1";
        QTest::newRow("tcp not connected") << "4410ANS" << "COM0" << false << "" << tcp + "no connection";
        QTest::newRow("tcp connected") << "4410ANS" << "COM0" << true << "" << tcp + "connected";
        QTest::newRow("serial link lost") << "4410ANS" << "COM9" << false << "gone" << "KVR4410 ANS Forth - COM9 - link down: gone";
        QTest::newRow("tcp link lost") << "4410ANS" << "COM0" << false << "peer closed" << tcp + "link down: peer closed";
    }
    void caption()
    {
        Settings s;
        s.computerType = Cell<QString>("type");
        s.commPort = Cell<QString>("port");
        s.remoteIp = QStringLiteral("10.1.2.3");
        QCOMPARE(CaptionText(s, Cell<bool>("connected"), Cell<QString>("down")), "KVR-PC for Windows - " + Cell<QString>("caption"));
    }

    // Delays from two clock readings 660 ms apart per 10000; a number chosen
    // in the dialog sets the delay of the board in use.
    void delays_data()
    {
        Columns<QString, QString, quint32, quint32, QString>({"type", "choice", "start", "end", "delays"}); // choice "-": measured
        QTest::newRow("660 ms") << "4410ANS" << "-" << 5000u << 5660u << "10000 100000";
        QTest::newRow("equal readings") << "4410ANS" << "-" << 77u << 77u << "6600000 66000000";
        QTest::newRow("rounds down") << "4410ANS" << "-" << 0u << 7u << "942857 9428571";
        QTest::newRow("tick count wraps") << "4410ANS" << "-" << 0xFFFFFF00u << 0x00000194u << "10000 100000";
        QTest::newRow("6630 number leaves 4410") << "6630Fig" << " 1234 " << 0u << 0u << "11 1234";
        QTest::newRow("4410 number leaves 6630") << "4410Fig" << "99" << 0u << 0u << "99 22";
        QTest::newRow("terminal uses 4410") << "Terminal" << "7" << 0u << 0u << "7 22";
        QTest::newRow("default measures both") << "6630Fig" << " default" << 100u << 760u << "10000 100000";
    }
    void delays()
    {
        QFETCH(QString, choice);
        Settings s;
        s.computerType = Cell<QString>("type");
        s.delay4410 = QStringLiteral("11");
        s.delay6630 = QStringLiteral("22");
        TestClock clock;
        clock.scriptedTicks = {Cell<quint32>("start"), Cell<quint32>("end")};
        choice == "-" ? CalibrateDelay(s, clock) : ApplyDelayChoice(s, choice, clock);
        QTEST(s.delay4410 + ' ' + s.delay6630, "delays");
    }

    void startUpWritesCompleteFileAndUpperCasesTheFile()
    {
        ScriptedPrompts prompts;
        TestClock clock;
        clock.stepPerReading = 330;
        AppContext context(Paths(m_dir.path()), prompts, clock);
        WriteAll(m_dir.filePath("src/prog.kvr"), ": X ;\r\n");
        StartUpOptions options;
        options.commandLineFile = m_dir.filePath("src/prog.kvr");
        QCOMPARE(StartUp(context, options), StartUpResult::Continue);
        QCOMPARE(context.settings.delay4410, QStringLiteral("20000"));
        QCOMPARE(QDir::currentPath(), QDir(m_dir.filePath("src")).canonicalPath());
        QVERIFY(QFile::exists(m_dir.filePath("kvr-pc.lck")));
        const Settings back = Read();
        QCOMPARE(back.version + back.currentFile, "3.20" + options.commandLineFile.toUpper());
        QVERIFY(prompts.shown.isEmpty());
        ReleaseLock(m_dir.filePath("kvr-pc.lck"));
    }

    // A link given on the command line is for this session; one the user
    // picks is kept.
    void sessionLinkIsNotSaved()
    {
        ScriptedPrompts prompts;
        TestClock clock;
        AppContext context(Paths(m_dir.path()), prompts, clock);
        context.settings.commPort = QStringLiteral("COM3");
        context.SetSessionLink(QStringLiteral("127.0.0.1"), QStringLiteral("4123"));
        QCOMPARE(context.settings.commPort, QStringLiteral("COM0"));
        context.settings.timeout = QStringLiteral("2000");
        context.WriteSettings();
        QCOMPARE(Read().commPort + Read().remotePort + Read().timeout, QStringLiteral("COM340002000"));
        context.settings.commPort = QStringLiteral("COM5");
        context.WriteSettings();
        QCOMPARE(Read().commPort, QStringLiteral("COM5"));
    }

    void boardChoice_data()
    {
        Columns<QString, int, QString, bool>({"port", "chosen", "ip", "switchLink"});
        QTest::newRow("same serial port") << "COM2" << 2 << "1.2.3.4" << false;
        QTest::newRow("other serial port") << "COM2" << 3 << "1.2.3.4" << true;
        QTest::newRow("serial to remote") << "COM2" << 0 << "1.2.3.4" << true;
        QTest::newRow("same remote") << "COM0" << 0 << "1.2.3.4" << false;
        QTest::newRow("new remote address") << "COM0" << 0 << "5.6.7.8" << true;
    }
    void boardChoice()
    {
        QFETCH(QString, port);
        Settings s;
        s.commPort = port;
        s.remoteIp = QStringLiteral("1.2.3.4");
        QTEST(ApplyBoardChoice(s, {"6630Fig", Cell<int>("chosen"), Cell<QString>("ip"), s.remotePort}), "switchLink");
        QCOMPARE(s.computerType, QStringLiteral("6630Fig"));
        QCOMPARE(s.commPort, port); // the link switches the port itself
    }

    void resolvesWithoutRegardToCase_data()
    {
        Columns<QString, QString>({"logical", "resolved"});
        QTest::newRow("upper-cased path") << "SRC/LIB/UTIL.KVR" << "Src/lib/Util.kvr";
        QTest::newRow("exact spelling") << "Src/lib/Math.kvr" << "Src/lib/Math.kvr";
        QTest::newRow("exact match wins") << "SRC/LIB/MATH.KVR" << "Src/lib/MATH.KVR";
        QTest::newRow("backslashes") << "SRC\\LIB\\UTIL.KVR" << "Src/lib/Util.kvr";
        QTest::newRow("new file keeps its name") << "SRC/LIB/NEW.KVR" << "Src/lib/NEW.KVR";
        QTest::newRow("missing folder stops matching") << "NONE/LIB/UTIL.KVR" << "NONE/LIB/UTIL.KVR";
    }
    void resolvesWithoutRegardToCase()
    {
        QTemporaryDir dir;
        for (const char *name : {"Src/lib/Math.kvr", "Src/lib/MATH.KVR", "Src/lib/Util.kvr"})
            WriteAll(dir.filePath(name), "x");
        const QString root = dir.path() + '/';
        QCOMPARE(ResolvePath(root + Cell<QString>("logical")), root + Cell<QString>("resolved"));
        QVERIFY(FileExistsCI(root + "SRC/LIB/UTIL.KVR") && !FileExistsCI(root + "SRC/LIB/UTIL.KV") && !FileExistsCI(QString()));
        QVERIFY(DirExistsCI(root + "SRC") && !FileExistsCI(root + "SRC")); // a folder is not a file
    }

    // Numbers read the old way (the leading number, else 0); long paths
    // shown shortened from the front.
    void text_data()
    {
        Columns<QString, QString>({"text", "result"});
        QTest::newRow("plain") << "10000" << "10000";
        QTest::newRow("leading blanks, trailing letters") << "  42abc" << "42";
        QTest::newRow("decimal") << "1.629" << "1.629";
        QTest::newRow("a second point ends the number") << "1.5.2" << "1.5";
        QTest::newRow("negative") << "-1" << "-1";
        QTest::newRow("not a number") << "COM10" << "0";
        QTest::newRow("NUL padded") << QStringLiteral("255") + QChar(0) << "255";
        QTest::newRow("path of 38 kept") << "/" + QString(37, 'a') << "/" + QString(37, 'a');
        QTest::newRow("path of 39 shortened") << "/b" + QString(37, 'a') << "..." + QString(34, 'a');
    }
    void text()
    {
        QFETCH(QString, text);
        QTEST(text.startsWith('/') ? ShortenPath(text) : QString::number(Val(text)), "result");
    }

    // Until the link has switched, the tick stays on the port in use.
    void portItemsAskTheLink()
    {
        Frame f;
        bool connected = false;
        f.frame.SetTcpConnectedProvider([&] { return connected; });
        QSignalSpy spy(&f.frame, &frmMDI::PortRequested);
        f.Item("mnuOP(12)")->trigger();
        f.Item("mnuOP(0)")->trigger();
        QCOMPARE(spy.count(), 2);
        QCOMPARE(spy.at(0).at(0).toInt() * 100 + spy.at(1).at(0).toInt(), 1200);
        QVERIFY(f.Item("mnuOP(1)")->isChecked());
        f.context.settings.commPort = QStringLiteral("COM12");
        f.context.WriteSettings();
        QVERIFY(f.Item("mnuOP(12)")->isChecked() && !f.Item("mnuOP(1)")->isChecked());
        QCOMPARE(f.frame.windowTitle(), QStringLiteral("KVR-PC for Windows - KVR4410 ANS Forth - COM12"));
        f.context.settings.commPort = QStringLiteral("COM0");
        connected = true;
        f.frame.UpdateCaption();
        QVERIFY(f.frame.windowTitle().endsWith(" - connected"));
    }

    void closeGuardCanAbandonExit()
    {
        Frame f;
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
        Columns<QStringList, QString>({"args", "parsed"}); // file host port, or "error"
        QTest::newRow("file only") << QStringList{"prog.kvr"} << "prog.kvr  ";
        QTest::newRow("simulator") << QStringList{"--simulator", "127.0.0.1:4001", "a.kvr"} << "a.kvr 127.0.0.1 4001";
        QTest::newRow("simulator without port") << QStringList{"--simulator", "localhost"} << "error";
        QTest::newRow("settings dir needs a value") << QStringList{"--settings-dir"} << "error";
        QTest::newRow("two files") << QStringList{"a.kvr", "b.kvr"} << "error";
        QTest::newRow("unknown option") << QStringList{"--fast"} << "error";
    }
    void commandLine()
    {
        const PcCommandLine p = ParsePcCommandLine(Cell<QStringList>("args"));
        QTEST(p.error.isEmpty() ? QStringList({p.file, p.simulatorHost, p.simulatorPort}).join(' ') : QStringLiteral("error"), "parsed");
    }
};

QTEST_MAIN(TestApp)
#include "tst_app.moc"
