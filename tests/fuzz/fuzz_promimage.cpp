// S-record lines through the converter, and any file through the image
// check in both formats.
#include "FuzzInput.h"
#include "prom/ImageCheck.h"
#include "prom/SRecord.h"

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QStringList lines = fuzz::Lines(data, size);
    for (const QString &line : lines) {
        const QString converted = ConvertSRecord(line);
        fuzz::Require(converted.startsWith(QLatin1String("Error")) || converted.size() <= line.size() / 2,
                      "data is at most half the record's digits");
    }
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const ImageFormat format : {ImageFormat::SRecord, ImageFormat::IntelHex}) {
        const ImageCheck check = CheckImage(text, format, size ? data[0] * 256 : 0, 0x10000);
        fuzz::Require(check.bytes >= 0 && check.records >= 0, "counts are not negative");
        fuzz::Require(check.badLine >= 0 && check.badLine <= lines.size() + 1, "a fault names a line of the file");
        fuzz::Require(check.ok == check.fault.isEmpty(), "a fault is said when not ok");
        check.Summary(0);
    }
    return 0;
}
