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
    int ShotsSeen = 0;
    float ShieldLost = 0;
    int ShipsLeft = 0;
};

SPACESHIP* Ship(VECTOR3D at, VECTOR3D facing, int32_t team)
{
    auto* s = new SPACESHIP;
    s->position = at;
    s->axisX = facing;
    s->axisY = {0, 1, 0};
    s->axisZ = Cross(facing, s->axisY); // the camera's handedness, as placed ships have
    s->team = team;
    s->goal = at;
    return s;
}

OUTCOME Battle(uint32_t seed, int ticks)
{
    SRand(seed);
    auto level = std::make_unique<ORVLEVEL>();
    float before = 0;
    for (int i = 0; i < 4; ++i)
    {
        // Teams 1 and 2 face each other across the default cube.
        float x = i % 2 ? 60.0f : -60.0f;
        SPACESHIP* s = Ship({x, i < 2 ? -40.0f : 40.0f, 0}, {i % 2 ? -1.0f : 1.0f, 0, 0}, 1 + i % 2);
        s->skill = i % 4;
        before += s->shield;
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
                EXPECT_TRUE(std::isfinite(th->position.x) && std::isfinite(th->position.y) &&
                            std::isfinite(th->position.z));
                if (typeid(*th) == typeid(LASERSHOT))
                    ++o.ShotsSeen;
            }
    }
    float after = 0;
    for (int i = 0; i < MAX_THINGS; ++i)
        if (THING* th = level->Things[i]; th && typeid(*th) == typeid(SPACESHIP))
        {
            after += static_cast<SPACESHIP*>(th)->shield;
            ++o.ShipsLeft;
        }
    o.ShieldLost = before - after;
    o.Saved = level->Serialize();
    return o;
}

} // namespace

TEST_F(PlatformTest, SeededBattleRunsAndRepeats)
{
    LoadThingMeshes();
    OUTCOME a = Battle(1234, 400);
    OUTCOME b = Battle(1234, 400);
    EXPECT_EQ(a.Saved, b.Saved);
    EXPECT_GT(a.ShotsSeen, 0);
    EXPECT_TRUE(a.ShieldLost > 0 || a.ShipsLeft < 4);
    EXPECT_TRUE(P().Messages.empty());
}
