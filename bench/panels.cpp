#include "panels.h"

#include "fulllevel.h"

#include "editor/panels.h"
#include "orvlevel/leveldiff.h"

#include <benchmark/benchmark.h>

namespace {

void DiffFull(benchmark::State& state)
{
    static std::unique_ptr<ORVLEVEL> a = BuildFullLevel(), b = BuildFullLevel();
    b->Points[b->Segments[FullMiddleSegment()]->Corners[0]]->x += 1.0f;
    size_t lines = 0;
    for (auto _ : state)
        lines = DiffLevels(*a, *b).size();
    b->Points[b->Segments[FullMiddleSegment()]->Corners[0]]->x -= 1.0f;
    state.counters["lines"] = double(lines);
}

// One edit, then the panel's next look: the check runs once.
void PanelAfterEdit(benchmark::State& state)
{
    static std::unique_ptr<ORVLEVEL> level = BuildFullLevel();
    CHECKCACHE cache;
    for (auto _ : state)
    {
        level->Changed();
        if (cache.Due(*level))
            cache.Refresh(*level);
    }
}

// The panel's look when nothing changed: what a frame of flying pays.
void PanelIdle(benchmark::State& state)
{
    static std::unique_ptr<ORVLEVEL> level = BuildFullLevel();
    CHECKCACHE cache;
    cache.Refresh(*level);
    bool due = false;
    for (auto _ : state)
        benchmark::DoNotOptimize(due = cache.Due(*level));
}

} // namespace

void RegisterPanelBenchmarks()
{
    benchmark::RegisterBenchmark("DiffLevels", DiffFull)->Unit(benchmark::kMillisecond)->UseRealTime();
    benchmark::RegisterBenchmark("CheckPanel/after-edit", PanelAfterEdit)->Unit(benchmark::kMillisecond)->UseRealTime();
    benchmark::RegisterBenchmark("CheckPanel/idle", PanelIdle)->Unit(benchmark::kMicrosecond)->UseRealTime();
}
