#include "editor/SourceFile.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

namespace kvr {

QStringList SplitSourceLines(const QString &content)
{
    QStringList lines;
    const qsizetype n = content.size();
    qsizetype start = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = content[i];
        if (c != QLatin1Char('\r') && c != QLatin1Char('\n'))
            continue;
        lines.append(content.mid(start, i - start));
        if (c == QLatin1Char('\r') && i + 1 < n && content[i + 1] == QLatin1Char('\n'))
            ++i;
        start = i + 1;
    }
    if (start < n)
        lines.append(content.mid(start));
    return lines;
}

bool IsKvrName(const QString &name)
{
    return name.toUpper().endsWith(QLatin1String(".KVR"));
}

QByteArray SourceBytesForSave(const QString &text)
{
    QString source = text;
    if (!source.endsWith(QLatin1String("\r\n")))
        source += QLatin1String("\r\n");
    QByteArray bytes;
    bytes.reserve(source.size());
    qsizetype start = 0;
    for (;;) {
        const qsizetype end = source.indexOf(QLatin1String("\r\n"), start);
        if (end < 0)
            break;
        bytes += Latin1ToBytes(RTrim(source.mid(start, end - start)));
        bytes += "\r\n";
        start = end + 2;
    }
    return bytes;
}

FileError ClassifyReadError(int err)
{
    switch (err) {
    case ENOENT:
    case ENOTDIR:
        return FileError::PathNotFound;
    case EACCES:
    case EPERM:
    case EINVAL:
    case ENAMETOOLONG:
        return FileError::NameOrWriteProtected;
    default:
        return FileError::Other;
    }
}

namespace {

ReadResult OpenForReading(const QString &name, QFile &file)
{
    ReadResult result;
    const QString path = ResolvePath(name);
    if (QFileInfo(path).isDir()) {
        result.error = FileError::Other;
        result.description = QString::fromLocal8Bit(std::strerror(EISDIR));
        return result;
    }
    file.setFileName(path);
    errno = 0;
    if (!file.open(QIODevice::ReadOnly)) {
        const int err = errno ? errno : ENOENT;
        result.error = ClassifyReadError(err);
        result.description = QString::fromLocal8Bit(std::strerror(err));
        return result;
    }
    result.ok = true;
    return result;
}

} // namespace

ReadResult ReadSourceFile(const QString &name)
{
    QFile file;
    ReadResult result = OpenForReading(name, file);
    if (result.ok)
        result.content = BytesToLatin1(file.readAll());
    return result;
}

ReadResult ProbeFile(const QString &name)
{
    QFile file;
    return OpenForReading(name, file);
}

} // namespace kvr
