// orvane-bench: the editor's heavy operations on a full-size level, each
// beside the plain scan it replaces, and saving and loading beside a bare copy
// of the file's bytes. The run ends with a table of ratios taken from its own
// figures. Run it from the program directory: the level needs the bitmaps.
// With --save-full-level FILE it saves the full-size level and stops.
// With --verify it runs no benchmark but checks that each operation and its
// literal version agree, and exits non-zero if any does not.
#include "blocks.h"
#include "fulllevel.h"
#include "editor/history.h"
#include "orvlevel/levelcheck.h"
#include "literal.h"
#include "play.h"
#include "panels.h"
#include "render.h"
#include "verify.h"

#include "math/trig.h"
#include "orvlevel/levelindex.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

namespace {

// The level every benchmark works on; those that change it put it back.
ORVLEVEL& Full()
{
    static std::unique_ptr<ORVLEVEL> level = BuildFullLevel();
    return *level;
}

// The same level with its inner sides textured too.
ORVLEVEL& FullEverySide()
{
    static std::unique_ptr<ORVLEVEL> level = [] {
        auto l = BuildFullLevel();
        TextureEverySide(*l);
        return l;
    }();
    return *level;
}

std::filesystem::path TempDir()
{
    static std::filesystem::path dir = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "orvane-bench-XXXXXX").string();
        if (!mkdtemp(pattern.data()))
        {
            std::perror("orvane-bench: temporary directory");
            std::exit(1);
        }
        return std::filesystem::path(pattern);
    }();
    return dir;
}

std::string LevelFile()
{
    return (TempDir() / "full.ORVLevel").string();
}

// ---------------------------------------------------------------------------
// The operations against their plain versions

void RemoveUnusedPoints(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    for (auto _ : state)
    {
        state.PauseTiming();
        FillUnusedPoints(L);
        state.ResumeTiming();
        literal ? LiteralRemoveUnusedPoints(L) : L.RemoveUnusedPoints();
    }
    FillUnusedPoints(L);
}

void DeleteSegment(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    const SEGMENTSNAPSHOT shot = TakeSnapshot(L, FullMiddleSegment());
    for (auto _ : state)
    {
        literal ? LiteralDeleteSegment(L, shot.Index) : L.DeleteSegment(shot.Index);
        state.PauseTiming();
        PutSegmentBack(L, shot);
        state.ResumeTiming();
    }
}

void Lighting(benchmark::State& state, ORVLEVEL& (*level)(), bool literal)
{
    ORVLEVEL& L = level();
    for (auto _ : state)
        literal ? LiteralCalculateLighting(L) : L.CalculateLighting();
}

void PickSide(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    const CAMERA camera = FullLevelCamera();
    for (auto _ : state)
    {
        literal ? LiteralPickSide(L, 300, 200, camera, 640, 480) : L.PickSide(300, 200, camera, 640, 480);
        benchmark::DoNotOptimize(L.CurrentSegment);
    }
    L.CurrentSegment = -1;
}

void FindSegment(benchmark::State& state, bool literal)
{
    const ORVLEVEL& L = Full();
    const std::vector<VECTOR3D> probes = FullLevelProbes();
    for (auto _ : state)
        for (VECTOR3D p : probes)
            benchmark::DoNotOptimize(literal ? LiteralFindSegment(L, p) : L.FindSegment(p));
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(probes.size()));
}

// Mode 0: every segment of the level, with correction.
void CollidePoint(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    const std::vector<MOTION> motions = FullLevelMotions();
    for (auto _ : state)
        for (const MOTION& m : motions)
        {
            VECTOR3D from = m.From, to = m.To;
            bool hit = literal ? LiteralCollidePoint(L, &from, m.Distance, m.Swept, &to, true)
                               : L.CollidePoint(&from, 0, nullptr, m.Distance, m.Swept, &to, true);
            benchmark::DoNotOptimize(hit);
        }
    state.SetItemsProcessed(int64_t(state.iterations()) * int64_t(motions.size()));
}

// ---------------------------------------------------------------------------
// The spatial index behind picking, FindSegment and collision

