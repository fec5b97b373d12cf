// A level with every table at its designed size, for benchmarks and the
// tests that keep the benchmarks' plain versions honest.
#pragma once

#include "orvlevel/level.h"

#include <memory>

constexpr int FULL_X = 25, FULL_Y = 20, FULL_Z = 10; // 5000 cells
constexpr float FULL_CELL = 200.0f;

// 5000 cells in a 25 x 20 x 10 block, joined through their shared sides and
// sharing their corner points; outer sides are textured walls. The point
// table is filled up with unused points and the light table with 128 lights.
std::unique_ptr<ORVLEVEL> BuildFullLevel();
// Fills every free point slot with an unused point again.
void FillUnusedPoints(ORVLEVEL& level);
// Centre of cell (x, y, z).
VECTOR3D FullCellCentre(int x, int y, int z);
