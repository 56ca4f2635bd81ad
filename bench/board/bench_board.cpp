// Round trip of one line through kvr-board over TCP: the board's share of a
// compile's pace, so later measurements can tell it from the PC's.
#include "BoardRunner.h"
#include "WireClient.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>

using kvr::test::BoardRunner;
using kvr::test::WireClient;

namespace {

struct Figures {
    double medianUs = 0;
    double p90Us = 0;
};

Figures Measure(WireClient &wire, const QByteArray &line, int count)
{
    std::vector<double> times;
    times.reserve(static_cast<size_t>(count));
    QElapsedTimer clock;
    for (int i = 0; i < count; ++i) {
        clock.start();
        const QByteArray reply = wire.Converse(line);
        times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1000.0);
        if (reply.isNull()) {
            std::fprintf(stderr, "bench_board: no reply to '%s'\n", line.constData());
            return {};
        }
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], times[times.size() * 9 / 10]};
}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    BoardRunner board;
    if (!board.Start({QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--no-heartbeat")})) {
        std::fprintf(stderr, "bench_board: %s\n", qPrintable(board.Failure()));
        return 1;
    }
    auto wire = WireClient::ConnectTcp(board.Port());
    if (!wire) {
        std::fprintf(stderr, "bench_board: cannot connect\n");
        return 1;
    }
    const int count = 2000;
    Measure(*wire, "1 DROP", 100);   // warm up
    const Figures shortLine = Measure(*wire, "1 2 + DROP", count);
    const Figures definition = Measure(*wire, ": WORK  DUP 0< IF NEGATE THEN  10 /MOD  SWAP DROP ;  \\ a typical line", count);
    std::printf("kvr-board round trip per line over TCP (%d lines each):\n", count);
    std::printf("  short line:      median %8.1f us   p90 %8.1f us\n", shortLine.medianUs, shortLine.p90Us);
    std::printf("  definition line: median %8.1f us   p90 %8.1f us\n", definition.medianUs, definition.p90Us);
    return board.Stop() == 0 ? 0 : 1;
}
