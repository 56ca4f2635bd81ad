#include "app/Clock.h"
#include <QDateTime>
#include <QElapsedTimer>
#include <QThread>
#include <QTime>

namespace kvr {

quint32 SystemClock::TickCount()
{
    static QElapsedTimer timer = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return static_cast<quint32>(timer.elapsed());
}

double SystemClock::SecondsSinceMidnight()
{
    return QTime::currentTime().msecsSinceStartOfDay() / 1000.0;
}

void SystemClock::Sleep(int ms)
{
    if (ms > 0)
        QThread::msleep(static_cast<unsigned long>(ms));
}

} // namespace kvr
