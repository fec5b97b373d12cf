#include "orvlevel/level.h"

#include "orvlevel/tests/leveltesting.h"

#include <memory>

namespace {

class CollisionTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();
    SIDE& Top() { return L->Segments[0]->Sides[0]; }
    // Not swept: the point itself is tested and corrected.
    bool Push(VECTOR3D* p, int mode, int start, float distance, bool correct = true)
    {
        return L->CollidePoint(p, mode, start < 0 ? nullptr : L->Segments[start], distance, false, nullptr, correct);
    }
    bool Move(VECTOR3D from, VECTOR3D* to) { return L->CollidePoint(&from, 0, nullptr, 5, true, to, true); }
};

TEST_F(CollisionTest, DoorOpensOnTouchAndLetsThroughWhenOpen)
{
    Top().WallType = WALL_DOOR;
    VECTOR3D p(50, 97, 50);
    EXPECT_TRUE(Push(&p, 0, -1, 5, false));
    EXPECT_EQ(Top().Door.State, DOOR_CLOSED);
    EXPECT_TRUE(Push(&p, 0, -1, 5));
    EXPECT_EQ(Top().Door.State, DOOR_OPENING);

    // Half open, the leaf covers the half along the slide edge, from corner 3
    // to corner 0 (x = +100).
    Top().Door.Opening = 0.5f;
    VECTOR3D to(50, 110, 50);
    EXPECT_TRUE(Move({50, 90, 50}, &to));
    to = {-50, 110, 50};
    EXPECT_FALSE(Move({-50, 90, 50}, &to));
    Top().Door.State = DOOR_OPEN;
    to = {50, 110, 50};
    EXPECT_FALSE(Move({50, 90, 50}, &to));
}

TEST_F(CollisionTest, OpeningsLetThingsAndSightThrough)
{
    AddCubeAbove(*L);
    VECTOR3D p(50, 97, 50);
    EXPECT_FALSE(Push(&p, 0, -1, 5));
    p = {30, 297, 10}; // under the upper cube's top: only a mode that reaches that cube sees it
    EXPECT_FALSE(Push(&p, 2, 0, 5));
    EXPECT_TRUE(Push(&p, 1, 0, 5));
    ExpectNear(p, {30, 295, 10});

    VECTOR3D from(30, 0, 10), to(-20, 250, 40);
    EXPECT_TRUE(L->LineOfSight(from, to, L->Segments[0]));
    EXPECT_FALSE(L->LineOfSight(from, {30, 350, 10}, nullptr)); // beyond the top wall
    EXPECT_FALSE(L->LineOfSight({0, 500, 0}, from, nullptr));   // from outside the level

    L->Segments[1]->Sides[2].WallType = WALL_NORMAL; // only the side it leaves through counts
    for (int wall : {WALL_SHOOTTHROUGH, WALL_SEETHROUGH, WALL_NORMAL, WALL_DOOR})
    {
        Top().WallType = wall;
        EXPECT_EQ(L->LineOfSight(from, to, nullptr), wall > WALL_DOOR) << wall;
        EXPECT_EQ(L->SightWalk(from, to, 0), wall > WALL_DOOR ? -1 : 0);
    }
}

TEST_F(CollisionTest, MalformedLinksAndPointsEndSafely)
{
    Top().WallType = WALL_PASSABLE;
    VECTOR3D from(30, 0, 10), to(30, 500, 10);
    for (int link : {0, 4999, 123456}) // itself, an empty slot, no slot at all
    {
        L->Segments[0]->Neighbours[0] = link;
        EXPECT_EQ(L->SightWalk(from, to, 0), 0) << link;
        EXPECT_FALSE(L->LineOfSight(from, to, nullptr));
    }
    L->Segments[0]->Neighbours[1] = -7;
    L->DeletePoint(7); // sides 1, 2 and 5 lose a corner
    VECTOR3D p(97, 0, 0);
    EXPECT_FALSE(Push(&p, 1, 0, 5));
    p = {-97, 0, 0};
    EXPECT_TRUE(Push(&p, 1, 0, 5));
}

} // namespace
