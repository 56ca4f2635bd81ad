#pragma once
// Source files on disk: bytes read as Latin-1 so every byte value survives,
// CR LF, LF and CR accepted on reading, CR LF written, trailing blanks
// removed both ways.
#include "app/SafeSave.h"
#include <QString>
#include <QStringList>

namespace kvr {

// The lines of a file's content, without their terminators. A final line
// end adds no empty line; a last line without one is kept.
QStringList SplitSourceLines(const QString &content);

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
};

// Reads a file named by its logical (upper-cased) or real path.
ReadResult ReadSourceFile(const QString &name);

// Whether a file can be opened for reading: None, PathNotFound (no such
// file or folder) or another kind that ends a scan.
ReadResult ProbeFile(const QString &name);

// The kinds of read failure, from the errno the system gave.
FileError ClassifyReadError(int err);

} // namespace kvr
