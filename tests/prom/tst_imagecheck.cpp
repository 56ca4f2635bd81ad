// The check of an uploaded image: records, checksums, contiguous addresses
// from the start, the end record last.
#include "prom/ImageCheck.h"
#include <QtTest>

using namespace kvr;

namespace {

QByteArray Lines(const QList<QByteArray> &lines)
{
    return lines.join("\r\n") + "\r\n";
}

} // namespace

class TestImageCheck : public QObject {
    Q_OBJECT
private slots:
    void check_data();
    void check();
};

void TestImageCheck::check_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("summary");
    const int srec = int(ImageFormat::SRecord);
    const int ihex = int(ImageFormat::IntelHex);
    // 16 bytes at 8800 and 3 at 8810, both formats.
    const QByteArray s1a = "S113880000112233445566778899AABBCCDDEEFF6C";
    const QByteArray s1b = "S10688104142439B";
    const QByteArray i1a = ":1088000000112233445566778899AABBCCDDEEFF70";
    const QByteArray i1b = ":038810004142439F";
    QTest::newRow("S-records as the board sends them, with the closing line end")
        << Lines({s1a, s1b, "S9030000FC", ""}) << srec << 19
        << "Image checked: 2 records, 19 bytes from 8800 to 8812, checksums right";
    QTest::newRow("Intel hex") << Lines({i1a, i1b, ":00000001FF"}) << ihex << 19
                               << "Image checked: 2 records, 19 bytes from 8800 to 8812, checksums right";
    QTest::newRow("header and count records pass") << Lines({"S00600004844521B", s1a, "S5030001FB", "S9030000FC"})
                                                   << srec << 16
                                                   << "Image checked: 1 records, 16 bytes from 8800 to 880F, checksums right";
    QTest::newRow("wrong checksum") << Lines({s1a, "S10688104142439C", "S9030000FC"}) << srec << 19
                                    << "Image check: line 2: checksum 9C, should be 9B";
    QTest::newRow("Intel checksum is the two's complement")
        << Lines({":038810004142439E", ":00000001FF"}) << ihex << 3
        << "Image check: line 1: checksum 9E, should be 9F";
    QTest::newRow("a gap") << Lines({s1a, "S10688114142439A", "S9030000FC"}) << srec << 19
                           << "Image check: line 2: address 8811, should be 8810";
    QTest::newRow("not from the start") << Lines({s1b, "S9030000FC"}) << srec << 3
                                        << "Image check: line 1: address 8810, should be 8800";
    QTest::newRow("count disagrees") << Lines({"S10788104142439B", "S9030000FC"}) << srec << 3
                                     << "Image check: line 1: 6 bytes where its count says 7";
    QTest::newRow("not hexadecimal") << Lines({"S106881041424G9B"}) << srec << 3
                                     << "Image check: line 1: not pairs of hexadecimal digits";
    QTest::newRow("the board's echo") << Lines({s1a, "\x1a ok", "S9030000FC"}) << srec << 16
                                      << "Image check: line 2: not a record";
    QTest::newRow("24-bit record") << Lines({"S2080088004142430B"}) << srec << 3
                                   << "Image check: line 1: record type S2 is not one of a 16-bit image";
    QTest::newRow("extended address") << Lines({":020000040000FA"}) << ihex << 3
                                      << "Image check: line 1: record type 04 is not one of a 16-bit image";
    QTest::newRow("too short") << Lines({":0000"}) << ihex << 3 << "Image check: line 1: too short for a record";
    QTest::newRow("no end record") << Lines({s1a}) << srec << 16 << "Image check: no end record";
    QTest::newRow("records after the end") << Lines({s1a, "S9030000FC", s1b}) << srec << 19
                                           << "Image check: line 3: text after the end record";
    QTest::newRow("short of the range") << Lines({s1a, "S9030000FC"}) << srec << 19
                                        << "Image check: the data end at 880F, not at 8812";
    QTest::newRow("nothing came") << QByteArray() << ihex << 16 << "Image check: no end record";
}

void TestImageCheck::check()
{
    QFETCH(QByteArray, file);
    QFETCH(int, format);
    QFETCH(int, length);
    QFETCH(QString, summary);
    const ImageCheck check = CheckImage(file, ImageFormat(format), 0x8800, length);
    QCOMPARE(check.Summary(0x8800), summary);
    QCOMPARE(check.ok, summary.startsWith(QLatin1String("Image checked")));
}

QTEST_APPLESS_MAIN(TestImageCheck)
#include "tst_imagecheck.moc"
