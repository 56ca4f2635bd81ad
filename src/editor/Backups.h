#pragma once
// Numbered backups beside a source file: NAME.001.KVR to NAME.999.KVR.
#include "app/SafeSave.h"
#include <QString>
#include <QStringList>

namespace kvr {

// `path` cut before its last "."; unchanged without one.
QString StripExtension(const QString &path);

// Splits at the last separator ("\" or "/"): the folder ("." when there is
// none) and the name.
void SplitPath(const QString &path, QString &directory, QString &name);

// The backup of `path` with number `n` ("000" format).
QString BackupName(const QString &path, int n);

struct BackupScan {
    int highest = 0;          // Backup: highest existing number, 0 when none
    QList<int> numbers;       // Restore: every existing number, ascending
    FileError lastError = FileError::PathNotFound;
    QString description;      // the error that ended the scan, if any
    bool stoppedByError = false;
};

// From 999 down, stops at the first backup that exists.
BackupScan ScanHighestBackup(const QString &path);

// From 1 up to 999, every backup that exists.
BackupScan ScanAllBackups(const QString &path);

} // namespace kvr