// Built from nothing, as after loading.
void IndexBuild(benchmark::State& state)
{
    const ORVLEVEL& L = Full();
    LEVELINDEX index;
    for (auto _ : state)
        index.Build(L);
}

// Brought up to date after one edit: a corner shared by eight cells moves.
void IndexAfterEdit(benchmark::State& state)
{
    ORVLEVEL& L = Full();
    LEVELINDEX index;
    index.Build(L);
    L.CurrentSegment = FullMiddleSegment(), L.CurrentSide = 0, L.CurrentPoint = 0;
    float step = 1;
    for (auto _ : state)
    {
        state.PauseTiming();
        if (index.Left > 64)
            index.Build(L); // edits pile up until a rebuild; keep them out of the figure
        L.MovePoint(0, step, 0);
        step = -step;
        state.ResumeTiming();
        index.Update(L);
    }
    if (step < 0)
        L.MovePoint(0, -1, 0);
    L.CurrentSegment = -1;
}

// ---------------------------------------------------------------------------
// Level files against copying their bytes

void SaveLevel(benchmark::State& state)
{
    ORVLEVEL& L = Full();
    const std::string path = LevelFile();
    for (auto _ : state)
        L.SaveLevel(path.c_str());
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(std::filesystem::file_size(path)));
}

// A copy of the full level with a history, one point moved back and forth:
// what recording a step, undoing and redoing it cost.
struct HISTORYBENCH
{
    ORVLEVEL Level;
    std::unique_ptr<ORVEHISTORY> History;
    HISTORYBENCH()
    {
        const std::vector<uint8_t> image = Full().Serialize();
        Level.Clear();
        Level.Deserialize(image.data(), image.size());
        History = std::make_unique<ORVEHISTORY>(Level);
        Level.CurrentSegment = FullMiddleSegment(), Level.CurrentSide = 0, Level.CurrentPoint = 0;
    }
};

void HistoryCheckpoint(benchmark::State& state)
{
    HISTORYBENCH b;
    for (auto _ : state)
    {
        b.Level.MovePoint(0, 1, 0);
        b.History->Checkpoint();
    }
}

void Undo(benchmark::State& state)
{
    HISTORYBENCH b;
    b.Level.MovePoint(0, 1, 0);
    b.History->Checkpoint();
    for (auto _ : state)
    {
        b.History->Undo();
        state.PauseTiming();
        b.History->Redo();
        state.ResumeTiming();
    }
}

void CheckLevelBench(benchmark::State& state)
{
    const ORVLEVEL& L = Full();
    size_t problems = 0;
    for (auto _ : state)
        problems = CheckLevel(L).size();
    state.counters["problems"] = double(problems);
}

void LoadLevel(benchmark::State& state)
{
    const std::string path = LevelFile();
    Full().SaveLevel(path.c_str());
    ORVLEVEL level(path.c_str()); // each load replaces a full level, as in the editor
    for (auto _ : state)
        level.LoadLevel(path.c_str());
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(std::filesystem::file_size(path)));
    Full();
}

