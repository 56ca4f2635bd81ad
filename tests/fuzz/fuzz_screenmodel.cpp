// Whatever the board sends, in reads of any size, into a small screen at
// any width: the cursor stays on the screen and the scroll-back in bounds.
#include "FuzzInput.h"
#include "link/ScreenModel.h"

using namespace kvr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    ScreenModel screen(4, 6);
    screen.SetVisibleColumns(data[0] * 2); // 0 to 510: below one and past a row
    const size_t chunk = data[1] % 16 + 1;
    for (size_t at = 2; at < size; at += chunk) {
        screen.Feed(QByteArray(reinterpret_cast<const char *>(data + at), qsizetype(std::min(chunk, size - at))));
        fuzz::Require(screen.Row() >= 0 && screen.Row() < screen.Rows(), "cursor row on the screen");
        fuzz::Require(screen.Column() >= 0 && screen.Column() <= ScreenModel::LineLength, "cursor column in a row");
        fuzz::Require(screen.ScrollBack().size() <= 6, "scroll-back within its limit");
        fuzz::Require(screen.LastUsedRow() < screen.Rows(), "last row on the screen");
    }
    screen.ScreenText();
    screen.Clear();
    return 0;
}
