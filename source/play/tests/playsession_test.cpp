// The play-test session in the default 200-unit cube: input through the
// ship's controls, walls, weapons, an enemy, the end of the ship, and the
// edited level left alone.
#include "play/playsession.h"

#include "math/random.h"
#include "orvlevel/tests/leveltesting.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

namespace {

class PlaySessionTest : public PlatformTest
{
protected:
    static void SetUpTestSuite()
    {
        LoadThingMeshes();
        RegisterThingClasses();
    }
    // A frame at p looking along -z, up +y, right +x.
    static CAMERA At(VECTOR3D p)
    {
        CAMERA c;
        c.Position = p;
        c.ViewDir = {0, 0, -1};
        c.Up = {0, 1, 0};
        c.Right = {1, 0, 0};
        return c;
    }
    static void Run(PLAYSESSION& s, int ticks)
    {
        for (int i = 0; i < ticks && !s.Ended(); ++i)
            s.Tick();
    }
    ORVLEVEL Edited;
};

} // namespace

TEST_F(PlaySessionTest, HeldOperationsMoveTheShipAsTheCameraMoves)
{
    for (int op = 0; op < PLAY_LASER; ++op)
    {
        PLAYSESSION s(Edited, At({0, 0, 0}));
        ASSERT_TRUE(s.Started());
        s.Held[op] = true;
        Run(s, 2);
        CAMERA want = At({0, 0, 0});
        for (int i = 0; i < 2; ++i)
            want.Move(op, op < 6 ? 10.0f : 0.1f);
        const SPACESHIP& ship = *s.Ship();
        ExpectNear(ship.position, want.Position);
        ExpectNear(ship.axisX, want.ViewDir);
        ExpectNear(ship.axisY, want.Up);
        ExpectNear(ship.axisZ, want.Right);
        ExpectNear(s.Eye.Position, ship.position);
    }
}

TEST_F(PlaySessionTest, AWallStopsTheShipAndItsLastPictureStaysTwoSecondsAfterItIsGone)
{
    PLAYSESSION s(Edited, At({0, 0, 50}));
    s.Held[CAM_FORWARD] = true;
    Run(s, 3);
    EXPECT_FLOAT_EQ(s.Ship()->position.z, 20.0f); // 10 units a tick
    Run(s, 30);                                   // 300 more units toward the wall at z = -100
    const float z = s.Ship()->position.z;
    EXPECT_GT(z, -100.0f);
    EXPECT_LT(z, -60.0f);
    EXPECT_EQ(s.Level().FindSegment(s.Ship()->position), 0);

    s.Held[CAM_FORWARD] = false;
    s.Ship()->shield = 0; // breaks apart for 100 ticks
    int ticks = 0;
    while (s.Ship())
        s.Tick(), ++ticks;
    EXPECT_EQ(ticks, 100);
    const VECTOR3D last = s.Eye.Position;
    while (!s.Ended())
        s.Tick(), ++ticks;
    EXPECT_EQ(ticks, 100 + PLAY_END_TICKS);
    EXPECT_EQ(s.Eye.Position, last);
}

TEST_F(PlaySessionTest, WeaponsFireInSalvosAsCooldownAndStoresAllow)
{
    struct CASE { int Action; float Energy, EnergyAfter; int32_t TempestsAfter; };
    // 25 ticks held: lasers fire at ticks 1, 11 and 21 (0.3 each) while the
    // energy lasts; missiles at ticks 1 and 21.
    const CASE cases[] = {
        {PLAY_LASER, 100.0f, 99.1f, 10},
        {PLAY_LASER, 0.5f, 0.2f, 10},
        {PLAY_TEMPEST, 100.0f, 100.0f, 8},
    };
    for (const CASE& c : cases)
    {
        PLAYSESSION s(Edited, At({0, 0, 0}));
        s.Ship()->energy = c.Energy;
        const bool side = s.Ship()->launchSide;
        s.Held[c.Action] = true;
        Run(s, 25);
        EXPECT_NEAR(s.Ship()->energy, c.EnergyAfter, 1e-4f) << c.Action;
        EXPECT_EQ(s.Ship()->tempestCount, c.TempestsAfter);
        EXPECT_EQ(s.Ship()->launchSide, side); // flipped twice or never
    }
}

TEST_F(PlaySessionTest, AnEnemyAttacksAndTheEditedLevelStaysAsItWas)
{
    auto* enemy = new SPACESHIP;
    enemy->position = {0, 0, -50};
    enemy->axisX = {0, 0, 1};
    enemy->axisZ = {-1, 0, 0};
    enemy->team = 3;
    enemy->goal = enemy->position;
    ASSERT_EQ(Edited.AddThing(enemy), 0);
    const std::vector<uint8_t> bytes = Edited.Serialize();
    const uint64_t revision = Edited.Revision;

    SRand(5);
    PLAYSESSION s(Edited, At({0, 0, 50}));
    EXPECT_EQ(s.ShipSlot(), 1);
    Run(s, 60);
    ASSERT_NE(s.Ship(), nullptr);
    EXPECT_LT(s.Ship()->shield, 100.0f);
    EXPECT_EQ(Edited.Revision, revision);
    EXPECT_EQ(Edited.Serialize(), bytes);
}
