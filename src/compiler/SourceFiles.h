#pragma once
// The compiler's open source files, addressed by small numbers as the line
// engine keeps them in its include stack (0 = none). Lines are read as
// Latin-1 with CR LF, LF or CR ends.
#include <QFile>
#include <QString>
#include <map>
#include <memory>

namespace kvr {

class SourceFiles {
public:
    // The lowest number not in use (1 or more). Not reserved until opened.
    int FreeNumber() const;
    // Opens the file named by the logical path for reading under `number`.
    // Folders and unreadable files fail.
    bool Open(int number, const QString &logicalPath);
    bool IsOpen(int number) const;
    // Silently ignores numbers that are not open.
    void Close(int number);
    void CloseAll();

    bool AtEnd(int number) const;
    // The next line without its end and its trailing blanks. Lines longer
    // than `keep` characters come back cut to `keep + 1` characters (enough
    // to tell they are too long) so a binary file without line ends cannot
    // exhaust memory.
    QString ReadLine(int number, qsizetype keep = 4096);
    qint64 Position(int number) const;
    void Seek(int number, qint64 position);

private:
    std::map<int, std::unique_ptr<QFile>> m_files;
};

} // namespace kvr
