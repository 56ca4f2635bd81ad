// A PROM upload on the in-memory board: what is sent, in which order, and
// how the collection loop turns the board's output into the image file.
#include "PromFixture.h"
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

namespace {
const QByteArray Command = " 34816 48 S-RECORD";
const QByteArray S1a = "S113880000112233445566778899AABBCCDDEEFF6C\r\n";
const QByteArray S1b = "S10688104142439B\r\n";
const QByteArray S9 = "S9030000FC\r\n";
} // namespace

class TestPromUpload : public QObject {
    Q_OBJECT
private slots:
    void collection_data();
    void collection();
    void dialogueWithTheBoard_data();
    void dialogueWithTheBoard();
    void programMissing();
    void imageFileNotWritable();
};

void TestPromUpload::collection_data()
{
    QTest::addColumn<QList<QByteArray>>("pieces");
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<bool>("endSeen");
    const QStringList three{"8800", "8810", "8820"};
    QTest::newRow("echo dropped, Ctrl-Z at once after the last line")
        << QList<QByteArray>{Command + ' ' + S1a + S1b + S9 + "\x1a ok\r\n"} << S1a + S1b + S9 + "\r\n" << three << true;
    // An empty read lets the loop take a line before the next piece.
    QTest::newRow("a record split across reads, Ctrl-Z alone later")
        << QList<QByteArray>{Command.left(12), Command.mid(12) + " S11388", S1a.mid(6, 10), S1a.mid(16) + S1b, "", S9,
                             "", "\x1a"}
        << S1a + S1b + S9 << QStringList{"8800", "8810", "8820", "8830"} << true;
    QTest::newRow("leading blanks removed, the rest as received")
        << QList<QByteArray>{"RECORD   S1 odd  \r\n\t x\r\n" + S9 + "\x1a"} << "S1 odd  \r\n\t x\r\n" + S9 + "\r\n"
        << three << true;
    QTest::newRow("16 per line whatever its length")
        << QList<QByteArray>{"RECORD S1\r\n", S1a, ":00000001FF\r\n\x1a"} << "S1\r\n" + S1a + ":00000001FF\r\n\r\n"
        << three << true;
    QTest::newRow("no data: the time-out ends it") << QList<QByteArray>{} << QByteArray() << QStringList{"8800"} << false;
    QTest::newRow("no Ctrl-Z: what arrived is kept") << QList<QByteArray>{"RECORD " + S1a} << S1a
                                                     << QStringList{"8800", "8810"} << false;
}

void TestPromUpload::collection()
{
    QFETCH(QList<QByteArray>, pieces);
    QFETCH(QByteArray, file);
    PromFixture f;
    f.board.replies[Command] = QByteArray();
    f.board.onLine = [&](const QByteArray &line) {
        if (line == Command)
            f.pieces = pieces;
    };
    QSignalSpy addresses(&f.upload, &PromUpload::AddressShown);
    QSignalSpy texts(&f.upload, &PromUpload::ProgressText);
    const QString name = f.dir.filePath(QStringLiteral("OUT"));
    const UploadOutcome outcome = f.upload.Run(0x8800, 0x8830, name, ImageFormat::SRecord);

    QCOMPARE(outcome.fileName, name + QStringLiteral(".MOT"));
    QCOMPARE(ReadAll(outcome.fileName), file);
    QStringList shown;
    for (const QList<QVariant> &signal : addresses)
        shown.append(signal.first().toString());
    QTEST(shown, "addresses");
    QTEST(outcome.collect.endSeen, "endSeen");
    QCOMPARE(texts.last().first().toString() == QLatin1String("Please wait ..."), file.endsWith("\r\n\r\n"));
    // Whatever happened, the program is taken off the board last.
    QCOMPARE(f.transport.lines.last(), QByteArray("' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !"));
    QCOMPARE(f.terminal.timerStates.last(), true);
}

