#pragma once
// Whole-file writes that either replace the file completely or leave the
// old one untouched (a full disk included).
#include <QByteArray>
#include <QString>
#include <memory>

class QSaveFile;

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

// A file written piece by piece that takes the place of the old one only
// at Commit, which also keeps what was written when a run stops half-way.
// Until then the old file stays readable, even when it is being rewritten.
class PieceWiseSave {
public:
    PieceWiseSave();
    ~PieceWiseSave();
    PieceWiseSave(const PieceWiseSave &) = delete;
    PieceWiseSave &operator=(const PieceWiseSave &) = delete;

    SaveResult Open(const QString &path);
    SaveResult Write(const QByteArray &bytes);
    SaveResult Commit();

private:
    std::unique_ptr<QSaveFile> m_file;
};

} // namespace kvr
