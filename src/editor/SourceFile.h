#pragma once
// Source files on disk: bytes read as Latin-1 so every byte value survives,
// CR LF, LF and CR accepted on reading, CR LF written, trailing blanks
// removed both ways.
#include "app/SafeSave.h"
#include "editor/EditCommands.h"
#include <QFile>
#include <QString>
#include <QStringList>

namespace kvr {

// Characters of one line kept by the load: one more than a window holds,
// so that such a line always overflows the window and is cut.
inline constexpr qsizetype LineKeep = MaxTextLength + 1;
// Whole-file reads (Insert file, Restore) refuse anything larger: far more
// than a window can take, well below what would strain memory.
inline constexpr qint64 MaxReadBytes = 16 * 1024 * 1024;

// Whether the 80-character rule applies to the file (".KVR" only).
bool IsKvrName(const QString &name);

// The bytes a save writes for the window text: each line without trailing
// blanks and with CR LF, a last line without a line end included.
QByteArray SourceBytesForSave(const QString &text);

struct ReadResult {
    bool ok = false;
    QString content;     // Latin-1, line ends as on disk
    FileError error = FileError::None;
    QString description; // the system's words when not ok
    bool tooLarge = false;
};

// Reads a file named by its logical (upper-cased) or real path. A file of
// more than `maxBytes` bytes is not read (`tooLarge`).
ReadResult ReadSourceFile(const QString &name, qint64 maxBytes = MaxReadBytes);

// One line of a file as the load needs it: its length, and its text up to
// what a window could ever show.
struct SourceLine {
    QString text;                 // at most LineKeep characters
    qsizetype length = 0;         // the whole line's length
    bool blanksOnlyBeyond = true; // nothing but blanks past `text`
    // The line without its trailing blanks, as far as a window can hold it.
    QString Trimmed() const;
};

// Reads a source file line by line in pieces, so that a file that is not
// source at all (a binary of gigabytes, one endless line) costs no more
// memory than the window it is cut down to. CR LF, LF and CR end a line; a
// final line end adds no empty line; a last line without one is kept.
class SourceLineReader {
public:
    ReadResult Open(const QString &name);
    // False at the end of the file (or when reading fails half-way).
    bool Next(SourceLine &line);

private:
    void Append(SourceLine &line, const char *data, qsizetype count) const;

    QFile m_file;
    QByteArray m_buffer;
    qsizetype m_pos = 0;
    bool m_skipLf = false;
};

// Whether a file can be opened for reading: None, PathNotFound (no such
// file or folder) or another kind that ends a scan.
ReadResult ProbeFile(const QString &name);

// The kinds of read failure, from the errno the system gave.
FileError ClassifyReadError(int err);

} // namespace kvr
