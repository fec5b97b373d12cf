// The program's own random generator. Every random choice of the program
// draws from it, so a seeded run is repeatable.
#pragma once

#include <cstdint>

constexpr int RAND_LIMIT = 32767;

// Seeds the generator; the program seeds it with the calendar time at start.
void SRand(uint32_t seed);
// 0 ... 32767, the range the game's formulas expect (they scale by 1/32767).
int Rand();
// A non-negative random integer (0 ... 2^31 - 1) from the same generator.
long LRand();
