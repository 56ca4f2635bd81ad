// PROM images: the upload dialog's rules, the image check, S-record files
// for the re-flash, the upload and re-flash over the in-memory board, and
// the dialogs that drive them.
#include "CompileFixture.h"
#include "prom/PromFormat.h"
#include "prom/PromUpload.h"
#include "prom/ProgrammerDownload.h"
#include "prom/Reflash.h"
#include "prom/SRecord.h"
#include "prom/ui/PromWindows.h"
#include "prom/ui/frmPROMDown.h"
#include "prom/ui/frmPROMUp.h"
#include "prom/ui/frmReFlash.h"
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;
using Bytes = QList<QByteArray>;

namespace {
const QByteArray Forget2 = "' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !", Forget4 = "' JOB 4 - DUP @ CONTEXT @ ! 4 - DP !";
// 16 bytes at 8800 and 3 at 8810.
const QByteArray S1a = "S113880000112233445566778899AABBCCDDEEFF6C", S1b = "S10688104142439B", S9 = "S9030000FC";
const QString Checked4 = "Image checked: 1 records, 4 bytes from 8800 to 8803, checksums right";
QByteArray Lines(const Bytes &lines) { return lines.join("\r\n") + "\r\n"; }

// 80 bytes of many kinds, Ctrl-C among them, as S-records whose checksums
// the re-flash does not look at.
const QByteArray Image = QByteArray::fromHex("00030A0D1A1B7F80FEFF").repeated(8);
QByteArray ImageFile()
{
    QByteArray text = "S0030000FC\r\n";
    for (qsizetype at = 0; at < Image.size(); at += 16)
        text += "S1130000" + Image.mid(at, 16).toHex().toUpper() + "00\r\n";
    return text + S9 + "\r\n";
}

// The compile set-up with the PROM logic and dialogs on top; the board's
// answers can come in pieces, one piece per look at the link.
struct Prom : CompileFixture {
    Bytes pieces;
    PromUpload upload{*context, *link, *driver, &terminal};
    Reflasher reflasher{*context, *link, *driver, &terminal};
    QWidget frame;
    PromWindows windows{*context, *link, *driver, *report, &terminal, &frame};

    Prom()
    {
        transport.beforeCount = [this] {
            if (!pieces.isEmpty())
                transport.Inject(pieces.takeFirst());
        };
    }
    template <typename T = QLineEdit> T *Control(const char *name) const
    {
        T *control = frame.findChild<T *>(QString::fromLatin1(name));
        return control ? control : (qFatal("no control %s", name), nullptr);
    }
    // The upload dialog given a range and a file, then OK.
    frmPROMUp *Upload(const QString &start, const QString &end)
    {
        windows.ShowUpload();
        Control("txtInput(0)")->setText(start);
        Control("txtInput(1)")->setText(end);
        Control("txtInput(2)")->setText(dir.filePath(QStringLiteral("OUT")));
        Control<QPushButton>("cmdOK")->click();
        return frame.findChild<frmPROMUp *>();
    }
};

// The programmer dialog with a stand-in programmer: progress lines, then
// the exit status given ("wait": until stopped).
struct Down {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    TestClock clock;
    AppContext context{Paths(dir.path()), prompts, clock};
    frmPROMDown dialog{context};
    QString image = dir.filePath(QStringLiteral("MY PROG.MOT"));

    Down(const QString &exitStatus, PromptAnswer answer, const QByteArray &contents = Lines({"S10788000102030466", S9}))
    {
        WriteAll(image, contents);
        WriteAll(dir.filePath("p.sh"), "echo \"Device: $1\"\necho \"Writing $2 ...\"\necho 50%\n"
                                       "[ \"$3\" = wait ] && exec sleep 60\necho 100%\nexit \"$3\"\n");
        dialog.findChild<QLineEdit *>("txtFile")->setText(image);
        dialog.findChild<QLineEdit *>("txtDevice")->setText("AT28C256");
        dialog.findChild<QLineEdit *>("txtCommand")->setText(exitStatus == "missing" ? "no-such-programmer -w {file}"
                                                             : "sh " + dir.filePath("p.sh") + " {device} {file} " + exitStatus);
        prompts.answers.enqueue(answer);
    }
    QString Output() const { return dialog.findChild<QPlainTextEdit *>("txtOutput")->toPlainText(); }
    QString Status() const { return dialog.findChild<QLabel *>("lblStatus")->text(); }
};
} // namespace