// The in-memory halves of save and load, without the file.
void Serialize(benchmark::State& state)
{
    ORVLEVEL& L = Full();
    size_t size = 0;
    for (auto _ : state)
    {
        std::vector<uint8_t> image = L.Serialize();
        size = image.size();
        benchmark::DoNotOptimize(image.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(size));
}

void Deserialize(benchmark::State& state)
{
    const std::vector<uint8_t> image = Full().Serialize();
    ORVLEVEL level;
    for (auto _ : state)
    {
        state.PauseTiming();
        level.Clear();
        state.ResumeTiming();
        level.Deserialize(image.data(), image.size());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(image.size()));
    Full();
}

enum COPYKIND
{
    COPY_MEMCPY,
    COPY_FWRITE,
    COPY_FREAD,
};

// The file's bytes alone: copied in memory, written to a file, read back.
void CopyBytes(benchmark::State& state, COPYKIND kind)
{
    std::vector<uint8_t> image = Full().Serialize();
    std::vector<uint8_t> other(image.size());
    const std::string path = (TempDir() / "bytes").string();
    if (std::FILE* f = std::fopen(path.c_str(), "wb"))
    {
        std::fwrite(image.data(), 1, image.size(), f);
        std::fclose(f);
    }
    for (auto _ : state)
    {
        if (kind == COPY_MEMCPY)
            std::memcpy(other.data(), image.data(), image.size());
        else if (std::FILE* f = std::fopen(path.c_str(), kind == COPY_FWRITE ? "wb" : "rb"))
        {
            size_t done = kind == COPY_FWRITE ? std::fwrite(image.data(), 1, image.size(), f)
                                              : std::fread(other.data(), 1, other.size(), f);
            std::fclose(f);
            if (done != image.size())
                state.SkipWithError("short file transfer");
        }
        else
            state.SkipWithError("cannot open the byte file");
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(image.size()));
}

// ---------------------------------------------------------------------------
// The ratio table

struct TIMES
{
    double Real = 0; // seconds per iteration
    double Cpu = 0;  // this thread's
};

// Keeps each benchmark's times per iteration (the means, when runs are
// repeated).
class RATIOREPORTER : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, TIMES> Times;

    // Colours only on a terminal, so that saved output stays plain text.
    RATIOREPORTER() : ConsoleReporter(isatty(fileno(stdout)) ? OO_ColorTabular : OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs)
        {
            if (r.error_occurred)
                continue;
            if (r.run_type == Run::RT_Aggregate && r.aggregate_name != "mean")
                continue;
            double unit = benchmark::GetTimeUnitMultiplier(r.time_unit);
            Times[r.run_name.function_name] = {r.GetAdjustedRealTime() / unit, r.GetAdjustedCPUTime() / unit};
        }
    }

    // Zero when the benchmark did not run.
    TIMES Of(const std::string& name) const
    {
        auto it = Times.find(name);
        return it == Times.end() ? TIMES() : it->second;
    }
};

void PrintRatio(const std::string& label, TIMES fast, TIMES literal)
{
    if (fast.Real <= 0 || literal.Real <= 0)
        return;
    std::printf("%-28s %12.4f %12.4f %10.1fx\n", label.c_str(), fast.Real * 1e3, literal.Real * 1e3,
                literal.Real / fast.Real);
}

// Wall-clock time counts what the file system makes a save wait for; the
// processor time of the calling thread shows the program's own share.
void PrintCost(const char* label, const char* baselineName, TIMES t, TIMES baseline)
{
    if (t.Real <= 0 || baseline.Real <= 0 || baseline.Cpu <= 0)
        return;
    std::printf("%-12s %-8s %10.4f %12.4f %8.1fx %10.4f %12.4f %8.1fx\n", label, baselineName, t.Real * 1e3,
                baseline.Real * 1e3, t.Real / baseline.Real, t.Cpu * 1e3, baseline.Cpu * 1e3, t.Cpu / baseline.Cpu);
}

void PrintSummary(const RATIOREPORTER& r)
{
    std::printf("\nThe literal versions against the real ones (same run, %u hardware threads):\n",
                std::thread::hardware_concurrency());
    std::printf("%-28s %12s %12s %11s\n", "operation", "fast ms", "literal ms", "ratio");
    const std::string probes = " (" + std::to_string(FullLevelProbes().size()) + " points)";
    const std::string motions = " (" + std::to_string(FullLevelMotions().size()) + " motions)";
    const std::pair<std::string, std::string> rows[] = {
        {"RemoveUnusedPoints", ""},
        {"DeleteSegment", ""},
        {"CalculateLighting", ""},
        {"CalculateLighting/every-side", ""},
        {"PickSide", ""},
        {"FindSegment", probes},
        {"CollidePoint", motions},
        {"Frame", " (start-up camera)"},
        {"FrameInside", " (mid-block)"},
        {"MeshDraw", " (100 ships)"},
    };
    for (const auto& [name, note] : rows)
        PrintRatio(name + note, r.Of(name + "/fast"), r.Of(name + "/literal"));

    std::printf("\nThe spatial index, undo and diagnostics (ms):\n");
    for (const char* name : {"IndexBuild", "IndexAfterEdit", "HistoryCheckpoint", "Undo", "CheckLevel"})
        if (r.Of(name).Real > 0)
            std::printf("%-28s %12.4f\n", name, r.Of(name).Real * 1e3);

    std::printf("\nLevel files against copying the same bytes (real: wall clock; cpu: processor time):\n");
    std::printf("%-12s %-8s %10s %12s %9s %10s %12s %9s\n", "operation", "baseline", "real ms", "baseline ms",
                "copies", "cpu ms", "baseline ms", "copies");
    const TIMES memcpyTimes = r.Of("CopyBytes/memcpy");
    PrintCost("SaveLevel", "fwrite", r.Of("SaveLevel"), r.Of("CopyBytes/fwrite"));
    PrintCost("LoadLevel", "fread", r.Of("LoadLevel"), r.Of("CopyBytes/fread"));
    PrintCost("Serialize", "memcpy", r.Of("Serialize"), memcpyTimes);
    PrintCost("Deserialize", "memcpy", r.Of("Deserialize"), memcpyTimes);
}

} // namespace

