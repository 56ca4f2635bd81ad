#pragma once
// Whole-file writes that either replace the file completely or leave the
// old one untouched (a full disk included).
#include <QByteArray>
#include <QString>

namespace kvr {

// The kinds of file failure the messages tell apart.
enum class FileError {
    None,
    NameOrWriteProtected, // name not legal or file write-protected
    PathNotFound,         // file or path not found
    DiskFull,
    Other,
};

struct SaveResult {
    FileError error = FileError::None;
    QString description; // the system's words, for "Error: " messages
    bool Ok() const { return error == FileError::None; }
};

SaveResult SaveWholeFile(const QString &path, const QByteArray &bytes);

} // namespace kvr
