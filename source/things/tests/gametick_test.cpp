#include "orvlevel/level.h"

#include "math/camera.h"
#include "math/random.h"
#include "orvlevel/tests/leveltesting.h"
#include "things/effects.h"
#include "things/thing.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

namespace {

// A world-aligned cube of half-size h around p whose Update does whatever the test asks.
class BLOCK : public THING
{
public:
    int Updates = 0;
    std::function<void(BLOCK&)> OnUpdate;
    std::function<void()> OnDestroy;

    BLOCK(VECTOR3D p, float h)
    {
        position = p;
        axisX = {1, 0, 0}, axisY = {0, 1, 0}, axisZ = {0, 0, 1};
        boxXLow = boxYLow = boxZLow = -h;
        boxXHigh = boxYHigh = boxZHigh = h;
        oldPosition = p;
        oldAxisX = axisX, oldAxisY = axisY, oldAxisZ = axisZ;
    }
    ~BLOCK() override
    {
        if (OnDestroy)
            OnDestroy();
    }
    void Update() override
    {
        ++Updates;
        if (OnUpdate)
            OnUpdate(*this);
    }
};

class GameTickTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();

    BLOCK* Put(int slot, VECTOR3D p, float h)
    {
        auto* b = new BLOCK(p, h);
        L->Things[slot] = b;
        b->Level = L.get();
        return b;
    }
    int AddCube(VECTOR3D offset, int32_t type = SEGTYPE_NORMAL) { return AddCubeCopy(*L, offset, type); }
    int CountSparks() const { return CountOf<SPARK>(*L); }
};

} // namespace

TEST_F(GameTickTest, PhysicsStepPushesSolidPairsApartByTheFirstObjectsDistance)
{
    BLOCK* a = Put(0, {0, 0, 0}, 10);
    BLOCK* b = Put(1, {15, 0, 0}, 10);
    a->pushDistance = 3, b->pushDistance = 100; // B's own distance plays no part in this pair
    L->PhysicsStep();
    // Both move by A's distance along the line from B to A; then the wall
    // pass starts each live object's hit afresh, and nothing touched a wall.
    EXPECT_TRUE(a->position == VECTOR3D(-3, 0, 0) && b->position == VECTOR3D(18, 0, 0));
    EXPECT_TRUE(!a->hit && !b->hit && a->oldPosition == a->position && b->segment == 0);

    // Ghosts take no part; objects at the very same place touch but are not
    // pushed (there is no direction to push them in).
    BLOCK* g = Put(2, {-10, 0, 0}, 10);
    g->ghost = true, g->pushDistance = 5;
    BLOCK* twin = Put(3, {50, 50, 50}, 1);
    BLOCK* twin2 = Put(4, {50, 50, 50}, 1);
    twin->pushDistance = 5;
    L->PhysicsStep();
    EXPECT_TRUE(g->position == VECTOR3D(-10, 0, 0) && a->position == VECTOR3D(-3, 0, 0)) << "only the ghost overlaps A now";
    EXPECT_TRUE(twin->position == VECTOR3D(50, 50, 50) && twin2->position == VECTOR3D(50, 50, 50));
}

TEST_F(GameTickTest, FindTouchingThingFollowsBothPaths)
{
    THING* none[] = {nullptr};
    BLOCK probe({0, 0, 0}, 5);
    // B passed through the probe during this tick: found by B's own path,
    // though neither the probe's given path nor the final boxes meet.
    BLOCK* b = Put(3, {50, 0, 0}, 5);
    b->oldPosition = {-50, 0, 0};
    EXPECT_EQ(L->FindTouchingThing(&probe, {0, 0, -60}, none, 0), b);
    b->oldPosition = b->position;
    EXPECT_EQ(L->FindTouchingThing(&probe, {0, 0, -60}), nullptr);
    // The given point is where the probe came from.
    EXPECT_EQ(L->FindTouchingThing(&probe, {100, 0, 0}), b);

    // First in slot order, skipping ghosts, excluded objects and itself.
    BLOCK* c = Put(7, {3, 0, 0}, 5);
    BLOCK* d = Put(9, {-3, 0, 0}, 5);
    b->position = b->oldPosition = {3, 0, 0};
    EXPECT_EQ(L->FindTouchingThing(&probe, probe.position), b);
    THING* excluded[] = {c, b};
    EXPECT_EQ(L->FindTouchingThing(&probe, probe.position, excluded, 2), d);
    EXPECT_EQ(L->FindTouchingThing(&probe, probe.position, excluded, 1), b);
    b->ghost = true;
    EXPECT_EQ(L->FindTouchingThing(&probe, probe.position), c);
    EXPECT_EQ(L->FindTouchingThing(c, c->position), d);
}

