// Reading a settings file grows with its size, not with its square: the time
// per key for 2,000 and for 20,000 keys, and for a 10 MB file.
#include "app/IniFile.h"
#include <QElapsedTimer>
#include <cstdio>

using namespace kvr;

namespace {

QByteArray Profile(int keys, int valueLength)
{
    QByteArray bytes = "; a large profile\r\n[Parameters]\r\n";
    const QByteArray value(valueLength, 'x');
    for (int i = 0; i < keys; ++i)
        bytes += "Key number " + QByteArray::number(i) + '=' + value + "\r\n";
    return bytes;
}

double MicrosecondsPerKey(const QByteArray &bytes, int keys)
{
    QElapsedTimer elapsed;
    elapsed.start();
    IniFile ini;
    ini.Parse(bytes);
    const QString last = ini.Value(QStringLiteral("Parameters"), QStringLiteral("Key number %1").arg(keys - 1), {});
    const double us = elapsed.nsecsElapsed() / 1e3 / keys;
    return last.isEmpty() ? -1 : us;
}

} // namespace

int main()
{
    const double small = MicrosecondsPerKey(Profile(2000, 10), 2000);
    const double large = MicrosecondsPerKey(Profile(20000, 10), 20000);
    std::printf("settings file: %.2f us a key at 2,000 keys, %.2f us at 20,000 (ratio %.1f, goal under 2: linear)\n",
                small, large, large / small);
    const QByteArray big = Profile(200000, 35);
    QElapsedTimer elapsed;
    elapsed.start();
    IniFile ini;
    ini.Parse(big);
    std::printf("settings file: %.1f MB read in %lld ms\n", big.size() / 1e6, elapsed.elapsed());
    return 0;
}
