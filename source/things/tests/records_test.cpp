// Object records in level files, read through the game's own class list.
#include "graphics/drawing.h"
#include "orvlevel/tests/leveltesting.h"
#include "sound/buffer.h"
#include "things/effects.h"
#include "things/pickup.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

void ExpectBase(const THING* t, float seed)
{
    ASSERT_NE(t, nullptr);
    EXPECT_EQ((std::vector{t->position, t->oldPosition, t->axisY, t->axisZ, t->axisX, t->oldAxisY, t->oldAxisZ, t->oldAxisX}),
              (std::vector<VECTOR3D>{{seed, seed + 1, seed + 2}, {seed + 3, seed + 4, seed + 5}, {0, 0, 1}, {0, -1, 0},
                                     {1, 0, 0}, {0, 0, -1}, {0, 1, 0}, {-1, 0, 0}}));
    // Every effect class constructs itself a ghost.
    EXPECT_EQ((std::vector<float>{float(t->segment), float(t->lastSegment), t->outerRadius, t->innerRadius, float(t->hit),
                                  float(t->ghost), float(t->dead), t->boxZLow, t->boxZHigh, t->boxYLow, t->boxYHigh,
                                  t->boxXLow, t->boxXHigh, t->pushDistance}),
              (std::vector<float>{7, seed, 30.5f, 4.25f, 1, 0, float(int(seed) % 2), -1, 2, -3, 4, -5, 6, 1.5f}));
}

class RecordsTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();

    void SetUp() override
    {
        PlatformTest::SetUp();
        LoadThingMeshes();
        RegisterThingClasses();
    }
    void Load(const std::vector<uint8_t>& bytes)
    {
        L->Clear();
        P().Reset();
        L->Deserialize(bytes.data(), bytes.size());
    }
};

// A shield item, a shot, a ship, a spark, an explosion and a missile.
// `saved`: the bytes the writer gives back for them, which drop the effects,
// store pointers as marks (the shot's owner is set again before saving) and
// zero the name field after its NUL; loading sets the ship's goal to its
// position and draws its launch side.
std::vector<uint8_t> MixedFile(bool saved, bool launchSide = false)
{
    LEVELBYTES f;
    f.Start();
    f.ThingHead(3, "P_SHIELD", 151, saved ? "" : "junk").ThingBase(10).I32(7);
    f.ThingHead(7, "LASERSHOT", 180).ThingBase(20);
    f.I32(4).I32(saved ? 0 : int32_t(0xDEADBEEF)).U8(1).I32(saved ? 1 : int32_t(0xCAFEBABE));
    f.Vec(7, 8, 9).F32(12.5f).F32(40);
    f.ThingHead(12, "SPACESHIP", 1233).ThingBase(60).F32(80).F32(90).I32(1).I32(-1).I32(3).I32(4).I32(0).I32(2);
    f.U8(launchSide).U8(0).I32(5).I32(6).I32(7).I32(8).I32(9).I32(10);
    saved ? f.Vec(60, 61, 62) : f.Vec(-9, -9, -9);
    f.I32(11).I32(12).F32(1234.5f).Zeros(900).Text("hello", 100).I32(13);
    if (!saved)
    {
        f.ThingHead(20, "SPARK", 155).ThingBase(30).F32(7.5f).F32(0.25f);
        f.ThingHead(21, "EXPLOSION", 179).ThingBase(40).I32(0x11111111).F32(300).F32(10).F32(42).Vec(1, 2, 3).I32(0x22222222);
    }
    f.Thing(999, "TEMPEST", 180, 50);
    return f.Finish().B;
}

} // namespace

