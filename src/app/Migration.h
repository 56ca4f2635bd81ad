#pragma once
// Start-up migration of the settings and the import of the older KVR.CFG.
#include "app/Settings.h"
#include <functional>

namespace kvr {

// Imports KVR.CFG from `folder` (with a trailing separator). False when the
// file is missing or shorter than 20 lines; the record is then untouched.
bool ReadLegacyConfig(Settings &settings, const QString &folder, const QString &windowsFolder);

struct MigrationInput {
    QString commandLineFile;           // empty when none was given
    QString legacyFolder;              // where KVR.CFG is looked for
    QString windowsFolder;
    std::function<void(Settings &)> calibrate; // fills both delays
};

// The migration steps in order, up to (not including) writing the file.
void MigrateSettings(Settings &settings, const MigrationInput &input);

} // namespace kvr
