// Reading an S-record file for the re-flash, and what follows "REFLASH".
#include "TempDir.h"
#include "prom/Reflash.h"
#include "prom/SRecord.h"
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

class TestSRecord : public QObject {
    Q_OBJECT
private slots:
    void convert_data();
    void convert();
    void image_data();
    void image();
    void payload_data();
    void payload();
    void pace_data();
    void pace();
};

void TestSRecord::convert_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QByteArray>("result");
    const QByteArray bad = "Error: Bad S-record file, ";
    QTest::newRow("header") << "S00600004844521B" << QByteArray();
    QTest::newRow("data") << "S1068800414243D7" << QByteArray("ABC");
    QTest::newRow("every byte value") << "S1050000FF00FB" << QByteArray("\xFF\x00", 2);
    QTest::newRow("lower-case digits") << "S1050000ff0aFB" << QByteArray("\xFF\x0A", 2);
    QTest::newRow("wrong checksum sent as it stands") << "S106880041424300" << QByteArray("ABC");
    QTest::newRow("no checksum at all") << "S1068800414243" << QByteArray("ABC");
    QTest::newRow("count of three: no data") << "S1038800FF" << QByteArray();
    QTest::newRow("record count") << "S5030003F9" << QByteArray();
    QTest::newRow("termination") << "S9030000FC" << QByteArray();
    QTest::newRow("empty line") << "" << QByteArray();
    QTest::newRow("one character") << "S" << QByteArray();
    QTest::newRow("24-bit data") << "S2080088004142430B" << bad + "address is 24 bits wide";
    QTest::newRow("32-bit data") << "S30900008800414243" << bad + "address is 32 bits wide";
    QTest::newRow("32-bit end") << "S70500000000FA" << bad + "termination record address is 32 bits wide";
    QTest::newRow("24-bit end") << "S804000000FB" << bad + "termination record address is 24 bits wide";
    QTest::newRow("Intel hex") << ":0300000041424377" << bad + "format unrecognised";
    QTest::newRow("lower-case type") << "s1068800414243D7" << bad + "format unrecognised";
    QTest::newRow("leading blank") << " S1068800414243D7" << bad + "format unrecognised";
    QTest::newRow("S4") << "S4030000FC" << bad + "format unrecognised";
    QTest::newRow("shorter than its count") << "S10688004142" << bad + "record shorter than its count or not hexadecimal";
    QTest::newRow("data not hexadecimal") << "S1068800414G43D7" << bad + "record shorter than its count or not hexadecimal";
    QTest::newRow("count not hexadecimal") << "S1X68800414243D7" << bad + "record count is not hexadecimal";
}

void TestSRecord::convert()
{
    QFETCH(QString, line);
    QFETCH(QByteArray, result);
    const QString converted = ConvertSRecord(line);
    if (result.startsWith("Error"))
        QCOMPARE(converted, QString::fromLatin1(result));
    else
        QCOMPARE(converted.toLatin1(), result);
}

void TestSRecord::image_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("error");
    QTest::newRow("records joined in file order, addresses ignored")
        << QByteArray("S00600004844521B\r\nS1059000414200\r\nS1058800434400\r\nS5030002FA\r\n\r\nS9030000FC\r\n")
        << QByteArray("ABCD") << QString();
    QTest::newRow("LF and CR line ends") << QByteArray("S1050000414200\nS1050000434400\rS9030000FC")
                                         << QByteArray("ABCD") << QString();
    QTest::newRow("S2 refused whatever came before")
        << QByteArray("S1050000414200\r\nS2080088004142430B\r\n") << QByteArray()
        << "Error: Bad S-record file, address is 24 bits wide";
    // The limit is 65,536 bytes: 4,096 full records, then one byte more.
    QByteArray full;
    for (int i = 0; i < 4096; ++i)
        full += "S1130000" + QByteArray(32, 'A') + "00\r\n";
    QTest::newRow("65,536 bytes fill the limit") << full << QByteArray(65536, '\xAA') << QString();
    QTest::newRow("65,537 bytes are refused") << full + "S1040000AA00\r\n" << QByteArray()
                                              << "Error: Bad S-record file, image larger than 65536 bytes";
    QTest::newRow("no data at all") << QByteArray("S0030000FC\r\nS9030000FC\r\n") << QByteArray()
                                    << "Error: Bad S-record file, no data records";
}

void TestSRecord::image()
{
    QFETCH(QByteArray, file);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("IMAGE.MOT"));
    test::WriteAll(path, file);
    const SRecordImage read = ReadSRecordImage(path);
    QTEST(read.error, "error");
    if (read.error.isEmpty())
        QTEST(read.image, "image");
}

void TestSRecord::payload_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("savedSent");
    QTest::newRow("one byte") << 1 << false;
    QTest::newRow("sixty bytes: no 61st") << 60 << false;
    QTest::newRow("sixty-one bytes") << 61 << true;
    QTest::newRow("a whole flash") << 0x7380 << true;
}

void TestSRecord::payload()
{
    QFETCH(int, size);
    QFETCH(bool, savedSent);
    QByteArray image(size, '\0');
    for (int i = 0; i < size; ++i)
        image[i] = char(255 - i % 251);
    const ReflashPayload payload = MakeReflashPayload(image);
    QCOMPARE(payload.lengthLine, QByteArray::number(size) + '\r');
    QByteArray expected = image;
    if (savedSent) {
        expected[60] = '\n';
        expected += image[60];
    }
    QCOMPARE(payload.body, expected);
    quint32 sum = 0;
    for (const char c : expected)
        sum += quint8(c);
    QCOMPARE(payload.sumLine, QByteArray::number(sum % 65536) + '\r');
}

void TestSRecord::pace_data()
{
    QTest::addColumn<double>("baud");
    QTest::addColumn<double>("wireUs");
    QTest::newRow("38400") << 38400.0 << 260.4;
    QTest::newRow("9600") << 9600.0 << 1041.7;
    QTest::newRow("300") << 300.0 << 33333.3;
    QTest::newRow("no rate set: 9600") << 0.0 << 1041.7;
}

void TestSRecord::pace()
{
    QFETCH(double, baud);
    QFETCH(double, wireUs);
    // Never sooner than the wire can carry a character, and not much later.
    const double us = ImageBytePauseNs(baud) / 1000.0;
    QVERIFY2(us >= wireUs && us <= wireUs * 1.12, qPrintable(QString::number(us)));
}

QTEST_APPLESS_MAIN(TestSRecord)
#include "tst_srecord.moc"
