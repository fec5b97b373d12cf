// A level with every table at its designed size, and the clicks, points and
// motions the benchmarks try on it. `orvane-bench --verify`, which keeps the
// plain versions honest, uses the same ones.
#pragma once

#include "math/camera.h"
#include "orvlevel/level.h"

#include <memory>
#include <vector>

// 25 x 20 x 10 cells of 200 units: 5000 segments on 26 x 21 x 11 corner points.
constexpr int FULL_X = 25, FULL_Y = 20, FULL_Z = 10;
constexpr float FULL_CELL = 200.0f;
constexpr int FULL_GRID_POINTS = (FULL_X + 1) * (FULL_Y + 1) * (FULL_Z + 1);

// The block of cells, joined through their shared sides and sharing their
// corner points. Outer sides are textured walls, a few of them doors (one
// half open); every free point slot holds an unused point and the light
// table is full. Needs WallTex.bmp and InvSide.bmp in the working directory.
std::unique_ptr<ORVLEVEL> BuildFullLevel();

int32_t FullCellIndex(int x, int y, int z);
// Cell (x, y, z) spans FULL_CELL units around its centre.
VECTOR3D FullCellCentre(int x, int y, int z);
// The segment the delete benchmarks take out: a cell in the middle.
int32_t FullMiddleSegment();

// Puts an unused point into every free point slot.
void FillUnusedPoints(ORVLEVEL& level);
// Textures the inner sides too: the heaviest lighting a level of this size can ask for.
void TextureEverySide(ORVLEVEL& level);

// What DeleteSegment takes away from a level built by BuildFullLevel, so it
// can be put back.
struct SEGMENTSNAPSHOT
{
    int32_t Index = -1;
    SEGMENT Segment;
    VECTOR3D Corners[8];
    bool Linked[6] = {}; // the neighbour's side towards it was passable
};
SEGMENTSNAPSHOT TakeSnapshot(const ORVLEVEL& level, int32_t index);
// The segment, its corner points and its neighbours' links as they were;
// then FillUnusedPoints.
void PutSegmentBack(ORVLEVEL& level, const SEGMENTSNAPSHOT& snapshot);

// A camera in the middle of the block, looking mostly along +x.
CAMERA FullLevelCamera();
// 64 points spread over the block, a few of them outside it.
std::vector<VECTOR3D> FullLevelProbes();

struct MOTION
{
    VECTOR3D From;
    VECTOR3D To;
    float Distance;
    bool Swept;
};
// Points and paths near the outer walls, edges, corners and doors, and some
// in the open interior that touch nothing.
std::vector<MOTION> FullLevelMotions();