TEST_F(RecordsTest, HandBuiltRecordsLoadOverTheConstructedObjects)
{
    Load(MixedFile(false));
    EXPECT_TRUE(P().Messages.empty());

    // The saved bytes pin the writer; what was read is checked here, or two
    // members swapped in both would go unseen.
    auto* shot = dynamic_cast<LASERSHOT*>(L->Things[7]);
    ASSERT_NE(shot, nullptr);
    EXPECT_TRUE(shot->level == 4 && shot->withSound && shot->lastPoint == VECTOR3D(7, 8, 9));
    EXPECT_TRUE(shot->damage == 12.5f && shot->speed == 40.0f);
    // Stored addresses mean nothing now: never read, and AfterLoad clears.
    EXPECT_TRUE(!shot->sound && !shot->owner);

    // Every class's base members are the next test's; this one has an even
    // seed, so "dead" is read as 0 too.
    auto* ship = dynamic_cast<SPACESHIP*>(L->Things[12]);
    ASSERT_NE(ship, nullptr);
    ExpectBase(ship, 60);
    const int32_t ints[] = {ship->primaryWeapon,  ship->secondaryWeapon, ship->primaryCooldown, ship->secondaryCooldown,
                            ship->playerControlled, ship->team,        ship->dyingTicks,      ship->strafeTicks,
                            ship->strafeDirection,  ship->target,      ship->skill,           ship->tempestCount,
                            ship->shipLevel,        ship->shopState,   ship->messageTicks};
    EXPECT_EQ(std::vector<int32_t>(ints, ints + 15), (std::vector<int32_t>{1, -1, 3, 4, 0, 2, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
    EXPECT_TRUE(ship->energy == 80 && ship->shield == 90 && ship->money == 1234.5f && !ship->dying);
    EXPECT_STREQ(ship->messages[9], "hello");

    auto* spark = dynamic_cast<SPARK*>(L->Things[20]);
    ASSERT_NE(spark, nullptr);
    EXPECT_TRUE(spark->size == 7.5f && spark->decay == 0.25f);

    auto* explosion = dynamic_cast<EXPLOSION*>(L->Things[21]);
    ASSERT_NE(explosion, nullptr);
    EXPECT_TRUE(explosion->maxSize == 300.0f && explosion->growth == 10.0f && explosion->radius == 42.0f);
    EXPECT_TRUE(explosion->centre == VECTOR3D(1, 2, 3) && !explosion->source && explosion->texture == Drawing().ExplosionTexture);

    // Saving drops the effects (a sound effect added now as well) and keeps
    // every other object at its slot.
    BUFFER sound("Powerup.wav");
    ASSERT_EQ(L->AddThing(new SOUNDEFFECT(&sound, {0, 0, 0}, false)), 0);
    shot->owner = ship;
    EXPECT_EQ(L->Serialize(), MixedFile(true, ship->launchSide));
    L->Clear(); // before the buffer goes
}

TEST_F(RecordsTest, OnlyTheListedNamesAreAccepted)
{
    const struct { const char* Name; int32_t Size; } accepted[] = {{"SPACESHIP", 1233}, {"LASERSHOT", 180}, {"EXPLOSION", 179}, {"TEMPEST", 180},
                    {"SPARK", 155},      {"P_SHIELD", 151},  {"P_ENERGY", 151},  {"P_TEMPEST", 151},
                    {"P_LASERBOOST", 151}, {"P_SHIPLEVEL", 151}};
    for (const auto& c : accepted)
    {
        SCOPED_TRACE(c.Name);
        LEVELBYTES f;
        Load(f.Start().Thing(12, c.Name, c.Size, 1).Finish().B);
        EXPECT_TRUE(P().Messages.empty());
        ASSERT_NE(L->Things[12], nullptr);
        EXPECT_EQ(L->Things[12]->ClassName() + std::to_string(L->Things[12]->RecordSize()), c.Name + std::to_string(c.Size));
        ExpectBase(L->Things[12], 1);
    }

    // A plain item writes "PICKUP" but is not read back; names are compared
    // exactly, and the unknown one is shown converted from code page 1250.
    for (const char* name : {"PICKUP", "SOUNDEFFECT", "THING", "p_shield", "P_SHIELD ", "HAJ\xD3"})
    {
        SCOPED_TRACE(name);
        LEVELBYTES f;
        f.Start().Thing(0, name, 151).Finish();
        try
        {
            Load(f.B);
            ADD_FAILURE() << "the load went on";
        }
        catch (const FATALEXIT& e)
        {
            EXPECT_EQ(e.Status, 1);
        }
        EXPECT_EQ(P().Messages, (MESSAGES{{"Undefined Thing:", name[0] == 'H' ? "HAJÓ" : name, MSGICON_STOP}}));
        EXPECT_EQ(L->Things[0], nullptr);
    }
}

TEST_F(RecordsTest, WrongSizeStopsTheLoadBeforeTheObject)
{
    // A missile record one byte short, as long as an explosion's; a light
    // follows.
    LEVELBYTES f;
    f.Start().Thing(0, "P_ENERGY", 151, 1).Thing(1, "TEMPEST", 179, 2).I32(-1);
    f.I32(0).Vec(1, 2, 3).Vec(1, 1, 1).F32(100).I32(-1).I32(-1);
    Load(f.B);
    ASSERT_EQ(P().Messages.size(), 1u);
    EXPECT_EQ(P().Messages[0].Text.rfind("A(z) TEMPEST cucc mérete a pályafájlban 179 bájt, 180 helyett.", 0), 0u);
    EXPECT_TRUE(dynamic_cast<P_ENERGY*>(L->Things[0]) && !L->Things[1] && !L->Lights[0]);
}
