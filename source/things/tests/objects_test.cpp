// Items, effects and ships: their rules, their side effects and their
// records in level files, read through the game's own class list.
#include "graphics/drawing.h"
#include "math/camera.h"
#include "math/random.h"
#include "orvlevel/tests/leveltesting.h"
#include "platform/cp1250.h"
#include "sound/buffer.h"
#include "things/effects.h"
#include "things/pickup.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

class ObjectsTest : public PlatformTest
{
protected:
    ObjectsTest()
    {
        LoadThingMeshes();
        RegisterThingClasses();
        SRand(99);
    }
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();

    void Load(const std::vector<uint8_t>& bytes)
    {
        L->Clear();
        P().Reset();
        L->Deserialize(bytes.data(), bytes.size());
    }

    template <class T>
    int Count() const { return CountOf<T>(*L); }
    static std::string Last(const SPACESHIP& s) { return Cp1250ToUtf8(std::string(s.messages[9], strnlen(s.messages[9], 100))); }
};

const VECTOR3D Z(1, 0, 0), Y(0, 1, 0), X(0, 0, 1);

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

TEST_F(ObjectsTest, ItemRulesAndTheirMessages)
{
    P_SHIPLEVEL level({}, Z, Y, X);
    P_LASERBOOST laser({}, Z, Y, X);
    P_ENERGY energy({}, Z, Y, X);
    P_SHIELD shield({}, Z, Y, X);
    P_TEMPEST tempest({}, Z, Y, X);
    SPACESHIP s;
    s.shipLevel = 4;
    EXPECT_TRUE(level.ApplyTo(&s) && s.shipLevel == 5);
    s.shipLevel = 1, s.primaryWeapon = -1, s.energy = 199;
    EXPECT_TRUE(laser.ApplyTo(&s) && s.primaryWeapon == 0 && laser.ApplyTo(&s) && s.primaryWeapon == 1);
    EXPECT_TRUE(energy.ApplyTo(&s) && s.energy == 214);

    // Refused: the ship as it is, and what it is told.
    struct CASE { PICKUP* Item; int32_t Level, Primary, Secondary, Tempests; float Energy, Shield; const char* Says; };
    const CASE refusals[] = {
        {&level, 5, 0, 0, 0, 0, 0, "Már teljesen ki van fejlesztve a hajód."},
        {&laser, 1, 1, 0, 0, 0, 0, "1. színtű hajó csak 2. színtig fejlesztheti a lézert!"},
        {&laser, 5, 9, 0, 0, 0, 0, "Nem tudod felvenni a lézert: teljesen ki van már fejlesztve!"},
        {&laser, 5, 12, 0, 0, 0, 0, "Nem tudod felvenni a lézert: más fegyvered van már!"},
        {&energy, 1, 0, 0, 0, 200, 0, "A hajódnak a 1. szinten max. 200 energiája lehet."},
        {&shield, 1, 0, 0, 0, 0, 200, "A hajódnak a 1. szinten max. 200 pajzsa lehet."},
        {&tempest, 1, 0, 0, 20, 0, 0, "Max 20 Tempest rakétád lehet."},
        {&tempest, 1, 0, 1, 0, 0, 0, "Csak egyféle rakétád lehet egyszerre. Amid van, nem Tempest."},
    };
    for (const CASE& c : refusals)
    {
        s.shipLevel = c.Level, s.primaryWeapon = c.Primary, s.secondaryWeapon = c.Secondary, s.tempestCount = c.Tempests;
        s.energy = c.Energy, s.shield = c.Shield;
        EXPECT_FALSE(c.Item->ApplyTo(&s)) << c.Says;
        EXPECT_EQ(Last(s), c.Says);
    }

    // A repeated refusal is logged once.
    std::string before(&s.messages[0][0], sizeof s.messages);
    EXPECT_FALSE(tempest.ApplyTo(&s));
    EXPECT_EQ(std::string(&s.messages[0][0], sizeof s.messages), before);
}

TEST_F(ObjectsTest, ItemsInPlay)
{
    // Solid for three updates, then a ghost; it turns about its Y axis.
    L->AddThing(new P_ENERGY({500, 500, 500}, Z, Y, X));
    P_ENERGY& item = static_cast<P_ENERGY&>(*L->Things[0]);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_FALSE(item.ghost);
        item.Update();
    }
    EXPECT_TRUE(item.ghost);
    EXPECT_NEAR(item.axisZ.x, std::cos(0.3f), 1e-3f);

    // A ship touching an item takes it; the item dies and, destroyed, leaves
    // a sound effect in a later slot, whose update in the same tick ends it
    // at once without a sound system.
    auto* ship = new SPACESHIP;
    ship->position = {500, 500, 500}, ship->energy = 50;
    L->AddThing(ship);
    item.Update();
    EXPECT_TRUE(item.dead && ship->energy == 65);
    L->GameTick(CAMERA());
    EXPECT_EQ(Count<P_ENERGY>() + Count<SOUNDEFFECT>(), 0);
}

