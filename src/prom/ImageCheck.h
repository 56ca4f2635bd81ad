#pragma once
// Checks a PROM image file as the board wrote it: every record well formed
// with its checksum right, the data contiguous from the start address, and
// the end record last. It only reports; the file stays as received.
#include "prom/PromFormat.h"
#include <QByteArray>
#include <QString>

namespace kvr {

struct ImageCheck {
    bool ok = false;
    int records = 0;        // data records
    int bytes = 0;          // data bytes
    int badLine = 0;        // 1-based line of the first fault, 0 when none
    QString fault;          // what is wrong there (or with the whole file)

    // One line for the user: what was found, or the first fault.
    QString Summary(int start) const;
};

// `start` and `length` are the range asked for.
ImageCheck CheckImage(const QByteArray &text, ImageFormat format, int start, int length);
ImageCheck CheckImageFile(const QString &path, ImageFormat format, int start, int length);

} // namespace kvr
