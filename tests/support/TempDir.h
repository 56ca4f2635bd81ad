#pragma once
// File helpers for tests: whole-file reads and writes in bytes.
#include <QByteArray>
#include <QString>

namespace kvr::test {

QByteArray ReadAll(const QString &path);
void WriteAll(const QString &path, const QByteArray &bytes);

} // namespace kvr::test

namespace kvr::test {

// While alive, this process cannot write files past `bytes` (writes fail
// with EFBIG instead of raising SIGXFSZ): a full disk for the code under test.
class FileSizeLimit {
public:
    explicit FileSizeLimit(long bytes);
    ~FileSizeLimit();
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    long m_oldSoft;
    void (*m_oldHandler)(int);
};

} // namespace kvr::test
