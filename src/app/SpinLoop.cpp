#include "app/SpinLoop.h"

namespace kvr {

void SpinDelay(qint64 lastPass)
{
    volatile qint64 counter = 0;
    while (counter <= lastPass)
        counter = counter + 1;
}

} // namespace kvr
