#include "app/SafeSave.h"
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstring>

namespace kvr {

namespace {

FileError Classify(int err)
{
    switch (err) {
    case EACCES:
    case EPERM:
    case EROFS:
    case EINVAL:
    case ENAMETOOLONG:
    case EISDIR:
        return FileError::NameOrWriteProtected;
    case ENOENT:
    case ENOTDIR:
        return FileError::PathNotFound;
    case ENOSPC:
    case EFBIG:
    case EDQUOT:
        return FileError::DiskFull;
    default:
        return FileError::Other;
    }
}

SaveResult Failure(int err)
{
    return {Classify(err), QString::fromLocal8Bit(std::strerror(err))};
}

SaveResult OpenSaveFile(QSaveFile &file)
{
    const QFileInfo info(file.fileName());
    if (info.fileName().isEmpty())
        return Failure(EINVAL);
    if (!info.absoluteDir().exists())
        return Failure(ENOENT);
    if (info.exists() && !info.isWritable())
        return Failure(EACCES);
    // A writable file in a folder that takes no new files (no room for the
    // temporary copy) is written in place rather than refused.
    file.setDirectWriteFallback(info.exists());
    // Unbuffered, so a short write (disk full) is seen here rather than
    // lost inside a flush that still reports success.
    errno = 0;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return Failure(errno ? errno : EACCES);
    return {};
}

SaveResult WriteAll(QSaveFile &file, const QByteArray &bytes)
{
    qint64 done = 0;
    while (done < bytes.size()) {
        errno = 0;
        const qint64 n = file.write(bytes.constData() + done, bytes.size() - done);
        if (n <= 0) {
            const int err = errno ? errno : ENOSPC;
            file.cancelWriting();
            return Failure(err);
        }
        done += n;
    }
    return {};
}

SaveResult CommitSaveFile(QSaveFile &file)
{
    errno = 0;
    if (!file.commit())
        return Failure(errno ? errno : EIO);
    return {};
}

} // namespace

SaveResult SaveWholeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (SaveResult opened = OpenSaveFile(file); !opened.Ok())
        return opened;
    if (SaveResult written = WriteAll(file, bytes); !written.Ok())
        return written;
    return CommitSaveFile(file);
}

PieceWiseSave::PieceWiseSave() = default;
PieceWiseSave::~PieceWiseSave() = default;

SaveResult PieceWiseSave::Open(const QString &path)
{
    m_file = std::make_unique<QSaveFile>(path);
    SaveResult opened = OpenSaveFile(*m_file);
    if (!opened.Ok())
        m_file.reset();
    return opened;
}

SaveResult PieceWiseSave::Write(const QByteArray &bytes)
{
    if (!m_file)
        return Failure(EBADF);
    SaveResult written = WriteAll(*m_file, bytes);
    if (!written.Ok())
        m_file.reset();
    return written;
}

SaveResult PieceWiseSave::Commit()
{
    if (!m_file)
        return Failure(EBADF);
    SaveResult committed = CommitSaveFile(*m_file);
    m_file.reset();
    return committed;
}

} // namespace kvr
