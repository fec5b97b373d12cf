// The benchmarks' plain versions must agree with the real operations, or the
// ratios they report mean nothing.
#include "../fulllevel.h"
#include "../literal.h"

#include "math/geometry.h"
#include "platform/tests/testplatform.h"

#include <cstring>

namespace {

bool SameColours(const ORVLEVEL& a, const ORVLEVEL& b)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        if (a.Segments[s] && b.Segments[s])
            for (int i = 0; i < 6; ++i)
                if (std::memcmp(a.Segments[s]->Sides[i].Colours, b.Segments[s]->Sides[i].Colours,
                                sizeof(VECTOR3D) * 4) != 0)
                    return false;
    return true;
}

} // namespace

TEST_F(PlatformTest, LiteralVersionsAgreeOnTheFullLevel)
{
    auto a = BuildFullLevel();
    auto b = BuildFullLevel();
    TheLevel = a.get();
    ASSERT_TRUE(a->Serialize() == b->Serialize());
    EXPECT_EQ(a->Points[MAX_POINTS - 1] != nullptr, true);

    a->CalculateLighting();
    LiteralCalculateLighting(*b);
    EXPECT_TRUE(SameColours(*a, *b));
    int partly = 0; // lit corners below saturation: the sums are really compared
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        for (const SIDE& side : a->Segments[s]->Sides)
            for (VECTOR3D col : side.Colours)
                partly += side.Texture != -1 && col.x > 0 && col.x < 1;
    EXPECT_GT(partly, 1000);

    CAMERA c;
    c.Position = FullCellCentre(12, 10, 5) + VECTOR3D(1, 2, 3);
    c.ViewDir = VECTOR3D(1, 0.1f, 0.05f) / Length(VECTOR3D(1, 0.1f, 0.05f));
    c.Up = Cross(Cross(c.ViewDir, VECTOR3D(0, 1, 0)), c.ViewDir);
    c.Up /= Length(c.Up);
    c.Right = Cross(c.ViewDir, c.Up);
    for (int x : {0, 300, 639})
    {
        a->PickSide(x, 200, c, 640, 480);
        LiteralPickSide(*b, x, 200, c, 640, 480);
        EXPECT_EQ(a->CurrentSegment, b->CurrentSegment);
        EXPECT_EQ(a->CurrentSide, b->CurrentSide);
    }
    EXPECT_NE(a->CurrentSegment, -1);

    for (VECTOR3D p : {FullCellCentre(3, 4, 5), FullCellCentre(24, 19, 9) + VECTOR3D(99, 0, 0),
                       FullCellCentre(30, 0, 0)})
        EXPECT_EQ(a->FindSegment(p), LiteralFindSegment(*b, p));

    a->DeleteSegment(2512);
    TheLevel = b.get();
    LiteralDeleteSegment(*b, 2512);
    for (int i = 0; i < MAX_POINTS; ++i)
        ASSERT_EQ(a->Points[i] != nullptr, b->Points[i] != nullptr) << i;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        ASSERT_EQ(a->Segments[s] != nullptr, b->Segments[s] != nullptr);
        if (a->Segments[s])
        {
            ASSERT_EQ(std::memcmp(a->Segments[s]->Neighbours, b->Segments[s]->Neighbours, sizeof(int32_t) * 6), 0);
        }
    }
    TheLevel = nullptr;
}
