// A seeded battle of several ships through the whole game loop.
#include "orvlevel/level.h"

#include "math/camera.h"
#include "math/random.h"
#include "platform/tests/testplatform.h"
#include "things/effects.h"
#include "things/spaceship.h"
#include "things/thingmeshes.h"

#include <cmath>
#include <memory>
#include <typeinfo>

namespace {

struct OUTCOME
{
    std::vector<uint8_t> Saved;
    int ShotsSeen = 0, ShipsLeft = 0;
    float Shields = 0;
};

OUTCOME Battle(uint32_t seed, int ticks)
{
    SRand(seed);
    auto level = std::make_unique<ORVLEVEL>();
    for (int i = 0; i < 4; ++i)
    {
        // Teams 1 and 2 face each other across the default cube.
        auto* s = new SPACESHIP;
        VECTOR3D facing(i % 2 ? -1.0f : 1.0f, 0, 0);
        s->position = s->goal = {-60 * facing.x, i < 2 ? -40.0f : 40.0f, 0};
        s->axisX = facing, s->axisY = {0, 1, 0};
        s->axisZ = Cross(facing, s->axisY); // the camera's handedness, as placed ships have
        s->team = 1 + i % 2, s->skill = i;
        level->AddThing(s);
    }
    CAMERA camera;
    OUTCOME o;
    for (int t = 0; t < ticks; ++t)
    {
        level->GameTick(camera);
        level->PhysicsStep();
        for (int i = 0; i < MAX_THINGS; ++i)
            if (THING* th = level->Things[i])
            {
                EXPECT_TRUE(std::isfinite(th->position.x + th->position.y + th->position.z));
                o.ShotsSeen += typeid(*th) == typeid(LASERSHOT);
            }
    }
    for (int i = 0; i < MAX_THINGS; ++i)
        if (THING* th = level->Things[i]; th && typeid(*th) == typeid(SPACESHIP))
            o.Shields += static_cast<SPACESHIP*>(th)->shield, ++o.ShipsLeft;
    o.Saved = level->Serialize();
    return o;
}

} // namespace

TEST_F(PlatformTest, SeededBattleRunsAndRepeats)
{
    LoadThingMeshes();
    OUTCOME a = Battle(1234, 400);
    EXPECT_EQ(a.Saved, Battle(1234, 400).Saved);
    EXPECT_GT(a.ShotsSeen, 0);
    EXPECT_TRUE(a.Shields < 4 * SPACESHIP().shield || a.ShipsLeft < 4);
    EXPECT_TRUE(P().Messages.empty());
}
