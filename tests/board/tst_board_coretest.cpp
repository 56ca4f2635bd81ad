// gforth's own core-words test suite, fed to the board one line at a time as
// the PC's compiler would, waiting for each reply. gforth's tester assumes
// floating point, which the board does not have, so a plain tester of our
// own in core words runs the suite.
#include "BoardRunner.h"
#include "WireClient.h"

#include <QtTest>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

const QByteArrayList Tester = {
    "VARIABLE ACTUAL-DEPTH  CREATE ACTUAL-RESULTS 32 CELLS ALLOT",
    ": EMPTY-STACK  DEPTH ?DUP IF DUP 0< IF NEGATE 0 DO 0 LOOP ELSE 0 DO DROP LOOP THEN THEN ;",
    ": ERROR  TYPE SOURCE TYPE EMPTY-STACK ;",
    ": TESTING  SOURCE >IN ! DROP ;",
    ": {  EMPTY-STACK ;",
    ": ->  DEPTH DUP ACTUAL-DEPTH ! ?DUP IF 0 DO ACTUAL-RESULTS I CELLS + ! LOOP THEN ;",
    ": }  DEPTH ACTUAL-DEPTH @ = IF DEPTH ?DUP IF 0 DO ACTUAL-RESULTS I CELLS + @ <>",
    "     IF S\" INCORRECT RESULT: \" ERROR LEAVE THEN LOOP THEN",
    "     ELSE S\" WRONG NUMBER OF RESULTS: \" ERROR THEN ;"};

// The folder holding tester.fs and coretest.fs of the installed gforth.
QString SuiteFolder()
{
    QDir gforth(QStringLiteral("/usr/share/gforth"));
    for (const QString &version : gforth.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::Reversed)) {
        const QString folder = gforth.filePath(version + QStringLiteral("/test"));
        if (QFile::exists(folder + QStringLiteral("/coretest.fs")) && QFile::exists(folder + QStringLiteral("/tester.fs")))
            return folder;
    }
    return QString();
}

// Lines of a suite file, with a line that includes another file of the
// suite replaced by that file's lines (the board has no files to load).
QByteArrayList SuiteLines(const QString &folder, const QString &name)
{
    static const QRegularExpression include(QStringLiteral("^S\" \\./(\\S+)\" INCLUDED"));
    QFile file(folder + QLatin1Char('/') + name);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArrayList lines;
    for (QByteArray line : file.readAll().split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        const auto match = include.match(QString::fromLatin1(line));
        if (match.hasMatch())
            lines << SuiteLines(folder, match.captured(1));
        else
            lines << line;
    }
    return lines;
}

// What the board printed for a line: its reply without the echo of the line.
QByteArray Output(const QByteArray &line, const QByteArrayList &reply)
{
    QByteArray output = reply.value(0).mid(line.size());
    for (qsizetype i = 1; i < reply.size(); ++i)
        output += '\n' + reply.at(i);
    return output;
}

QByteArray Problem(const QByteArray &output)
{
    for (const char *marker : {" ?  - ", "INCORRECT RESULT", "WRONG NUMBER OF RESULTS"})
        if (output.contains(marker))
            return marker;
    return QByteArray();
}

}  // namespace

class TestBoardCoreTest : public QObject {
    Q_OBJECT
private slots:
    void coreWordsSuitePasses();
};

void TestBoardCoreTest::coreWordsSuitePasses()
{
    const QString folder = SuiteFolder();
    QVERIFY2(!folder.isEmpty(), "gforth's test suite (tester.fs, coretest.fs) is not installed");
    QByteArrayList suite = SuiteLines(folder, QStringLiteral("coretest.fs"));
    // gforth's own additions at the end use words beyond the core set.
    for (qsizetype i = 0; i < suite.size(); ++i)
        if (suite.at(i).contains("not restricted to core words"))
            suite.resize(i);
    const QByteArrayList lines = Tester + suite;
    QVERIFY(lines.size() > 900);

    BoardRunner board;
    QVERIFY2(board.Start({"--port", "0", "--no-heartbeat"}), qPrintable(board.Failure()));
    auto wire = WireClient::ConnectTcp(board.Port());
    QVERIFY(wire);

    int number = 0;
    for (const QByteArray &line : lines) {
        ++number;
        wire->Send(line + '\r');
        const QByteArrayList reply = wire->ReadReply();
        QVERIFY2(!reply.isEmpty(), qPrintable(QStringLiteral("no reply to line %1: %2").arg(number).arg(QString::fromLatin1(line))));
        const QByteArray output = Output(line, reply);
        QVERIFY2(Problem(output).isEmpty(),
                 qPrintable(QStringLiteral("line %1: %2\nreply: %3").arg(number).arg(QString::fromLatin1(line), QString::fromLatin1(output))));
    }

    // The same watch does catch a failing test.
    const QByteArray wrong = "{ 1 2 + -> 4 }";
    wire->Send(wrong + '\r');
    QCOMPARE(Problem(Output(wrong, wire->ReadReply())), QByteArray("INCORRECT RESULT"));
}

QTEST_GUILESS_MAIN(TestBoardCoreTest)
#include "tst_board_coretest.moc"
