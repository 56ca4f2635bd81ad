// The whole windowed program, assembled as kvr-pc assembles it, against the
// simulated board: start-up greeting, then F8 in the first editor window.
#include "BoardRunner.h"
#include "TempDir.h"
#include "app/ScriptedPrompts.h"
#include "app/StartUp.h"
#include "app/ui/frmMDI.h"
#include "pc/MainAssembly.h"
#include <QAction>
#include <QListWidget>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace kvr;

class TestAssembly : public QObject {
    Q_OBJECT

private slots:
    void greetsTheBoardThenCompilesWithF8_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("delay");
        QTest::newRow("ANS, paced characters") << "4410ANS" << "200";
        QTest::newRow("Fig 6630") << "6630Fig" << "0";
    }
    void greetsTheBoardThenCompilesWithF8()
    {
        QFETCH(QString, type);
        QFETCH(QString, delay);
        test::BoardRunner board;
        QVERIFY2(board.Start({"--type", type, "--port", "0", "--no-heartbeat"}), qPrintable(board.Failure()));

        QTemporaryDir dir;
        const QString source = dir.filePath(QStringLiteral("Demo.kvr"));
        test::WriteAll(source, "\\ demo\r\nDECIMAL\r\n: SQ  DUP * ;\r\n: CUBE  DUP SQ * ;\r\n3 CUBE DROP\r\n");
        test::WriteAll(dir.filePath(QStringLiteral("settings/KVR-PC.INI")),
                       "[Parameters]\r\nKVR computer type=" + type.toLatin1()
                           + "\r\nIntercharacter delay - KVR4410=" + delay.toLatin1()
                           + "\r\nIntercharacter delay - KVR6630=" + delay.toLatin1() + "\r\nTimeout=5000\r\n");

        ScriptedPrompts prompts;
        SystemClock clock;
        AppContext context(Paths(dir.filePath(QStringLiteral("settings"))), prompts, clock);
        PcCommandLine commandLine;
        commandLine.simulatorHost = QStringLiteral("127.0.0.1");
        commandLine.simulatorPort = QString::number(board.Port());
        commandLine.file = source;
        QCOMPARE(StartUp(context, {source, commandLine.simulatorHost, commandLine.simulatorPort}),
                 StartUpResult::Continue);

        frmMDI frame(context);
        MainAssembly assembly(context, frame, commandLine);
        frame.show();
        assembly.Start();
        QCOMPARE(prompts.MessageTexts(),
                 QStringList{QStringLiteral("Connected to IP address 127.0.0.1, port ") + commandLine.simulatorPort});
        QVERIFY(frame.windowTitle().endsWith(QStringLiteral(" - connected")));

        // F9 is Continue compile's alone, in every menu of the program.
        QStringList onF9;
        for (const QAction *action : frame.findChildren<QAction *>())
            if (action->shortcuts().contains(QKeySequence(Qt::Key_F9)))
                onF9.append(action->objectName());
        QCOMPARE(onF9, QStringList{QStringLiteral("mnuCContinue")});

        QAction *compile = frame.findChild<QAction *>(QStringLiteral("mnuCThisWindow"));
        QVERIFY(compile);
        compile->trigger();

        // Every reply belongs to its own line: the board's end address is
        // read from the reply to the last command, not from a stale one.
        auto *list = frame.findChild<QListWidget *>(QStringLiteral("List1"));
        QVERIFY(list && list->count() > 0);
        const QString last = list->item(list->count() - 1)->text();
        QVERIFY2(QRegularExpression(QStringLiteral("DEMO\\.KVR - FINISHED at [0-9A-F]{4}$")).match(last).hasMatch(),
                 qPrintable(last));
        QCOMPARE(context.compileOutcome, CompileOutcome::Running);
        QCOMPARE(prompts.MessageTexts().size(), 1);
        frame.SetCloseGuard({});
    }
};

QTEST_MAIN(TestAssembly)
#include "tst_assembly.moc"
