// The data files the build generates, as the game loads them.
#include "graphics/bitmap.h"
#include "graphics/trimesh.h"
#include "platform/tests/testplatform.h"
#include "things/thingmeshes.h"

#include <filesystem>
#include <span>
#include <string>

TEST_F(PlatformTest, EveryGeneratedDataFileLoads)
{
    // The tests run in the program directory, beside the generated files.
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator("."))
    {
        const std::string name = entry.path().filename().string(), type = entry.path().extension().string();
        SCOPED_TRACE(name);
        if (type == ".bmp")
        {
            // Black is the colour key: only the wall texture has none of it.
            int32_t size[2] = {};
            ASSERT_GT(LoadBMP(PixelBuffer, PIXEL_BUFFER_SIZE, name.c_str(), size, 0, 0, 0), 0u);
            int transparent = 0;
            for (int i = 0; i < size[0] * size[1]; ++i)
                transparent += PixelBuffer[4 * i + 3] == 0;
            EXPECT_EQ(transparent == 0, name == "WallTex.bmp");
        }
        else if (type == ".lwo")
            EXPECT_GT(TRIMESH(name.c_str(), 1.0f).TriangleCount(), 6);
        else
            continue;
        ++files;
    }
    EXPECT_EQ(files, 3 + 7); // bitmaps and meshes
    EXPECT_TRUE(P().Messages.empty() && P().Beeps == 0);

    // Every triangle has a coloured surface, and faces turn the way the
    // drawing frame of their class needs: the signed volume is positive when
    // they run counter-clockwise seen from outside (0: both ways).
    LoadThingMeshes();
    const struct { const TRIMESH* Mesh; int Winding; } meshes[] = {{ThingMeshes.ShipLevel, +1}, {ThingMeshes.LaserBoost, +1}, {ThingMeshes.Energy, +1},
                  {ThingMeshes.Shield, +1},    {ThingMeshes.Ship, -1},       {ThingMeshes.Tempest, 0},
                  {ThingMeshes.LaserShot, -1}};
    for (const auto& [m, winding] : meshes)
    {
        SCOPED_TRACE(m->name);
        double volume = 0;
        for (const TRIANGLE* t : std::span(m->triangles, TRIMESH_MAX_TRIANGLES))
            if (t)
            {
                EXPECT_NE(m->surfaces[t->surface], nullptr);
                VECTOR3D a = *m->vertices[t->vertex[0]], b = *m->vertices[t->vertex[1]], c = *m->vertices[t->vertex[2]];
                volume += Dot(a, Cross(b, c)) / 6.0;
            }
        float b[6], outer, inner;
        m->GetBounds(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &outer, &inner);
        double box = double(b[1] - b[0]) * (b[3] - b[2]) * (b[5] - b[4]);
        if (winding == 0)
            EXPECT_NEAR(volume / box, 0.0, 1e-4);
        else
            EXPECT_GT(winding * volume / box, 0.05);
    }

    // The ship's nose is its far end along +z, on the centre line.
    const TRIMESH& ship = *ThingMeshes.Ship;
    int nose = 0;
    for (int i = 1; i < TRIMESH_MAX_VERTICES; ++i)
        if (ship.vertices[i] && ship.vertices[i]->z > ship.vertices[nose]->z)
            nose = i;
    EXPECT_GT(ship.vertices[nose]->z, 12.0f);
    EXPECT_EQ(ship.vertices[nose]->x, 0.0f);
}