TEST_F(ObjectsTest, EffectsLiveTheirTicks)
{
    auto* boom = new EXPLOSION(1.0f, 25.0f, {1, 2, 3});
    L->AddThing(boom);
    SPARK spark({}, 20, 2);
    for (auto [effect, ticks] : {std::pair<THING*, int>{boom, 25}, {&spark, 10}})
    {
        for (int i = 0; i < ticks; ++i)
        {
            EXPECT_FALSE(effect->dead) << ticks;
            effect->Update();
        }
        EXPECT_TRUE(effect->dead);
    }

    for (int bad : {0, 11})
    {
        EXPECT_THROW(LaserColour(bad), FATALEXIT);
        EXPECT_EQ(P().Messages.back().Caption + P().Messages.back().Text, "FATAL!Invalid Laser shot level value!");
    }
}

TEST_F(ObjectsTest, ShotsFlyHitAndExplode)
{
    auto* owner = new SPACESHIP;
    auto* victim = new SPACESHIP;
    victim->position = {0, 0, 60};
    L->AddThing(owner);
    L->AddThing(victim);

    // Fired from inside its owner's box, the shot passes the owner.
    auto* shot = new LASERSHOT(false, {0, 0, 0});
    shot->owner = owner, shot->speed = 20, shot->damage = 5;
    int slot = L->AddThing(shot);
    shot->Update();
    EXPECT_TRUE(!shot->dead && shot->position == VECTOR3D(0, 0, 20) && owner->shield == 100);
    shot->Update();
    shot->Update();
    EXPECT_TRUE(shot->dead && victim->shield == 95);
    delete L->Things[slot];
    L->Things[slot] = nullptr;
    EXPECT_EQ(Count<EXPLOSION>(), 1);

    LASERSHOT wall(false, {}), far(false, {});
    wall.hit = true;
    wall.Update();
    EXPECT_TRUE(wall.dead && wall.position == VECTOR3D());
    far.position = {0, 10001, 0};
    far.Update();
    EXPECT_TRUE(far.dead);
}

TEST_F(ObjectsTest, ShipsPickTargetsAndShop)
{
    auto add = [&](VECTOR3D at, int team) {
        auto* s = new SPACESHIP;
        s->position = at, s->team = team, s->skill = 0;
        L->AddThing(s);
        return s;
    };
    SPACESHIP* a = add({-50, 0, 0}, 3);
    add({50, 0, 0}, 3);
    a->AcquireTarget();
    EXPECT_EQ(a->target, -1); // same team
    SPACESHIP* c = add({0, 50, 0}, 0);
    c->dying = true;
    a->AcquireTarget();
    EXPECT_EQ(a->target, -1); // dying
    c->dying = false;
    a->AcquireTarget();
    EXPECT_EQ(a->target, 2);
    c->AcquireTarget();
    EXPECT_EQ(c->target, 0); // team 0 attacks anyone

    // The shop opens only in a support segment and sells by the price table.
    a->primaryWeapon = 2, a->segment = 0;
    a->OpenShop();
    EXPECT_EQ(a->shopState, -1);
    L->Segments[0]->Type = 3;
    a->OpenShop();
    a->ShopSelect(0);
    EXPECT_TRUE(a->shopState == 1 && a->LaserPrice() == 3000);
    a->money = 2999;
    a->ShopSelect(0);
    EXPECT_EQ(Count<P_LASERBOOST>(), 0);
    a->money = 3000;
    a->ShopSelect(0);
    EXPECT_TRUE(Count<P_LASERBOOST>() == 1 && a->money == 0);
    L->Segments[0]->Type = 0;
    a->DrawCockpit();
    EXPECT_EQ(a->shopState, -1);
}

// Counters and levels come from files as they are; the tick must stay
// defined for any of them (the sanitizer build checks the arithmetic).
TEST_F(ObjectsTest, StoredExtremesKeepTheTickDefined)
{
    SPACESHIP s;
    s.Level = L.get();
    s.shipLevel = -211296062, s.messageTicks = s.strafeTicks = INT32_MIN, s.shield = 1.0e30f;
    s.Update();
    EXPECT_EQ(s.messageTicks, INT32_MAX);
    EXPECT_EQ(s.shield, float(ShipLevelLimit(-211296062)));
    s.dying = true, s.dyingTicks = INT32_MIN;
    s.Update();
    EXPECT_EQ(s.dyingTicks, INT32_MAX);

    s.primaryWeapon = 3;
    s.shipLevel = -2063594752; // twice that wraps to 167777792
    EXPECT_TRUE(P_LASERBOOST(VECTOR3D(0, 0, 0), Z, Y, X).ApplyTo(&s) && s.primaryWeapon == 4);

    P_ENERGY item(VECTOR3D(0, 0, 0), Z, Y, X);
    item.Level = L.get(), item.solidTicks = INT32_MIN;
    item.Update();
    EXPECT_EQ(item.solidTicks, INT32_MAX);

    // A spark can be any size: the offset stays in its ball, or is none.
    for (float r : {1.6e29f, 3.0e38f})
        EXPECT_LE(Length(THING::RandomOffset(r) * (1.0f / r)), 1.0f);
    EXPECT_EQ(THING::RandomOffset(-1.0f), VECTOR3D(0, 0, 0));
}

TEST_F(ObjectsTest, HandBuiltRecordsLoadOverTheConstructedObjects)
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

TEST_F(ObjectsTest, OnlyTheListedNamesAreAccepted)
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
