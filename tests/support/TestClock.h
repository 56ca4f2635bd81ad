#pragma once
// A clock the test drives. Each reading can advance it by a step, so loops
// that wait on the clock end without real waiting.
#include "app/Clock.h"
#include <QList>

namespace kvr {

class TestClock : public Clock {
public:
    quint32 TickCount() override;
    double SecondsSinceMidnight() override;

    quint32 ticks = 1000;          // milliseconds
    quint32 stepPerReading = 0;    // added after each reading of either clock
    QList<quint32> scriptedTicks;  // readings returned first, in order
    int readings = 0;
};

} // namespace kvr
