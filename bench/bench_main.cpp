// orvane-bench: the editor's heavy operations on a full-size level, each
// beside the plain scan it replaces, with the ratio printed at the end.
#include "fulllevel.h"
#include "literal.h"

#include "math/trig.h"
#include "platform/platform.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace {

// Messages and beeps would only disturb the figures.
class QUIETPLATFORM : public CONSOLEPLATFORM
{
public:
    void MessageBox(const std::string&, const std::string&, MESSAGEICON) override {}
    void Beep() override {}
};

ORVLEVEL& Full()
{
    static std::unique_ptr<ORVLEVEL> level = [] {
        auto l = BuildFullLevel();
        TheLevel = l.get();
        return l;
    }();
    return *level;
}

// A camera in the middle of the block looking along +x, slightly tilted.
CAMERA MiddleCamera()
{
    CAMERA c;
    c.Position = FullCellCentre(FULL_X / 2, FULL_Y / 2, FULL_Z / 2) + VECTOR3D(1, 2, 3);
    c.ViewDir = VECTOR3D(1, 0.1f, 0.05f) / Length(VECTOR3D(1, 0.1f, 0.05f));
    c.Up = Cross(Cross(c.ViewDir, VECTOR3D(0, 1, 0)), c.ViewDir);
    c.Up /= Length(c.Up);
    c.Right = Cross(c.ViewDir, c.Up);
    return c;
}

// Points spread over the block (and a few outside it).
std::vector<VECTOR3D> Probes()
{
    std::vector<VECTOR3D> p;
    for (int i = 0; i < 64; ++i)
        p.push_back(FullCellCentre((i * 7) % (FULL_X + 2) - 1, (i * 11) % FULL_Y, (i * 3) % FULL_Z) +
                    VECTOR3D(13, -7, 5));
    return p;
}

void RemoveUnusedPoints(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    for (auto _ : state)
    {
        state.PauseTiming();
        FillUnusedPoints(L);
        state.ResumeTiming();
        if (literal)
            LiteralRemoveUnusedPoints(L);
        else
            L.RemoveUnusedPoints();
    }
    FillUnusedPoints(L);
}

void DeleteSegment(benchmark::State& state, bool literal)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        auto level = BuildFullLevel();
        TheLevel = level.get();
        state.ResumeTiming();
        int32_t middle = 2500 + FULL_X / 2;
        if (literal)
            LiteralDeleteSegment(*level, middle);
        else
            level->DeleteSegment(middle);
        state.PauseTiming();
        level.reset();
        TheLevel = &Full();
        state.ResumeTiming();
    }
}

void Lighting(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    for (auto _ : state)
        literal ? LiteralCalculateLighting(L) : L.CalculateLighting();
}

void Pick(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    CAMERA c = MiddleCamera();
    for (auto _ : state)
    {
        literal ? LiteralPickSide(L, 300, 200, c, 640, 480) : L.PickSide(300, 200, c, 640, 480);
        benchmark::DoNotOptimize(L.CurrentSegment);
    }
}

void Find(benchmark::State& state, bool literal)
{
    ORVLEVEL& L = Full();
    std::vector<VECTOR3D> probes = Probes();
    for (auto _ : state)
        for (VECTOR3D p : probes)
            benchmark::DoNotOptimize(literal ? LiteralFindSegment(L, p) : L.FindSegment(p));
}

// Mode 0: the whole level, from a point near a wall.
void Collide(benchmark::State& state)
{
    ORVLEVEL& L = Full();
    for (auto _ : state)
    {
        VECTOR3D from = FullCellCentre(0, 0, 0), to = from - VECTOR3D(95, 0, 0);
        benchmark::DoNotOptimize(L.CollidePoint(&from, 0, nullptr, 10.0f, true, &to, true));
    }
}

std::string TempFile(const char* name)
{
    return (std::filesystem::temp_directory_path() / name).string();
}

void Save(benchmark::State& state)
{
    ORVLEVEL& L = Full();
    std::string path = TempFile("orvane-bench.ORVLevel");
    for (auto _ : state)
        L.SaveLevel(path.c_str());
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(std::filesystem::file_size(path)));
}

void Load(benchmark::State& state)
{
    std::string path = TempFile("orvane-bench.ORVLevel");
    Full().SaveLevel(path.c_str());
    ORVLEVEL level;
    for (auto _ : state)
        level.LoadLevel(path.c_str());
    TheLevel = &Full();
}

