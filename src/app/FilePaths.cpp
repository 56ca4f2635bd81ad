#include "app/FilePaths.h"
#include <QDir>
#include <QFileInfo>

namespace kvr {

QString NormalizeSeparators(const QString &path)
{
    QString result = path;
    result.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return result;
}

QString WithTrailingSeparator(const QString &folder)
{
    if (folder.endsWith(QLatin1Char('/')))
        return folder;
    return folder + QLatin1Char('/');
}

QString LogicalName(const QString &name)
{
    QString path = NormalizeSeparators(name.trimmed());
    if (path.isEmpty())
        return path;
    if (QDir::isRelativePath(path))
        path = QDir::current().absoluteFilePath(path);
    return QDir::cleanPath(path).toUpper();
}

namespace {
// Whether a name on disk is the one an upper-cased name stands for. The
// upper case of some letters is longer or another letter (ß is SS, ı is I,
// ﬁ is FI), so the disk name is upper-cased the same way, not case-folded.
bool SameLogicalComponent(const QString &onDisk, const QString &wanted)
{
    return onDisk.compare(wanted, Qt::CaseInsensitive) == 0 || onDisk.toUpper() == wanted.toUpper();
}
} // namespace

QString ResolvePath(const QString &logicalPath)
{
    const QString path = NormalizeSeparators(logicalPath);
    if (path.isEmpty() || QFileInfo::exists(path))
        return path;

    const bool absolute = path.startsWith(QLatin1Char('/'));
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString current = absolute ? QStringLiteral("/") : QString();
    bool matching = true;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const QString &part = parts[i];
        QString chosen = part;
        if (matching && part != QLatin1String(".") && part != QLatin1String("..")) {
            const QDir dir(current.isEmpty() ? QStringLiteral(".") : current);
            if (!QFileInfo::exists(dir.filePath(part))) {
                const QStringList entries =
                    dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
                auto it = std::find_if(entries.begin(), entries.end(),
                                       [&](const QString &e) { return SameLogicalComponent(e, part); });
                if (it != entries.end())
                    chosen = *it;
                else
                    matching = false;
            }
        }
        if (!current.isEmpty() && !current.endsWith(QLatin1Char('/')))
            current += QLatin1Char('/');
        current += chosen;
    }
    if (path.endsWith(QLatin1Char('/')) && !current.endsWith(QLatin1Char('/')))
        current += QLatin1Char('/');
    return current;
}

bool FileExistsCI(const QString &logicalPath)
{
    if (logicalPath.isEmpty())
        return false;
    return QFileInfo(ResolvePath(logicalPath)).isFile();
}

bool DirExistsCI(const QString &logicalPath)
{
    if (logicalPath.isEmpty())
        return false;
    return QFileInfo(ResolvePath(logicalPath)).isDir();
}

} // namespace kvr
