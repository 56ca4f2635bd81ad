// kvr-pc: the KVR-PC desktop program.
#include "app/Clock.h"
#include "app/LockFile.h"
#include "app/StartUp.h"
#include "app/ui/QtPrompts.h"
#include "app/ui/frmMDI.h"
#include "pc/CommandLine.h"
#include "pc/MainAssembly.h"
#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QTimer>
#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("KVR-PC"));
    QApplication::setApplicationVersion(QStringLiteral(KVR_VERSION));
    // Ties the windows to the installed desktop entry and its icon.
    QApplication::setDesktopFileName(QStringLiteral("kvr-pc"));
    QIcon icon;
    for (const char *size : {"32", "64", "256"})
        icon.addFile(QStringLiteral(":/icons/kvr-pc-%1.png").arg(QLatin1String(size)));
    QApplication::setWindowIcon(icon);

    const kvr::PcCommandLine commandLine = kvr::ParsePcCommandLine(QApplication::arguments().mid(1));
    if (!commandLine.error.isEmpty()) {
        std::fprintf(stderr, "kvr-pc: %s\n\n%s", qPrintable(commandLine.error), kvr::PcUsage);
        return 3;
    }
    if (commandLine.showVersion) {
        std::printf("kvr-pc %s\n", KVR_VERSION);
        return 0;
    }
    if (commandLine.showHelp) {
        std::fputs(kvr::PcUsage, stdout);
        return 0;
    }

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
    frame.show();
    QTimer::singleShot(0, &assembly, &kvr::MainAssembly::Start);
    return app.exec();
}
