#include "render.h"
#include "fulllevel.h"

#include "graphics/texture.h"
#include "graphics/trimesh.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/offscreen.h"
#include "render/view.h"
#include "things/thingmeshes.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <memory>

#include <sys/resource.h>

namespace {

constexpr int WIDTH = 640, HEIGHT = 480;

// Processor time of every thread of the process so far.
double ProcessCpuMs()
{
    rusage u;
    getrusage(RUSAGE_SELF, &u);
    return (u.ru_utime.tv_sec + u.ru_stime.tv_sec) * 1e3 + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) * 1e-3;
}

OFFSCREENCONTEXT* Context()
{
    static OFFSCREENCONTEXT context(WIDTH, HEIGHT);
    return context.Ok() ? &context : nullptr;
}

// The drawing seam is installed only while a drawing benchmark runs, so the
// others keep measuring the core without OpenGL objects.
struct GLDRAWINGON
{
    GLDRAWINGON() { InstallGLDrawing(); }
    ~GLDRAWINGON() { UninstallGLDrawing(); }
};

// The full level with OpenGL textures, its display list switched off as the
// editor does, and the first cell's -x wall selected (in view of the
// start-up camera).
ORVLEVEL& DrawnLevel()
{
    static std::unique_ptr<ORVLEVEL> level = [] {
        GLDRAWINGON on;
        auto l = BuildFullLevel();
        InvalidateDisplayList(*l);
        l->CurrentSegment = FullCellIndex(0, 0, 0);
        l->CurrentSide = 3;
        return l;
    }();
    return *level;
}

// One whole frame of the view (clear, camera, axes, level) finished by
// OpenGL, as the editor would show it: from the start-up camera, the
// editor's first frame, or from the middle of the block, where some twenty
// layers of see-through sides and most of the 128 labelled lights are in
// view.
void Frame(benchmark::State& state, bool batched, bool inside)
{
    GLDRAWINGON on;
    OFFSCREENCONTEXT& context = *Context();
    ORVERENDER view([&] { context.MakeCurrent(); }, [&] { context.Swap(); });
    view.Level = &DrawnLevel();
    view.Batched = batched;
    if (inside)
        view.Camera = FullLevelCamera();
    view.SetClientSize(WIDTH, HEIGHT);
    // The first frame compiles the renderer's shader variants.
    view.Draw();
    context.Swap();
    double before = ProcessCpuMs();
    for (auto _ : state)
    {
        view.Draw();
        context.Swap();
    }
    // The rasteriser's own threads do much of the work: their time counts too.
    state.counters["all_threads_ms"] = (ProcessCpuMs() - before) / double(state.iterations());
}

// 100 ships in view, each drawn from its mesh: replaying the list compiled
// at the first draw, or compiling it again every time.
void Meshes(benchmark::State& state, bool recompile)
{
    GLDRAWINGON on;
    OFFSCREENCONTEXT& context = *Context();
    ORVERENDER view([&] { context.MakeCurrent(); }, [&] { context.Swap(); });
    CAMERA camera;
    camera.Position = VECTOR3D(0, 0, 300);
    camera.ViewDir = VECTOR3D(0, 0, -1);
    camera.Up = VECTOR3D(0, 1, 0);
    camera.Right = VECTOR3D(1, 0, 0);
    view.Camera = camera;
    view.SetClientSize(WIDTH, HEIGHT);
    ORVLEVEL empty;
    empty.DeleteSegment(0);
    view.Level = &empty;
    TRIMESH& mesh = *ThingMeshes.Ship;
    for (auto _ : state)
    {
        view.Draw();
        for (int i = 0; i < 100; ++i)
        {
            mesh.dirty = recompile;
            VECTOR3D p(float(i % 10) * 40 - 180, float(i / 10) * 30 - 135, 0);
            DrawMesh(mesh, p, VECTOR3D(0, 0, 1), VECTOR3D(0, 1, 0), VECTOR3D(1, 0, 0), 1, VECTOR3D(1, 1, 1));
        }
        context.Swap();
    }
    mesh.dirty = false;
}

} // namespace

bool RegisterRenderBenchmarks()
{
    if (!Context())
    {
        OFFSCREENCONTEXT probe(WIDTH, HEIGHT);
        std::fprintf(stderr, "orvane-bench: no offscreen OpenGL context (%s); drawing benchmarks skipped\n",
                     probe.Error().c_str());
        return false;
    }
    LoadThingMeshes();
    const auto ms = benchmark::kMillisecond;
    // Frames take long enough that the default half second gives too few.
    for (bool inside : {false, true})
        for (bool batched : {true, false})
        {
            std::string name = std::string(inside ? "FrameInside/" : "Frame/") + (batched ? "fast" : "literal");
            benchmark::RegisterBenchmark(name.c_str(), Frame, batched, inside)->Unit(ms)->UseRealTime()->MinTime(2.0);
        }
    benchmark::RegisterBenchmark("MeshDraw/fast", Meshes, false)->Unit(ms)->UseRealTime();
    benchmark::RegisterBenchmark("MeshDraw/literal", Meshes, true)->Unit(ms)->UseRealTime();
    return true;
}
