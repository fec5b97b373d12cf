#include "play.h"
#include "fulllevel.h"

#include "graphics/texture.h"
#include "play/playsession.h"
#include "render/glthings.h"
#include "render/offscreen.h"
#include "render/view.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>

#include <sys/resource.h>

namespace {

constexpr int WIDTH = 640, HEIGHT = 480;
constexpr int SHIPS = 100;
// Ticks run before measuring, so that shots and missiles are in the air.
constexpr int WARM_UP_TICKS = 25;

// Processor time of every thread of the process so far: the rasteriser's
// own threads do much of a frame's work.
double ProcessCpuMs()
{
    rusage u;
    getrusage(RUSAGE_SELF, &u);
    return (u.ru_utime.tv_sec + u.ru_stime.tv_sec) * 1e3 + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) * 1e-3;
}

SPACESHIP* Ship(VECTOR3D at, VECTOR3D facing, int32_t team)
{
    auto* s = new SPACESHIP;
    s->position = at;
    s->axisX = facing;
    s->axisY = {0, 1, 0};
    s->axisZ = Cross(facing, s->axisY);
    s->team = team;
    s->goal = at;
    return s;
}

// The full level with two fleets of 50 facing each other three cells apart
// across the open middle of the block.
const ORVLEVEL& Battlefield()
{
    static std::unique_ptr<ORVLEVEL> level = [] {
        auto l = BuildFullLevel();
        for (int i = 0; i < SHIPS; ++i)
        {
            const int x = 7 + i % 10, y = 7 + (i / 2) % 5;
            const bool first = i % 2 == 0;
            VECTOR3D at = FullCellCentre(x, y, first ? 3 : 6);
            l->AddThing(Ship(at, {0, 0, first ? 1.0f : -1.0f}, first ? 2 : 3));
        }
        return l;
    }();
    return *level;
}

// The player between the fleets, looking along them.
CAMERA PlayerStart()
{
    CAMERA c;
    c.Position = FullCellCentre(5, 9, 4) + VECTOR3D(0, 0, 100);
    c.ViewDir = {1, 0, 0};
    c.Up = {0, 1, 0};
    c.Right = Cross(c.ViewDir, c.Up);
    return c;
}

void PlayTick(benchmark::State& state)
{
    PLAYSESSION session(Battlefield(), PlayerStart());
    for (int i = 0; i < WARM_UP_TICKS; ++i)
        session.Tick();
    double longest = 0;
    for (auto _ : state)
    {
        auto t0 = std::chrono::steady_clock::now();
        session.Tick();
        longest = std::max(longest, std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
    }
    int things = 0;
    for (int i = 0; i < MAX_THINGS; ++i)
        things += session.Level().Things[i] != nullptr;
    state.counters["longest_ms"] = longest;
    state.counters["things"] = things;
}

void PlayFrame(benchmark::State& state)
{
    OFFSCREENCONTEXT context(WIDTH, HEIGHT);
    InstallGLDrawing();
    auto explosion = std::make_unique<TEXTURE>("SmallExplosion.bmp");
    SetExplosionTexture(explosion.get());
    {
        PLAYSESSION session(Battlefield(), PlayerStart());
        for (int i = 0; i < WARM_UP_TICKS; ++i)
            session.Tick();
        ORVERENDER view([&] { context.MakeCurrent(); }, [&] { context.Swap(); });
        view.Level = &session.Level();
        view.Eye = &session.Eye;
        view.Viewer = session.Ship();
        view.SetClientSize(WIDTH, HEIGHT);
        view.Draw();
        context.Swap();
        const double before = ProcessCpuMs();
        for (auto _ : state)
        {
            view.Draw();
            context.Swap();
        }
        state.counters["all_threads_ms"] = (ProcessCpuMs() - before) / double(state.iterations());
    }
    SetExplosionTexture(nullptr);
    explosion.reset();
    UninstallGLDrawing();
}

} // namespace

void RegisterPlayBenchmarks()
{
    LoadThingMeshes();
    RegisterThingClasses();
    const auto ms = benchmark::kMillisecond;
    // A fixed count: the battle changes from tick to tick, and 200 ticks are
    // eight seconds of it.
    benchmark::RegisterBenchmark("PlayTick", PlayTick)->Unit(ms)->UseRealTime()->Iterations(200);
    OFFSCREENCONTEXT probe(WIDTH, HEIGHT);
    if (probe.Ok())
        benchmark::RegisterBenchmark("PlayFrame", PlayFrame)->Unit(ms)->UseRealTime()->MinTime(2.0);
}
