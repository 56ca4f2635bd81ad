#include "prom/SRecord.h"
#include "prom/PromFormat.h"
#include "app/FilePaths.h"
#include <QFile>

namespace kvr {

namespace {

// Images never exceed a 16-bit address space; a larger one is no flash image.
constexpr qsizetype MaxImage = 65536;

// The byte two hexadecimal digits at `at` stand for; -1 when they are not there.
int HexPair(const QString &text, qsizetype at)
{
    int value = 0;
    for (qsizetype i = at; i < at + 2; ++i) {
        const int digit = i < text.size() ? HexDigitValue(text[i]) : -1;
        if (digit < 0)
            return -1;
        value = value * 16 + digit;
    }
    return value;
}

} // namespace

QString ConvertSRecord(const QString &line)
{
    if (line.size() < 2)
        return QString();
    const QString type = line.left(2);
    if (type == QLatin1String("S0") || type == QLatin1String("S5") || type == QLatin1String("S9"))
        return QString();
    if (type == QLatin1String("S2"))
        return QStringLiteral("Error: Bad S-record file, address is 24 bits wide");
    if (type == QLatin1String("S3"))
        return QStringLiteral("Error: Bad S-record file, address is 32 bits wide");
    if (type == QLatin1String("S7"))
        return QStringLiteral("Error: Bad S-record file, termination record address is 32 bits wide");
    if (type == QLatin1String("S8"))
        return QStringLiteral("Error: Bad S-record file, termination record address is 24 bits wide");
    if (type != QLatin1String("S1"))
        return QStringLiteral("Error: Bad S-record file, format unrecognised");

    // A record that is not hexadecimal, or shorter than its count says,
    // would put made-up bytes into the flash.
    const int count = HexPair(line, 2);
    if (count < 0)
        return QStringLiteral("Error: Bad S-record file, record count is not hexadecimal");
    QString data;
    for (int i = 0; i < count - 3; ++i) {
        const int value = HexPair(line, 8 + 2 * i);
        if (value < 0)
            return QStringLiteral("Error: Bad S-record file, record shorter than its count or not hexadecimal");
        data += QChar(value);
    }
    return data;
}

SRecordImage ReadSRecordImage(const QString &path)
{
    QFile file(ResolvePath(path));
    if (!file.open(QIODevice::ReadOnly))
        return {{}, QStringLiteral("Error: ") + file.errorString()};
    // Three characters of text per byte at most, with room for headers.
    if (file.size() > MaxImage * 4)
        return {{}, QStringLiteral("Error: Bad S-record file, image larger than 65536 bytes")};
    QString text = QString::fromLatin1(file.readAll());
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    SRecordImage result;
    for (const QString &line : text.split(u'\n')) {
        const QString converted = ConvertSRecord(line);
        if (converted.startsWith(QLatin1String("Error"))) {
            result.error = converted;
            return result;
        }
        result.image += converted.toLatin1();
    }
    if (result.image.size() > MaxImage)
        result.error = QStringLiteral("Error: Bad S-record file, image larger than 65536 bytes");
    else if (result.image.isEmpty())
        result.error = QStringLiteral("Error: Bad S-record file, no data records");
    return result;
}

} // namespace kvr
