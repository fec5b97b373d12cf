// orvane-bench --verify: the ratios mean something only while each operation
// and its literal version give the same results on the level they are
// measured on, and while that level is what the benchmarks say it is.
#include "verify.h"

#include "fulllevel.h"
#include "literal.h"

#include "platform/platform.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

// The console backend, counting the messages it shows: no check has cause
// to show one.
class COUNTINGPLATFORM : public CONSOLEPLATFORM
{
public:
    int Messages = 0;
    void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) override
    {
        ++Messages;
        CONSOLEPLATFORM::MessageBox(text, caption, icon);
    }
};

class VERIFIER
{
public:
    int Checks = 0;
    int Failures = 0;

    // Records one check; prints it when it fails.
    bool Check(bool agrees, const std::string& what)
    {
        ++Checks;
        if (!agrees)
        {
            ++Failures;
            std::printf("DISAGREES: %s\n", what.c_str());
        }
        return agrees;
    }
};

std::string At(VECTOR3D p)
{
    char text[80];
    std::snprintf(text, sizeof text, "(%g, %g, %g)", p.x, p.y, p.z);
    return text;
}

bool SamePointSlots(const ORVLEVEL& a, const ORVLEVEL& b)
{
    for (int i = 0; i < MAX_POINTS; ++i)
        if ((a.Points[i] == nullptr) != (b.Points[i] == nullptr))
            return false;
    return true;
}

int CountPoints(const ORVLEVEL& level)
{
    return int(std::count_if(level.Points, level.Points + MAX_POINTS, [](const VECTOR3D* p) { return p; }));
}

bool SameSegments(const ORVLEVEL& a, const ORVLEVEL& b)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        if ((a.Segments[s] == nullptr) != (b.Segments[s] == nullptr))
            return false;
        if (a.Segments[s])
            for (int i = 0; i < 6; ++i)
                if (a.Segments[s]->Neighbours[i] != b.Segments[s]->Neighbours[i] ||
                    a.Segments[s]->Sides[i].WallType != b.Segments[s]->Sides[i].WallType)
                    return false;
    }
    return true;
}

bool SameColours(const ORVLEVEL& a, const ORVLEVEL& b)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        for (int i = 0; i < 6; ++i)
            if (std::memcmp(a.Segments[s]->Sides[i].Colours, b.Segments[s]->Sides[i].Colours,
                            sizeof(SIDE::Colours)) != 0)
                return false;
    return true;
}

std::set<int32_t> SidePointSet(const SEGMENT& s, int side)
{
    std::set<int32_t> set;
    for (int k = 0; k < 4; ++k)
        set.insert(s.Corners[SideCorners[side][k]]);
    return set;
}

void FullLevelIsWhatItSays(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    v.Check(CountPoints(a) == MAX_POINTS, "every point slot is filled");
    v.Check(std::all_of(a.Lights, a.Lights + MAX_LIGHTS, [](const STATICLIGHT* l) { return l; }),
            "every light slot is filled");
    int walls = 0;
    bool joined = true;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        const SEGMENT* seg = a.Segments[s];
        if (!v.Check(seg && std::all_of(seg->Corners, seg->Corners + 8, [&](int32_t c) { return a.PointAt(c); }),
                     "segment " + std::to_string(s) + " exists with all its corners"))
            return;
        for (int i = 0; i < 6; ++i)
        {
            const SIDE& side = seg->Sides[i];
            int32_t n = seg->Neighbours[i];
            if (n == -1)
            {
                joined = joined && side.WallType != WALL_PASSABLE && side.Texture == 0;
                ++walls;
                continue;
            }
            // Exactly one side of the neighbour links back, over the same four points.
            const SEGMENT& other = *a.Segments[n];
            joined = joined && a.SideTowards(n, s) == OppositeSide[i] &&
                     std::count(other.Neighbours, other.Neighbours + 6, s) == 1 &&
                     SidePointSet(*seg, i) == SidePointSet(other, OppositeSide[i]) &&
                     side.WallType == WALL_PASSABLE && side.Texture == -1;
        }
    }
    v.Check(joined, "cells are joined through their shared sides and walled outside");
    v.Check(walls == 2 * (FULL_X * FULL_Y + FULL_X * FULL_Z + FULL_Y * FULL_Z), "the outer walls count");
    for (VECTOR3D p : FullLevelProbes())
        if (int32_t s = a.FindSegment(p); s != -1)
        {
            int x = int(std::floor(p.x / FULL_CELL + 0.5f)), y = int(std::floor(p.y / FULL_CELL + 0.5f)),
                z = int(std::floor(p.z / FULL_CELL + 0.5f));
            v.Check(s == FullCellIndex(x, y, z), "the cell at " + At(p) + " is where its index says");
        }
    v.Check(a.Serialize() == b.Serialize(), "two builds of the level are the same");
}

