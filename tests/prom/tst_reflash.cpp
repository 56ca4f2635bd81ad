// A re-flash on the in-memory board: nothing sent without the receiver,
// nothing after its compile for a bad file, and for a good one exactly the
// agreed bytes after "REFLASH", then the board's verdict.
#include "PromFixture.h"
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

namespace {

// 80 bytes of many kinds, Ctrl-C among them.
QByteArray Image()
{
    QByteArray image;
    for (int i = 0; i < 80; ++i)
        image += char(i * 37 % 256);
    return image;
}

QByteArray SRecords(const QByteArray &image)
{
    QByteArray text = "S0030000FC\r\n";
    for (qsizetype at = 0; at < image.size(); at += 16) {
        const QByteArray data = image.mid(at, 16);
        text += "S1" + QByteArray::number(data.size() + 3, 16).rightJustified(2, '0').toUpper() + "0000"
                + data.toHex().toUpper() + "00\r\n"; // checksums are not looked at
    }
    return text + "S9030000FC\r\n";
}

} // namespace

class TestReflash : public QObject {
    Q_OBJECT
private slots:
    void verdict_data();
    void verdict();
    void receiverMissing();
    void badFileSendsNoImage();
    void receiverNotCompiled();
};

void TestReflash::verdict_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<int>("end");
    QTest::addColumn<bool>("verified");
    QTest::newRow("written") << QByteArray("\r\nREFLASH OK 80 BYTES\r\n ok\r\n") << int(ReflashEnd::Verdict) << true;
    QTest::newRow("refused check") << QByteArray("\r\nREFLASH FAILED: THE SUMS DO NOT AGREE\r\n ok\r\n")
                                   << int(ReflashEnd::Verdict) << false;
    QTest::newRow("silence") << QByteArray() << int(ReflashEnd::NoVerdict) << false;
}

void TestReflash::verdict()
{
    QFETCH(QByteArray, answer);
    PromFixture f;
    const QString file = f.dir.filePath(QStringLiteral("NEW.MOT"));
    WriteAll(file, SRecords(Image()));
    const ReflashPayload payload = MakeReflashPayload(Image());
    bool receiving = false;
    f.board.onLine = [&](const QByteArray &line) { receiving = receiving || line == "REFLASH"; };
    f.transport.SetResponder([&](const QByteArray &line) {
        if (!receiving)
            return f.board(line);
        return f.transport.sent.endsWith(payload.sumLine) ? answer : QByteArray();
    });
    QSignalSpy verdicts(&f.reflasher, &Reflasher::VerdictShown);
    QSignalSpy blocks(&f.reflasher, &Reflasher::ProgressStep);
    f.prompts.fileNames.enqueue(file);
    const ReflashOutcome outcome = f.reflasher.Reflash();

    QCOMPARE(f.prompts.shown.first().caption, QStringLiteral("PROM programmer file to download to KVR4410F"));
    QCOMPARE(f.transport.lines.first(), QByteArray("COLD"));
    QVERIFY(f.transport.lines.contains(": REFLASH ( -- )"));
    const QByteArray after = f.transport.sent.mid(f.transport.sent.indexOf("REFLASH\r") + 8);
    QCOMPARE(after, payload.lengthLine + payload.body + payload.sumLine);
    QCOMPARE(blocks.size(), 5);
    QTEST(int(outcome.end), "end");
    QTEST(outcome.verified, "verified");
    QCOMPARE(verdicts.size(), 1);
    if (!answer.isEmpty())
        QCOMPARE(outcome.verdict, QString::fromLatin1(answer.mid(2, answer.indexOf('\r', 2) - 2)));
    QCOMPARE(f.terminal.timerStates.last(), true);
}

void TestReflash::receiverMissing()
{
    PromFixture f;
    f.RemoveShipped(QStringLiteral("#REFLASH.KVR"));
    const QString file = f.dir.filePath(QStringLiteral("NEW.MOT"));
    WriteAll(file, SRecords(Image()));
    const ReflashOutcome outcome = f.reflasher.ReflashFile(file);
    QCOMPARE(outcome.end, ReflashEnd::ReceiverMissing);
    QCOMPARE(f.prompts.MessageTexts(), (QStringList{"Can't open file #REFLASH.KVR", "Cannot find file #Reflash.kvr"}));
    QCOMPARE(f.prompts.shown.last().icon, PromptIcon::Exclamation);
    QVERIFY(f.transport.sent.isEmpty());
}

void TestReflash::badFileSendsNoImage()
{
    PromFixture f;
    const QString file = f.dir.filePath(QStringLiteral("BAD.MOT"));
    WriteAll(file, SRecords(Image()) + "S30900008800414243\r\n");
    const ReflashOutcome outcome = f.reflasher.ReflashFile(file);
    QCOMPARE(outcome.end, ReflashEnd::BadFile);
    QCOMPARE(f.prompts.MessageTexts().last(), QStringLiteral("Error: Bad S-record file, address is 32 bits wide"));
    QCOMPARE(f.prompts.shown.last().icon, PromptIcon::Exclamation);
    // The board was emptied and given its receiver, and nothing more.
    QCOMPARE(f.transport.lines.first(), QByteArray("COLD"));
    QCOMPARE(f.transport.lines.last(), QByteArray("BASE @ HEX HERE U. BASE !"));
}

void TestReflash::receiverNotCompiled()
{
    PromFixture f;
    f.board.replies["HEX"] = "HEX HEX ?  - undefined word\r\n";
    const QString file = f.dir.filePath(QStringLiteral("NEW.MOT"));
    WriteAll(file, SRecords(Image()));
    QCOMPARE(f.reflasher.ReflashFile(file).end, ReflashEnd::CompileFailed);
    QVERIFY(!f.transport.lines.contains("REFLASH"));
}

QTEST_MAIN(TestReflash)
#include "tst_reflash.moc"
