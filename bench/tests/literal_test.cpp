// The benchmarks compare each operation with a literal version of it; the
// ratios mean something only while both give the same results on the level
// they are measured on.
#include "../fulllevel.h"
#include "../literal.h"

#include "platform/tests/testplatform.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <unistd.h>

namespace {

class FullLevelTest : public PlatformTest
{
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        A = BuildFullLevel();
        B = BuildFullLevel();
        TheLevel = A.get();
    }
    void TearDown() override { TheLevel = nullptr; }

    std::unique_ptr<ORVLEVEL> A, B;
};

bool SamePointSlots(const ORVLEVEL& a, const ORVLEVEL& b)
{
    for (int i = 0; i < MAX_POINTS; ++i)
        if ((a.Points[i] == nullptr) != (b.Points[i] == nullptr))
            return false;
    return true;
}

int CountPoints(const ORVLEVEL& level)
{
    int n = 0;
    for (int i = 0; i < MAX_POINTS; ++i)
        n += level.Points[i] != nullptr;
    return n;
}

bool SameColours(const ORVLEVEL& a, const ORVLEVEL& b)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        for (int i = 0; i < 6; ++i)
        {
            const SIDE& x = a.Segments[s]->Sides[i];
            const SIDE& y = b.Segments[s]->Sides[i];
            if (std::memcmp(x.Colours, y.Colours, sizeof x.Colours) != 0)
                return false;
        }
    return true;
}

std::set<int32_t> SidePointSet(const SEGMENT& s, int side)
{
    std::set<int32_t> set;
    for (int k = 0; k < 4; ++k)
        set.insert(s.Corners[SideCorners[side][k]]);
    return set;
}

} // namespace

TEST_F(FullLevelTest, IsAFullAndConsistentlyJoinedLevel)
{
    EXPECT_EQ(CountPoints(*A), MAX_POINTS);
    for (int i = 0; i < MAX_LIGHTS; ++i)
        EXPECT_NE(A->Lights[i], nullptr);
    int walls = 0;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        const SEGMENT* seg = A->Segments[s];
        ASSERT_NE(seg, nullptr) << s;
        for (int32_t c : seg->Corners)
            ASSERT_NE(A->PointAt(c), nullptr) << s;
        for (int i = 0; i < 6; ++i)
        {
            int32_t n = seg->Neighbours[i];
            if (n == -1)
            {
                EXPECT_NE(seg->Sides[i].WallType, WALL_PASSABLE) << s << "/" << i;
                EXPECT_EQ(seg->Sides[i].Texture, 0);
                ++walls;
                continue;
            }
            // Exactly one side of the neighbour links back, over the same four points.
            const SEGMENT& other = *A->Segments[n];
            ASSERT_EQ(A->SideTowards(n, s), OppositeSide[i]) << s << "/" << i;
            EXPECT_EQ(std::count(other.Neighbours, other.Neighbours + 6, s), 1);
            EXPECT_EQ(SidePointSet(*seg, i), SidePointSet(other, OppositeSide[i])) << s << "/" << i;
            EXPECT_EQ(seg->Sides[i].WallType, WALL_PASSABLE);
            EXPECT_EQ(seg->Sides[i].Texture, -1);
        }
    }
    EXPECT_EQ(walls, 2 * (FULL_X * FULL_Y + FULL_X * FULL_Z + FULL_Y * FULL_Z));
    // Cells are where their indices say.
    for (VECTOR3D p : FullLevelProbes())
        if (int32_t s = A->FindSegment(p); s != -1)
        {
            int x = int(std::floor(p.x / FULL_CELL + 0.5f)), y = int(std::floor(p.y / FULL_CELL + 0.5f)),
                z = int(std::floor(p.z / FULL_CELL + 0.5f));
            EXPECT_EQ(s, FullCellIndex(x, y, z));
        }
    EXPECT_EQ(B->Serialize(), A->Serialize());
}

TEST_F(FullLevelTest, RemovingPointsAndSegmentsAgrees)
{
    A->RemoveUnusedPoints();
    LiteralRemoveUnusedPoints(*B);
    EXPECT_EQ(CountPoints(*A), FULL_GRID_POINTS);
    EXPECT_TRUE(SamePointSlots(*A, *B));

    // A corner cell takes its outermost point with it; a middle cell, none.
    for (int32_t index : {FullMiddleSegment(), FullCellIndex(0, 0, 0)})
    {
        FillUnusedPoints(*A);
        FillUnusedPoints(*B);
        const SEGMENTSNAPSHOT shot = TakeSnapshot(*A, index);
        A->DeleteSegment(index);
        LiteralDeleteSegment(*B, index);
        EXPECT_EQ(CountPoints(*A), FULL_GRID_POINTS - (index == FullCellIndex(0, 0, 0))) << index;
        EXPECT_TRUE(SamePointSlots(*A, *B)) << index;
        for (int s = 0; s < MAX_SEGMENTS; ++s)
        {
            ASSERT_EQ(A->Segments[s] == nullptr, B->Segments[s] == nullptr) << s;
            if (A->Segments[s])
                for (int i = 0; i < 6; ++i)
                {
                    ASSERT_EQ(A->Segments[s]->Neighbours[i], B->Segments[s]->Neighbours[i]) << s;
                    ASSERT_EQ(A->Segments[s]->Sides[i].WallType, B->Segments[s]->Sides[i].WallType) << s;
                }
        }
        // What the benchmark puts back must be the level it started from.
        std::unique_ptr<ORVLEVEL> fresh = BuildFullLevel();
        PutSegmentBack(*A, shot);
        PutSegmentBack(*B, shot);
        EXPECT_EQ(A->Serialize(), fresh->Serialize()) << index;
        EXPECT_EQ(B->Serialize(), fresh->Serialize()) << index;
    }
}

