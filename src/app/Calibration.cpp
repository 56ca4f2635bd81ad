#include "app/Calibration.h"
#include "app/SpinLoop.h"

namespace kvr {

DelayPair DelaysFromElapsed(qint64 elapsedMs)
{
    if (elapsedMs == 0)
        elapsedMs = 1;
    DelayPair d{6600000 / elapsedMs, 66000000 / elapsedMs};
    if (d.delay4410 < 0)
        d.delay4410 = 0;
    if (d.delay6630 < 0)
        d.delay6630 = 0;
    return d;
}

void CalibrationLoop()
{
    // The inner passes run in the pacing loop itself; the few outer calls
    // cost nothing next to 30000 passes each.
    for (int outer = 0; outer <= 1600; ++outer)
        SpinDelay(30000 - 1);
}

void CalibrateDelay(Settings &settings, Clock &clock)
{
    const quint32 start = clock.TickCount();
    CalibrationLoop();
    const quint32 end = clock.TickCount();
    const DelayPair d = DelaysFromElapsed(static_cast<qint32>(end - start));
    settings.delay4410 = QString::number(d.delay4410);
    settings.delay6630 = QString::number(d.delay6630);
}

} // namespace kvr

namespace kvr {

namespace {
bool Is6630(const Settings &settings)
{
    return settings.computerType.left(4) == QLatin1String("6630");
}
} // namespace

void ApplyDelayChoice(Settings &settings, const QString &choice, Clock &clock)
{
    const QString value = choice.trimmed();
    if (value == QLatin1String("default")) {
        CalibrateDelay(settings, clock);
        return;
    }
    (Is6630(settings) ? settings.delay6630 : settings.delay4410) = value;
}

QString CurrentFamilyDelay(const Settings &settings)
{
    return Is6630(settings) ? settings.delay6630 : settings.delay4410;
}

} // namespace kvr
