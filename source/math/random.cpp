#include "math/random.h"

namespace {
// A 64-bit linear congruential generator; the high bits are well mixed.
uint64_t State = 0x853C49E6748FEA9BULL;

uint64_t Next()
{
    State = State * 6364136223846793005ULL + 1442695040888963407ULL;
    return State;
}
}

void SRand(uint32_t seed)
{
    State = 0x853C49E6748FEA9BULL ^ (static_cast<uint64_t>(seed) * 0x9E3779B97F4A7C15ULL);
    Next();
}

int Rand()
{
    return static_cast<int>(Next() >> 49); // 15 bits: 0 ... 32767
}

long LRand()
{
    return static_cast<long>(Next() >> 33); // 31 bits
}
