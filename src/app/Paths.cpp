#include "app/Paths.h"
#include "app/FilePaths.h"
#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace kvr {

namespace {

QString FirstExisting(const QStringList &candidates)
{
    for (const QString &c : candidates)
        if (QFileInfo(c).isDir())
            return WithTrailingSeparator(QDir::cleanPath(c));
    return WithTrailingSeparator(QDir::cleanPath(candidates.last()));
}

void CopyTreeMissing(const QString &from, const QString &to)
{
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString relative = QDir(from).relativeFilePath(source);
        const QString target = QDir(to).filePath(relative);
        if (QFileInfo::exists(target))
            continue;
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile::copy(source, target);
        QFile(target).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup
                                     | QFile::ReadOther);
    }
}

} // namespace

Paths::Paths(const QString &settingsDir)
{
    if (settingsDir.isEmpty()) {
        m_windows = WithTrailingSeparator(
            QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation));
        m_program = WithTrailingSeparator(
            QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
        m_kvrHome = WithTrailingSeparator(QDir::homePath() + QStringLiteral("/KVR"));
    } else {
        const QString root = QDir(settingsDir).absolutePath();
        m_windows = WithTrailingSeparator(root);
        m_program = WithTrailingSeparator(root + QStringLiteral("/program"));
        // The user's own KVR folder (a library INCLUDE finds) is not part of
        // a set-up: it stays in the home folder.
        m_kvrHome = WithTrailingSeparator(QDir::homePath() + QStringLiteral("/KVR"));
    }
}

QString Paths::InstallDataFolder() const
{
    const QString bin = QCoreApplication::applicationDirPath();
    return FirstExisting({bin + QStringLiteral("/../share/kvr-pc"),
                          QStringLiteral(KVR_SOURCE_DATA_DIR)});
}

QString Paths::GeneratedDataFolder() const
{
    const QString bin = QCoreApplication::applicationDirPath();
    return FirstExisting({bin + QStringLiteral("/../share/kvr-pc"), QStringLiteral(KVR_BUILD_DATA_DIR)});
}

QString Paths::ExamplesFolder() const
{
    const QString bin = QCoreApplication::applicationDirPath();
    return FirstExisting({bin + QStringLiteral("/../share/kvr-pc/examples"),
                          QStringLiteral(KVR_SOURCE_EXAMPLES_DIR)});
}

QString Paths::SettingsFile() const
{
    return ResolvePath(m_windows + QStringLiteral("KVR-PC.INI"));
}

QString Paths::LockFile() const
{
    return m_windows + QStringLiteral("kvr-pc.lck");
}

void Paths::Prepare() const
{
    Prepare(InstallDataFolder());
    if (GeneratedDataFolder() != InstallDataFolder())
        Prepare(GeneratedDataFolder());
}

void Paths::Prepare(const QString &dataFolder) const
{
    QDir().mkpath(m_windows);
    QDir().mkpath(m_program);
    const QString data = WithTrailingSeparator(dataFolder);
    for (const QString &board : {QStringLiteral("KVR4410"), QStringLiteral("KVR6630")}) {
        if (QFileInfo(data + board).isDir())
            CopyTreeMissing(data + board, m_program + board);
    }
}

} // namespace kvr
