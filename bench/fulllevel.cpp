#include "fulllevel.h"

#include <cmath>

VECTOR3D FullCellCentre(int x, int y, int z)
{
    return VECTOR3D(x * FULL_CELL, y * FULL_CELL, z * FULL_CELL);
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
    L.DeleteSegment(0); // the default cube and its points go
    L.Add("WallTex.bmp");

    // Grid points, then cells whose corners are the default cube's corners
    // moved to the cell's centre.
    const int px = FULL_X + 1, py = FULL_Y + 1, pz = FULL_Z + 1;
    auto pointIndex = [&](int x, int y, int z) { return (z * py + y) * px + x; };
    for (int z = 0; z < pz; ++z)
        for (int y = 0; y < py; ++y)
            for (int x = 0; x < px; ++x)
                L.Add(VECTOR3D((x - 0.5f) * FULL_CELL, (y - 0.5f) * FULL_CELL, (z - 0.5f) * FULL_CELL));

    auto cellIndex = [&](int x, int y, int z) { return (z * FULL_Y + y) * FULL_X + x; };
    // Neighbour direction of each side: +y, +x, -y, -x, +z, -z.
    static const int dir[6][3] = {{0, 1, 0}, {1, 0, 0}, {0, -1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, -1}};
    for (int z = 0; z < FULL_Z; ++z)
        for (int y = 0; y < FULL_Y; ++y)
            for (int x = 0; x < FULL_X; ++x)
            {
                SEGMENT s;
                for (int c = 0; c < 8; ++c)
                {
                    VECTOR3D d = DefaultCubeCorners[c];
                    s.Corners[c] = pointIndex(x + (d.x > 0), y + (d.y > 0), z + (d.z > 0));
                }
                for (int i = 0; i < 6; ++i)
                {
                    int nx = x + dir[i][0], ny = y + dir[i][1], nz = z + dir[i][2];
                    bool inside = nx >= 0 && nx < FULL_X && ny >= 0 && ny < FULL_Y && nz >= 0 && nz < FULL_Z;
                    s.Neighbours[i] = inside ? cellIndex(nx, ny, nz) : -1;
                    s.Sides[i].Texture = inside ? -1 : 0;
                    s.Sides[i].WallType = inside ? WALL_PASSABLE : WALL_NORMAL;
                }
                L.Add(&s);
            }
    FillUnusedPoints(L);

    // Lights spread through the block on a fixed pattern.
    for (int i = 0; i < MAX_LIGHTS; ++i)
    {
        VECTOR3D at = FullCellCentre((i * 7) % FULL_X, (i * 3) % FULL_Y, (i * 5) % FULL_Z);
        L.NewLight(at, 255, 200 + i % 56, 128, 5000.0f);
    }
    L.CurrentSegment = -1;
    return level;
}
