#include "TestClock.h"

namespace kvr {

quint32 TestClock::TickCount()
{
    ++readings;
    if (!scriptedTicks.isEmpty())
        return scriptedTicks.takeFirst();
    const quint32 now = ticks;
    ticks += stepPerReading;
    return now;
}

double TestClock::SecondsSinceMidnight()
{
    return TickCount() / 1000.0;
}

} // namespace kvr
