#pragma once
// Reading a PROM programmer's S-record file into the image a KVR4410F's
// flash receives: the data of its S1 records in file order.
#include <QByteArray>
#include <QString>

namespace kvr {

// For one line of the file: its data bytes as characters, an empty string
// for a record without data (or a line under two characters), or a message
// beginning "Error". Record addresses and checksums are not looked at.
QString ConvertSRecord(const QString &line);

struct SRecordImage {
    QByteArray image;
    QString error; // begins "Error" when the file cannot be used
};

// The whole file converted before anything is sent; the first error stops.
SRecordImage ReadSRecordImage(const QString &path);

} // namespace kvr
