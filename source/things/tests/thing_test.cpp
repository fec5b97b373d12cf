#include <gtest/gtest.h>

#include "math/random.h"
#include "platform/binio.h"
#include "things/thing.h"

#include <algorithm>
#include <cmath>

namespace {

// A box of half-size h around the origin of a thing at p (world-aligned frame).
void MakeCube(THING& t, VECTOR3D p, float h)
{
    t.position = p;
    t.axisX = {1, 0, 0}, t.axisY = {0, 1, 0}, t.axisZ = {0, 0, 1};
    t.boxXLow = t.boxYLow = t.boxZLow = -h;
    t.boxXHigh = t.boxYHigh = t.boxZHigh = h;
}

} // namespace

// The record layout is pinned by the level file tests' bytes.
TEST(Thing, ShortRecordControlAndBox)
{
    THING t, u;
    BINWRITER w, none;
    t.WriteMembers(w);
    BINREADER shortRead(w.Bytes.data(), w.Bytes.size() - 1);
    EXPECT_FALSE(u.ReadMembers(shortRead));
    t.WriteRecord(none, 3); // the base class writes no record
    EXPECT_EQ(none.Size(), 0u);

    for (int how : {0, 12, -1}) // unknown commands are ignored
        t.Control(how, 10.0f);
    EXPECT_TRUE(t.position == VECTOR3D(0, 0, 10) && t.axisX == VECTOR3D(0, 0, 1)); // along axisX

    // Bounds in either order.
    t.position = {10, 0, 0};
    t.boxXLow = 2, t.boxXHigh = 6; // along axisX = +z
    t.boxYLow = -1, t.boxYHigh = 1;
    t.boxZLow = -4, t.boxZHigh = 0;
    THINGBOX b = t.GetBox();
    EXPECT_EQ(b.Centre, VECTOR3D(10 - 2, 0, 4));
    EXPECT_TRUE(b.HalfX == VECTOR3D(0, 0, 4) && b.HalfY == VECTOR3D(0, 1, 0) && b.HalfZ == VECTOR3D(2, 0, 0));
}

TEST(Thing, RandomOffsetsStayInsideTheirShapes)
{
    SRand(5);
    for (int i = 0; i < 2000; ++i)
        ASSERT_LE(Length(THING::RandomOffset(7.5f)), 7.5f);

    THING t;
    MakeCube(t, {100, 100, 100}, 3);
    t.boxXHigh = 9; // half-extent along x is (3 + 9) / 2 = 6
    float maxX = 0;
    for (int i = 0; i < 2000; ++i) {
        VECTOR3D o = t.RandomBoxOffset(); // relative to the centre, not the position
        ASSERT_TRUE(std::fabs(o.x) <= 6.0f && std::fabs(o.y) <= 3.0f && std::fabs(o.z) <= 3.0f);
        maxX = std::max(maxX, std::fabs(o.x));
    }
    EXPECT_GT(maxX, 5.0f);
}

TEST(Thing, BoxTests)
{
    VECTOR3D c(0, 0, 0), h1(2, 0, 0), h2(0, 1, 0), h3(0, 0, 1);
    EXPECT_TRUE(PointInBox({2, 1, -1}, c, h1, h2, h3)); // faces count as inside
    EXPECT_FALSE(PointInBox({2.1f, 0, 0}, c, h1, h2, h3));
    EXPECT_FALSE(PointInBox({0, 0, 0}, c, h1, h1, h3)); // flat box: singular system

    EXPECT_TRUE(SegmentCrossesBox({1, 0, 0}, {1, 0, 0}, c, h1, h2, h3)); // a point inside

    // Random segments against a turned box, answered by clipping the segment
    // to the box's slabs: it crosses when it enters or leaves within (0, 1).
    const VECTOR3D centre(1, -2, 0.5f), axes[3] = {{1.6f, 1.2f, 0}, {-0.6f, 0.8f, 0}, {0, 0, 0.5f}};
    SRand(3);
    auto any = [] { return (Rand() * (1.0f / 32767.0f) - 0.5f) * 8.0f; };
    for (int n = 0, tried = 0; tried < 500; ++n)
    {
        VECTOR3D p0 = centre + VECTOR3D(any(), any(), any()), p1 = centre + VECTOR3D(any(), any(), any());
        double enter = -INFINITY, leave = INFINITY;
        for (const VECTOR3D& h : axes)
        {
            double hh = Dot(h, h), a = Dot(p0 - centre, h) / hh, b = Dot(p1 - centre, h) / hh;
            double t0 = (-1 - a) / (b - a), t1 = (1 - a) / (b - a);
            enter = std::max(enter, std::min(t0, t1));
            leave = std::min(leave, std::max(t0, t1));
        }
        auto near = [](double t) { return std::fabs(t) < 1e-3 || std::fabs(t - 1) < 1e-3; };
        if (std::fabs(leave - enter) < 1e-3 || near(enter) || near(leave))
            continue; // grazing or ending on a face: rounding decides
        ++tried;
        bool crosses = enter < leave && ((enter > 0 && enter < 1) || (leave > 0 && leave < 1));
        ASSERT_EQ(SegmentCrossesBox(p0, p1, centre, axes[0], axes[1], axes[2]), crosses) << n;
    }

    THING a, b;
    MakeCube(a, {0, 0, 0}, 1);
    MakeCube(b, {1.5f, 0, 0}, 1);
    for (auto [x, overlap] : {std::pair{1.5f, true}, {2.5f, false}, {100.0f, false}})
    {
        b.position = {x, 0, 0};
        EXPECT_EQ(BoxesOverlap(a.GetBox(), b.GetBox()), overlap) << x;
    }

    // Edges crossing without either centre inside the other box: a thin
    // cross of two long bars.
    THING bar1, bar2;
    MakeCube(bar1, {0, 0, 3}, 0.2f); // along x, at z = 3
    bar1.boxXLow = -5, bar1.boxXHigh = 5;
    MakeCube(bar2, {3, 0, 0}, 0.2f); // along z, at x = 3
    bar2.boxZLow = -5, bar2.boxZHigh = 5;
    THINGBOX b1 = bar1.GetBox(), b2 = bar2.GetBox();
    EXPECT_FALSE(PointInBox(b1.Centre, b2.Centre, b2.HalfZ, b2.HalfY, b2.HalfX));
    EXPECT_FALSE(PointInBox(b2.Centre, b1.Centre, b1.HalfZ, b1.HalfY, b1.HalfX));
    EXPECT_TRUE(BoxesOverlap(bar1.GetBox(), bar2.GetBox()));
}

TEST(Thing, FastObjectsCollideAlongTheirPath)
{
    THING a, b;
    MakeCube(a, {0, 0, 0}, 1);
    MakeCube(b, {50, 0, 0}, 1);
    EXPECT_FALSE(ThingsCollide(&a, a.position, &b, b.position));
    // A moved from far left to far right in one tick, through B.
    a.position = {100, 0, 0};
    EXPECT_TRUE(ThingsCollide(&a, {0, 0, 0}, &b, b.position));
    EXPECT_FALSE(ThingsCollide(&a, {0, 0, 0}, &a, {0, 0, 0}));
}
