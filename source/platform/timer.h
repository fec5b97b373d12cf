// Millisecond interval timer polled by the frame loop and the blink.
#pragma once

#include <cstdint>

struct TIMER
{
    uint32_t Start = 0;
    uint32_t Interval = 0; // 0: not armed

    void Set(uint32_t ms);
    // True when not armed or when strictly more than Interval ms have passed
    // since Set; it does not re-arm.
    bool Elapsed() const;
};
