#include "app/Clock.h"
#include <QDateTime>
#include <QElapsedTimer>
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

} // namespace kvr
