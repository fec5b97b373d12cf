#include "orvlevel/level.h"

#include "graphics/texture.h"
#include "math/geometry.h"
#include "math/random.h"
#include "orvlevel/tests/leveltesting.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <set>
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
    void ExpectNoSelection(bool segmentSelected = false)
    {
        EXPECT_EQ(L->GetCurrentSegment() != nullptr, segmentSelected);
        EXPECT_FALSE(L->GetCurrentSide() || L->GetCurrentPointPtr() || L->GetCurrentSidePoints() || L->GetCurrentSideIndices() ||
                     L->GetCurrentSideCorners() || L->GetCurrentTexCoords());
        L->ClearSideTexture();
        EXPECT_EQ(L->Segments[0]->Sides[0].Texture, 0);
    }
    int AddCubeAbove() { return ::AddCubeAbove(*L); }
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

TEST_F(LevelTest, RemoveUnusedPointsMatchesLiteralScan)
{
    SRand(77);
    for (int i = 0; i < 3000; ++i)
        L->Add(VECTOR3D(float(i), 0, 0));
    L->PutPoint(MAX_POINTS - 1, VECTOR3D());
    L->PutPoint(30000, VECTOR3D());
    for (int n = 0; n < 200; ++n)
    {
        SEGMENT s;
        for (int32_t& c : s.Corners)
            c = Rand() % 3500 - 100; // some negative, some naming no point
        s.Corners[0] = n == 7 ? MAX_POINTS - 1 : n == 9 ? MAX_POINTS : s.Corners[0];
        L->Add(&s);
    }
    std::set<int> expected, kept;
    for (int p = 0; p < MAX_POINTS; ++p)
        for (int s = 0; s < MAX_SEGMENTS && L->Points[p]; ++s)
            if (L->Segments[s] && std::count(L->Segments[s]->Corners, L->Segments[s]->Corners + 8, p))
                expected.insert(p);
    L->RemoveUnusedPoints();
    for (int p = 0; p < MAX_POINTS; ++p)
        if (L->Points[p])
            kept.insert(p);
    EXPECT_EQ(kept, expected);
    EXPECT_TRUE(kept.count(MAX_POINTS - 1));
    EXPECT_FALSE(kept.count(30000));
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

// Walks stop at the highest slot ever filled, so the last slots must count,
// and a level read over a bigger one must not see the bigger one's slots.
TEST_F(LevelTest, WalksReachTheLastSlotsAndForgetThemOnReload)
{
    const std::vector<uint8_t> small = L->Serialize();
    SEGMENT cube = *L->Segments[0];
    for (int k = 0; k < 8; ++k)
    {
        L->PutPoint(MAX_POINTS - 8 + k, DefaultCubeCorners[k] + VECTOR3D(0, 0, 1000));
        cube.Corners[k] = MAX_POINTS - 8 + k;
    }
    L->PutSegment(MAX_SEGMENTS - 1, cube);
    EXPECT_EQ(L->FindSegment({0, 0, 1000}), MAX_SEGMENTS - 1);
    EXPECT_EQ(L->SightWalk({0, 0, 1000}, {0, 0, 1050}, MAX_SEGMENTS - 1), -1);

    ORVLEVEL copy;
    const std::vector<uint8_t> big = L->Serialize();
    copy.Clear();
    copy.Deserialize(big.data(), big.size());
    EXPECT_EQ(copy.FindSegment({0, 0, 1000}), MAX_SEGMENTS - 1);
    copy.Clear();
    copy.Deserialize(small.data(), small.size());
    EXPECT_FALSE(copy.Segments[MAX_SEGMENTS - 1] || copy.Points[MAX_POINTS - 1]);
    EXPECT_EQ(copy.FindSegment({0, 0, 1000}), -1);
    EXPECT_EQ(copy.Serialize(), small);
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

TEST_F(LevelTest, SelectionQueries)
{
    for (int bad : {3, -2, MAX_SEGMENTS}) // 3 is an empty slot
    {
        L->CurrentSegment = bad;
        ExpectNoSelection();
    }
    L->CurrentSegment = 0;
    L->CurrentSide = 6;
    ExpectNoSelection(true);

    L->CurrentSide = 1; // x = +100: slots 1, 5, 7, 3
    L->CurrentPoint = 2;
    EXPECT_TRUE(L->GetCurrentPointPtr() == L->Points[7] && L->GetCurrentSidePoints()[3] == L->Points[3]);
    L->CurrentPoint = 3;
    L->NextPointOnSide();
    EXPECT_EQ(L->CurrentPoint, 0);
    L->CurrentPoint = -7;
    EXPECT_EQ(L->GetCurrentPointPtr(), nullptr);
    L->NextPointOnSide();
    EXPECT_EQ(L->CurrentPoint, 2);

    // A corner naming a missing point: only the index query still answers.
    L->DeletePoint(7);
    EXPECT_FALSE(L->GetCurrentPointPtr() || L->GetCurrentSidePoints() || L->GetCurrentSideCorners());
    EXPECT_NE(L->GetSideCorners(0, 0), nullptr);
    EXPECT_EQ(L->GetCurrentSideIndices()[2], 7);
}

TEST_F(LevelTest, Doors)
{
    int above = AddCubeAbove();
    SIDE& door = L->Segments[0]->Sides[0];
    SIDE& partner = L->Segments[above]->Sides[2]; // passable: it only follows
    door.WallType = WALL_DOOR;
    L->OpenDoor(above, 2); // not a door
    EXPECT_EQ(door.Door.State, DOOR_CLOSED);
    L->OpenDoor(0, 0);
    EXPECT_EQ(partner.Door.State, DOOR_OPENING);

    // Each step: the state, the door's opening, the partner's state and opening.
    auto run = [&](int steps) {
        for (int i = 0; i < steps; ++i)
            L->UpdateDoors();
        return std::tuple(door.Door.State, door.Door.Opening, partner.Door.State, partner.Door.Opening);
    };
    // 100 float steps of 0.01 stay just below 1.0; the partner's opening
    // is only set on its state changes.
    EXPECT_EQ(std::get<0>(run(100)), DOOR_OPENING);
    EXPECT_EQ(partner.Door.Opening, 0.0f);
    auto open = run(1);
    EXPECT_EQ(std::get<2>(open), DOOR_OPEN);
    EXPECT_EQ(std::get<3>(open), 2.0f);
    EXPECT_NEAR(std::get<1>(open), 1.99f, 1e-4);
    L->OpenDoor(0, 0); // already open: no effect
    EXPECT_EQ(std::get<0>(run(199)), DOOR_OPEN);
    auto closing = run(1);
    EXPECT_TRUE(std::get<2>(closing) == DOOR_CLOSING && std::get<1>(closing) == 1.0f);
    auto closed = run(101);
    EXPECT_TRUE(std::get<2>(closed) == DOOR_CLOSED && std::get<1>(closed) == 0.0f);

    // Offsets: side 0 runs (100,100,100) (-100,100,100) (-100,100,-100) (100,100,-100).
    door.Door.State = DOOR_OPENING;
    door.Door.Opening = 0.5f;
    EXPECT_EQ(L->DoorOffset(0, 0), VECTOR3D(100, 0, 0));
    door.Door.State = DOOR_OPEN;
    door.Door.Opening = 1.7f;
    for (int edge : {3, -1, 7})
    {
        door.Door.SlideEdge = edge;
        EXPECT_EQ(L->DoorSlideEdge(0, 0), 3);
        EXPECT_EQ(L->DoorOffset(0, 0), VECTOR3D(0, 0, -200));
    }
    EXPECT_EQ(L->DoorOffset(above, 2), VECTOR3D());
}

} // namespace
