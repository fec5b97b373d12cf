// A fuzzed level loaded and then used as the editor uses it: drawn, picked
// at, extruded, lit, searched, sighted through, played for a few ticks,
// drawn again, cut, saved and read back.
#include "fuzzing.h"
#include "graphics/texture.h"
#include "math/trig.h"
#include "orvlevel/level.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/offscreen.h"
#include "render/view.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

constexpr int W = 64, H = 48;

OFFSCREENCONTEXT* Context;
ORVERENDER* View;
ORVLEVEL* Level;

void Use(ORVLEVEL& level)
{
    InvalidateDisplayList(level);
    View->Update();
    const CAMERA& camera = View->Camera;
    const int picks[][2] = {{W / 2, H / 2}, {0, 0}, {W - 1, H - 1}, {W / 3, H / 4}};
    for (const auto& p : picks)
        level.PickSide(p[0], p[1], camera, W, H);
    level.NewSegment();
    level.JoinWithPicked(W / 4, H / 2, camera, W, H, 1);
    level.FitTextureToPicked(W / 2, H / 3, camera, W, H);
    level.MovePoint(1.0f, -2.0f, 0.5f);
    level.FindSegment(camera.Position);
    level.FindSegment(VECTOR3D(0.0f, 0.0f, 0.0f));
    level.LineOfSight(camera.Position, VECTOR3D(0.0f, 0.0f, 0.0f), nullptr);
    level.CalculateLighting();
    for (int i = 0; i < 3; ++i)
        level.GameTick(camera);
    View->Update();
    level.DeleteCurrentSegment();
    const std::vector<uint8_t> image = level.Serialize();
    level.Clear();
    level.Deserialize(image.data(), image.size());
    View->Update();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** argv)
{
    FuzzSetUp((*argv)[0]);
    InitTrigTables();
    Context = new OFFSCREENCONTEXT(W, H);
    if (!Context->Ok())
    {
        std::fprintf(stderr, "no offscreen OpenGL context: %s\n", Context->Error().c_str());
        std::exit(1);
    }
    InstallGLDrawing();
    LoadThingMeshes();
    RegisterThingClasses();
    SetExplosionTexture(new TEXTURE("SmallExplosion.bmp"));
    Level = new ORVLEVEL();
    TheLevel = Level;
    View = new ORVERENDER([] { Context->MakeCurrent(); }, [] { Context->Swap(); });
    View->Level = Level;
    View->SetClientSize(W, H);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    try
    {
        Level->Clear();
        Level->Deserialize(data, size);
        Use(*Level);
    }
    catch (const FUZZEXIT&)
    {
    }
    return 0;
}
