#include "editor/Backups.h"
#include "editor/SourceFile.h"
#include "app/FilePaths.h"
#include <QDir>
#include <QHash>

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

// The backups' folder listed once: a candidate missing from it does not
// exist (file not found) without asking the disk again; one that is
// listed must still open for reading.
class BackupFolder {
public:
    explicit BackupFolder(const QString &path)
    {
        QString directory;
        QString name;
        SplitPath(BackupName(path, 1), directory, name);
        m_directory = ResolvePath(directory);
        const QDir dir(m_directory);
        if (dir.exists())
            for (const QString &entry : dir.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System))
                m_entries.insert(entry.toUpper(), entry);
    }

    // True when the scan must stop on this probe's error.
    bool Probe(const QString &path, int n, BackupScan &scan, bool &exists) const
    {
        QString directory;
        QString name;
        SplitPath(BackupName(path, n), directory, name);
        exists = false;
        const auto it = m_entries.constFind(name.toUpper());
        if (it == m_entries.constEnd()) {
            scan.lastError = FileError::PathNotFound;
            return false;
        }
        const ReadResult probe = ProbeFile(QDir(m_directory).filePath(*it));
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

private:
    QString m_directory;
    QHash<QString, QString> m_entries;
};

} // namespace

BackupScan ScanHighestBackup(const QString &path)
{
    BackupScan scan;
    const BackupFolder folder(path);
    for (int n = 999; n >= 1; --n) {
        bool exists = false;
        if (folder.Probe(path, n, scan, exists))
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
    const BackupFolder folder(path);
    for (int n = 1; n <= 999; ++n) {
        bool exists = false;
        if (folder.Probe(path, n, scan, exists))
            break;
        if (exists) {
            scan.numbers.append(n);
            scan.highest = n;
        }
    }
    return scan;
}

} // namespace kvr
