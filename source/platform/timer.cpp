#include "platform/timer.h"
#include "platform/platform.h"

void TIMER::Set(uint32_t ms)
{
    Interval = ms;
    Start = GetTickCount32();
}

bool TIMER::Elapsed() const
{
    if (Interval == 0)
        return true;
    return GetTickCount32() > static_cast<uint32_t>(Start + Interval);
}
