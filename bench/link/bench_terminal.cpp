// Terminal painting throughput from a board streaming as fast as TCP
// allows, with the longest stall of the event loop meanwhile; and the PC's
// cost of SendText + WaitForReply per line.
#include "StreamingBoard.h"
#include "app/AppContext.h"
#include "app/ScriptedPrompts.h"
#include "link/ui/frmEmulator.h"
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <cstdio>

using namespace kvr;

namespace {

struct Setup {
    QTemporaryDir dir;
    ScriptedPrompts prompts;
    SystemClock clock;
    AppContext context{Paths(dir.path()), prompts, clock};
    Link link{context};
    Setup()
    {
        context.settings.delay4410 = QStringLiteral("0");
        context.settings.timeout = QStringLiteral("5000");
        context.settings.remoteIp = QStringLiteral("127.0.0.1");
    }
};

void PaintThroughput()
{
    QByteArray payload;
    int line = 0;
    while (payload.size() < 16 * 1024 * 1024)
        payload += "line " + QByteArray::number(++line) + " : the quick brown fox jumps over the lazy dog 0123456789\r\n";
    payload += "END OF STREAM\r\n";

    Setup s;
    frmEmulator window(s.context, s.link);
    window.resize(800, 600);
    window.show();
    bench::StreamingBoard board(bench::StreamingBoard::Mode::Stream, payload);
    s.context.settings.remotePort = QString::number(board.Listen());
    board.start();
    LinkController &controller = window.Controller();
    controller.Tcp().SetHeartbeatPort(0);
    controller.SelectPort(0);
    if (!controller.IsTcpConnected()) {
        std::printf("terminal paint: could not connect\n");
        return;
    }

    // A probe timer measures how long the event loop goes without turning.
    QElapsedTimer sinceProbe;
    qint64 longestStall = 0;
    QTimer probe;
    probe.setInterval(10);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        longestStall = std::max(longestStall, sinceProbe.restart());
    });
    int paints = 0;
    QObject::connect(&window.Logic(), &Terminal::ScreenChanged, [&] { ++paints; });

    QElapsedTimer elapsed;
    elapsed.start();
    sinceProbe.start();
    probe.start();
    const ScreenModel &screen = window.Logic().Screen();
    while (elapsed.elapsed() < 120000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        const int row = screen.Row();
        if (screen.Text(row > 0 ? row - 1 : 0) == QLatin1String("END OF STREAM"))
            break;
    }
    const double seconds = elapsed.nsecsElapsed() / 1e9;
    probe.stop();
    std::printf("terminal paint: %.1f MB in %.2f s = %.2f MB/s (%.0f bytes/s), goal >= 1 MB/s; "
                "longest event-loop stall %lld ms; %d screen updates\n",
                payload.size() / 1e6, seconds, payload.size() / 1e6 / seconds, payload.size() / seconds,
                longestStall, paints);
    controller.Tcp().Close();
    board.wait();
}

void LineCost()
{
    Setup s;
    TcpTransport tcp;
    tcp.SetHeartbeatPort(0);
    QProcess kvrBoard;
    std::unique_ptr<bench::StreamingBoard> echo;
    QString against;
    quint16 port = 0;
    const QString boardProgram = qEnvironmentVariable("KVR_BIN_DIR") + QStringLiteral("/kvr-board");
    if (QFile::exists(boardProgram)) {
        kvrBoard.start(boardProgram, {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--no-heartbeat")});
        kvrBoard.waitForReadyRead(10000);
        const QByteArray first = kvrBoard.readLine();
        port = quint16(first.mid(first.lastIndexOf(':') + 1).trimmed().toUInt());
        against = QStringLiteral("kvr-board");
    }
    if (port == 0) {
        echo = std::make_unique<bench::StreamingBoard>(bench::StreamingBoard::Mode::Answer);
        port = echo->Listen();
        echo->start();
        against = QStringLiteral("an instant echo board (kvr-board not built)");
    }
    tcp.Connect(QStringLiteral("127.0.0.1"), port);
    QElapsedTimer wait;
    wait.start();
    while (!tcp.IsConnected() && wait.elapsed() < 5000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    s.link.SetTransport(&tcp);
    const int lines = 2000;
    QElapsedTimer elapsed;
    elapsed.start();
    qint64 cpuNs = 0;
    for (int i = 0; i < lines; ++i) {
        const qint64 before = elapsed.nsecsElapsed();
        s.link.SendText(QStringLiteral(": W%1 %1 DROP ;").arg(i), true);
        s.link.WaitForReply();
        cpuNs += elapsed.nsecsElapsed() - before;
    }
    const double perLineUs = cpuNs / 1e3 / lines;
    std::printf("SendText + WaitForReply: %d lines against %s, %.1f us per line round trip "
                "(%zu not-responding)\n",
                lines, qPrintable(against), perLineUs, size_t(s.prompts.MessageTexts().size()));
    tcp.Close();
    if (echo)
        echo->wait();
    if (kvrBoard.state() != QProcess::NotRunning) {
        kvrBoard.terminate();
        kvrBoard.waitForFinished(3000);
    }
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    PaintThroughput();
    LineCost();
    return 0;
}
