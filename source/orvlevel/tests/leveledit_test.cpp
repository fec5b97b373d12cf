#include "orvlevel/level.h"

#include "math/camera.h"
#include "math/geometry.h"
#include "orvlevel/tests/leveltesting.h"
#include "platform/tests/testplatform.h"

#include <algorithm>
#include <memory>

namespace {

void ExpectPairs(const TEXPAIR* t, std::initializer_list<TEXPAIR> want)
{
    for (size_t k = 0; k < want.size(); ++k)
    {
        EXPECT_NEAR(t[k].s, want.begin()[k].s, 1e-4f) << "pair " << k;
        EXPECT_NEAR(t[k].t, want.begin()[k].t, 1e-4f) << "pair " << k;
    }
}

class LevelEditTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();
    CAMERA Cam;
    void Select(int seg, int side, int point = 0) { L->CurrentSegment = seg, L->CurrentSide = side, L->CurrentPoint = point; }
    int Points() { return Filled(L->Points, MAX_POINTS); }
    int Segments() { return Filled(L->Segments, MAX_SEGMENTS); }
};

} // namespace

TEST_F(LevelEditTest, NewSegmentFromEachSideOfTheCube)
{
    for (int side = 0; side < 6; ++side)
    {
        L = std::make_unique<ORVLEVEL>();
        Select(0, side);
        const int32_t* in = L->GetCurrentSideIndices();
        const int32_t want[8] = {10, 11, 9, 8, in[2], in[3], in[1], in[0]};
        L->NewSegment();
        ASSERT_EQ(Segments(), 2);
        const SEGMENT& b = *L->Segments[1];
        EXPECT_TRUE(std::equal(want, want + 8, b.Corners)) << side;
        EXPECT_TRUE(L->Segments[0]->Neighbours[side] == 1 && b.Neighbours[5] == 0);
        EXPECT_EQ(b.Sides[5].WallType, WALL_PASSABLE);
        L->NewSegment(); // the side is taken now
        EXPECT_EQ(P().Beeps, side + 1);
    }
}

TEST_F(LevelEditTest, JoinSidesWithEveryShift)
{
    // Corners of side b that take side a's corners 0 ... 3, per shift mod 4.
    const int want[4][4] = {{3, 2, 1, 0}, {2, 1, 0, 3}, {1, 0, 3, 2}, {0, 3, 2, 1}};
    for (auto [shift, s] : {std::pair{0, 0}, {1, 1}, {2, 2}, {3, 3}, {7, 3}, {-1, 3}, {-6, 2}})
    {
        L = std::make_unique<ORVLEVEL>();
        int b = AddCubeCopy(*L, {0, 300, 0});
        EXPECT_FALSE(L->JoinSides(b, 2, b, 2, shift));
        ASSERT_TRUE(L->JoinSides(0, 0, b, 2, shift));
        const SEGMENT& A = *L->Segments[0];
        const SEGMENT& B = *L->Segments[b];
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(B.Corners[SideCorners[2][want[s][i]]], A.Corners[SideCorners[0][i]]) << shift;
        EXPECT_EQ(Points(), 12); // b's old bottom corners are gone
        EXPECT_TRUE(A.Neighbours[0] == b && B.Neighbours[2] == 0);
        EXPECT_TRUE(A.Sides[0].WallType == WALL_PASSABLE && B.Sides[2].WallType == WALL_PASSABLE);
        EXPECT_TRUE(A.Sides[0].Texture == -1 && B.Sides[2].Texture == -1);
    }
}