void TestPromUpload::dialogueWithTheBoard_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("format");
    QTest::addColumn<QByteArrayList>("setup");
    QTest::addColumn<QByteArray>("command");
    QTest::addColumn<QByteArray>("forget");
    QTest::newRow("4410ANS, S-records") << "4410ANS" << int(ImageFormat::SRecord)
                                        << QByteArrayList{": JOB ; DIS", "$FD12 $FD14 !"} << QByteArray(" 2048 16 S-RECORD")
                                        << QByteArray("' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !");
    QTest::newRow("4410Fig, Intel hex") << "4410Fig" << int(ImageFormat::IntelHex)
                                        << QByteArrayList{": JOB ; DIS", "$FD12 $FD14 !"} << QByteArray(" 2048 16 H-RECORD")
                                        << QByteArray("' JOB 4 - DUP @ CONTEXT @ ! 4 - DP !");
    QTest::newRow("6630Fig") << "6630Fig" << int(ImageFormat::SRecord) << QByteArrayList{": JOB ; DIS"}
                             << QByteArray(" 2048 16 S-RECORD") << QByteArray("' JOB 4 - DUP @ CONTEXT @ ! 4 - DP !");
}

void TestPromUpload::dialogueWithTheBoard()
{
    QFETCH(QString, type);
    QFETCH(int, format);
    QFETCH(QByteArrayList, setup);
    QFETCH(QByteArray, command);
    QFETCH(QByteArray, forget);
    PromFixture f;
    f.context->settings.computerType = type;
    f.context->settings.delay6630 = QStringLiteral("0");
    f.driver->State().endOfProgramAddress = QStringLiteral("3F20");
    f.board.replies[command] = command + " S1030800F4\r\n\x1a";
    f.upload.Run(0x0800, 0x0810, f.dir.filePath(QStringLiteral("OUT")), ImageFormat(format));

    const QString program = ImageFormat(format) == ImageFormat::SRecord ? "PROGMOT.KVR" : "PROGINT.KVR";
    const QList<QByteArray> lines = f.transport.lines;
    QCOMPARE(lines.mid(0, setup.size()), QList<QByteArray>(setup));
    // The program's own lines, its end question, the command, the forget line.
    QVERIFY(lines.size() > setup.size() + 4);
    const QByteArray word = ImageFormat(format) == ImageFormat::SRecord ? ": S-RECORD " : ": H-RECORD ";
    QVERIFY(std::any_of(lines.begin(), lines.end(), [&](const QByteArray &l) { return l.startsWith(word); }));
    QCOMPARE(lines.mid(lines.size() - 3),
             (QList<QByteArray>{"BASE @ HEX HERE U. BASE !", command, forget}));
    QVERIFY(f.report->Lines().last().endsWith(program + QStringLiteral(" - FINISHED at 1A2B")));
    QCOMPARE(f.driver->State().endOfProgramAddress, QStringLiteral("3F20"));
}

void TestPromUpload::programMissing()
{
    PromFixture f;
    f.RemoveShipped(QStringLiteral("PROGINT.KVR"));
    const UploadOutcome outcome = f.upload.Run(0x0800, 0x0810, f.dir.filePath(QStringLiteral("OUT")),
                                               ImageFormat::IntelHex);
    QCOMPARE(outcome.end, UploadEnd::ProgramMissing);
    QCOMPARE(f.prompts.MessageTexts(), QStringList{"Can't open file PROGINT.KVR"});
    QVERIFY(f.transport.sent.isEmpty());
}

void TestPromUpload::imageFileNotWritable()
{
    PromFixture f;
    const UploadOutcome outcome =
        f.upload.Run(0x0800, 0x0810, f.dir.filePath(QStringLiteral("NO/SUCH/OUT")), ImageFormat::SRecord);
    QCOMPARE(outcome.end, UploadEnd::FileNotWritten);
    QVERIFY(f.prompts.MessageTexts().last().startsWith(QLatin1String("Error: ")));
    QVERIFY(!f.transport.lines.contains(" 2048 16 S-RECORD"));
    QCOMPARE(f.transport.lines.last(), QByteArray("' JOB 2 - DUP @ CONTEXT @ ! 4 - DP !"));
}

QTEST_MAIN(TestPromUpload)
#include "tst_promupload.moc"