TEST_F(FullLevelTest, LightingAgreesBitForBit)
{
    for (bool everySide : {false, true})
    {
        if (everySide)
        {
            TextureEverySide(*A);
            TextureEverySide(*B);
        }
        A->CalculateLighting();
        LiteralCalculateLighting(*B);
        EXPECT_TRUE(SameColours(*A, *B)) << everySide;
        // Plenty of corners below saturation, so sums are compared, and
        // plenty at it, so clamps are.
        int partly = 0, saturated = 0;
        for (int s = 0; s < MAX_SEGMENTS; ++s)
            for (const SIDE& side : A->Segments[s]->Sides)
                for (VECTOR3D c : side.Colours)
                    if (side.Texture != -1)
                    {
                        partly += c.y > 0 && c.y < 1;
                        saturated += c.y == 1;
                    }
        EXPECT_GT(partly, 1000) << everySide;
        EXPECT_GT(saturated, 1000) << everySide;
    }
}

TEST_F(FullLevelTest, PickingAgrees)
{
    const CAMERA inside = FullLevelCamera();
    for (int x : {0, 137, 300, 320, 639})
        for (int y : {0, 200, 479})
        {
            A->PickSide(x, y, inside, 640, 480);
            LiteralPickSide(*B, x, y, inside, 640, 480);
            ASSERT_NE(A->CurrentSegment, -1);
            EXPECT_EQ(A->CurrentSegment, B->CurrentSegment) << x << "," << y;
            EXPECT_EQ(A->CurrentSide, B->CurrentSide) << x << "," << y;
        }
    // From outside, looking away: nothing is hit, side 0 of the last pick stays selected.
    CAMERA away = inside;
    away.Position = VECTOR3D(-1000, 1000, 1000);
    away.ViewDir = -away.ViewDir;
    away.Right = -away.Right;
    A->CurrentSide = B->CurrentSide = 3;
    A->PickSide(320, 240, away, 640, 480);
    LiteralPickSide(*B, 320, 240, away, 640, 480);
    EXPECT_EQ(A->CurrentSide, 0);
    EXPECT_EQ(B->CurrentSide, 0);
    EXPECT_EQ(A->CurrentSegment, B->CurrentSegment);
}

TEST_F(FullLevelTest, FindingSegmentsAgrees)
{
    std::vector<VECTOR3D> points = FullLevelProbes();
    // On a shared face and a shared corner the lower index wins; far outside nothing.
    points.push_back(FullCellCentre(4, 7, 2) + VECTOR3D(100, 0, 0));
    points.push_back(FullCellCentre(4, 7, 2) + VECTOR3D(100, 100, 100));
    points.push_back(FullCellCentre(40, 0, 0));
    int found = 0;
    for (VECTOR3D p : points)
    {
        int32_t s = A->FindSegment(p);
        EXPECT_EQ(s, LiteralFindSegment(*B, p)) << p.x << "," << p.y << "," << p.z;
        found += s != -1;
    }
    EXPECT_GT(found, 50);
    EXPECT_LT(found, int(points.size()));
}

TEST_F(FullLevelTest, CollisionAgrees)
{
    int hits = 0;
    for (bool correct : {false, true})
        for (const MOTION& m : FullLevelMotions())
        {
            VECTOR3D fromA = m.From, toA = m.To, fromB = m.From, toB = m.To;
            bool a = A->CollidePoint(&fromA, 0, nullptr, m.Distance, m.Swept, &toA, correct);
            bool b = LiteralCollidePoint(*B, &fromB, m.Distance, m.Swept, &toB, correct);
            EXPECT_EQ(a, b) << m.From.x << "," << m.From.y << "," << m.From.z;
            EXPECT_EQ(std::memcmp(&fromA, &fromB, sizeof fromA), 0);
            EXPECT_EQ(std::memcmp(&toA, &toB, sizeof toA), 0);
            hits += a;
        }
    const int motions = int(FullLevelMotions().size());
    EXPECT_GT(hits, motions / 2);
    EXPECT_LT(hits, 2 * motions);
    // Touched doors opened the same way.
    EXPECT_EQ(A->Serialize(), B->Serialize());
    EXPECT_EQ(A->Segments[FullCellIndex(0, 2, 3)]->Sides[3].Door.State, DOOR_OPENING);
}

TEST_F(FullLevelTest, SavedLevelLoadsBackToTheSameBytes)
{
    const std::vector<uint8_t> image = A->Serialize();
    const std::string name = "orvbench-" + std::to_string(getpid()) + ".ORVLevel";
    const std::string path = (std::filesystem::temp_directory_path() / name).string();
    A->SaveLevel(path.c_str());
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    EXPECT_EQ(file, image);

    B->LoadLevel(path.c_str());
    std::filesystem::remove(path);
    EXPECT_TRUE(P().Messages.empty());
    EXPECT_EQ(B->Serialize(), image);
}
