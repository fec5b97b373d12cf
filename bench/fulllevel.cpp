#include "fulllevel.h"

#include "math/geometry.h"

#include <cstdint>

namespace {

// Neighbour direction of each side: +y, +x, -y, -x, +z, -z (the default cube's faces).
const int SideDirection[6][3] = {{0, 1, 0}, {1, 0, 0}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, -1}};

constexpr int SIDE_MINUS_X = 3;

int32_t GridPoint(int x, int y, int z)
{
    return (z * (FULL_Y + 1) + y) * (FULL_X + 1) + x;
}

bool InBlock(int x, int y, int z)
{
    return x >= 0 && x < FULL_X && y >= 0 && y < FULL_Y && z >= 0 && z < FULL_Z;
}

// Cells whose -x wall is a door: one closed, one stopped half open.
struct DOORCELL
{
    int Y, Z;
    int32_t State;
    float Opening;
    int32_t SlideEdge;
};
const DOORCELL Doors[] = {{2, 3, DOOR_CLOSED, 0.0f, 0}, {5, 3, DOOR_OPENING, 0.5f, 1}};

} // namespace

int32_t FullCellIndex(int x, int y, int z)
{
    return (z * FULL_Y + y) * FULL_X + x;
}

VECTOR3D FullCellCentre(int x, int y, int z)
{
    return VECTOR3D(x * FULL_CELL, y * FULL_CELL, z * FULL_CELL);
}

int32_t FullMiddleSegment()
{
    return FullCellIndex(FULL_X / 2, FULL_Y / 2, FULL_Z / 2);
}

void FillUnusedPoints(ORVLEVEL& level)
{
    for (int i = 0; i < MAX_POINTS; ++i)
        if (!level.Points[i])
            level.Add(VECTOR3D(float(i % 97), float(i % 89), -5000.0f - float(i)));
}

std::unique_ptr<ORVLEVEL> BuildFullLevel()
{
    auto level = std::make_unique<ORVLEVEL>();
    ORVLEVEL& L = *level;
    L.DeleteSegment(0); // the default cube and its points; texture 0 (WallTex.bmp) stays

    // Built directly rather than extruded side by side: 5000 extrusions and
    // joins would each sweep the point table.
    const float half = FULL_CELL / 2;
    for (int z = 0; z <= FULL_Z; ++z)
        for (int y = 0; y <= FULL_Y; ++y)
            for (int x = 0; x <= FULL_X; ++x)
                L.Add(FullCellCentre(x, y, z) - VECTOR3D(half, half, half));

    for (int z = 0; z < FULL_Z; ++z)
        for (int y = 0; y < FULL_Y; ++y)
            for (int x = 0; x < FULL_X; ++x)
            {
                SEGMENT s;
                for (int c = 0; c < 8; ++c)
                {
                    VECTOR3D d = DefaultCubeCorners[c];
                    s.Corners[c] = GridPoint(x + (d.x > 0), y + (d.y > 0), z + (d.z > 0));
                }
                for (int i = 0; i < 6; ++i)
                {
                    const int* d = SideDirection[i];
                    int nx = x + d[0], ny = y + d[1], nz = z + d[2];
                    bool inner = InBlock(nx, ny, nz);
                    s.Neighbours[i] = inner ? FullCellIndex(nx, ny, nz) : -1;
                    s.Sides[i].Texture = inner ? -1 : 0;
                    s.Sides[i].WallType = inner ? WALL_PASSABLE : WALL_NORMAL;
                }
                L.Add(&s);
            }
    for (const DOORCELL& d : Doors)
    {
        SIDE& side = L.Segments[FullCellIndex(0, d.Y, d.Z)]->Sides[SIDE_MINUS_X];
        side.WallType = WALL_DOOR;
        side.Door.State = d.State;
        side.Door.Opening = d.Opening;
        side.Door.SlideEdge = d.SlideEdge;
    }
    FillUnusedPoints(L);

    // An 8 x 4 x 4 lattice of lights, set off the cell centres. Colours and
    // brightness vary widely, so that thousands of corners end between black
    // and saturation and thousands saturate: both the sums and the clamps
    // are exercised.
    for (int i = 0; i < MAX_LIGHTS; ++i)
    {
        VECTOR3D cell = FullCellCentre(1 + 3 * (i % 8), 2 + 5 * (i / 8 % 4), 1 + 2 * (i / 32));
        VECTOR3D at = cell + VECTOR3D(37, -23, 11);
        float brightness = 4000.0f * float(1 + (i % 8) * (i % 8));
        L.NewLight(at, 255, 128 + (i * 37) % 128, 64 + (i * 53) % 192, brightness);
    }
    L.CurrentSegment = -1;
    return level;
}

void TextureEverySide(ORVLEVEL& level)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        if (SEGMENT* seg = level.Segments[s])
            for (SIDE& side : seg->Sides)
                side.Texture = 0;
}