class TestProm : public QObject {
    Q_OBJECT
private slots:
    void DefaultRange_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("endOfProgram");
        QTest::addColumn<QString>("range");
        QTest::newRow("4410, none known") << "4410ANS" << "" << "8800 FB80";
        QTest::newRow("4410, above the limit") << "4410Fig" << "9A00" << "8800 9A00";
        QTest::newRow("4410, at the limit") << "4410ANS" << "8800" << "8800 8800";
        QTest::newRow("4410, just below the limit") << "4410ANS" << "87FF" << "4000 87FF";
        QTest::newRow("4410, 8000 is the most negative") << "4410ANS" << "8000" << "4000 8000";
        QTest::newRow("4410, positive counts as above") << "4410ANS" << "3F20" << "8800 3F20";
        QTest::newRow("4410, fewer digits") << "4410ANS" << "3D4 " << "8800 3D4 ";
        QTest::newRow("6630, none known") << "6630Fig" << "" << "0800 8000";
        QTest::newRow("6630, at the limit") << "6630Fig" << "8000" << "8000 8000";
        QTest::newRow("6630, positive counts as above") << "6630Fig" << "7FFF" << "8000 7FFF";
    }
    void DefaultRange()
    {
        QFETCH(QString, type);
        QFETCH(QString, endOfProgram);
        const UploadRange range = DefaultUploadRange(type, endOfProgram);
        QTEST(range.start + ' ' + range.end, "range");
    }

    void Request_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("top");
        QTest::addColumn<QString>("read"); // empty: refused
        QTest::newRow("negative readings corrected") << "8800" << "FB80" << "A" << false << "8800 FB80";
        QTest::newRow("FFFF is the last byte, not -1") << "FF00" << "FFFF" << "A" << false << "FF00 FFFF";
        QTest::newRow("lower case, blanks around") << " 3c00 " << "3d00" << "A" << false << "3C00 3D00";
        QTest::newRow("end equal to start") << "4000" << "4000" << "A" << false << "";
        QTest::newRow("end below start") << "8800" << "3F20" << "A" << false << "";
        QTest::newRow("not hexadecimal") << "88G0" << "FB80" << "A" << false << "";
        QTest::newRow("five digits") << "8800" << "1FB80" << "A" << false << "";
        QTest::newRow("empty end") << "8800" << "" << "A" << false << "";
        QTest::newRow("no file") << "8800" << "FB80" << " " << false << "";
        QTest::newRow("top of memory for the command line") << "FF00" << "10000" << "A" << true << "FF00 10000";
        QTest::newRow("top of memory in the dialog") << "FF00" << "10000" << "A" << false << "";
    }
    void Request()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QString, file);
        QFETCH(bool, top);
        const UploadRequest r = ReadUploadRequest(start, end, file, top);
        QTEST(r.problem.isEmpty() ? QString::number(r.start, 16).toUpper() + ' ' + QString::number(r.end, 16).toUpper()
                                  : QString(), "read");
    }

    void CommandAndExtension_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("added");
        QTest::addColumn<QString>("swapped");
        const int srec = int(ImageFormat::SRecord), ihex = int(ImageFormat::IntelHex);
        QTest::newRow("no extension, S-records") << srec << "/W/PROG" << "/W/PROG.MOT" << "/W/PROG";
        QTest::newRow("no extension, Intel hex") << ihex << "/W/PROG" << "/W/PROG.INT" << "/W/PROG";
        QTest::newRow("a dot in the last four") << ihex << "/W/P.HX" << "/W/P.HX" << "/W/P.HX";
        QTest::newRow("a dot further back") << srec << "/W/A.B/PROG" << "/W/A.B/PROG.MOT" << "/W/A.B/PROG";
        QTest::newRow("MOT to INT") << ihex << "/W/PROG.MOT" << "/W/PROG.MOT" << "/W/PROG.INT";
        QTest::newRow("int to mot keeps the case") << srec << "/W/prog.int" << "/W/prog.int" << "/W/prog.mot";
    }
    void CommandAndExtension()
    {
        QFETCH(int, format);
        QFETCH(QString, name);
        QTEST(WithImageExtension(name, ImageFormat(format)), "added");
        QTEST(SwapImageExtension(name, ImageFormat(format)), "swapped");
        // Decimal start and length; one byte at the top of memory.
        QCOMPARE(UploadCommand(0xFFFF, 0x10000, ImageFormat(format)) + UploadCommand(0x0800, 0x8000, ImageFormat(format)),
                 format == int(ImageFormat::IntelHex) ? " 65535 1 H-RECORD 2048 30720 H-RECORD"
                                                      : " 65535 1 S-RECORD 2048 30720 S-RECORD");
    }

    // An uploaded image checked in memory from 8800 ("S" or "I"), or a
    // programmer's file whose format is told by its first record.
    void ImageCheck_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("format"); // or the file's name
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("summary");
        const QString checked = "Image checked: 2 records, 19 bytes from 8800 to 8812, checksums right";
        const QByteArray ihex = Lines({":04880000010203046A", ":00000001FF"});
        QTest::newRow("S-records with the closing line end") << Lines({S1a, S1b, S9, ""}) << "S" << 19 << checked;
        QTest::newRow("Intel hex") << Lines({":1088000000112233445566778899AABBCCDDEEFF70", ":038810004142439F", ":00000001FF"})
                                   << "I" << 19 << checked;
        QTest::newRow("header and count records pass") << Lines({"S00600004844521B", S1a, "S5030001FB", S9}) << "S" << 16
                                                       << "Image checked: 1 records, 16 bytes from 8800 to 880F, checksums right";
        QTest::newRow("wrong checksum") << Lines({S1a, "S10688104142439C", S9}) << "S" << 19
                                        << "Image check: line 2: checksum 9C, should be 9B";
        QTest::newRow("Intel checksum is the two's complement") << Lines({":038810004142439E", ":00000001FF"}) << "I" << 3
                                                                << "Image check: line 1: checksum 9E, should be 9F";
        QTest::newRow("a gap") << Lines({S1a, "S10688114142439A", S9}) << "S" << 19
                               << "Image check: line 2: address 8811, should be 8810";
        QTest::newRow("not from the start") << Lines({S1b, S9}) << "S" << 3 << "Image check: line 1: address 8810, should be 8800";
        QTest::newRow("count above the bytes") << Lines({"S10788104142439B", S9}) << "S" << 3
                                               << "Image check: line 1: 6 bytes where its count says 7";
        QTest::newRow("count below the bytes, checksum right") << Lines({S1a, "S10588104142439C", S9}) << "S" << 19
                                                                << "Image check: line 2: 6 bytes where its count says 5";
        QTest::newRow("not hexadecimal") << Lines({"S106881041424G9B"}) << "S" << 3
                                         << "Image check: line 1: not pairs of hexadecimal digits";
        QTest::newRow("the board's echo") << Lines({S1a, "\x1a ok", S9}) << "S" << 16 << "Image check: line 2: not a record";
        QTest::newRow("24-bit record") << Lines({"S2080088004142430B"}) << "S" << 3
                                       << "Image check: line 1: record type S2 is not one of a 16-bit image";
        QTest::newRow("extended address") << Lines({":020000040000FA"}) << "I" << 3
                                          << "Image check: line 1: record type 04 is not one of a 16-bit image";
        QTest::newRow("too short") << Lines({":0000"}) << "I" << 3 << "Image check: line 1: too short for a record";
        QTest::newRow("no end record") << Lines({S1a}) << "S" << 16 << "Image check: no end record";
        QTest::newRow("records after the end") << Lines({S1a, S9, S1b}) << "S" << 19
                                               << "Image check: line 3: text after the end record";
        QTest::newRow("short of the range") << Lines({S1a, S9}) << "S" << 19 << "Image check: the data end at 880F, not at 8812";
        QTest::newRow("nothing came") << QByteArray() << "I" << 16 << "Image check: no end record";
        QTest::newRow("programmer: S-records") << Lines({"S00600004844521B", "S10788000102030466", S9}) << "A.MOT" << 0 << Checked4;
        QTest::newRow("programmer: Intel hex") << ihex << "a.int" << 0 << Checked4;
        QTest::newRow("programmer: Intel hex found by its first record") << ihex << "A.HEX" << 0 << Checked4;
        QTest::newRow("programmer: Intel hex named .MOT") << ihex << "F.MOT" << 0 << "Image check: line 1: not a record";
        QTest::newRow("programmer: no data") << Lines({S9}) << "E.MOT" << 0 << "Image check: no data records";
    }
    void ImageCheck()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, format);
        QFETCH(int, length);
        QFETCH(QString, summary);
        QTemporaryDir dir;
        WriteAll(dir.filePath(format), file);
        const ProgrammerImage programmer = CheckProgrammerImage(dir.filePath(format));
        const kvr::ImageCheck check = format.size() > 1 ? programmer.check
            : CheckImage(file, format == "S" ? ImageFormat::SRecord : ImageFormat::IntelHex, 0x8800, length);
        QCOMPARE(format.size() > 1 ? programmer.Summary() : check.Summary(0x8800), summary);
        QCOMPARE(check.ok, summary.startsWith(QLatin1String("Image checked")));
    }

    void ConvertSRecord_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QByteArray>("result");
        const QByteArray bad = "Error: Bad S-record file, ", unreadable = bad + "record shorter than its count or not hexadecimal";
        QTest::newRow("header") << "S00600004844521B" << QByteArray();
        QTest::newRow("data") << "S1068800414243D7" << QByteArray("ABC");
        QTest::newRow("every byte value, lower case") << "S1050000ff00FB" << QByteArray("\xFF\x00", 2);
        QTest::newRow("wrong checksum sent as it stands") << "S106880041424300" << QByteArray("ABC");
        QTest::newRow("no checksum at all") << "S1068800414243" << QByteArray("ABC");
        QTest::newRow("count of three: no data") << "S1038800FF" << QByteArray();
        QTest::newRow("record count") << "S5030003F9" << QByteArray();
        QTest::newRow("termination") << QString(S9) << QByteArray();
        QTest::newRow("one character") << "S" << QByteArray();
        QTest::newRow("24-bit data") << "S2080088004142430B" << bad + "address is 24 bits wide";
        QTest::newRow("32-bit end") << "S70500000000FA" << bad + "termination record address is 32 bits wide";
        QTest::newRow("24-bit end") << "S804000000FB" << bad + "termination record address is 24 bits wide";
        QTest::newRow("Intel hex") << ":0300000041424377" << bad + "format unrecognised";
        QTest::newRow("leading blank") << " S1068800414243D7" << bad + "format unrecognised";
        QTest::newRow("S4") << "S4030000FC" << bad + "format unrecognised";
        QTest::newRow("shorter than its count") << "S10688004142" << unreadable;
        QTest::newRow("data not hexadecimal") << "S1068800414G43D7" << unreadable;
        QTest::newRow("count not hexadecimal") << "S1X68800414243D7" << bad + "record count is not hexadecimal";
    }
    void ConvertSRecord()
    {
        QFETCH(QString, line);
        QTEST(kvr::ConvertSRecord(line).toLatin1(), "result");
    }

    void ReadImage_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("image");
        QTest::addColumn<QString>("error");
        const QString bad = "Error: Bad S-record file, ";
        QTest::newRow("records joined in file order, addresses ignored")
            << Lines({"S00600004844521B", "S1059000414200", "S1058800434400", "S5030002FA", "", S9}) << QByteArray("ABCD") << "";
        QTest::newRow("LF and CR line ends") << QByteArray("S1050000414200\nS1050000434400\rS9030000FC") << QByteArray("ABCD") << "";
        QTest::newRow("S2 refused whatever came before") << Lines({"S1050000414200", "S2080088004142430B"}) << QByteArray()
                                                         << bad + "address is 24 bits wide";
        // The limit is 65,536 bytes: 4,096 full records, then one byte more.
        const QByteArray full = QByteArray("S1130000" + QByteArray(32, 'A') + "00\r\n").repeated(4096);
        QTest::newRow("65,536 bytes fill the limit") << full << QByteArray(65536, '\xAA') << "";
        QTest::newRow("65,537 bytes are refused") << full + "S1040000AA00\r\n" << QByteArray() << bad + "image larger than 65536 bytes";
        QTest::newRow("no data at all") << Lines({"S0030000FC", S9}) << QByteArray() << bad + "no data records";
    }
    void ReadImage()
    {
        QFETCH(QByteArray, file);
        QTemporaryDir dir;
        WriteAll(dir.filePath("IMAGE.MOT"), file);
        const SRecordImage read = ReadSRecordImage(dir.filePath("IMAGE.MOT"));
        QTEST(read.error, "error");
        if (read.error.isEmpty())
            QTEST(read.image, "image");
    }

    // What follows "REFLASH": the length, the bytes with the 61st sent again
    // at the end and a line feed in its place, the sum modulo 65536; each
    // byte no sooner than the wire carries it.
    void PayloadAndPace_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<double>("baud");
        QTest::addColumn<double>("wireUs");
        QTest::newRow("one byte") << 1 << 38400.0 << 260.4;
        QTest::newRow("sixty bytes: no 61st") << 60 << 300.0 << 33333.3;
        QTest::newRow("sixty-one bytes") << 61 << 0.0 << 1041.7; // no rate set: 9600
        QTest::newRow("a whole flash") << 0x7380 << 9600.0 << 1041.7;
    }
    void PayloadAndPace()
    {
        QFETCH(int, size);
        QFETCH(double, baud);
        QFETCH(double, wireUs);
        QByteArray image(size, '\0');
        for (int i = 0; i < size; ++i)
            image[i] = char(255 - i % 251);
        const ReflashPayload payload = MakeReflashPayload(image);
        QByteArray body = image;
        if (size > 60)
            (body[60] = '\n', body += image[60]);
        quint32 sum = 0;
        for (const char c : body)
            sum += quint8(c);
        QCOMPARE(payload.lengthLine + payload.sumLine, QByteArray::number(size) + '\r' + QByteArray::number(sum % 65536) + '\r');
        QCOMPARE(payload.body, body);
        const double us = ImageBytePauseNs(baud) / 1000.0;
        QVERIFY2(us >= wireUs && us <= wireUs * 1.12, qPrintable(QString::number(us)));
    }

    // The upload's collection loop: the echo dropped, lines written as they
    // end, 16 bytes counted per line, the end at Ctrl-Z or the time-out.
    void Collection_data()
    {
        QTest::addColumn<Bytes>("pieces");
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("addresses");
        QTest::addColumn<bool>("endSeen");
        const QByteArray command = " 34816 48 S-RECORD", a = S1a + "\r\n", b = S1b + "\r\n", end = S9 + "\r\n";
        const QStringList three{"8800", "8810", "8820"};
        QTest::newRow("echo dropped, Ctrl-Z at once after the last line")
            << Bytes{command + ' ' + a + b + end + "\x1a ok\r\n"} << a + b + end + "\r\n" << three << true;
        // An empty read lets the loop take a line before the next piece.
        QTest::newRow("a record split across reads, Ctrl-Z alone later")
            << Bytes{command.left(12), command.mid(12) + " S11388", a.mid(6, 10), a.mid(16) + b, "", end, "", "\x1a"}
            << a + b + end << QStringList{"8800", "8810", "8820", "8830"} << true;
        QTest::newRow("leading blanks removed, the rest as received")
            << Bytes{"RECORD   S1 odd  \r\n\t x\r\n" + end + "\x1a"} << "S1 odd  \r\n\t x\r\n" + end + "\r\n" << three << true;
        QTest::newRow("16 per line whatever its length") << Bytes{"RECORD S1\r\n", a, ":00000001FF\r\n\x1a"}
                                                         << "S1\r\n" + a + ":00000001FF\r\n\r\n" << three << true;
        QTest::newRow("no data: the time-out ends it") << Bytes{} << QByteArray() << QStringList{"8800"} << false;
        QTest::newRow("no Ctrl-Z: what arrived is kept") << Bytes{"RECORD " + a} << a << QStringList{"8800", "8810"} << false;
    }
    void Collection()
    {
        QFETCH(Bytes, pieces);
        QFETCH(QByteArray, file);
        Prom f;
        f.board.replies[" 34816 48 S-RECORD"] = QByteArray();
        f.board.onLine = [&](const QByteArray &line) { f.pieces = line == " 34816 48 S-RECORD" ? pieces : f.pieces; };
        QSignalSpy addresses(&f.upload, &PromUpload::AddressShown);
        QSignalSpy texts(&f.upload, &PromUpload::ProgressText);
        const UploadOutcome outcome = f.upload.Run(0x8800, 0x8830, f.dir.filePath("OUT"), ImageFormat::SRecord);
        QCOMPARE(outcome.fileName, f.dir.filePath("OUT.MOT"));
        QCOMPARE(ReadAll(outcome.fileName), file);
        QStringList shown;
        for (const QList<QVariant> &signal : addresses)
            shown.append(signal.first().toString());
        QTEST(shown, "addresses");
        QTEST(outcome.collect.endSeen, "endSeen");
        QCOMPARE(texts.last().first().toString() == QLatin1String("Please wait ..."), file.endsWith("\r\n\r\n"));
        // Whatever happened, the program is taken off the board last.
        QCOMPARE(f.transport.lines.last(), Forget2);
        QCOMPARE(f.terminal.timerStates.last(), true);
    }

    // Set-up lines, the upload program, the end question, the command and
    // the forget line of the board type.
    void DialogueWithTheBoard_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("srec");
        QTest::addColumn<Bytes>("setup");
        QTest::addColumn<QByteArray>("forget");
        const Bytes setup4410{": JOB ; DIS", "$FD12 $FD14 !"};
        QTest::newRow("4410ANS, S-records") << "4410ANS" << true << setup4410 << Forget2;
        QTest::newRow("4410Fig, Intel hex") << "4410Fig" << false << setup4410 << Forget4;
        QTest::newRow("6630Fig") << "6630Fig" << true << Bytes{": JOB ; DIS"} << Forget4;
    }
    void DialogueWithTheBoard()
    {
        QFETCH(QString, type);
        QFETCH(bool, srec);
        QFETCH(Bytes, setup);
        QFETCH(QByteArray, forget);
        Prom f;
        f.context->settings.computerType = type;
        f.context->settings.delay6630 = QStringLiteral("0");
        f.driver->State().endOfProgramAddress = QStringLiteral("3F20");
        const QByteArray command = srec ? " 2048 16 S-RECORD" : " 2048 16 H-RECORD";
        f.board.replies[command] = command + " S1030800F4\r\n\x1a";
        f.upload.Run(0x0800, 0x0810, f.dir.filePath("OUT"), srec ? ImageFormat::SRecord : ImageFormat::IntelHex);
        const Bytes lines = f.transport.lines;
        QCOMPARE(lines.mid(0, setup.size()), setup);
        QVERIFY(lines.contains(srec ? ": S-RECORD ( a n -- )" : ": H-RECORD ( a n -- )") || lines.join().contains(srec ? ": S-RECORD " : ": H-RECORD "));
        QCOMPARE(lines.mid(lines.size() - 3), (Bytes{"BASE @ HEX HERE U. BASE !", command, forget}));
        QVERIFY(f.report->Lines().last().endsWith(srec ? "PROGMOT.KVR - FINISHED at 1A2B" : "PROGINT.KVR - FINISHED at 1A2B"));
        QCOMPARE(f.driver->State().endOfProgramAddress, QStringLiteral("3F20"));
    }

    void UploadRefused()
    {
        Prom f;
        for (const char *board : {"KVR4410/", "KVR6630/"})
            QFile::remove(f.paths->ProgramFolder() + board + "PROGINT.KVR");
        QCOMPARE(f.upload.Run(0x0800, 0x0810, f.dir.filePath("OUT"), ImageFormat::IntelHex).end, UploadEnd::ProgramMissing);
        QCOMPARE(f.prompts.MessageTexts(), QStringList{"Can't open file PROGINT.KVR"});
        QVERIFY(f.transport.sent.isEmpty());
        // A file that cannot be written: no command, but the program goes again.
        QCOMPARE(f.upload.Run(0x0800, 0x0810, f.dir.filePath("NO/SUCH/OUT"), ImageFormat::SRecord).end,
                 UploadEnd::FileNotWritten);
        QVERIFY(f.prompts.MessageTexts().last().startsWith(QLatin1String("Error: ")));
        QVERIFY(!f.transport.lines.contains(" 2048 16 S-RECORD"));
        QCOMPARE(f.transport.lines.last(), Forget2);
    }

    // After "REFLASH" exactly the payload, then the board's verdict.
    void ReflashVerdict_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("end");
        QTest::addColumn<bool>("verified");
        QTest::newRow("written") << QByteArray("\r\nREFLASH OK 80 BYTES\r\n ok\r\n") << int(ReflashEnd::Verdict) << true;
        QTest::newRow("refused check") << QByteArray("\r\nREFLASH FAILED: THE SUMS DO NOT AGREE\r\n ok\r\n")
                                       << int(ReflashEnd::Verdict) << false;
        QTest::newRow("silence") << QByteArray() << int(ReflashEnd::NoVerdict) << false;
    }
    void ReflashVerdict()
    {
        QFETCH(QByteArray, answer);
        Prom f;
        WriteAll(f.dir.filePath("NEW.MOT"), ImageFile());
        const ReflashPayload payload = MakeReflashPayload(Image);
        bool receiving = false;
        f.board.onLine = [&](const QByteArray &line) { receiving = receiving || line == "REFLASH"; };
        f.transport.SetResponder([&](const QByteArray &line) {
            return !receiving ? f.board(line) : f.transport.sent.endsWith(payload.sumLine) ? answer : QByteArray();
        });
        QSignalSpy verdicts(&f.reflasher, &Reflasher::VerdictShown);
        QSignalSpy blocks(&f.reflasher, &Reflasher::ProgressStep);
        f.prompts.fileNames.enqueue(f.dir.filePath("NEW.MOT"));
        const ReflashOutcome outcome = f.reflasher.Reflash();
        QCOMPARE(f.prompts.shown.first().caption, QStringLiteral("PROM programmer file to download to KVR4410F"));
        QCOMPARE(f.transport.lines.first(), QByteArray("COLD"));
        QVERIFY(f.transport.lines.contains(": REFLASH ( -- )"));
        QCOMPARE(f.transport.sent.mid(f.transport.sent.indexOf("REFLASH\r") + 8), payload.lengthLine + payload.body + payload.sumLine);
        QCOMPARE(blocks.size(), 5);
        QTEST(int(outcome.end), "end");
        QTEST(outcome.verified, "verified");
        QCOMPARE(verdicts.size(), 1);
        QCOMPARE(outcome.verdict.toLatin1(), answer.mid(2, answer.indexOf('\r', 2) - 2));
        QCOMPARE(f.terminal.timerStates.last(), true);
    }

    // Nothing of the image goes when the receiver or the file is at fault.
    void ReflashStopsEarly_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("end");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("receiver missing") << "receiver" << int(ReflashEnd::ReceiverMissing)
                                          << QStringList{"Can't open file #REFLASH.KVR", "Cannot find file #Reflash.kvr"};
        QTest::newRow("receiver does not compile") << "HEX" << int(ReflashEnd::CompileFailed) << QStringList{};
        QTest::newRow("32-bit record after good ones") << "S30900008800414243" << int(ReflashEnd::BadFile)
                                                       << QStringList{"Error: Bad S-record file, address is 32 bits wide"};
    }
    void ReflashStopsEarly()
    {
        QFETCH(QString, fault);
        QFETCH(QStringList, messages);
        Prom f;
        const QString file = f.dir.filePath("NEW.MOT");
        WriteAll(file, ImageFile() + (fault.startsWith('S') ? fault.toLatin1() + "\r\n" : QByteArray()));
        if (fault == "receiver")
            QFile::remove(f.paths->ProgramFolder() + "KVR4410/#REFLASH.KVR");
        if (fault == "HEX")
            f.board.replies["HEX"] = "HEX HEX ?  - undefined word\r\n";
        QTEST(int(f.reflasher.ReflashFile(file).end), "end");
        QCOMPARE(f.prompts.MessageTexts(), messages);
        QVERIFY(!f.transport.lines.contains("REFLASH"));
        QCOMPARE(f.transport.sent.isEmpty(), fault == "receiver");
        QVERIFY(messages.isEmpty() || f.prompts.shown.last().icon == PromptIcon::Exclamation);
    }

    void UploadDialog()
    {
        Prom f;
        f.context->settings.currentFile = QStringLiteral("/W/PROG.KVR");
        f.driver->State().endOfProgramAddress = QStringLiteral("3F20");
        f.report->AddReportLine(QStringLiteral("old"));
        f.windows.ShowUpload();
        auto *dialog = f.frame.findChild<frmPROMUp *>(QStringLiteral("frmPROMUp"));
        QVERIFY(dialog && dialog->isVisible() && f.report->Lines().isEmpty());
        QCOMPARE(f.Control("txtInput(0)")->text() + ' ' + f.Control("txtInput(1)")->text(), QStringLiteral("8800 3F20"));
        QCOMPARE(f.Control("txtInput(2)")->text(), QStringLiteral("/W/PROG.MOT"));
        f.Control<QRadioButton>("optFormat(0)")->setChecked(true);
        QCOMPARE(f.Control("txtInput(2)")->text(), QStringLiteral("/W/PROG.INT"));
        QCOMPARE(dialog->Format(), ImageFormat::IntelHex);
        for (const char *name : {"lblProgress", "txtProgress", "lblWait", "lblComplete", "CmdComplete"})
            QVERIFY2(f.Control<QWidget>(name)->isHidden(), name);
        // An empty range is refused with the dialog left open.
        f.Upload("8800", "8800");
        QCOMPARE(f.prompts.MessageTexts(), QStringList{"The end address must be above the start address."});
        QVERIFY(f.transport.sent.isEmpty() && dialog->isVisible());
    }

    void UploadInTheDialog()
    {
        Prom f;
        const QByteArray command = " 2048 16 S-RECORD";
        f.board.replies[command] = command + " S1130800000102030405060708090A0B0C0D0E0F6C\r\nS9030000FC\r\n\x1a";
        frmPROMUp *dialog = f.Upload("0800", "0810");
        QCOMPARE(f.Control("txtInput(2)")->text(), f.dir.filePath("OUT.MOT"));
        QCOMPARE(f.Control("txtProgress")->text(), QStringLiteral("Please wait ..."));
        QVERIFY(f.Control<QWidget>("lblComplete")->isVisible() && f.Control<QWidget>("lblProgress")->isHidden());
        QCOMPARE(f.Control<QLabel>("lblCheck")->text(),
                 QStringLiteral("Image checked: 1 records, 16 bytes from 0800 to 080F, checksums right"));
        f.Control<QPushButton>("CmdComplete")->click();
        QVERIFY(!dialog->isVisible());
    }

    void DialogsRefusedOrCancelled()
    {
        Prom f;
        f.windows.ShowReflash();
        f.Control<QPushButton>("cmdProceed")->click(); // the file dialog is cancelled
        QCOMPARE(f.prompts.shown.last().caption, QStringLiteral("PROM programmer file to download to KVR4410F"));
        QVERIFY(f.transport.sent.isEmpty() && !f.Control<QPushButton>("cmdOK")->isEnabled());
        f.Control<QPushButton>("cmdCancel")->click();
        QVERIFY(!f.frame.findChild<frmReFlash *>()->isVisible());
        // Neither dialog in terminal mode, and the report stays.
        Prom t;
        t.context->settings.computerType = QStringLiteral("Terminal");
        t.report->AddReportLine(QStringLiteral("kept"));
        t.windows.ShowUpload();
        t.windows.ShowReflash();
        QVERIFY(t.prompts.MessageTexts().first().endsWith(
            "is in Terminal emulator, not development mode. Select computer using interactive window options menu."));
        QCOMPARE(t.report->Lines(), QStringList{"kept"});
        QVERIFY(!t.frame.findChild<frmPROMUp *>() && !t.frame.findChild<frmReFlash *>());
    }

    // Download to programmer: the command, its blank-holding name quoted,
    // runs only when confirmed; its output and how it ended are shown.
    void Programmer_data()
    {
        QTest::addColumn<QString>("exitStatus");
        QTest::addColumn<QString>("status");
        QTest::addColumn<QStringList>("messages"); // after the question
        QTest::newRow("programmer succeeds") << "0" << "Programmer finished: exit status 0." << QStringList{};
        QTest::newRow("programmer fails") << "1" << "Programmer failed: exit status 1."
                                          << QStringList{"Programmer failed: exit status 1."};
        QTest::newRow("programmer missing") << "missing" << "Programmer could not be started: " << QStringList{};
    }
    void Programmer()
    {
        QFETCH(QString, exitStatus);
        QFETCH(QString, status);
        QFETCH(QStringList, messages);
        Down d(exitStatus, PromptAnswer::Ok);
        QVERIFY(d.dialog.Run());
        QCOMPARE(d.prompts.shown.first().icon, PromptIcon::Question);
        QVERIFY2(d.prompts.shown.first().text.contains(" \"" + d.image + "\""), qPrintable(d.prompts.shown.first().text));
        QTRY_VERIFY2(d.Status().startsWith(status), qPrintable(d.Status()));
        QCOMPARE(d.prompts.MessageTexts().mid(1).mid(0, messages.size()), messages);
        if (exitStatus != "missing")
            QVERIFY2(d.Output().contains("Device: AT28C256\nWriting " + d.image + " ...\n50%\n100%"), qPrintable(d.Output()));
        QCOMPARE(d.dialog.findChild<QLabel *>("lblCheck")->text(), Checked4);
        QVERIFY(d.dialog.findChild<QPushButton *>("cmdRun")->isEnabled());
        // What was confirmed is kept for the next time.
        QCOMPARE(d.context.settings.programmerCommand, d.dialog.findChild<QLineEdit *>("txtCommand")->text());
        QCOMPARE(d.context.settings.programmerDevice, QStringLiteral("AT28C256"));
    }

    void ProgrammerNotRunOrStopped()
    {
        Down cancelled("0", PromptAnswer::Cancel);
        QVERIFY(!cancelled.dialog.Run() && !cancelled.dialog.Download().IsRunning());
        QCOMPARE(cancelled.Output() + cancelled.context.settings.programmerCommand, QString());
        // A bad image: told why, no question asked.
        Down bad("0", PromptAnswer::Ok, Lines({"S10788000102030467", S9}));
        QVERIFY(!bad.dialog.Run());
        QCOMPARE(bad.prompts.shown.size(), 1);
        QCOMPARE(bad.prompts.shown.first().icon, PromptIcon::Exclamation);
        QVERIFY(bad.prompts.shown.first().text.endsWith("Image check: line 1: checksum 67, should be 66"));
        QCOMPARE(bad.Output(), QString());
        // Cancel stops a running programmer; the dialog stays to show how it ended.
        Down d("wait", PromptAnswer::Ok);
        QVERIFY(d.dialog.Run());
        QTRY_VERIFY(d.Output().contains("50%"));
        auto *cancel = d.dialog.findChild<QPushButton *>("cmdCancel");
        d.dialog.show();
        QTest::mouseClick(cancel, Qt::LeftButton);
        QTRY_COMPARE(d.Status(), QStringLiteral("Programmer stopped: cancelled."));
        QVERIFY(!d.dialog.Download().IsRunning() && d.dialog.isVisible());
        QCOMPARE(cancel->text(), QStringLiteral("Close"));
    }
};

QTEST_MAIN(TestProm)
#include "tst_prom.moc"
