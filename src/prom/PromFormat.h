#pragma once
// The small rules of a PROM upload: the addresses the dialog offers, how a
// typed address is read, the command the board's upload program answers,
// the image file's extension and the line that forgets the program again.
#include <QString>
#include <optional>

namespace kvr {

enum class ImageFormat { IntelHex, SRecord };

struct UploadRange {
    QString start; // four hexadecimal digits, no prefix
    QString end;
};

// 0 to 15 for a hexadecimal digit of either case, -1 for anything else.
int HexDigitValue(QChar c);

// The 16-bit signed value of the hexadecimal digits `text` begins with, as
// a literal of up to four digits denotes it (8000 to FFFF are negative).
int SignedHex16(const QString &text);

// The addresses the dialog starts with, from the computer type and the end
// of the last program compiled (empty when none is known).
UploadRange DefaultUploadRange(const QString &computerType, const QString &endOfProgramAddress);

// A typed address of one to four hexadecimal digits (blanks around are
// allowed), negative readings corrected by 65536; nullopt for anything else.
std::optional<int> AddressValue(const QString &text);

struct UploadRequest {
    int start = 0;
    int end = 0;
    QString problem; // empty when the request can be sent
};

// What cmdOK makes of the three boxes: both addresses readable, the end
// above the start, a file named. `endMayBeTop` lets the end be 10000 (the
// command line's exclusive end just past FFFF).
UploadRequest ReadUploadRequest(const QString &startText, const QString &endText, const QString &fileName,
                                bool endMayBeTop = false);

// " 34816 29568 S-RECORD": start and length in decimal, each after a blank.
QString UploadCommand(int start, int end, ImageFormat format);

// `name` with ".MOT" or ".INT" appended when its last four characters hold no ".".
QString WithImageExtension(const QString &name, ImageFormat format);
// `name` with the other format's extension swapped for this one's; other
// names are left alone.
QString SwapImageExtension(const QString &name, ImageFormat format);
QString ImageExtension(ImageFormat format);

// "PROGMOT.KVR" or "PROGINT.KVR".
QString BoardProgramName(ImageFormat format);

// The line that takes the upload program (JOB and all after it) off the board.
QString ForgetLine(const QString &computerType);

} // namespace kvr
