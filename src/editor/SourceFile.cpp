#include "editor/SourceFile.h"
#include "app/FilePaths.h"
#include "app/Text.h"
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

namespace kvr {

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
    // Only plain files: a folder cannot be read, a pipe would wait for a
    // writer, and a device such as /dev/zero never ends.
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        result.error = FileError::Other;
        result.description = QString::fromLocal8Bit(std::strerror(info.isDir() ? EISDIR : ENODEV));
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

ReadResult ReadSourceFile(const QString &name, qint64 maxBytes)
{
    QFile file;
    ReadResult result = OpenForReading(name, file);
    if (!result.ok)
        return result;
    if (file.size() > maxBytes) {
        result.ok = false;
        result.tooLarge = true;
        result.error = FileError::Other;
        result.description = QString::fromLocal8Bit(std::strerror(EFBIG));
        return result;
    }
    result.content = BytesToLatin1(file.readAll());
    return result;
}

QString SourceLine::Trimmed() const
{
    // Past the kept part there are only blanks: they go with the rest.
    return blanksOnlyBeyond ? RTrim(text) : text;
}

ReadResult SourceLineReader::Open(const QString &name)
{
    m_buffer.clear();
    m_pos = 0;
    m_skipLf = false;
    return OpenForReading(name, m_file);
}

void SourceLineReader::Append(SourceLine &line, const char *data, qsizetype count) const
{
    line.length += count;
    const qsizetype room = std::clamp<qsizetype>(LineKeep - line.text.size(), 0, count);
    line.text += QLatin1String(data, room);
    for (qsizetype k = room; k < count && line.blanksOnlyBeyond; ++k)
        line.blanksOnlyBeyond = data[k] == ' ';
}

bool SourceLineReader::Next(SourceLine &line)
{
    constexpr qint64 Chunk = 64 * 1024;
    line = SourceLine{};
    bool any = false;
    for (;;) {
        if (m_pos >= m_buffer.size()) {
            m_buffer = m_file.isOpen() ? m_file.read(Chunk) : QByteArray();
            m_pos = 0;
            if (m_buffer.isEmpty())
                return any;
        }
        const char *data = m_buffer.constData();
        const qsizetype n = m_buffer.size();
        if (m_skipLf) {
            m_skipLf = false;
            if (data[m_pos] == '\n') {
                ++m_pos;
                continue;
            }
        }
        qsizetype end = m_pos;
        while (end < n && data[end] != '\r' && data[end] != '\n')
            ++end;
        Append(line, data + m_pos, end - m_pos);
        any = true;
        if (end < n) {
            m_skipLf = data[end] == '\r';
            m_pos = end + 1;
            return true;
        }
        m_pos = n;
    }
}

ReadResult ProbeFile(const QString &name)
{
    QFile file;
    return OpenForReading(name, file);
}

} // namespace kvr
