#include "TempDir.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kvr::test {

QByteArray ReadAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void WriteAll(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
}

} // namespace kvr::test

#include <csignal>
#include <sys/resource.h>

namespace kvr::test {

FileSizeLimit::FileSizeLimit(long bytes)
{
    m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    m_oldSoft = static_cast<long>(limit.rlim_cur);
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = static_cast<rlim_t>(m_oldSoft);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, m_oldHandler);
}

} // namespace kvr::test
