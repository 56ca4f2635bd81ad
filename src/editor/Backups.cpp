#include "editor/Backups.h"
#include "editor/SourceFile.h"

namespace kvr {

QString StripExtension(const QString &path)
{
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? path : path.left(dot);
}

void SplitPath(const QString &path, QString &directory, QString &name)
{
    const qsizetype cut = std::max(path.lastIndexOf(QLatin1Char('\\')),
                                   path.lastIndexOf(QLatin1Char('/')));
    if (cut < 0) {
        directory = QStringLiteral(".");
        name = path;
    } else {
        directory = path.left(cut);
        name = path.mid(cut + 1);
    }
}

QString BackupName(const QString &path, int n)
{
    return StripExtension(path) + QStringLiteral(".%1.KVR").arg(n, 3, 10, QLatin1Char('0'));
}

namespace {

// True when the scan must stop on this probe's error.
bool Probe(const QString &candidate, BackupScan &scan, bool &exists)
{
    const ReadResult probe = ProbeFile(candidate);
    exists = probe.ok;
    if (probe.ok)
        return false;
    scan.lastError = probe.error;
    scan.description = probe.description;
    if (probe.error == FileError::PathNotFound)
        return false;
    scan.stoppedByError = true;
    return true;
}

} // namespace

BackupScan ScanHighestBackup(const QString &path)
{
    BackupScan scan;
    for (int n = 999; n >= 1; --n) {
        bool exists = false;
        if (Probe(BackupName(path, n), scan, exists))
            break;
        if (exists) {
            scan.highest = n;
            break;
        }
    }
    return scan;
}

BackupScan ScanAllBackups(const QString &path)
{
    BackupScan scan;
    for (int n = 1; n <= 999; ++n) {
        bool exists = false;
        if (Probe(BackupName(path, n), scan, exists))
            break;
        if (exists) {
            scan.numbers.append(n);
            scan.highest = n;
        }
    }
    return scan;
}

} // namespace kvr