void RemovingPointsAndSegments(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    a.RemoveUnusedPoints();
    LiteralRemoveUnusedPoints(b);
    v.Check(CountPoints(a) == FULL_GRID_POINTS, "RemoveUnusedPoints keeps exactly the corners");
    v.Check(SamePointSlots(a, b), "RemoveUnusedPoints");

    // A corner cell takes its outermost point with it; a middle cell, none.
    const std::unique_ptr<ORVLEVEL> fresh = BuildFullLevel();
    for (int32_t index : {FullMiddleSegment(), FullCellIndex(0, 0, 0)})
    {
        const std::string what = "DeleteSegment(" + std::to_string(index) + ")";
        FillUnusedPoints(a);
        FillUnusedPoints(b);
        const SEGMENTSNAPSHOT shot = TakeSnapshot(a, index);
        a.DeleteSegment(index);
        LiteralDeleteSegment(b, index);
        v.Check(CountPoints(a) == FULL_GRID_POINTS - (index == FullCellIndex(0, 0, 0)), what + " frees its own points");
        v.Check(SamePointSlots(a, b) && SameSegments(a, b), what);
        // What the benchmark puts back must be the level it started from.
        PutSegmentBack(a, shot);
        PutSegmentBack(b, shot);
        v.Check(a.Serialize() == fresh->Serialize() && b.Serialize() == fresh->Serialize(),
                what + " is put back as it was");
    }
}

void Lighting(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    for (bool everySide : {false, true})
    {
        const std::string what = everySide ? "CalculateLighting, every side textured" : "CalculateLighting";
        if (everySide)
        {
            TextureEverySide(a);
            TextureEverySide(b);
        }
        a.CalculateLighting();
        LiteralCalculateLighting(b);
        v.Check(SameColours(a, b), what + ", bit for bit");
        // Plenty of corners below saturation, so sums are compared, and
        // plenty at it, so clamps are.
        int partly = 0, saturated = 0;
        for (int s = 0; s < MAX_SEGMENTS; ++s)
            for (const SIDE& side : a.Segments[s]->Sides)
                for (VECTOR3D c : side.Colours)
                    if (side.Texture != -1)
                    {
                        partly += c.y > 0 && c.y < 1;
                        saturated += c.y == 1;
                    }
        v.Check(partly > 1000 && saturated > 1000, what + " lights corners partly and fully");
    }
}

void Picking(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    const CAMERA inside = FullLevelCamera();
    for (int x : {0, 137, 300, 320, 639})
        for (int y : {0, 200, 479})
        {
            a.PickSide(x, y, inside, 640, 480);
            LiteralPickSide(b, x, y, inside, 640, 480);
            const std::string what = "PickSide(" + std::to_string(x) + ", " + std::to_string(y) + ")";
            v.Check(a.CurrentSegment != -1, what + " hits a side");
            v.Check(a.CurrentSegment == b.CurrentSegment && a.CurrentSide == b.CurrentSide, what);
        }
    // From outside, looking away: nothing is hit, side 0 of the last pick stays selected.
    CAMERA away = inside;
    away.Position = VECTOR3D(-1000, 1000, 1000);
    away.ViewDir = -away.ViewDir;
    away.Right = -away.Right;
    a.CurrentSide = b.CurrentSide = 3;
    a.PickSide(320, 240, away, 640, 480);
    LiteralPickSide(b, 320, 240, away, 640, 480);
    v.Check(a.CurrentSide == 0 && b.CurrentSide == 0 && a.CurrentSegment == b.CurrentSegment,
            "PickSide from outside, looking away");
}

