#pragma once
// The empty counting loop that paces characters to the board. The delay
// calibration times this very loop, so one calibrated pass is one paced pass.
#include <QtGlobal>

namespace kvr {

// Counts from 0 to `lastPass` inclusive on a counter the optimiser must keep.
void SpinDelay(qint64 lastPass);

} // namespace kvr
