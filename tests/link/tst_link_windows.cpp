#include "LinkFixture.h"
#include "link/ui/frmEmulator.h"
#include "link/ui/frmRemote.h"
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QTcpServer>
#include <QtTest>

using namespace kvr;

class TestLinkWindows : public QObject {
    Q_OBJECT

private slots:
    void keysClipboardAndChords()
    {
        test::LinkFixture f;
        f.AnswerOk();
        f.context.settings.capsLock = QStringLiteral("OFF");
        QMdiArea area;
        auto *window = new frmEmulator(f.context, f.link);
        QMdiSubWindow *sub = area.addSubWindow(window);
        area.resize(700, 500);
        area.show();
        QVERIFY(QTest::qWaitForWindowExposed(&area));
        window->setFocus();
        QTest::keyClicks(window, QStringLiteral("2 3 + ."));
        QTest::keyClick(window, Qt::Key_Tab);
        // Ctrl+W is the board's character 23, not the sub-window's close.
        QTest::keyClick(window, Qt::Key_W, Qt::ControlModifier);
        QCOMPARE(f.board.sent, QByteArray("2 3 + .\x17"));
        QVERIFY(sub->isVisible());
        // Nothing is echoed locally: the board's own echo is what shows.
        QCOMPARE(window->Logic().Screen().ScreenText(), QString());
        f.board.Inject("HELLO WORLD\r\n");
        QTRY_COMPARE(window->Logic().Screen().Text(0), QStringLiteral("HELLO WORLD"));
        // Any bytes at all, NULs and a cursor sent up past the top, paint.
        QByteArray bytes;
        for (int code = 0; code < 256 * 50; ++code)
            bytes += char((code * 7 + code / 256) & 0xFF);
        window->Logic().ShowBytes(bytes + QByteArray(5000, '\0') + QByteArray(300, '\x1e'));
        const ScreenModel &screen = window->Logic().Screen();
        QVERIFY(screen.Row() >= 0 && screen.Row() < screen.Rows() && screen.Column() <= ScreenModel::LineLength);
        QVERIFY(!window->grab().isNull());
        // A hidden terminal takes no keys.
        sub->hide();
        f.board.sent.clear();
        QTest::keyClick(window, Qt::Key_A);
        QCOMPARE(f.board.sent, QByteArray());
    }

    void remoteDialog()
    {
        test::LinkFixture f;
        f.context.settings.remoteIp = QStringLiteral("010.0.0.1");
        f.context.settings.computerType = QStringLiteral("Terminal"); // no start-up line
        frmEmulator terminal(f.context, f.link);
        terminal.Controller().Tcp().SetHeartbeatPort(0);
        frmRemote dialog(f.context, terminal.Controller());
        QCOMPARE(dialog.findChild<QLineEdit *>(QStringLiteral("txtIP"))->text(), QStringLiteral("10.0.0.1"));
        auto *port = dialog.findChild<QLineEdit *>(QStringLiteral("txtPort"));
        QCOMPARE(port->text(), QStringLiteral("4000"));
        dialog.findChild<QPushButton *>(QStringLiteral("cmdDefault"))->click();
        QTcpServer gateway;
        QVERIFY(gateway.listen(QHostAddress::LocalHost, 0));
        port->setText(QString::number(gateway.serverPort()));
        dialog.show();
        dialog.findChild<QPushButton *>(QStringLiteral("cmdConnect"))->click();
        QVERIFY(terminal.Controller().IsTcpConnected());
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(f.context.settings.remoteIp, QStringLiteral("127.0.0.1"));
        QCOMPARE(f.context.settings.remotePort, port->text());
        // A refused connection keeps the dialog open with its status line.
        gateway.close();
        dialog.setResult(0);
        dialog.show();
        dialog.findChild<QPushButton *>(QStringLiteral("cmdConnect"))->click();
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.findChild<QLabel *>(QStringLiteral("lblStatus"))->text(),
                 QStringLiteral("Remote KVR computer - not connected"));
    }
};

QTEST_MAIN(TestLinkWindows)
#include "tst_link_windows.moc"
