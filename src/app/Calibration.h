#pragma once
// Measures how fast this machine runs the empty loop that paces characters
// to the board, and derives both intercharacter delays from it.
#include "app/Clock.h"
#include "app/Settings.h"

namespace kvr {

struct DelayPair {
    qint64 delay4410;
    qint64 delay6630;
};

// The arithmetic alone: elapsed milliseconds to both delays.
DelayPair DelaysFromElapsed(qint64 elapsedMs);

// Runs the timed loops against `clock` and stores both delays.
void CalibrateDelay(Settings &settings, Clock &clock);

// The timed loop of the calibration: 1601 outer passes around 30000 passes
// of the pacing loop.
void CalibrationLoop();

} // namespace kvr

namespace kvr {

// The delay dialog's OK: "default" recalibrates both delays; a number is
// stored for the current board family only. The caller writes the settings.
void ApplyDelayChoice(Settings &settings, const QString &choice, Clock &clock);

// The value the delay dialog shows when it opens: the current family's delay.
QString CurrentFamilyDelay(const Settings &settings);

} // namespace kvr