SEGMENTSNAPSHOT TakeSnapshot(const ORVLEVEL& level, int32_t index)
{
    SEGMENTSNAPSHOT shot;
    shot.Index = index;
    shot.Segment = *level.Segments[index];
    for (int c = 0; c < 8; ++c)
        shot.Corners[c] = *level.PointAt(shot.Segment.Corners[c]);
    for (int i = 0; i < 6; ++i)
        if (int32_t n = shot.Segment.Neighbours[i]; n != -1)
            shot.Linked[i] = level.Segments[n]->Sides[OppositeSide[i]].WallType == WALL_PASSABLE;
    return shot;
}

void PutSegmentBack(ORVLEVEL& level, const SEGMENTSNAPSHOT& shot)
{
    // Straight into the slots: a plain delete leaves the free-slot hint
    // where it was, so Add would not find them. Taking a slot below the hint
    // is harmless; the hint only promises that the slots below it are used.
    for (int c = 0; c < 8; ++c)
    {
        int32_t p = shot.Segment.Corners[c];
        if (!level.Points[p])
            level.PutPoint(p, shot.Corners[c]);
    }
    level.PutSegment(shot.Index, shot.Segment);
    for (int i = 0; i < 6; ++i)
        if (int32_t n = shot.Segment.Neighbours[i]; n != -1 && shot.Linked[i])
        {
            SEGMENT& other = *level.Segments[n];
            other.Neighbours[OppositeSide[i]] = shot.Index;
            other.Sides[OppositeSide[i]].WallType = WALL_PASSABLE;
        }
    FillUnusedPoints(level);
}

CAMERA FullLevelCamera()
{
    CAMERA c;
    c.Position = FullCellCentre(FULL_X / 2, FULL_Y / 2, FULL_Z / 2) + VECTOR3D(1, 2, 3);
    c.ViewDir = VECTOR3D(1, 0.1f, 0.05f) / Length(VECTOR3D(1, 0.1f, 0.05f));
    c.Up = Cross(Cross(c.ViewDir, VECTOR3D(0, 1, 0)), c.ViewDir);
    c.Up /= Length(c.Up);
    c.Right = Cross(c.ViewDir, c.Up);
    c.Aspect = 0.75f;
    return c;
}

std::vector<VECTOR3D> FullLevelProbes()
{
    // A fixed sequence of its own, so the probes do not depend on rand().
    uint32_t seed = 12345;
    auto next = [&seed](float lo, float hi) {
        seed = seed * 1664525u + 1013904223u;
        return lo + (hi - lo) * float(seed >> 8) / 16777216.0f;
    };
    const float half = FULL_CELL / 2, margin = 50.0f;
    std::vector<VECTOR3D> probes;
    for (int i = 0; i < 64; ++i)
    {
        float x = next(-half - margin, FULL_X * FULL_CELL - half + margin);
        float y = next(-half - margin, FULL_Y * FULL_CELL - half + margin);
        float z = next(-half - margin, FULL_Z * FULL_CELL - half + margin);
        probes.push_back(VECTOR3D(x, y, z));
    }
    return probes;
}

std::vector<MOTION> FullLevelMotions()
{
    auto at = [](int x, int y, int z, float dx, float dy, float dz) {
        return FullCellCentre(x, y, z) + VECTOR3D(dx, dy, dz);
    };
    return {
        {at(0, 10, 4, -97, 13, -21), {}, 5, false},                 // 3 units from the -x wall
        {at(0, 10, 4, -97, 13, -21), {}, 2, false},                 // the same, out of reach
        {at(0, 12, 6, -80, 5, 5), at(0, 12, 6, -115, 9, 5), 5, true}, // out through the wall
        {at(0, 3, 7, -50, 0, 0), at(0, 3, 7, -93, 60, -40), 8, true},  // ends near the wall
        {at(0, 0, 0, -97, -96, -98), {}, 5, false},                  // a corner of three walls
        {at(0, 0, 4, -102, -102, 50), {}, 5, false},                 // outside, by the block's edge
        {at(12, 10, 5, 3, 4, 5), {}, 10, false},                     // the open middle
        {at(5, 5, 5, 0, 0, 0), at(15, 12, 3, 0, 0, 0), 10, true},    // across many cells
        {at(20, 15, 9, 10, -20, 97), {}, 5, false},                  // under the top wall
        {at(7, 19, 2, 0, 90, 0), at(7, 19, 2, 0, 130, 0), 5, true},  // out through +y
        {at(0, 2, 3, -97, 20, 30), {}, 5, false},                    // a closed door
        {at(0, 5, 3, -97, 50, 0), {}, 5, false},                     // the half-open door's closed part
        {at(0, 5, 3, -97, -50, 0), {}, 5, false},                    // ... and its opening
        {at(0, 5, 3, -90, -50, 10), at(0, 5, 3, -130, -50, 10), 5, true}, // out through the opening
    };
}
