// The block operations on the full-size level: marking all 5000 segments and
// copying them, pasting a 500-segment block onto a side, mirroring it.
#pragma once

void RegisterBlockBenchmarks();
