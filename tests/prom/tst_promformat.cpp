// The rules of the upload dialog: default addresses, typed addresses, the
// command text, the image file's extension and the forget line.
#include "prom/PromFormat.h"
#include <QtTest>

using namespace kvr;

class TestPromFormat : public QObject {
    Q_OBJECT
private slots:
    void defaultRange_data();
    void defaultRange();
    void request_data();
    void request();
    void command_data();
    void command();
    void extension_data();
    void extension();
    void forgetLine_data();
    void forgetLine();
};

void TestPromFormat::defaultRange_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("endOfProgram");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    QTest::newRow("4410, none known") << "4410ANS" << "" << "8800" << "FB80";
    QTest::newRow("4410, above the limit") << "4410Fig" << "9A00" << "8800" << "9A00";
    QTest::newRow("4410, at the limit") << "4410ANS" << "8800" << "8800" << "8800";
    QTest::newRow("4410, just below the limit") << "4410ANS" << "87FF" << "4000" << "87FF";
    QTest::newRow("4410, 8000 is the most negative") << "4410ANS" << "8000" << "4000" << "8000";
    QTest::newRow("4410, positive counts as above") << "4410ANS" << "3F20" << "8800" << "3F20";
    QTest::newRow("4410, fewer digits") << "4410ANS" << "3D4 " << "8800" << "3D4 ";
    QTest::newRow("6630, none known") << "6630Fig" << "" << "0800" << "8000";
    QTest::newRow("6630, at the limit") << "6630Fig" << "8000" << "8000" << "8000";
    QTest::newRow("6630, positive counts as above") << "6630Fig" << "7FFF" << "8000" << "7FFF";
    QTest::newRow("6630, high address") << "6630Fig" << "C123" << "8000" << "C123";
}

void TestPromFormat::defaultRange()
{
    QFETCH(QString, type);
    QFETCH(QString, endOfProgram);
    const UploadRange range = DefaultUploadRange(type, endOfProgram);
    QTEST(range.start, "start");
    QTEST(range.end, "end");
}

void TestPromFormat::request_data()
{
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("top");
    QTest::addColumn<int>("startValue"); // -1: refused
    QTest::addColumn<int>("endValue");
    QTest::newRow("negative readings corrected") << "8800" << "FB80" << "A" << false << 0x8800 << 0xFB80;
    QTest::newRow("lower case, blanks around") << " 3c00 " << "3d00" << "A" << false << 0x3C00 << 0x3D00;
    QTest::newRow("end equal to start") << "4000" << "4000" << "A" << false << -1 << 0;
    QTest::newRow("end below start") << "8800" << "3F20" << "A" << false << -1 << 0;
    QTest::newRow("not hexadecimal") << "88G0" << "FB80" << "A" << false << -1 << 0;
    QTest::newRow("five digits") << "8800" << "1FB80" << "A" << false << -1 << 0;
    QTest::newRow("empty end") << "8800" << "" << "A" << false << -1 << 0;
    QTest::newRow("no file") << "8800" << "FB80" << " " << false << -1 << 0;
    QTest::newRow("top of memory for the command line") << "FF00" << "10000" << "A" << true << 0xFF00 << 0x10000;
    QTest::newRow("top of memory in the dialog") << "FF00" << "10000" << "A" << false << -1 << 0;
}

void TestPromFormat::request()
{
    QFETCH(QString, start);
    QFETCH(QString, end);
    QFETCH(QString, file);
    QFETCH(bool, top);
    QFETCH(int, startValue);
    QFETCH(int, endValue);
    const UploadRequest request = ReadUploadRequest(start, end, file, top);
    QCOMPARE(request.problem.isEmpty(), startValue >= 0);
    if (startValue >= 0) {
        QCOMPARE(request.start, startValue);
        QCOMPARE(request.end, endValue);
    }
}

void TestPromFormat::command_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("end");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("text");
    QTest::newRow("default 4410 range") << 0x8800 << 0xFB80 << int(ImageFormat::SRecord) << " 34816 29568 S-RECORD";
    QTest::newRow("Intel hex") << 0x0800 << 0x8000 << int(ImageFormat::IntelHex) << " 2048 30720 H-RECORD";
    QTest::newRow("one byte at the top") << 0xFFFF << 0x10000 << int(ImageFormat::SRecord) << " 65535 1 S-RECORD";
}

void TestPromFormat::command()
{
    QFETCH(int, start);
    QFETCH(int, end);
    QFETCH(int, format);
    QTEST(UploadCommand(start, end, ImageFormat(format)), "text");
}

void TestPromFormat::extension_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("added");
    QTest::addColumn<QString>("swapped");
    const int srec = int(ImageFormat::SRecord);
    const int ihex = int(ImageFormat::IntelHex);
    QTest::newRow("no extension, S-records") << "/W/PROG" << srec << "/W/PROG.MOT" << "/W/PROG";
    QTest::newRow("no extension, Intel hex") << "/W/PROG" << ihex << "/W/PROG.INT" << "/W/PROG";
    QTest::newRow("a dot in the last four") << "/W/P.HX" << ihex << "/W/P.HX" << "/W/P.HX";
    QTest::newRow("a dot further back") << "/W/A.B/PROG" << srec << "/W/A.B/PROG.MOT" << "/W/A.B/PROG";
    QTest::newRow("MOT to INT") << "/W/PROG.MOT" << ihex << "/W/PROG.MOT" << "/W/PROG.INT";
    QTest::newRow("int to mot keeps the case") << "/W/prog.int" << srec << "/W/prog.int" << "/W/prog.mot";
    QTest::newRow("already the format's own") << "/W/PROG.MOT" << srec << "/W/PROG.MOT" << "/W/PROG.MOT";
}

void TestPromFormat::extension()
{
    QFETCH(QString, name);
    QFETCH(int, format);
    QTEST(WithImageExtension(name, ImageFormat(format)), "added");
    QTEST(SwapImageExtension(name, ImageFormat(format)), "swapped");
}

void TestPromFormat::forgetLine_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("line");
    QTest::newRow("4410ANS") << "4410ANS" << "' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !";
    QTest::newRow("4410Fig") << "4410Fig" << "' JOB 4 - DUP @ CONTEXT @ ! 4 - DP !";
    QTest::newRow("6630Fig") << "6630Fig" << "' JOB 4 - DUP @ CONTEXT @ ! 4 - DP !";
}

void TestPromFormat::forgetLine()
{
    QFETCH(QString, type);
    QTEST(ForgetLine(type), "line");
}

QTEST_APPLESS_MAIN(TestPromFormat)
#include "tst_promformat.moc"
