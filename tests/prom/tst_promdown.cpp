// Download to programmer: the image is checked before anything runs, the
// command runs only when confirmed, and a stand-in programmer's output,
// success, failure and cancelling show in the dialog.
#include "TempDir.h"
#include "TestClock.h"
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "prom/ProgrammerDownload.h"
#include "prom/ui/frmPROMDown.h"
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

namespace {
// Four bytes at 8800, checksums right, and the end record.
const QByteArray GoodMot = "S00600004844521B\r\nS10788000102030466\r\nS9030000FC\r\n";
const QByteArray GoodInt = ":04880000010203046A\r\n:00000001FF\r\n";
}

class TestPromDown : public QObject {
    Q_OBJECT

    struct Dialog {
        QTemporaryDir dir;
        ScriptedPrompts prompts;
        TestClock clock;
        AppContext context{Paths(dir.path()), prompts, clock};
        frmPROMDown dialog{context};
        QString image;
        // A stand-in programmer: progress lines, then the exit status given.
        QString Programmer(const QString &exitStatus)
        {
            const QString script = dir.filePath("programmer.sh");
            test::WriteAll(script, "echo \"Device: $1\"\necho \"Writing $2 ...\"\necho \"50%\"\n"
                                   "[ \"$3\" = wait ] && exec sleep 60\necho \"100%\"\nexit \"$3\"\n");
            return "sh " + script + " {device} {file} " + exitStatus;
        }
        void Set(const QByteArray &contents, const QString &name, const QString &command)
        {
            image = dir.filePath(name);
            test::WriteAll(image, contents);
            dialog.findChild<QLineEdit *>("txtFile")->setText(image);
            dialog.findChild<QLineEdit *>("txtDevice")->setText("AT28C256");
            dialog.findChild<QLineEdit *>("txtCommand")->setText(command);
        }
        QString Output() const { return dialog.findChild<QPlainTextEdit *>("txtOutput")->toPlainText(); }
        QString Status() const { return dialog.findChild<QLabel *>("lblStatus")->text(); }
    };

private slots:
    void ImageCheck_data();
    void ImageCheck();
    void ProgrammerOutcome_data();
    void ProgrammerOutcome();
    void NothingRunsUntilConfirmed();
    void BadImageIsNotSent();
    void CancelStopsTheProgrammer();
    void ProgrammerMissing();
};

void TestPromDown::ImageCheck_data()
{
    QTest::addColumn<QByteArray>("contents");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("summary");
    QTest::newRow("S-records") << GoodMot << "A.MOT" << true
                               << "Image checked: 1 records, 4 bytes from 8800 to 8803, checksums right";
    QTest::newRow("Intel hex") << GoodInt << "a.int" << true
                               << "Image checked: 1 records, 4 bytes from 8800 to 8803, checksums right";
    QTest::newRow("Intel hex found by its first record") << GoodInt << "A.HEX" << true
                                                         << "Image checked: 1 records, 4 bytes from 8800 to 8803, "
                                                            "checksums right";
    QTest::newRow("wrong checksum") << QByteArray("S10788000102030467\r\nS9030000FC\r\n") << "B.MOT" << false
                                    << "Image check: line 1: checksum 67, should be 66";
    QTest::newRow("gap between records")
        << QByteArray("S10788000102030466\r\nS107880501020304" "61\r\nS9030000FC\r\n") << "C.MOT" << false
        << "Image check: line 2: address 8805, should be 8804";
    QTest::newRow("no end record") << QByteArray("S10788000102030466\r\n") << "D.MOT" << false
                                   << "Image check: no end record";
    QTest::newRow("no data") << QByteArray("S9030000FC\r\n") << "E.MOT" << false << "Image check: no data records";
    QTest::newRow("Intel hex named .MOT") << GoodInt << "F.MOT" << false << "Image check: line 1: not a record";
}

void TestPromDown::ImageCheck()
{
    QFETCH(QByteArray, contents);
    QFETCH(QString, name);
    QFETCH(bool, ok);
    QFETCH(QString, summary);
    QTemporaryDir dir;
    test::WriteAll(dir.filePath(name), contents);
    const ProgrammerImage image = CheckProgrammerImage(dir.filePath(name));
    QCOMPARE(image.check.ok, ok);
    QCOMPARE(image.Summary(), summary);
}

