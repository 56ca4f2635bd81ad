#pragma once

#include <QString>

namespace kvr::board {

// The flash of a simulated KVR4410F: the range a 4410's PROM upload offers
// by default, 8800 up to FB80, so that a whole program image fits.
inline constexpr int FlashBase = 0x8800;
inline constexpr int FlashSize = 0xFB80 - FlashBase;

// Makes sure `path` holds the flash: a missing or empty file becomes an
// erased flash (all bytes FF); a file of another size is refused, since it
// is not a flash of this board. False with a message on failure.
bool PrepareFlashFile(const QString &path, QString &error);

// "flash 8800-FB7F", the line the board prints when it is ready.
QString FlashLine();

}  // namespace kvr::board
