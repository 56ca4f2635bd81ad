// Our sample programs compile on the board types of their dialect, sent
// line by line as the PC's compiler sends them, and then do what they say.
#include "BoardRunner.h"
#include "WireClient.h"

#include <QtTest>

#include <QDir>
#include <QFile>

using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

QString ExamplesFolder()
{
    return qEnvironmentVariable("KVR_SOURCE_DIR") + QStringLiteral("/examples");
}

// The lines the PC sends for a file: comments and empty lines stay on the
// PC, an INCLUDE line is replaced by the included file.
QByteArrayList BoardLines(const QString &name)
{
    QFile file(QDir(ExamplesFolder()).filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return {QByteArray("MISSING-FILE-") + name.toLatin1()};
    QByteArrayList lines;
    for (QByteArray line : file.readAll().split('\n')) {
        while (line.endsWith('\r') || line.endsWith(' '))
            line.chop(1);
        if (line.trimmed().isEmpty() || line.trimmed().startsWith('\\'))
            continue;
        if (line.startsWith("INCLUDE ")) {
            QByteArray included = line.mid(8);
            const qsizetype comment = included.indexOf(" \\");
            if (comment >= 0)
                included.truncate(comment);
            lines << BoardLines(QString::fromLatin1(included.trimmed().toUpper()) + QStringLiteral(".KVR"));
        } else {
            lines << line;
        }
    }
    return lines;
}

}  // namespace

class TestBoardExamples : public QObject {
    Q_OBJECT
private slots:
    void examplesCompileAndRun_data();
    void examplesCompileAndRun();
};

void TestBoardExamples::examplesCompileAndRun_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("run");
    QTest::addColumn<QByteArray>("shows");
    for (const char *type : {"4410ANS", "4410Fig", "6630Fig"})
        QTest::addRow("HELLO on %s", type) << "HELLO.KVR" << type << QByteArray("HELLO")
                                           << QByteArray("Hello from the KVR board");
    QTest::newRow("SQUARES on 4410ANS") << "SQUARES.KVR" << "4410ANS" << QByteArray("4 SQUARES")
                                        << QByteArray("   4     16       64");
    for (const char *type : {"4410Fig", "6630Fig"}) {
        QTest::addRow("FIGLIST counts down on %s", type) << "FIGLIST.KVR" << type << QByteArray("5 COUNTDOWN")
                                                         << QByteArray("5 COUNTDOWN 5 4 3 2 1  ok");
        QTest::addRow("FIGLIST fills its array on %s", type) << "FIGLIST.KVR" << type << QByteArray("SHOW-TABLE")
                                                             << QByteArray("SHOW-TABLE 0 1 4 9 16 25 36 49 SUM 140  ok");
    }
}

void TestBoardExamples::examplesCompileAndRun()
{
    QFETCH(QString, file);
    QFETCH(QString, type);
    QFETCH(QByteArray, run);
    QFETCH(QByteArray, shows);

    BoardRunner board;
    const auto wire = board.StartConnected(type);
    QVERIFY2(wire, qPrintable(board.Failure()));
    for (const QByteArray &line : BoardLines(file)) {
        const QByteArray reply = wire->Converse(line);
        QVERIFY2(reply.endsWith(" ok") && !reply.contains("NOT UNIQUE"), reply.constData());
    }
    wire->Send(run + '\r');
    const QByteArrayList output = wire->ReadReply();
    QVERIFY2(output.contains(shows), output.join('\n').constData());
}

QTEST_GUILESS_MAIN(TestBoardExamples)
#include "tst_board_examples.moc"