void FindingSegments(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    std::vector<VECTOR3D> points = FullLevelProbes();
    // On a shared face and a shared corner the lower index wins; far outside nothing.
    points.push_back(FullCellCentre(4, 7, 2) + VECTOR3D(100, 0, 0));
    points.push_back(FullCellCentre(4, 7, 2) + VECTOR3D(100, 100, 100));
    points.push_back(FullCellCentre(40, 0, 0));
    int found = 0;
    for (VECTOR3D p : points)
    {
        int32_t s = a.FindSegment(p);
        v.Check(s == LiteralFindSegment(b, p), "FindSegment" + At(p));
        found += s != -1;
    }
    v.Check(found > 50 && found < int(points.size()), "FindSegment finds most points, not all");
}

void Collision(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    int hits = 0;
    for (bool correct : {false, true})
        for (const MOTION& m : FullLevelMotions())
        {
            VECTOR3D fromA = m.From, toA = m.To, fromB = m.From, toB = m.To;
            bool hitA = a.CollidePoint(&fromA, 0, nullptr, m.Distance, m.Swept, &toA, correct);
            bool hitB = LiteralCollidePoint(b, &fromB, m.Distance, m.Swept, &toB, correct);
            v.Check(hitA == hitB && std::memcmp(&fromA, &fromB, sizeof fromA) == 0 &&
                        std::memcmp(&toA, &toB, sizeof toA) == 0,
                    "CollidePoint from " + At(m.From) + (correct ? ", correcting" : ""));
            hits += hitA;
        }
    const int motions = int(FullLevelMotions().size());
    v.Check(hits > motions / 2 && hits < 2 * motions, "CollidePoint hits some walls, not all");
    // Touched doors opened the same way.
    v.Check(a.Serialize() == b.Serialize(), "CollidePoint opens the same doors");
    v.Check(a.Segments[FullCellIndex(0, 2, 3)]->Sides[3].Door.State == DOOR_OPENING, "a touched door opens");
}

void SavingAndLoading(VERIFIER& v, ORVLEVEL& a, ORVLEVEL& b)
{
    const std::vector<uint8_t> image = a.Serialize();
    const std::string name = "orvbench-" + std::to_string(getpid()) + ".ORVLevel";
    const std::string path = (std::filesystem::temp_directory_path() / name).string();
    a.SaveLevel(path.c_str());
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    v.Check(file == image, "SaveLevel writes what Serialize gives");
    b.LoadLevel(path.c_str());
    std::filesystem::remove(path);
    v.Check(b.Serialize() == image, "LoadLevel reads back the same level");
}

} // namespace

int VerifyAgreement()
{
    COUNTINGPLATFORM platform;
    SetPlatform(&platform);
    VERIFIER v;
    auto run = [&](void (*check)(VERIFIER&, ORVLEVEL&, ORVLEVEL&)) {
        std::unique_ptr<ORVLEVEL> a = BuildFullLevel(), b = BuildFullLevel();
        check(v, *a, *b);
    };
    run(FullLevelIsWhatItSays);
    run(RemovingPointsAndSegments);
    run(Lighting);
    run(Picking);
    run(FindingSegments);
    run(Collision);
    run(SavingAndLoading);
    v.Check(platform.Messages == 0, "no message was shown");
    SetPlatform(nullptr);
    std::printf("%d checks, %d disagree\n", v.Checks, v.Failures);
    return v.Failures;
}
