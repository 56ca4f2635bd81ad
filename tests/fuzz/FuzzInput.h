#pragma once
// Turns a fuzzer's bytes into what the parsers read: text as the source
// files and the board's replies arrive (one byte a character), cut into
// lines. A failed invariant aborts, which libFuzzer reports as a crash.

#include <QString>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

namespace kvr::fuzz {

inline QString Latin1(const uint8_t *data, size_t size)
{
    return QString::fromLatin1(reinterpret_cast<const char *>(data), qsizetype(size));
}

inline QStringList Lines(const uint8_t *data, size_t size)
{
    return Latin1(data, size).split(QLatin1Char('\n'));
}

inline void Require(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "invariant broken: %s\n", what);
        std::abort();
    }
}

} // namespace kvr::fuzz
