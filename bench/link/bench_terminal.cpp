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
#include <arpa/inet.h>
#include <cstdio>
#include <ctime>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace kvr;

namespace {

QString BenchLine(int i)
{
    return QStringLiteral(": W%1 %1 DROP ;").arg(i);
}

// The same exchange on a plain blocking socket: the board's and the
// loopback's share, for telling the PC's share apart. Microseconds per line.
double RawRoundTrip(quint16 port, int lines)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) {
        ::close(fd);
        return -1;
    }
    int one = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
    QElapsedTimer elapsed;
    elapsed.start();
    for (int i = 0; i < lines; ++i) {
        const QByteArray line = BenchLine(i).toLatin1() + '\r';
        ::send(fd, line.constData(), line.size(), 0);
        // Spins like WaitForReply does, so only the layers above differ.
        bool done = false;
        while (!done) {
            char buffer[512];
            const ssize_t n = ::recv(fd, buffer, sizeof buffer, MSG_DONTWAIT);
            if (n == 0)
                break;
            for (ssize_t k = 0; k < n; ++k)
                done = done || buffer[k] == '\n';
        }
    }
    const double us = elapsed.nsecsElapsed() / 1e3 / lines;
    ::close(fd);
    return us;
}

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
    s.link.SendText(QStringLiteral("\r"), false);

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
    for (int i = 0; i < lines; ++i) {
        s.link.SendText(BenchLine(i), true);
        s.link.WaitForReply();
    }
    const double linkUs = elapsed.nsecsElapsed() / 1e3 / lines;
    tcp.Close();
    if (echo)
        echo->wait();
    double rawUs = -1;
    if (kvrBoard.state() != QProcess::NotRunning) {
        rawUs = RawRoundTrip(port, lines);
    } else {
        bench::StreamingBoard rawEcho(bench::StreamingBoard::Mode::Answer);
        const quint16 rawPort = rawEcho.Listen();
        rawEcho.start();
        rawUs = RawRoundTrip(rawPort, lines);
        rawEcho.wait();
    }
    std::printf("SendText + WaitForReply against %s: %.1f us per line; a plain socket doing the same: "
                "%.1f us; the PC's share: %.1f us per line (%d lines, %zu not-responding)\n",
                qPrintable(against), linkUs, rawUs, linkUs - rawUs, lines,
                size_t(s.prompts.MessageTexts().size()));
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