void TestPromDown::ProgrammerOutcome_data()
{
    QTest::addColumn<QString>("exitStatus");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("programmer succeeds") << "0" << "Programmer finished: exit status 0." << QStringList{};
    QTest::newRow("programmer fails") << "1" << "Programmer failed: exit status 1."
                                      << QStringList{"Programmer failed: exit status 1."};
}

void TestPromDown::ProgrammerOutcome()
{
    QFETCH(QString, exitStatus);
    QFETCH(QString, status);
    QFETCH(QStringList, messages);
    Dialog d;
    const QString command = d.Programmer(exitStatus);
    d.Set(GoodMot, "MY PROG.MOT", command);
    d.prompts.answers.enqueue(PromptAnswer::Ok);
    QVERIFY(d.dialog.Run());
    // The command was shown in full, the blank in the name quoted.
    QCOMPARE(d.prompts.shown.first().icon, PromptIcon::Question);
    QVERIFY2(d.prompts.shown.first().text.endsWith("AT28C256 \"" + d.image + "\" " + exitStatus),
             qPrintable(d.prompts.shown.first().text));
    QTRY_COMPARE(d.Status(), status);
    QVERIFY2(d.Output().contains("Device: AT28C256\nWriting " + d.image + " ...\n50%\n100%"), qPrintable(d.Output()));
    QCOMPARE(d.prompts.MessageTexts().mid(1), messages);
    QCOMPARE(d.dialog.findChild<QLabel *>("lblCheck")->text(),
             "Image checked: 1 records, 4 bytes from 8800 to 8803, checksums right");
    QVERIFY(d.dialog.findChild<QPushButton *>("cmdRun")->isEnabled());
    // What was confirmed is kept for the next time.
    QCOMPARE(d.context.settings.programmerCommand, command);
    QCOMPARE(d.context.settings.programmerDevice, QStringLiteral("AT28C256"));
}

void TestPromDown::NothingRunsUntilConfirmed()
{
    Dialog d;
    d.Set(GoodMot, "A.MOT", d.Programmer("0"));
    d.prompts.answers.enqueue(PromptAnswer::Cancel);
    QVERIFY(!d.dialog.Run());
    QVERIFY(!d.dialog.Download().IsRunning());
    QCOMPARE(d.Output(), QString());
    QCOMPARE(d.context.settings.programmerCommand, QString());
}

void TestPromDown::BadImageIsNotSent()
{
    Dialog d;
    d.Set("S10788000102030467\r\nS9030000FC\r\n", "BAD.MOT", d.Programmer("0"));
    QVERIFY(!d.dialog.Run());
    QCOMPARE(d.prompts.shown.size(), 1); // no confirmation was asked
    QCOMPARE(d.prompts.shown.first().icon, PromptIcon::Exclamation);
    QVERIFY(d.prompts.shown.first().text.endsWith("Image check: line 1: checksum 67, should be 66"));
    QCOMPARE(d.Output(), QString());
}

void TestPromDown::CancelStopsTheProgrammer()
{
    Dialog d;
    d.Set(GoodMot, "A.MOT", d.Programmer("wait"));
    d.prompts.answers.enqueue(PromptAnswer::Ok);
    QVERIFY(d.dialog.Run());
    QTRY_VERIFY(d.Output().contains("50%"));
    auto *cancel = d.dialog.findChild<QPushButton *>("cmdCancel");
    QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
    d.dialog.show();
    QTest::mouseClick(cancel, Qt::LeftButton);
    QTRY_COMPARE(d.Status(), QStringLiteral("Programmer stopped: cancelled."));
    QVERIFY(!d.dialog.Download().IsRunning());
    QVERIFY(d.dialog.isVisible()); // it stays to show how it ended
    QCOMPARE(cancel->text(), QStringLiteral("Close"));
}

void TestPromDown::ProgrammerMissing()
{
    Dialog d;
    d.Set(GoodMot, "A.MOT", "no-such-programmer-here -w {file}");
    d.prompts.answers.enqueue(PromptAnswer::Ok);
    QVERIFY(d.dialog.Run());
    QTRY_VERIFY(d.Status().startsWith("Programmer could not be started: "));
    QVERIFY(d.dialog.findChild<QPushButton *>("cmdRun")->isEnabled());
}

QTEST_MAIN(TestPromDown)
#include "tst_promdown.moc"
