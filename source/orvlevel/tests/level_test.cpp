#include "orvlevel/level.h"

#include "math/random.h"
#include "orvlevel/tests/leveltesting.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace {

int LiveThings = 0;

// Counts its instances; with Spawn > 0 its destructor leaves a new thing in
// its level, as a destroyed ship leaves an explosion.
class COUNTED : public THING
{
public:
    int Spawn;
    COUNTED(VECTOR3D p, int spawn = 0) : Spawn(spawn) { position = p, ++LiveThings; }
    ~COUNTED() override
    {
        --LiveThings;
        if (Spawn > 0)
            HandToLevel(Level, new COUNTED(position, Spawn - 1));
    }
};

class LevelTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();
    void SetUp() override
    {
        PlatformTest::SetUp();
        LiveThings = 0;
    }
    void TearDown() override
    {
        L.reset();
        EXPECT_EQ(LiveThings, 0);
    }
};

TEST_F(LevelTest, LowestFreeSlotAndFullTables)
{
    L->DeletePoint(6);
    L->DeletePoint(3);
    EXPECT_EQ((std::vector{L->Add(VECTOR3D()), L->Add(VECTOR3D()), L->Add(VECTOR3D())}), (std::vector{3, 6, 8}));
    while (L->Add(VECTOR3D()) >= 0) {}
    EXPECT_EQ(Filled(L->Points, MAX_POINTS), MAX_POINTS);
    L->DeletePoint(MAX_POINTS - 1);
    EXPECT_EQ(L->Add(VECTOR3D()), MAX_POINTS - 1);
    EXPECT_FALSE(L->PutPoint(-1, VECTOR3D()) || L->PutSegment(MAX_SEGMENTS, *L->Segments[0]));

    // A segment's address names its slot; a copy's, or a dropped one's, none.
    SEGMENT copy = *L->Segments[0];
    ASSERT_TRUE(L->PutSegment(9, copy));
    SEGMENT* nine = L->Segments[9];
    EXPECT_TRUE(L->SegmentIndexOf(nine) == 9 && L->SegmentIndexOf(&copy) == -1);
    L->DropSegment(9);
    EXPECT_TRUE(!L->Segments[9] && L->SegmentIndexOf(nine) == -1);

    EXPECT_EQ(L->AddThing(nullptr), -1);
    auto* t = new COUNTED({5, 6, 7});
    t->axisX = {0, 0, -1};
    ASSERT_EQ(L->AddThing(t), 0);
    EXPECT_TRUE(t->oldPosition == VECTOR3D(5, 6, 7) && t->oldAxisX == VECTOR3D(0, 0, -1));
    for (int i = 1; i < MAX_THINGS; ++i)
        ASSERT_EQ(L->AddThing(new COUNTED({})), i);
    COUNTED extra({});
    EXPECT_EQ(L->AddThing(&extra), -1); // still ours: destroyed with this scope
}

TEST_F(LevelTest, DeleteNearest)
{
    L->DeleteNearestLight({});
    L->DeleteNearestThing({});
    L->Add(STATICLIGHT{{10, 0, 0}, {}});
    L->Add(STATICLIGHT{{-10, 0, 0}, {}});
    L->DeleteNearestLight({});
    EXPECT_TRUE(Filled(L->Lights, MAX_LIGHTS) == 1 && !L->Lights[0]);

    // The slot of a dying thing is still taken: what it leaves goes elsewhere.
    L->AddThing(new COUNTED({100, 0, 0}));
    L->AddThing(new COUNTED({1, 0, 0}, 1));
    L->DeleteNearestThing({});
    EXPECT_TRUE(LiveThings == 2 && !L->Things[1]);
    ASSERT_NE(L->Things[2], nullptr);
    EXPECT_EQ(L->Things[2]->position, VECTOR3D(1, 0, 0));
}

TEST_F(LevelTest, ClearDestroysThingsAddedByDestructors)
{
    for (int i = 0; i < 10; ++i)
        L->AddThing(new COUNTED({}, 3));
    L->AddThing(new COUNTED({}, 100)); // a chain longer than Clear follows
    L->Clear();
    EXPECT_EQ(LiveThings, 0);
    L->Clear();
    // A cleared level refuses everything quietly.
    COUNTED t({});
    EXPECT_TRUE(L->AddThing(&t) == -1 && L->Add(VECTOR3D()) == -1);
    L->CurrentSegment = 0;
    EXPECT_EQ(L->GetCurrentSide(), nullptr);
}

// FindSegment itself is checked against a plain scan in the index tests.
TEST_F(LevelTest, RandomPointInSegment)
{
    SRand(5);
    VECTOR3D first = L->RandomPointInSegment(*L->Segments[0]);
    int fourth = Rand();
    SRand(5);
    float r1 = Rand() / 32767.0f, r2 = Rand() / 32767.0f, r3 = Rand() / 32767.0f;
    EXPECT_EQ(Rand(), fourth); // exactly three draws
    ExpectNear(first, {-100 + 200 * r1, 100 - 200 * r2, 100 - 200 * r3});
    for (int i = 0; i < 1000; ++i)
    {
        VECTOR3D p = L->RandomPointInSegment(*L->Segments[0]);
        ASSERT_TRUE(std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)}) <= 100);
    }
    SEGMENT broken = *L->Segments[0];
    broken.Corners[0] = -1;
    broken.Corners[1] = 99;
    EXPECT_EQ(L->RandomPointInSegment(broken), DefaultCubeCorners[2]);
}

// A door opens a hundredth a tick and holds open; its partner only follows
// on the state changes.
TEST_F(LevelTest, Doors)
{
    int above = AddCubeAbove(*L);
    SIDE& door = L->Segments[0]->Sides[0];
    SIDE& partner = L->Segments[above]->Sides[2];
    door.WallType = WALL_DOOR;
    L->OpenDoor(0, 0);
    for (int i = 0; i < 100; ++i)
        L->UpdateDoors();
    EXPECT_TRUE(door.Door.State == DOOR_OPENING && partner.Door.Opening == 0.0f);
    L->UpdateDoors();
    EXPECT_TRUE(door.Door.State == DOOR_OPEN && partner.Door.State == DOOR_OPEN);
    EXPECT_EQ(partner.Door.Opening, 2.0f);
}

} // namespace
