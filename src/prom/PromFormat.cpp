#include "prom/PromFormat.h"

namespace kvr {

int HexDigitValue(QChar c)
{
    if (c >= u'0' && c <= u'9')
        return c.unicode() - u'0';
    const QChar upper = c.toUpper();
    if (upper >= u'A' && upper <= u'F')
        return upper.unicode() - u'A' + 10;
    return -1;
}

int SignedHex16(const QString &text)
{
    int value = 0;
    for (int i = 0; i < text.size() && i < 4 && HexDigitValue(text[i]) >= 0; ++i)
        value = value * 16 + HexDigitValue(text[i]);
    return static_cast<qint16>(static_cast<quint16>(value));
}

UploadRange DefaultUploadRange(const QString &computerType, const QString &endOfProgramAddress)
{
    const bool is4410 = computerType.left(4) == QLatin1String("4410");
    const QString lowStart = QStringLiteral("4000");
    if (is4410) {
        if (endOfProgramAddress.isEmpty())
            return {QStringLiteral("8800"), QStringLiteral("FB80")};
        const bool notBelow = SignedHex16(endOfProgramAddress) >= SignedHex16(QStringLiteral("8800"));
        return {notBelow ? QStringLiteral("8800") : lowStart, endOfProgramAddress};
    }
    if (endOfProgramAddress.isEmpty())
        return {QStringLiteral("0800"), QStringLiteral("8000")};
    const bool notBelow = SignedHex16(endOfProgramAddress) >= SignedHex16(QStringLiteral("8000"));
    return {notBelow ? QStringLiteral("8000") : lowStart, endOfProgramAddress};
}

std::optional<int> AddressValue(const QString &text)
{
    const QString digits = text.trimmed();
    if (digits.isEmpty() || digits.size() > 4)
        return std::nullopt;
    for (const QChar c : digits)
        if (HexDigitValue(c) < 0)
            return std::nullopt;
    int value = SignedHex16(digits);
    if (value < 0)
        value += 65536;
    return value;
}

UploadRequest ReadUploadRequest(const QString &startText, const QString &endText, const QString &fileName,
                                bool endMayBeTop)
{
    UploadRequest request;
    const std::optional<int> start = AddressValue(startText);
    std::optional<int> end = AddressValue(endText);
    if (endMayBeTop && endText.trimmed() == QLatin1String("10000"))
        end = 0x10000;
    if (!start)
        request.problem = QStringLiteral("The start address must be 1 to 4 hexadecimal digits, such as 8800.");
    else if (!end)
        request.problem = QStringLiteral("The end address must be 1 to 4 hexadecimal digits, such as FB80.");
    else if (*end - *start <= 0)
        request.problem = QStringLiteral("The end address must be above the start address.");
    else if (fileName.trimmed().isEmpty())
        request.problem = QStringLiteral("Enter the name of the PROM image file.");
    if (request.problem.isEmpty()) {
        request.start = *start;
        request.end = *end;
    }
    return request;
}

QString UploadCommand(int start, int end, ImageFormat format)
{
    return QStringLiteral(" %1 %2").arg(start).arg(end - start)
           + (format == ImageFormat::SRecord ? QStringLiteral(" S-RECORD") : QStringLiteral(" H-RECORD"));
}

QString ImageExtension(ImageFormat format)
{
    return format == ImageFormat::SRecord ? QStringLiteral(".MOT") : QStringLiteral(".INT");
}

QString WithImageExtension(const QString &name, ImageFormat format)
{
    if (name.right(4).contains(u'.'))
        return name;
    return name + ImageExtension(format);
}

QString SwapImageExtension(const QString &name, ImageFormat format)
{
    const ImageFormat other = format == ImageFormat::SRecord ? ImageFormat::IntelHex : ImageFormat::SRecord;
    if (name.right(4).compare(ImageExtension(other), Qt::CaseInsensitive) != 0)
        return name;
    QString extension = ImageExtension(format);
    // Keeps the case the user typed the extension in.
    if (name.right(3) == name.right(3).toLower())
        extension = extension.toLower();
    return name.left(name.size() - 4) + extension;
}

QString BoardProgramName(ImageFormat format)
{
    return format == ImageFormat::SRecord ? QStringLiteral("PROGMOT.KVR") : QStringLiteral("PROGINT.KVR");
}

QString ForgetLine(const QString &computerType)
{
    const QString n = computerType == QLatin1String("4410ANS") ? QStringLiteral(" 2") : QStringLiteral(" 4");
    return QStringLiteral("' JOB") + n + QStringLiteral(" - DUP @ CONTEXT @ ! 4 - DP !");
}

} // namespace kvr