TEST_F(LevelEditTest, FitTextureAcrossASharedEdge)
{
    // Sides sharing 0, 1, 3 and 4 corners, and the same side: refused, unchanged.
    SEGMENT copy = *L->Segments[0];
    L->Add(&copy);
    copy.Corners[5] = L->Add(VECTOR3D(0, 0, 0));
    L->Add(&copy);
    for (auto [b, side] : {std::pair{0, 2}, {2, 1}, {2, 0}, {1, 0}, {0, 0}})
    {
        EXPECT_FALSE(L->FitTexture(0, 0, b, side)) << b << "/" << side;
        ExpectPairs(L->Segments[b]->Sides[side].TexCoords, {{1, 1}, {0, 1}, {0, 0}, {1, 0}});
    }

    ASSERT_TRUE(L->FitTexture(0, 0, 0, 1));
    ExpectPairs(L->Segments[0]->Sides[1].TexCoords, {{1, 1}, {1, 0}, {0, 0}, {0, 1}});

    TEXPAIR t[4] = {{9, 9}, {9, 9}, {1, 1}, {0, 1}};
    const VECTOR3D sq[4] = {{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    ORVLEVEL::CalcTexCoordsFromEdge(t, sq, 4, 2, 3);
    ExpectPairs(t, {{0, 2}, {1, 2}, {1, 1}, {0, 1}});
    // A corner on the edge's line: rounding must not make a NaN.
    for (int i = 1; i < 40; ++i)
    {
        VECTOR3D a(0.1f, 0.2f, 0.3f), d(0.3f, 0.7f, 1.1f);
        const VECTOR3D line[3] = {a, a + d, a + d * (i * 0.37f)};
        TEXPAIR p[3] = {{0, 0}, {1, 0}, {}};
        ORVLEVEL::CalcTexCoordsFromEdge(p, line, 3, 0, 1);
        EXPECT_NEAR(p[2].s, i * 0.37f, 1e-3f);
        EXPECT_NEAR(p[2].t, 0, 0.05f);
    }
}

TEST_F(LevelEditTest, PickSideFromTheStartUpCamera)
{
    // The camera sits on cube corner (100, 100, 100) looking in: the far
    // sides x = -100 (3), z = -100 (5) and y = -100 (2) fill the view's left,
    // right and bottom; outside the cube's outline a click misses (side 0).
    // The outline's left edge, between y = 80 and 120, pins the proportion.
    const int picks[][3] = {{80, 80, 3},   {0, 80, 3},   {0, 120, 0}, {560, 80, 5},
                            {320, 360, 2}, {40, 400, 0}, {600, 280, 0}};
    for (const auto& [x, y, side] : picks)
    {
        Select(0, 4);
        L->PickSide(x, y, Cam, 640, 480);
        EXPECT_TRUE(L->CurrentSegment == 0 && L->CurrentSide == side) << x << "," << y;
    }
    L->PickSide(320, 240, Cam, 640, 480);
    EXPECT_EQ(L->CurrentSide, 2);

    // A miss, or an empty view, with nothing selected: still nothing.
    Select(-1, 3);
    L->PickSide(639, 479, Cam, 640, 480);
    L->PickSide(0, 0, Cam, 0, 0);
    EXPECT_EQ(L->CurrentSegment, -1);
    EXPECT_EQ(L->CurrentSide, 0);
    // Which face is nearest, and that back faces never count, is checked
    // against a plain scan in the index tests.
}

TEST_F(LevelEditTest, MalformedLevelSurvivesEveryOperation)
{
    SEGMENT bad = *L->Segments[0];
    const int32_t links[6] = {4999, 70000, -5, 0, -1, MAX_SEGMENTS};
    std::copy(links, links + 6, bad.Neighbours);
    bad.Corners[0] = -3; // every side has a corner that names no point
    bad.Corners[7] = 45000;
    bad.Corners[6] = L->Add(VECTOR3D(0, 0, -150));
    L->Add(&bad);
    L->DeletePoint(bad.Corners[6]);
    L->Segments[0]->Neighbours[2] = 3000;

    TEXPAIR t[4] = {};
    ORVLEVEL::CalcTexCoordsFromEdge(t, L->GetSideCorners(0, 0), 4, 0, 7);
    ORVLEVEL::TexCoordsFromCorners(t, L->GetSideCorners(0, 0), 2, 100);
    for (int side = -1; side < 8; ++side)
    {
        for (int seg : {1, 0, -1, 3000, MAX_SEGMENTS})
        {
            Select(seg, side, 3);
            L->PickSide(side * 90, side * 60, Cam, 640, 480);
            Select(seg, side, side);
            L->NewSegment();
            L->MovePoint(1, 1, 1);
            L->RestoreTexture();
            L->FitTexture(seg, side, 0, 1);
            L->FitTexture(0, 1, seg, side);
            L->FitTextureToPicked(320, 240, Cam, 640, 480);
            L->JoinSides(seg, side, 0, 4, side);
            L->Unlink(seg, side);
        }
        EXPECT_FALSE(L->JoinSides(1, side, 0, 5, 0));
    }
    for (int32_t n : L->Segments[1]->Neighbours)
        EXPECT_EQ(n, -1);
    for (int s : {3000, -1, 70000})
        L->DeleteSegment(s);
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        L->DeleteSegment(s);
    EXPECT_EQ(Points(), 0);
}