TEST_F(GameTickTest, GameTickUpdatesEverySlotAndRemovesTheDead)
{
    CAMERA cam;
    // Slot 0 is free: a child added there is only updated from the next
    // tick on, one added after the current slot in the same tick.
    BLOCK* spawner = Put(1, {0, 0, 0}, 1);
    BLOCK* early = nullptr;
    BLOCK* late = nullptr;
    spawner->OnUpdate = [&](BLOCK& self) {
        if (self.Updates == 1)
            L->AddThing(early = new BLOCK({1, 1, 1}, 1));
        else if (self.Updates == 2)
            L->AddThing(late = new BLOCK({2, 2, 2}, 1));
    };
    BLOCK* dying = Put(2, {0, 0, 0}, 1);
    int destroyed = 0;
    BLOCK* leftover = nullptr;
    dying->OnUpdate = [](BLOCK& self) { self.dead = self.Updates == 2; };
    dying->OnDestroy = [&] {
        ++destroyed;
        // Its slot is still taken: what the destructor leaves goes elsewhere.
        L->AddThing(leftover = new BLOCK({3, 3, 3}, 1));
    };
    Put(3, {0, 0, 0}, 1);

    L->GameTick(cam);
    EXPECT_TRUE(L->Things[0] == early && early->Updates == 0 && dying->Updates == 1);

    L->GameTick(cam);
    EXPECT_TRUE(early->Updates == 1 && destroyed == 1 && !L->Things[2]);
    EXPECT_TRUE(L->Things[4] == late && late->Updates == 1 && L->Things[5] == leftover && leftover->Updates == 1);
    // The emptied slot is the lowest free one again.
    EXPECT_EQ(L->AddThing(new THING), 2);
    EXPECT_TRUE(P().Messages.empty());
}

TEST_F(GameTickTest, RechargerSegmentsSparkEveryFourthTick)
{
    CAMERA cam;
    L->Segments[0]->Type = SEGTYPE_RELOAD;
    AddCube({1000, 0, 0});
    int reload = AddCube({0, 1000, 0}, SEGTYPE_RELOAD);
    ASSERT_EQ(L->SparkCountdown, 0);

    L->GameTick(cam);
    EXPECT_EQ(L->SparkCountdown, 4);
    ASSERT_EQ(CountSparks(), 2);
    // One in each recharger, in segment order.
    for (int i = 0; i < 2; ++i)
    {
        auto* s = dynamic_cast<SPARK*>(L->Things[i]);
        ASSERT_NE(s, nullptr);
        EXPECT_TRUE(s->size == 20.0f && s->decay == 2.0f && s->ghost && s->oldPosition == s->position);
        EXPECT_EQ(L->FindSegment(s->position), i ? reload : 0);
    }

    for (int tick = 2; tick <= 4; ++tick)
    {
        L->GameTick(cam);
        EXPECT_EQ(CountSparks(), 2) << tick;
    }
    L->GameTick(cam);
    EXPECT_TRUE(CountSparks() == 4 && L->SparkCountdown == 4);
}

TEST(Thing, RandomOffsetsStayInsideTheirShapes)
{
    SRand(5);
    for (int i = 0; i < 2000; ++i)
        ASSERT_LE(Length(THING::RandomOffset(7.5f)), 7.5f);

    BLOCK t({100, 100, 100}, 3);
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

    BLOCK a({0, 0, 0}, 1), b({1.5f, 0, 0}, 1);
    for (auto [x, overlap] : {std::pair{1.5f, true}, {2.5f, false}, {100.0f, false}})
    {
        b.position = {x, 0, 0};
        EXPECT_EQ(BoxesOverlap(a.GetBox(), b.GetBox()), overlap) << x;
    }

    // Edges crossing without either centre inside the other box: a thin
    // cross of two long bars.
    BLOCK bar1({0, 0, 3}, 0.2f), bar2({3, 0, 0}, 0.2f); // along x at z = 3, along z at x = 3
    bar1.boxXLow = -5, bar1.boxXHigh = 5;
    bar2.boxZLow = -5, bar2.boxZHigh = 5;
    THINGBOX b1 = bar1.GetBox(), b2 = bar2.GetBox();
    EXPECT_FALSE(PointInBox(b1.Centre, b2.Centre, b2.HalfZ, b2.HalfY, b2.HalfX));
    EXPECT_FALSE(PointInBox(b2.Centre, b1.Centre, b1.HalfZ, b1.HalfY, b1.HalfX));
    EXPECT_TRUE(BoxesOverlap(bar1.GetBox(), bar2.GetBox()));
}