int main(int argc, char** argv)
{
    // Messages keep going to standard error: on this level no measured
    // operation has cause to show one, so any that appears is worth seeing.
    // A missing bitmap would end the program before the first figure.
    for (const char* bitmap : {"WallTex.bmp", "InvSide.bmp"})
        if (!std::filesystem::exists(bitmap))
        {
            std::fprintf(stderr, "orvane-bench: %s is not in the working directory; run it from build/bin\n", bitmap);
            return 2;
        }
    InitTrigTables();
    if (argc == 2 && std::strcmp(argv[1], "--verify") == 0)
        return VerifyAgreement() == 0 ? 0 : 1;
    // The full-size level as a file, to open in the editor (its idle cost).
    if (argc == 3 && std::strcmp(argv[1], "--save-full-level") == 0)
        return Full().SaveLevel(argv[2]) ? 0 : 1;
    Full();

    using benchmark::RegisterBenchmark;
    const auto ms = benchmark::kMillisecond;
    auto add = [&](const std::string& name, auto fn, auto... args) {
        return RegisterBenchmark(name.c_str(), fn, args...)->Unit(ms)->UseRealTime();
    };
    // Runs that put the level back after each iteration get a fixed count, or
    // the putting back would take most of the run; so do the slowest literal
    // versions, whose figures settle within a few runs.
    add("RemoveUnusedPoints/fast", RemoveUnusedPoints, false)->Iterations(200);
    add("RemoveUnusedPoints/literal", RemoveUnusedPoints, true)->Iterations(2);
    add("DeleteSegment/fast", DeleteSegment, false)->Iterations(200);
    add("DeleteSegment/literal", DeleteSegment, true)->Iterations(2);
    add("CalculateLighting/fast", Lighting, Full, false);
    add("CalculateLighting/literal", Lighting, Full, true);
    add("CalculateLighting/every-side/fast", Lighting, FullEverySide, false);
    add("CalculateLighting/every-side/literal", Lighting, FullEverySide, true)->Iterations(3);
    add("PickSide/fast", PickSide, false);
    add("PickSide/literal", PickSide, true);
    add("FindSegment/fast", FindSegment, false);
    add("FindSegment/literal", FindSegment, true);
    add("CollidePoint/fast", CollidePoint, false);
    add("CollidePoint/literal", CollidePoint, true);
    add("IndexBuild", IndexBuild);
    add("IndexAfterEdit", IndexAfterEdit)->Iterations(2000);
    add("HistoryCheckpoint", HistoryCheckpoint);
    add("Undo", Undo);
    add("CheckLevel", CheckLevelBench);
    add("SaveLevel", SaveLevel);
    add("LoadLevel", LoadLevel);
    add("Serialize", Serialize);
    add("Deserialize", Deserialize);
    add("CopyBytes/memcpy", CopyBytes, COPY_MEMCPY);
    add("CopyBytes/fwrite", CopyBytes, COPY_FWRITE);
    add("CopyBytes/fread", CopyBytes, COPY_FREAD);
    RegisterRenderBenchmarks();
    RegisterPlayBenchmarks();
    RegisterBlockBenchmarks();
    RegisterPanelBenchmarks();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RATIOREPORTER reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    PrintSummary(reporter);

    std::error_code ignored;
    std::filesystem::remove_all(TempDir(), ignored);
    return 0;
}
