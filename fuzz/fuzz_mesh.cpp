// TRIMESH loading on any bytes, then what the game asks of a mesh.
#include "fuzzing.h"
#include "graphics/trimesh.h"

extern "C" int LLVMFuzzerInitialize(int*, char*** argv)
{
    FuzzSetUp((*argv)[0]);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const char* file = FuzzFile(data, size);
    try
    {
        TRIMESH mesh(file, 1.5f);
        float b[8];
        mesh.GetBounds(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &b[6], &b[7]);
        for (int i = 0; i < TRIMESH_MAX_TRIANGLES && mesh.triangles[i]; ++i)
            mesh.SurfaceColour(mesh.triangles[i]->surface);
    }
    catch (const FUZZEXIT&)
    {
    }
    return 0;
}
