#pragma once
// The two clocks the board dialogue is timed with: a millisecond tick count
// that wraps like the system's, and seconds since midnight.
#include <QtGlobal>

namespace kvr {

class Clock {
public:
    virtual ~Clock() = default;
    virtual quint32 TickCount() = 0;
    virtual double SecondsSinceMidnight() = 0;
    // Gives the processor away for about `ms` while a wait has nothing to do;
    // a test clock need not.
    virtual void Sleep(int ms) { Q_UNUSED(ms); }
};

class SystemClock : public Clock {
public:
    quint32 TickCount() override;
    double SecondsSinceMidnight() override;
    void Sleep(int ms) override;
};

// True while `now` is before `deadline`, compared as signed 32-bit values
// so that a wrapped tick count still orders correctly.
inline bool TickBefore(quint32 now, quint32 deadline)
{
    return static_cast<qint32>(now - deadline) < 0;
}

} // namespace kvr