// The cost of the file's bytes alone: written, then read back.
void CopyBytes(benchmark::State& state, bool write)
{
    std::vector<uint8_t> image = Full().Serialize();
    std::string path = TempFile("orvane-bench.bytes");
    std::vector<uint8_t> back(image.size());
    for (auto _ : state)
    {
        std::FILE* f = std::fopen(path.c_str(), write ? "wb" : "rb");
        if (write)
            std::fwrite(image.data(), 1, image.size(), f);
        else if (f && std::fread(back.data(), 1, back.size(), f) == back.size())
            std::memcpy(image.data(), back.data(), back.size()); // the reader's copy into objects
        if (f)
            std::fclose(f);
        benchmark::ClobberMemory();
    }
}

// Collects the mean time of every run for the ratio table.
class RATIOREPORTER : public benchmark::ConsoleReporter
{
public:
    std::map<std::string, double> Times;
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs)
            Times[r.benchmark_name()] = r.GetAdjustedRealTime();
    }
};

} // namespace

int main(int argc, char** argv)
{
    static QUIETPLATFORM quiet;
    SetPlatform(&quiet);
    InitTrigTables();
    Full();

    using benchmark::RegisterBenchmark;
    auto ms = benchmark::kMillisecond;
    RegisterBenchmark("RemoveUnusedPoints/fast", RemoveUnusedPoints, false)->Unit(ms);
    RegisterBenchmark("RemoveUnusedPoints/literal", RemoveUnusedPoints, true)->Unit(ms)->Iterations(2);
    RegisterBenchmark("DeleteSegment/fast", DeleteSegment, false)->Unit(ms)->Iterations(5);
    RegisterBenchmark("DeleteSegment/literal", DeleteSegment, true)->Unit(ms)->Iterations(2);
    RegisterBenchmark("CalculateLighting/fast", Lighting, false)->Unit(ms);
    RegisterBenchmark("CalculateLighting/literal", Lighting, true)->Unit(ms)->Iterations(2);
    RegisterBenchmark("PickSide/fast", Pick, false)->Unit(ms);
    RegisterBenchmark("PickSide/literal", Pick, true)->Unit(ms);
    RegisterBenchmark("FindSegment64/fast", Find, false)->Unit(ms);
    RegisterBenchmark("FindSegment64/literal", Find, true)->Unit(ms);
    RegisterBenchmark("CollidePoint/whole-level", Collide)->Unit(ms);
    RegisterBenchmark("SaveLevel/fast", Save)->Unit(ms);
    RegisterBenchmark("SaveLevel/literal", CopyBytes, true)->Unit(ms);
    RegisterBenchmark("LoadLevel/fast", Load)->Unit(ms);
    RegisterBenchmark("LoadLevel/literal", CopyBytes, false)->Unit(ms);

    benchmark::Initialize(&argc, argv);
    RATIOREPORTER reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    // Run names carry "/iterations:N" where the count is fixed.
    std::map<std::string, double> byName;
    for (const auto& [name, t] : reporter.Times)
        byName[name.substr(0, name.find("/iterations:"))] = t;
    std::printf("\n%-20s %12s %12s %8s\n", "operation", "fast ms", "literal ms", "ratio");
    for (const char* op : {"RemoveUnusedPoints", "DeleteSegment", "CalculateLighting", "PickSide", "FindSegment64"})
    {
        double fast = byName[std::string(op) + "/fast"], lit = byName[std::string(op) + "/literal"];
        std::printf("%-20s %12.4f %12.4f %7.1fx\n", op, fast, lit, fast > 0 ? lit / fast : 0.0);
    }
    // For save and load the baseline is the bare copy of the file's bytes;
    // the figure is how many such copies the whole operation costs.
    std::printf("\n%-20s %12s %12s %8s\n", "operation", "ms", "copy ms", "copies");
    for (const char* op : {"SaveLevel", "LoadLevel"})
    {
        double fast = byName[std::string(op) + "/fast"], copy = byName[std::string(op) + "/literal"];
        std::printf("%-20s %12.4f %12.4f %7.1fx\n", op, fast, copy, copy > 0 ? fast / copy : 0.0);
    }
    return 0;
}
