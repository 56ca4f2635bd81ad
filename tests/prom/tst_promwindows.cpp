// The PROMs dialogs over the in-memory board: what the menu items refuse,
// the controls' first values, the format option, cmdOK's refusal and a
// whole upload seen in the dialog.
#include "PromFixture.h"
#include "prom/ui/PromWindows.h"
#include "prom/ui/frmPROMUp.h"
#include "prom/ui/frmReFlash.h"
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>

using namespace kvr;
using namespace kvr::test;

namespace {

struct WindowFixture : PromFixture {
    QWidget frame;
    PromWindows windows{*context, *link, *driver, *report, &terminal, &frame};

    template <typename T> T *Control(QWidget *dialog, const char *name)
    {
        T *control = dialog->findChild<T *>(QString::fromLatin1(name));
        if (!control)
            qWarning("no control %s", name);
        return control;
    }
};

} // namespace

class TestPromWindows : public QObject {
    Q_OBJECT
private slots:
    void uploadRefusedInTerminalMode();
    void uploadDialogFirstValues();
    void okRefusesAnEmptyRange();
    void wholeUploadInTheDialog();
    void reflashDialogCancelled();
};

void TestPromWindows::uploadRefusedInTerminalMode()
{
    WindowFixture f;
    f.context->settings.computerType = QStringLiteral("Terminal");
    f.report->AddReportLine(QStringLiteral("kept"));
    f.windows.ShowUpload();
    QVERIFY(f.prompts.MessageTexts().first().endsWith(QLatin1String("is in Terminal emulator, not development mode. "
                                                                    "Select computer using interactive window options menu.")));
    QCOMPARE(f.report->Lines(), QStringList{"kept"});
    QVERIFY(!f.frame.findChild<frmPROMUp *>());
    f.windows.ShowReflash();
    QVERIFY(!f.frame.findChild<frmReFlash *>());
}

void TestPromWindows::uploadDialogFirstValues()
{
    WindowFixture f;
    f.context->settings.currentFile = QStringLiteral("/W/PROG.KVR");
    f.driver->State().endOfProgramAddress = QStringLiteral("3F20");
    f.report->AddReportLine(QStringLiteral("old"));
    f.windows.ShowUpload();
    auto *dialog = f.frame.findChild<frmPROMUp *>(QStringLiteral("frmPROMUp"));
    QVERIFY(dialog && dialog->isVisible());
    QVERIFY(f.report->Lines().isEmpty());
    QCOMPARE(f.Control<QLineEdit>(dialog, "txtInput(0)")->text(), QStringLiteral("8800"));
    QCOMPARE(f.Control<QLineEdit>(dialog, "txtInput(1)")->text(), QStringLiteral("3F20"));
    QLineEdit *file = f.Control<QLineEdit>(dialog, "txtInput(2)");
    QCOMPARE(file->text(), QStringLiteral("/W/PROG.MOT"));
    f.Control<QRadioButton>(dialog, "optFormat(0)")->setChecked(true);
    QCOMPARE(file->text(), QStringLiteral("/W/PROG.INT"));
    QCOMPARE(dialog->Format(), ImageFormat::IntelHex);
    for (const char *name : {"lblProgress", "txtProgress", "lblWait", "lblComplete", "CmdComplete"})
        QVERIFY2(f.Control<QWidget>(dialog, name)->isHidden(), name);
    QSignalSpy help(dialog, &frmPROMUp::HelpRequested);
    QTest::keyClick(file, Qt::Key_F1);
    QCOMPARE(help.value(0).value(0).toString(), QStringLiteral("promfileupload"));
}

void TestPromWindows::okRefusesAnEmptyRange()
{
    WindowFixture f;
    f.windows.ShowUpload();
    auto *dialog = f.frame.findChild<frmPROMUp *>();
    f.Control<QLineEdit>(dialog, "txtInput(0)")->setText(QStringLiteral("8800"));
    f.Control<QLineEdit>(dialog, "txtInput(1)")->setText(QStringLiteral("8800"));
    f.Control<QLineEdit>(dialog, "txtInput(2)")->setText(f.dir.filePath(QStringLiteral("OUT")));
    f.Control<QPushButton>(dialog, "cmdOK")->click();
    QCOMPARE(f.prompts.MessageTexts(), QStringList{"The end address must be above the start address."});
    QVERIFY(f.transport.sent.isEmpty());
    QVERIFY(dialog->isVisible());
}

void TestPromWindows::wholeUploadInTheDialog()
{
    WindowFixture f;
    const QByteArray command = " 2048 16 S-RECORD";
    f.board.replies[command] = command + " S1130800000102030405060708090A0B0C0D0E0F6C\r\nS9030000FC\r\n\x1a";
    f.windows.ShowUpload();
    auto *dialog = f.frame.findChild<frmPROMUp *>();
    f.Control<QLineEdit>(dialog, "txtInput(0)")->setText(QStringLiteral("0800"));
    f.Control<QLineEdit>(dialog, "txtInput(1)")->setText(QStringLiteral("0810"));
    f.Control<QLineEdit>(dialog, "txtInput(2)")->setText(f.dir.filePath(QStringLiteral("OUT")));
    f.Control<QPushButton>(dialog, "cmdOK")->click();
    QCOMPARE(f.Control<QLineEdit>(dialog, "txtInput(2)")->text(), f.dir.filePath(QStringLiteral("OUT.MOT")));
    QCOMPARE(f.Control<QLineEdit>(dialog, "txtProgress")->text(), QStringLiteral("Please wait ..."));
    QVERIFY(f.Control<QWidget>(dialog, "lblComplete")->isVisible());
    QVERIFY(f.Control<QWidget>(dialog, "CmdComplete")->isVisible());
    QVERIFY(f.Control<QWidget>(dialog, "lblProgress")->isHidden());
    QCOMPARE(f.Control<QLabel>(dialog, "lblCheck")->text(),
             QStringLiteral("Image checked: 1 records, 16 bytes from 0800 to 080F, checksums right"));
    f.Control<QPushButton>(dialog, "CmdComplete")->click();
    QVERIFY(!dialog->isVisible());
}

void TestPromWindows::reflashDialogCancelled()
{
    WindowFixture f;
    f.windows.ShowReflash();
    auto *dialog = f.frame.findChild<frmReFlash *>(QStringLiteral("frmReFlash"));
    QVERIFY(dialog);
    for (const char *name : {"cmdProceed", "cmdCancel", "cmdOK", "cmdHelp"})
        QVERIFY2(f.Control<QPushButton>(dialog, name), name);
    f.Control<QPushButton>(dialog, "cmdProceed")->click(); // the file dialog is cancelled
    QCOMPARE(f.prompts.shown.last().caption, QStringLiteral("PROM programmer file to download to KVR4410F"));
    QVERIFY(f.transport.sent.isEmpty());
    QVERIFY(!f.Control<QPushButton>(dialog, "cmdOK")->isEnabled());
    f.Control<QPushButton>(dialog, "cmdCancel")->click();
    QVERIFY(!dialog->isVisible());
}

QTEST_MAIN(TestPromWindows)
#include "tst_promwindows.moc"
