#include "blocks.h"
#include "fulllevel.h"

#include "editor/blocks.h"
#include "orvlevel/blocks.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <memory>
#include <vector>

namespace {

// Sides of a full-level cell towards -x, +z and -z.
constexpr int SIDE_MINUS_X = 3, SIDE_PLUS_Z = 4, SIDE_MINUS_Z = 5;

void MarkAllAndCopy(benchmark::State& state)
{
    static std::unique_ptr<ORVLEVEL> level = BuildFullLevel();
    ORVLEVEL& L = *level;
    const int32_t anchor = FullCellIndex(0, 0, 0);
    for (auto _ : state)
    {
        ORVEMARKS marks;
        for (int32_t s = 0; s < L.SegmentsEnd(); ++s)
            if (L.Segments[s])
                marks.Set(s, true);
        LEVELBLOCK block;
        if (!CopyBlock(L, marks.List(), anchor, SIDE_MINUS_X, block) || block.Segments.size() != 5000)
            state.SkipWithError("the copy was refused");
        benchmark::DoNotOptimize(block.Points.data());
    }
}

// The full-size level without its top layer, that layer as a block anchored
// on its underside, and the shift that pastes it back where it was.
struct TOPLAYER
{
    std::unique_ptr<ORVLEVEL> Level = BuildFullLevel();
    LEVELBLOCK Block;
    int32_t Target = FullCellIndex(0, 0, FULL_Z - 2);
    int32_t Shift = 0;

    TOPLAYER()
    {
        ORVLEVEL& L = *Level;
        std::vector<int32_t> layer;
        for (int y = 0; y < FULL_Y; ++y)
            for (int x = 0; x < FULL_X; ++x)
                layer.push_back(FullCellIndex(x, y, FULL_Z - 1));
        std::sort(layer.begin(), layer.end());
        if (!CopyBlock(L, layer, FullCellIndex(0, 0, FULL_Z - 1), SIDE_MINUS_Z, Block) || !DeleteBlock(L, layer))
        {
            std::fprintf(stderr, "orvane-bench: cannot lift the top layer\n");
            std::exit(1);
        }
        const SEGMENT& a = Block.Segments[size_t(Block.AnchorSegment)];
        for (int s = 0; s < 4; ++s)
        {
            bool same = true;
            for (int i = 0; i < 4; ++i)
                same = same && *L.PointAt(L.Segments[Target]->Corners[SideCorners[SIDE_PLUS_Z][i]]) ==
                                   Block.Points[size_t(a.Corners[SideCorners[SIDE_MINUS_Z][3 - (s + i) % 4]])];
            if (same)
                Shift = s;
        }
    }
};

TOPLAYER& Top()
{
    static TOPLAYER top;
    return top;
}

void Paste(benchmark::State& state)
{
    TOPLAYER& t = Top();
    for (auto _ : state)
    {
        std::vector<int32_t> pasted;
        if (!PasteBlock(*t.Level, t.Block, t.Target, SIDE_PLUS_Z, t.Shift, &pasted))
            state.SkipWithError("the paste was refused");
        state.PauseTiming();
        DeleteBlock(*t.Level, pasted);
        state.ResumeTiming();
    }
}

void Mirror(benchmark::State& state)
{
    TOPLAYER& t = Top();
    std::vector<int32_t> pasted;
    if (!PasteBlock(*t.Level, t.Block, t.Target, SIDE_PLUS_Z, t.Shift, &pasted))
        state.SkipWithError("the paste was refused");
    for (auto _ : state)
        if (!MirrorBlock(*t.Level, pasted, 0))
            state.SkipWithError("the mirror was refused");
    DeleteBlock(*t.Level, pasted);
}

} // namespace

void RegisterBlockBenchmarks()
{
    const auto ms = benchmark::kMillisecond;
    benchmark::RegisterBenchmark("Block/MarkAllAndCopy5000", MarkAllAndCopy)->Unit(ms)->UseRealTime();
    benchmark::RegisterBenchmark("Block/Paste500", Paste)->Unit(ms)->UseRealTime()->Iterations(50);
    benchmark::RegisterBenchmark("Block/Mirror500", Mirror)->Unit(ms)->UseRealTime();
}
