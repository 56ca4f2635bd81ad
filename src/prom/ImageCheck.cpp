#include "prom/ImageCheck.h"
#include "app/FilePaths.h"
#include <QFile>
#include <QList>

namespace kvr {

namespace {

QString Hex4(int value)
{
    return QString::number(value, 16).toUpper().rightJustified(4, u'0');
}

QString Hex2(int value)
{
    return QString::number(value & 0xFF, 16).toUpper().rightJustified(2, u'0');
}

// The bytes the hexadecimal digits of `digits` stand for; false when they
// are not pairs of hexadecimal digits.
bool Decode(const QString &digits, QList<int> &bytes)
{
    if (digits.isEmpty() || digits.size() % 2 != 0)
        return false;
    for (qsizetype i = 0; i < digits.size(); i += 2) {
        const int high = HexDigitValue(digits[i]);
        const int low = HexDigitValue(digits[i + 1]);
        if (high < 0 || low < 0)
            return false;
        bytes.append(high * 16 + low);
    }
    return true;
}

struct Record {
    enum Kind { Data, End, Skip } kind = Skip;
    int address = 0;
    int size = 0;
};

// One line of either format: the record, or the fault in `fault`.
Record ReadRecord(const QString &line, ImageFormat format, QString &fault)
{
    const bool srecord = format == ImageFormat::SRecord;
    const QString lead = srecord ? QStringLiteral("S") : QStringLiteral(":");
    if (!line.startsWith(lead) || (srecord && line.size() < 2)) {
        fault = QStringLiteral("not a record");
        return {};
    }
    const QChar type = srecord ? line[1] : QChar();
    if (srecord && QStringLiteral("0159").indexOf(type) < 0) {
        fault = QStringLiteral("record type S%1 is not one of a 16-bit image").arg(type);
        return {};
    }
    QList<int> bytes;
    if (!Decode(line.mid(srecord ? 2 : 1), bytes)) {
        fault = QStringLiteral("not pairs of hexadecimal digits");
        return {};
    }
    // S-records count address, data and checksum; Intel hex counts the data.
    const int counted = static_cast<int>(bytes.size()) - (srecord ? 1 : 5);
    if (counted < (srecord ? 3 : 0)) {
        fault = QStringLiteral("too short for a record");
        return {};
    }
    if (counted != bytes[0]) {
        fault = QStringLiteral("%1 bytes where its count says %2").arg(counted).arg(bytes[0]);
        return {};
    }
    int sum = 0;
    for (qsizetype i = 0; i + 1 < bytes.size(); ++i)
        sum += bytes[i];
    const int want = srecord ? (~sum & 0xFF) : (-sum & 0xFF);
    if (bytes.last() != want) {
        fault = QStringLiteral("checksum %1, should be %2").arg(Hex2(bytes.last()), Hex2(want));
        return {};
    }
    const int address = bytes[1] * 256 + bytes[2];
    if (srecord) {
        if (type == u'1')
            return {Record::Data, address, bytes[0] - 3};
        return {type == u'9' ? Record::End : Record::Skip, 0, 0};
    }
    switch (bytes[3]) {
    case 0: return {Record::Data, address, bytes[0]};
    case 1: return {Record::End, 0, 0};
    default:
        fault = QStringLiteral("record type %1 is not one of a 16-bit image").arg(Hex2(bytes[3]));
        return {};
    }
}

} // namespace

QString ImageCheck::Summary(int start) const
{
    if (ok)
        return QStringLiteral("Image checked: %1 records, %2 bytes from %3 to %4, checksums right")
            .arg(records)
            .arg(bytes)
            .arg(Hex4(start), Hex4(start + bytes - 1));
    if (badLine > 0)
        return QStringLiteral("Image check: line %1: %2").arg(badLine).arg(fault);
    return QStringLiteral("Image check: %1").arg(fault);
}

ImageCheck CheckImage(const QByteArray &text, ImageFormat format, int start, int length)
{
    ImageCheck check;
    int next = start;
    bool ended = false;
    const QList<QByteArray> lines = text.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = QString::fromLatin1(lines[i]);
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        const auto fail = [&](const QString &fault) {
            check.badLine = static_cast<int>(i) + 1;
            check.fault = fault;
            return check;
        };
        if (ended)
            return fail(QStringLiteral("text after the end record"));
        QString fault;
        const Record record = ReadRecord(line, format, fault);
        if (!fault.isEmpty())
            return fail(fault);
        if (record.kind == Record::End) {
            ended = true;
        } else if (record.kind == Record::Data) {
            if (record.address != (next & 0xFFFF))
                return fail(QStringLiteral("address %1, should be %2").arg(Hex4(record.address), Hex4(next)));
            next += record.size;
            check.bytes += record.size;
            ++check.records;
        }
    }
    if (!ended)
        check.fault = QStringLiteral("no end record");
    else if (next != start + length)
        check.fault = QStringLiteral("the data end at %1, not at %2").arg(Hex4(next - 1), Hex4(start + length - 1));
    check.ok = check.fault.isEmpty();
    return check;
}

ImageCheck CheckImageFile(const QString &path, ImageFormat format, int start, int length)
{
    QFile file(ResolvePath(path));
    if (!file.open(QIODevice::ReadOnly)) {
        ImageCheck check;
        check.fault = file.errorString();
        return check;
    }
    return CheckImage(file.readAll(), format, start, length);
}

} // namespace kvr
