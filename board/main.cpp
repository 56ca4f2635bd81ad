// kvr-board: a simulated KVR board for trying KVR-PC without hardware and
// for its end-to-end tests.
#include "BoardBridge.h"
#include "BoardOptions.h"
#include "Flash.h"
#include "ForthProcess.h"
#include "LineLog.h"
#include "PtyFront.h"
#include "TcpFront.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <memory>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int g_signalPipe[2] = {-1, -1};

void OnSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t ignored = ::write(g_signalPipe[1], &byte, 1);
}

int Fail(const QString &message)
{
    std::fprintf(stderr, "kvr-board: %s\n", qPrintable(message));
    return 1;
}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    using namespace kvr::board;

    BoardOptions options;
    QString error;
    bool help = false;
    if (!ParseBoardOptions(app.arguments(), options, error, help)) {
        std::fprintf(stderr, "kvr-board: %s\n\n%s", qPrintable(error), qPrintable(BoardUsage()));
        return 2;
    }
    if (help) {
        std::printf("%s", qPrintable(BoardUsage()));
        return 0;
    }
    if (options.showVersion) {
        std::printf("kvr-board %s\n", KVR_VERSION);
        return 0;
    }

    const QString gforth = ForthProcess::FindGforth(options.gforth);
    if (gforth.isEmpty()) {
        return Fail(options.gforth.isEmpty()
                        ? QStringLiteral("gforth is not installed; the simulated board runs on it.\n"
                                         "Install it with 'sudo apt-get install gforth' "
                                         "(or run scripts/install-deps.sh).")
                        : QStringLiteral("%1 is not an executable gforth").arg(options.gforth));
    }

    if (options.listWords) {
        ForthProcess lister(gforth, options.type);
        QByteArray words;
        if (!lister.ListWords(words, error))
            return Fail(error);
        std::fwrite(words.constData(), 1, static_cast<size_t>(words.size()), stdout);
        return 0;
    }

    // SIGTERM and SIGINT end the board cleanly from the event loop.
    ::signal(SIGPIPE, SIG_IGN);
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, g_signalPipe) != 0)
        return Fail(QStringLiteral("cannot set up signal handling"));
    QSocketNotifier signalNotifier(g_signalPipe[0], QSocketNotifier::Read);
    QObject::connect(&signalNotifier, &QSocketNotifier::activated, &app, [] { QCoreApplication::quit(); });
    struct sigaction action {};
    action.sa_handler = OnSignal;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGHUP, &action, nullptr);

    LineLog log;
    if (!options.logPath.isEmpty() && !log.Open(options.logPath, error))
        return Fail(error);

    std::unique_ptr<BoardFront> front;
    if (options.pty)
        front = std::make_unique<PtyFront>(options.linkPath);
    else
        front = std::make_unique<TcpFront>(options.port, options.heartbeat, options.heartbeatPort,
                                           options.heartbeatGiven);
    if (!front->Open(error))
        return Fail(error);

    ForthProcess forth(gforth, options.type);
    // Without a file of the user's the flash lasts as long as the board.
    QTemporaryDir flashFolder;
    const bool flash = options.type == QLatin1String("4410F");
    if (flash) {
        QString path = options.flashPath;
        if (path.isEmpty()) {
            if (!flashFolder.isValid())
                return Fail(QStringLiteral("cannot make a temporary folder for the flash"));
            path = flashFolder.filePath(QStringLiteral("flash.bin"));
        }
        if (!PrepareFlashFile(path, error))
            return Fail(error);
        // The Forth system runs in a folder of its own.
        forth.SetVariable(QStringLiteral("KVR_FLASH_FILE"), QFileInfo(path).absoluteFilePath());
        forth.SetVariable(QStringLiteral("KVR_FLASH_BASE"), QString::number(FlashBase));
        forth.SetVariable(QStringLiteral("KVR_FLASH_SIZE"), QString::number(FlashSize));
    }
    BoardBridge bridge(*front, forth, options.baud, options.charTimeUs,
                       options.logPath.isEmpty() ? nullptr : &log);
    // The board is ready once its Forth system has signed on.
    bool signedOn = false;
    QTimer startLimit;
    startLimit.setSingleShot(true);
    QObject::connect(&forth, &ForthProcess::Up, &app, [&] {
        if (signedOn)
            return;
        signedOn = true;
        startLimit.stop();
        front->Ready();
        std::printf("%s\n", qPrintable(front->ReadyLine()));
        if (flash)
            std::printf("%s\n", qPrintable(FlashLine()));
        std::fflush(stdout);
    });
    QObject::connect(&forth, &ForthProcess::Failed, &app, [&](const QString &message) {
        Fail(message);
        QCoreApplication::exit(1);
    });
    QObject::connect(&startLimit, &QTimer::timeout, &app, [&] {
        Fail(QStringLiteral("the Forth system did not sign on; is %1 a working gforth?").arg(gforth));
        QCoreApplication::exit(1);
    });
    if (!forth.Start(error))
        return Fail(error);
    startLimit.start(10000);

    const int status = app.exec();
    forth.Stop();
    return status;
}
