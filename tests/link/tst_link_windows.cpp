#include "LinkFixture.h"
#include "link/ui/frmEmulator.h"
#include "link/ui/frmRemote.h"
#include <QClipboard>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTcpServer>
#include <QTimer>
#include <QtTest>

using namespace kvr;

class TestLinkWindows : public QObject {
    Q_OBJECT

private slots:
    void emulatorControls()
    {
        test::LinkFixture f;
        frmEmulator window(f.context, f.link);
        QCOMPARE(window.objectName(), QStringLiteral("frmEmulator"));
        auto *timer = window.findChild<QTimer *>(QStringLiteral("ComInputTimer"));
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 50);
        QVERIFY(timer->isActive());
        window.Logic().SetInputTimerEnabled(false);
        QVERIFY(!timer->isActive());
        window.Logic().SetInputTimerEnabled(true);
        QVERIFY(timer->isActive());
        QVERIFY(window.findChild<QLabel *>(QStringLiteral("lblCompilation")));
        QCOMPARE(window.findChild<QLabel *>(QStringLiteral("lblProgress"))->text(),
                 QStringLiteral("Compilation in progress"));
    }

    void keysGoToTheBoard()
    {
        test::LinkFixture f;
        f.context.settings.capsLock = QStringLiteral("OFF");
        frmEmulator window(f.context, f.link);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QTest::keyClicks(&window, QStringLiteral("2 3 + ."));
        QTest::keyClick(&window, Qt::Key_Tab);
        QTest::keyClick(&window, Qt::Key_Return);
        QCOMPARE(f.board.sent, QByteArray("2 3 + .\r"));
        // Nothing is echoed locally: the board's own echo is what shows.
        QCOMPARE(window.Logic().Screen().ScreenText(), QString());
        f.board.Inject("2 3 + . 5  ok\r\n");
        QTRY_COMPARE(window.Logic().Screen().Text(0), QStringLiteral("2 3 + . 5  ok"));
    }

    void clipboardAndChordsInTheWindow()
    {
        test::LinkFixture f;
        f.AnswerOk();
        QMdiArea area;
        auto *window = new frmEmulator(f.context, f.link);
        QMdiSubWindow *sub = area.addSubWindow(window);
        area.resize(700, 500);
        area.show();
        QVERIFY(QTest::qWaitForWindowExposed(&area));
        window->setFocus();
        // Ctrl+W is the board's character 23, not the sub-window's close.
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(f.board.sent, QByteArray("\x17"));
        QVERIFY(sub->isVisible());

        f.board.Inject("HELLO WORLD\r\n");
        QTRY_COMPARE(window->Logic().Screen().Text(0), QStringLiteral("HELLO WORLD"));
        // Dragging over the first line selects it; trailing blanks are left out.
        QTest::mousePress(window, Qt::LeftButton, {}, QPoint(1, 2));
        QMouseEvent move(QEvent::MouseMove, QPointF(window->width() - 40, 2), window->mapToGlobal(QPointF(0, 0)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window, &move);
        QCOMPARE(window->SelectedText(), QStringLiteral("HELLO WORLD"));
        QTest::keyClick(window, Qt::Key_Insert, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("HELLO WORLD"));

        QGuiApplication::clipboard()->setText(QStringLiteral("1 2 +\n."));
        f.board.sent.clear();
        QTest::keyClick(window, Qt::Key_Insert, Qt::ShiftModifier);
        QCOMPARE(f.board.sent, QByteArray("1 2 +\r."));

        // A hidden terminal takes no keys.
        sub->hide();
        f.board.sent.clear();
        QTest::keyClick(window, Qt::Key_A);
        QCOMPARE(f.board.sent, QByteArray());
    }

    void paintsInEmulatorColours()
    {
        test::LinkFixture f;
        f.context.settings.SetColor(ColorWindow::Emulator, false, QColor(0, 0, 128));
        f.context.settings.SetColor(ColorWindow::Emulator, true, QColor(255, 255, 0));
        frmEmulator window(f.context, f.link);
        window.resize(400, 300);
        window.show();
        window.Logic().ShowBytes(QByteArray(40, '#') + "\r\n" + QByteArray(40, '#'));
        const QImage image = window.grab().toImage();
        QCOMPARE(image.pixelColor(image.width() - 30, image.height() - 5), QColor(0, 0, 128));
        int foreground = 0;
        for (int x = 0; x < 200; ++x)
            for (int y = 0; y < 30; ++y)
                foreground += image.pixelColor(x, y).red() > 128; // anti-aliased yellow
        QVERIFY(foreground > 50);
        // The wrap column follows the window's width.
        const int columns = window.Logic().Screen().VisibleColumns();
        window.resize(800, 300);
        QVERIFY(window.Logic().Screen().VisibleColumns() > columns);
    }

    void paintsAnyBytes()
    {
        // Every byte value, NULs and a cursor sent up past the top: the
        // window paints without failing and keeps its colours.
        test::LinkFixture f;
        f.context.settings.quiet = QStringLiteral("ON");
        f.context.settings.SetColor(ColorWindow::Emulator, false, QColor(0, 0, 128));
        frmEmulator window(f.context, f.link);
        window.resize(300, 200);
        window.show();
        QByteArray bytes;
        for (int round = 0; round < 200; ++round)
            for (int code = 0; code < 256; ++code)
                bytes += char((code * 7 + round) & 0xFF);
        bytes += QByteArray(5000, '\0') + QByteArray(300, '\x1e');
        f.board.Inject(bytes);
        window.Logic().ShowReceived();
        const QImage image = window.grab().toImage();
        int background = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width() / 2; ++x)
                background += image.pixelColor(x, y) == QColor(0, 0, 128);
        QVERIFY(background > 0);
        QCOMPARE(f.link.BytesAvailable(), 0);
    }

    void scrollBackPaging()
    {
        test::LinkFixture f;
        frmEmulator window(f.context, f.link);
        window.resize(400, 300);
        window.show();
        QByteArray text;
        for (int i = 0; i < 300; ++i)
            text += "line " + QByteArray::number(i) + "\r\n";
        window.Logic().ShowBytes(text);
        auto *bar = window.findChild<QScrollBar *>(QStringLiteral("vsbScrollBack"));
        QVERIFY(bar->maximum() > 0);
        QCOMPARE(bar->value(), bar->maximum());
        QTest::keyClick(&window, Qt::Key_PageUp, Qt::ShiftModifier);
        const int paged = bar->value();
        QVERIFY(paged < bar->maximum());
        QVERIFY(f.board.sent.isEmpty()); // paging is not sent to the board
        // New output does not pull a reader away from the scroll-back...
        window.Logic().ShowBytes("more\r\n");
        QCOMPARE(bar->value(), paged);
        // ...until they page back to the bottom.
        QTest::keyClick(&window, Qt::Key_PageDown, Qt::ShiftModifier);
        QTest::keyClick(&window, Qt::Key_PageDown, Qt::ShiftModifier);
        QCOMPARE(bar->value(), bar->maximum());
        window.Logic().ShowBytes("last\r\n");
        QCOMPARE(bar->value(), bar->maximum());
    }

    void progressLabelsCentred()
    {
        test::LinkFixture f;
        frmEmulator window(f.context, f.link);
        window.resize(600, 400);
        window.show();
        TerminalHost &host = window.Logic();
        host.SetProgressVisible(true);
        host.SetProgressText(QString(3, QChar(127)));
        auto *bar = window.findChild<QLabel *>(QStringLiteral("lblCompilation"));
        auto *caption = window.findChild<QLabel *>(QStringLiteral("lblProgress"));
        QVERIFY(bar->isVisible() && caption->isVisible());
        QCOMPARE(bar->text(), QString(3, QChar(0x2588)));
        QCOMPARE(host.ProgressText(), QString(3, QChar(127)));
        QVERIFY(host.ProgressCapacity() > 3);
        QVERIFY(qAbs(bar->geometry().center().y() - window.height() / 2) <= 1);
        QCOMPARE(caption->geometry().bottom() + 1, bar->geometry().top());
        host.SetProgressVisible(false);
        QVERIFY(!bar->isVisible());
    }

    void closingHidesTheTerminal()
    {
        test::LinkFixture f;
        QPointer<frmEmulator> window = new frmEmulator(f.context, f.link);
        window->show();
        QVERIFY(!window->close());
        QVERIFY(window);
        QVERIFY(!window->isVisible());
        delete window;
    }

    void remoteDialog()
    {
        test::LinkFixture f;
        f.clock.stepPerReading = 10;
        f.context.settings.remoteIp = QStringLiteral("010.0.0.1");
        frmEmulator terminal(f.context, f.link);
        terminal.Controller().Tcp().SetHeartbeatPort(0);
        frmRemote dialog(f.context, terminal.Controller());
        auto *ip = dialog.findChild<QLineEdit *>(QStringLiteral("txtIP"));
        auto *port = dialog.findChild<QLineEdit *>(QStringLiteral("txtPort"));
        QCOMPARE(ip->text(), QStringLiteral("10.0.0.1"));
        QCOMPARE(port->text(), QStringLiteral("4000"));
        for (const char *name : {"cmdConnect", "cmdDisconnect", "cmdDefault", "cmdCancel"})
            QVERIFY2(dialog.findChild<QPushButton *>(QString::fromLatin1(name)), name);
        dialog.findChild<QPushButton *>(QStringLiteral("cmdDefault"))->click();
        QCOMPARE(ip->text(), QStringLiteral("127.0.0.1"));
        QCOMPARE(port->text(), QStringLiteral("4000"));

        QTcpServer gateway;
        QVERIFY(gateway.listen(QHostAddress::LocalHost, 0));
        port->setText(QString::number(gateway.serverPort()));
        f.context.settings.computerType = QStringLiteral("Terminal"); // no start-up line
        dialog.show();
        dialog.findChild<QPushButton *>(QStringLiteral("cmdConnect"))->click();
        QVERIFY(terminal.Controller().IsTcpConnected());
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(f.context.settings.commPort, QStringLiteral("COM0"));
        QCOMPARE(f.context.settings.remoteIp, QStringLiteral("127.0.0.1"));
        QCOMPARE(f.context.settings.remotePort, QString::number(gateway.serverPort()));
        dialog.findChild<QPushButton *>(QStringLiteral("cmdDisconnect"))->click();
        QVERIFY(!terminal.Controller().IsTcpConnected());

        // A refused connection keeps the dialog open with its status line;
        // Cancel closes it.
        const quint16 refused = gateway.serverPort();
        gateway.close();
        dialog.setResult(0);
        dialog.show();
        f.prompts.Clear();
        dialog.findChild<QPushButton *>(QStringLiteral("cmdConnect"))->click();
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("lblStatus"))->text(),
                 QStringLiteral("Remote KVR computer - not connected"));
        QVERIFY(f.prompts.MessageTexts().first().contains(", port " + QString::number(refused) + "."));
        dialog.findChild<QPushButton *>(QStringLiteral("cmdCancel"))->click();
        QVERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
    }
};

QTEST_MAIN(TestLinkWindows)
#include "tst_link_windows.moc"
