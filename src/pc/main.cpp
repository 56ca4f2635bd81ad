// kvr-pc: the KVR-PC desktop program.
#include "app/Clock.h"
#include "app/LockFile.h"
#include "app/StartUp.h"
#include "app/TerminationSignals.h"
#include "app/ui/QtPrompts.h"
#include "app/ui/frmMDI.h"
#include "pc/CommandLine.h"
#include "pc/MainAssembly.h"
#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QSessionManager>
#include <QTimer>
#include <cstdio>
#include <memory>

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    const kvr::PcCommandLine commandLine = kvr::ParsePcCommandLine(arguments);
    // Help, version and usage errors need no display: a plain application answers them.
    std::unique_ptr<QCoreApplication> app;
    if (commandLine.showHelp || commandLine.showVersion || !commandLine.error.isEmpty())
        app = std::make_unique<QCoreApplication>(argc, argv);
    else
        app = std::make_unique<QApplication>(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(KVR_VERSION));
    if (!commandLine.error.isEmpty()) {
        std::fprintf(stderr, "kvr-pc: %s\n\n%s", qPrintable(commandLine.error), qPrintable(kvr::PcHelpText()));
        return 3;
    }
    if (commandLine.showVersion) {
        std::printf("kvr-pc %s\n", KVR_VERSION);
        return 0;
    }
    if (commandLine.showHelp) {
        std::fputs(qPrintable(kvr::PcHelpText()), stdout);
        return 0;
    }
    QCoreApplication::setApplicationName(QStringLiteral("KVR-PC"));
    // Ties the windows to the installed desktop entry and its icon.
    QApplication::setDesktopFileName(QStringLiteral("kvr-pc"));
    QIcon icon;
    for (const char *size : {"32", "64", "256"})
        icon.addFile(QStringLiteral(":/icons/kvr-pc-%1.png").arg(QLatin1String(size)));
    QApplication::setWindowIcon(icon);

    kvr::SystemClock clock;
    kvr::QtPrompts prompts;
    kvr::AppContext context(kvr::Paths(commandLine.settingsDir), prompts, clock);

    kvr::StartUpOptions options;
    options.commandLineFile = commandLine.file;
    options.sessionRemoteHost = commandLine.simulatorHost;
    options.sessionRemotePort = commandLine.simulatorPort;
    if (kvr::StartUp(context, options) == kvr::StartUpResult::AlreadyRunning)
        return 0;

    kvr::frmMDI frame(context);
    prompts.SetParent(&frame);
    const QString lockFile = context.paths.LockFile();
    const QString selected = context.paths.ProgramFolder() + QStringLiteral("SELECTED.KVR");
    QObject::connect(&frame, &kvr::frmMDI::Closing, [lockFile, selected] {
        // The compiled selection is scratch: it goes with the session.
        QFile::remove(selected);
        kvr::ReleaseLock(lockFile);
    });
    kvr::MainAssembly assembly(context, frame, commandLine);
    // A shutdown, a closed session or a kill ends the program as Exit would.
    kvr::TerminationSignals termination;
    QObject::connect(&termination, &kvr::TerminationSignals::Received, &assembly, &kvr::MainAssembly::EndSession);
    QObject::connect(qApp, &QGuiApplication::commitDataRequest, &assembly, [&assembly](QSessionManager &) {
        assembly.EndSession();
    });
    frame.show();
    QTimer::singleShot(0, &assembly, &kvr::MainAssembly::Start);
    return app->exec();
}
