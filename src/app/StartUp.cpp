#include "app/StartUp.h"
#include "app/Calibration.h"
#include "app/FilePaths.h"
#include "app/LockFile.h"
#include "app/Migration.h"
#include "app/Text.h"
#include <QDir>
#include <QFileInfo>

namespace kvr {

qint16 TabSpacesValue(const Settings &settings)
{
    return static_cast<qint16>(std::clamp(Val(settings.tabSpaces), -32768.0, 32767.0));
}

StartUpResult StartUp(AppContext &context, const StartUpOptions &options)
{
    context.paths.Prepare();
    if (!AcquireLock(context.paths.LockFile(), context.prompts))
        return StartUpResult::AlreadyRunning;

    context.ReadSettings();
    MigrationInput migration;
    migration.commandLineFile = options.commandLineFile.isEmpty()
                                    ? QString()
                                    : QFileInfo(options.commandLineFile).absoluteFilePath();
    migration.legacyFolder = context.paths.KvrHomeFolder();
    migration.windowsFolder = context.paths.WindowsFolder();
    migration.calibrate = [&context](Settings &s) { CalibrateDelay(s, context.clock); };
    MigrateSettings(context.settings, migration);
    if (!options.sessionRemoteHost.isEmpty())
        context.SetSessionLink(options.sessionRemoteHost, options.sessionRemotePort);
    context.WriteSettings();

    // Drive letters do not exist here; the file's folder becomes the
    // working folder so relative INCLUDE names resolve as they did.
    const QString current = context.settings.currentFile;
    if (current.left(8) != QLatin1String("Not Used")) {
        const QString folder = QFileInfo(ResolvePath(current)).absolutePath();
        if (QFileInfo(folder).isDir())
            QDir::setCurrent(folder);
    }
    return StartUpResult::Continue;
}

} // namespace kvr
