#include "compiler/SourceFiles.h"
#include "app/FilePaths.h"
#include <QFileInfo>
#include <algorithm>

namespace kvr {

int SourceFiles::FreeNumber() const
{
    int number = 1;
    while (m_files.count(number))
        ++number;
    return number;
}

bool SourceFiles::Open(int number, const QString &logicalPath)
{
    // No file on disk has a NUL in its name (a binary INCLUDE line).
    if (logicalPath.isEmpty() || logicalPath.contains(QChar(0)))
        return false;
    const QString path = ResolvePath(logicalPath);
    if (!QFileInfo(path).isFile())
        return false;
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly))
        return false;
    Close(number);
    m_files[number] = std::move(file);
    return true;
}

bool SourceFiles::IsOpen(int number) const
{
    return m_files.count(number) > 0;
}

void SourceFiles::Close(int number)
{
    m_files.erase(number);
}

void SourceFiles::CloseAll()
{
    m_files.clear();
}

bool SourceFiles::AtEnd(int number) const
{
    const auto it = m_files.find(number);
    return it == m_files.end() || it->second->atEnd();
}

QString SourceFiles::ReadLine(int number, qsizetype keep)
{
    const auto it = m_files.find(number);
    if (it == m_files.end())
        return {};
    QFile &file = *it->second;
    QByteArray bytes;
    // Blanks are held back until text follows them: a cut line still ends
    // in text, so a long run of blanks before a word cannot hide the word.
    qsizetype blanks = 0;
    char c = 0;
    while (file.getChar(&c)) {
        if (c == '\n')
            break;
        if (c == '\r') {
            char next = 0;
            if (file.getChar(&next) && next != '\n')
                file.ungetChar(next);
            break;
        }
        if (c == ' ') {
            ++blanks;
            continue;
        }
        if (bytes.size() <= keep) {
            bytes.append(std::min(blanks, keep - bytes.size()), ' ');
            bytes += c;
        }
        blanks = 0;
    }
    return QString::fromLatin1(bytes);
}

qint64 SourceFiles::Position(int number) const
{
    const auto it = m_files.find(number);
    return it == m_files.end() ? 0 : it->second->pos();
}

void SourceFiles::Seek(int number, qint64 position)
{
    const auto it = m_files.find(number);
    if (it != m_files.end())
        it->second->seek(position);
}

} // namespace kvr
