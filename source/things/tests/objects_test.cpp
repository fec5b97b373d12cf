// Items, effects and ships: their rules, side effects and records.
#include "math/camera.h"
#include "platform/binio.h"
#include "orvlevel/level.h"
#include "math/random.h"
#include "platform/cp1250.h"
#include "platform/tests/testplatform.h"
#include "things/effects.h"
#include "things/pickup.h"
#include "things/spaceship.h"
#include "things/thingmeshes.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <typeinfo>

namespace {

class ObjectsTest : public PlatformTest
{
protected:
    ObjectsTest()
    {
        LoadThingMeshes();
        TheLevel = L.get();
        SRand(99);
    }
    ~ObjectsTest() override
    {
        L.reset();
        TheLevel = nullptr;
    }
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();

    // Objects in the table by exact class.
    template <class T>
    int Count() const
    {
        int n = 0;
        for (int i = 0; i < MAX_THINGS; ++i)
            if (L->Things[i] && typeid(*L->Things[i]) == typeid(T))
                ++n;
        return n;
    }
    // The first object in the table and the first of an exact class.
    THING* First() const
    {
        for (int i = 0; i < MAX_THINGS; ++i)
            if (L->Things[i])
                return L->Things[i];
        return nullptr;
    }
    template <class T>
    T* First() const
    {
        for (int i = 0; i < MAX_THINGS; ++i)
            if (L->Things[i] && typeid(*L->Things[i]) == typeid(T))
                return static_cast<T*>(L->Things[i]);
        return nullptr;
    }
    static std::string Last(const SPACESHIP& s) { return Cp1250ToUtf8(std::string(s.messages[9], strnlen(s.messages[9], 100))); }
    static std::vector<uint8_t> Record(THING& t, int32_t index)
    {
        BINWRITER w;
        t.WriteRecord(w, index);
        return w.Bytes;
    }
    static int32_t I32At(const std::vector<uint8_t>& b, size_t at)
    {
        return int32_t(b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t(b[at + 3]) << 24);
    }
    static float F32At(const std::vector<uint8_t>& b, size_t at)
    {
        int32_t i = I32At(b, at);
        float f;
        std::memcpy(&f, &i, 4);
        return f;
    }
};

const VECTOR3D Z(1, 0, 0), Y(0, 1, 0), X(0, 0, 1);

} // namespace

TEST_F(ObjectsTest, ItemRulesAndTheirMessages)
{
    SPACESHIP s;
    P_SHIPLEVEL level({}, Z, Y, X);
    s.shipLevel = 4;
    EXPECT_TRUE(level.ApplyTo(&s));
    EXPECT_FALSE(level.ApplyTo(&s));
    EXPECT_EQ(s.shipLevel, 5);
    EXPECT_EQ(Last(s), "Már teljesen ki van fejlesztve a hajód.");

    P_LASERBOOST laser({}, Z, Y, X);
    s.shipLevel = 1;
    s.primaryWeapon = -1;
    EXPECT_TRUE(laser.ApplyTo(&s));
    EXPECT_EQ(s.primaryWeapon, 0);
    EXPECT_TRUE(laser.ApplyTo(&s));
    EXPECT_FALSE(laser.ApplyTo(&s)); // level 1 stops at shown level 2
    EXPECT_EQ(Last(s), "1. színtű hajó csak 2. színtig fejlesztheti a lézert!");
    s.primaryWeapon = 9;
    s.shipLevel = 5;
    EXPECT_FALSE(laser.ApplyTo(&s));
    EXPECT_EQ(Last(s), "Nem tudod felvenni a lézert: teljesen ki van már fejlesztve!");
    s.primaryWeapon = 12;
    EXPECT_FALSE(laser.ApplyTo(&s));
    EXPECT_EQ(Last(s), "Nem tudod felvenni a lézert: más fegyvered van már!");

    P_ENERGY energy({}, Z, Y, X);
    s.shipLevel = 1;
    s.energy = 199;
    EXPECT_TRUE(energy.ApplyTo(&s));
    EXPECT_EQ(s.energy, 214);
    s.energy = 200;
    EXPECT_FALSE(energy.ApplyTo(&s));
    EXPECT_EQ(Last(s), "A hajódnak a 1. szinten max. 200 energiája lehet.");
    P_SHIELD shield({}, Z, Y, X);
    s.shield = 200;
    EXPECT_FALSE(shield.ApplyTo(&s));
    EXPECT_EQ(Last(s), "A hajódnak a 1. szinten max. 200 pajzsa lehet.");

    P_TEMPEST tempest({}, Z, Y, X);
    s.tempestCount = 20;
    EXPECT_FALSE(tempest.ApplyTo(&s));
    EXPECT_EQ(Last(s), "Max 20 Tempest rakétád lehet.");
    s.secondaryWeapon = 1;
    s.tempestCount = 0;
    EXPECT_FALSE(tempest.ApplyTo(&s));
    EXPECT_EQ(Last(s), "Csak egyféle rakétád lehet egyszerre. Amid van, nem Tempest.");

    // A repeated refusal is logged once.
    std::string before(&s.messages[0][0], sizeof s.messages);
    EXPECT_FALSE(tempest.ApplyTo(&s));
    EXPECT_EQ(std::string(&s.messages[0][0], sizeof s.messages), before);
    PICKUP plain;
    EXPECT_FALSE(plain.ApplyTo(&s));
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
    ship->position = {500, 500, 500};
    ship->energy = 50;
    L->AddThing(ship);
    item.Update();
    EXPECT_TRUE(item.dead);
    EXPECT_EQ(ship->energy, 65);
    L->GameTick(CAMERA());
    EXPECT_EQ(Count<P_ENERGY>(), 0);
    EXPECT_EQ(Count<SOUNDEFFECT>(), 0);

    // Deleting an item in the editor leaves its sound effect too.
    L->AddThing(new P_SHIELD({0, 0, 0}, Z, Y, X));
    L->DeleteNearestThing({0, 0, 0});
    EXPECT_EQ(Count<P_SHIELD>(), 0);
    EXPECT_EQ(Count<SOUNDEFFECT>(), 1);
}

TEST_F(ObjectsTest, EffectsLiveTheirTicks)
{
    auto* boom = new EXPLOSION(1.0f, 25.0f, {1, 2, 3});
    L->AddThing(boom);
    for (int i = 0; i < 24; ++i)
        boom->Update();
    EXPECT_FALSE(boom->dead);
    boom->Update();
    EXPECT_TRUE(boom->dead);

    SPARK spark({}, 20, 2);
    for (int i = 0; i < 9; ++i)
        spark.Update();
    EXPECT_FALSE(spark.dead);
    spark.Update();
    EXPECT_TRUE(spark.dead);

    EXPECT_EQ(LaserColour(2), VECTOR3D(1, 0.5f, 0));
    EXPECT_EQ(LaserColour(10), VECTOR3D(0.5f, 0, 1));
    for (int bad : {0, 11})
    {
        EXPECT_THROW(LaserColour(bad), FATALEXIT);
        EXPECT_EQ(P().Messages.back().Text, "Invalid Laser shot level value!");
        EXPECT_EQ(P().Messages.back().Caption, "FATAL!");
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
    shot->owner = owner;
    shot->speed = 20;
    shot->damage = 5;
    int slot = L->AddThing(shot);
    shot->Update();
    EXPECT_FALSE(shot->dead);
    EXPECT_EQ(shot->position, VECTOR3D(0, 0, 20));
    EXPECT_EQ(owner->shield, 100);
    shot->Update();
    shot->Update();
    EXPECT_TRUE(shot->dead);
    EXPECT_EQ(victim->shield, 95);
    delete L->Things[slot];
    L->Things[slot] = nullptr;
    EXPECT_EQ(Count<EXPLOSION>(), 1);

    LASERSHOT wall(false, {});
    wall.hit = true;
    wall.Update();
    EXPECT_TRUE(wall.dead);
    EXPECT_EQ(wall.position, VECTOR3D());
    LASERSHOT far(false, {});
    far.position = {0, 10001, 0};
    far.Update();
    EXPECT_TRUE(far.dead);
}

TEST_F(ObjectsTest, RecordsHaveTheirSizesAndOffsets)
{
    P_ENERGY item({1, 2, 3}, Z, Y, X);
    item.solidTicks = 7;
    std::vector<uint8_t> r = Record(item, 12);
    ASSERT_EQ(r.size(), 4u + 40 + 151);
    EXPECT_EQ(I32At(r, 0), 12);
    EXPECT_STREQ(reinterpret_cast<const char*>(&r[4]), "P_ENERGY");
    EXPECT_EQ(I32At(r, 44), 151);
    EXPECT_EQ(I32At(r, 48 + 143), 7);

    LASERSHOT shot(false, {4, 5, 6});
    shot.level = 3;
    shot.damage = 8;
    shot.speed = 40;
    shot.owner = reinterpret_cast<SPACESHIP*>(&item); // any object: saved as a mark only
    r = Record(shot, 0);
    ASSERT_EQ(r.size(), 4u + 40 + 180);
    EXPECT_EQ(I32At(r, 48 + 143), 3);
    EXPECT_EQ(I32At(r, 48 + 147), 0); // no sound
    EXPECT_EQ(r[48 + 151], 0);
    EXPECT_EQ(I32At(r, 48 + 152), 1);
    EXPECT_EQ(F32At(r, 48 + 156), 4);
    EXPECT_EQ(F32At(r, 48 + 168), 8);
    EXPECT_EQ(F32At(r, 48 + 172), 40);

    SPACESHIP ship;
    ship.shipLevel = 4;
    ship.messageTicks = 9;
    std::strcpy(ship.messages[9], "hello");
    r = Record(ship, 3);
    ASSERT_EQ(r.size(), 4u + 40 + 1233);
    EXPECT_EQ(F32At(r, 48 + 143), 100);
    EXPECT_EQ(I32At(r, 48 + 213), 4);
    EXPECT_STREQ(reinterpret_cast<const char*>(&r[48 + 225 + 900]), "hello");
    EXPECT_EQ(I32At(r, 48 + 1225), 9);

    // Effects write nothing.
    SPARK spark({}, 20, 0.1f);
    EXPECT_TRUE(Record(spark, 1).empty());
    EXPLOSION boom;
    EXPECT_TRUE(Record(boom, 1).empty());
}

TEST_F(ObjectsTest, ShipDropsWhenDestroyed)
{
    auto drop = [&](int tempests, int weapon, float energy) {
        auto* s = new SPACESHIP;
        s->tempestCount = tempests;
        s->primaryWeapon = weapon;
        s->energy = energy;
        L->AddThing(s);
        L->DeleteNearestThing({});
    };
    drop(0, -1, 14);
    EXPECT_EQ(Count<P_TEMPEST>(), 1);
    EXPECT_EQ(Count<P_LASERBOOST>(), 0);
    EXPECT_EQ(Count<P_ENERGY>(), 0);
    auto* boom = dynamic_cast<EXPLOSION*>(First()); // the explosion comes first
    ASSERT_NE(boom, nullptr);
    EXPECT_EQ(boom->growth, 10);
    EXPECT_EQ(boom->maxSize, 300);
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        if (THING* t = L->Things[i]; t && t != boom)
        {
            EXPECT_LE(Length(t->position), 30.0f); // dropped around the ship
        }
    }

    L = std::make_unique<ORVLEVEL>();
    TheLevel = L.get();
    drop(10, 9, 150);
    EXPECT_GE(Count<P_TEMPEST>(), 1);
    EXPECT_GE(Count<P_LASERBOOST>(), 1);
}

TEST_F(ObjectsTest, ShipUpdates)
{
    SPACESHIP s;
    s.Level = L.get();
    s.playerControlled = 1;
    s.segment = 0;
    L->Segments[0]->Type = 1; // recharger
    s.energy = 99.95f;
    s.shield = 250;
    std::strcpy(s.messages[5], "old");
    s.Update();
    EXPECT_NEAR(s.energy, 100.05f, 1e-4f);
    EXPECT_EQ(s.shield, 200);
    EXPECT_NEAR(s.money, 5000.1f, 1e-3f);
    s.Update();
    EXPECT_NEAR(s.energy, 100.05f, 1e-4f);
    for (int i = 0; i < 18; ++i)
        s.Update();
    EXPECT_STREQ(s.messages[4], "old"); // scrolled once after 20 ticks

    // Dying: 100 ticks, then dead.
    s.shield = 0;
    for (int i = 0; i < 100; ++i)
    {
        EXPECT_FALSE(s.dead);
        s.Update();
    }
    EXPECT_TRUE(s.dying && s.dead);

    SPACESHIP gunner;
    gunner.energy = 0.2f;
    gunner.FirePrimary(L.get());
    EXPECT_EQ(gunner.primaryCooldown, 0);
    EXPECT_EQ(Count<LASERSHOT>(), 0);
    gunner.energy = 50;
    gunner.primaryWeapon = 4;
    gunner.FirePrimary(L.get());
    EXPECT_EQ(gunner.primaryCooldown, 20);
    EXPECT_EQ(Count<LASERSHOT>(), 2);
    EXPECT_NEAR(gunner.energy, 50 - 2.1f, 1e-4f);
    auto* shot = First<LASERSHOT>();
    ASSERT_NE(shot, nullptr);
    EXPECT_EQ(shot->speed, 60);
    EXPECT_EQ(shot->damage, 8);
    EXPECT_EQ(shot->level, 5);
    EXPECT_EQ(shot->position, VECTOR3D(-15, 0, 15));
    bool side = gunner.launchSide;
    gunner.FireSecondary(L.get());
    EXPECT_EQ(Count<TEMPEST>(), 1);
    EXPECT_EQ(gunner.tempestCount, 9);
    EXPECT_NE(gunner.launchSide, side);
    gunner.primaryCooldown = 0;
    gunner.primaryWeapon = 10;
    EXPECT_THROW(gunner.FirePrimary(L.get()), FATALEXIT);
    EXPECT_EQ(P().Messages.back().Text, "Invalid primary weapon!");
}

TEST_F(ObjectsTest, ShipsPickTargetsAndShop)
{
    auto add = [&](VECTOR3D at, int team) {
        auto* s = new SPACESHIP;
        s->position = at;
        s->team = team;
        s->skill = 0;
        L->AddThing(s);
        return s;
    };
    SPACESHIP* a = add({-50, 0, 0}, 3);
    SPACESHIP* b = add({50, 0, 0}, 3);
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
    (void)b;

    EXPECT_EQ(BarColour(0, 0.3f).r, 1);
    EXPECT_EQ(BarColour(1, 0.3f).g, 1);
    EXPECT_EQ(BarColour(1.25f, 0.3f).b, 0.5f);
    EXPECT_EQ(BarColour(2, 0.3f).b, 1);
    a->primaryWeapon = -1;
    EXPECT_STREQ(a->PrimaryWeaponName(), "-");
    a->primaryWeapon = 2;
    EXPECT_EQ(Cp1250ToUtf8(a->PrimaryWeaponName()), "3. szintű lézer");

    // The shop opens only in a support segment and sells by the price table.
    a->segment = 0;
    a->OpenShop();
    EXPECT_EQ(a->shopState, -1);
    L->Segments[0]->Type = 3;
    a->OpenShop();
    a->ShopSelect(0);
    EXPECT_EQ(a->shopState, 1);
    EXPECT_EQ(a->LaserPrice(), 3000);
    a->money = 2999;
    a->ShopSelect(0);
    EXPECT_EQ(Count<P_LASERBOOST>(), 0);
    a->money = 3000;
    a->ShopSelect(0);
    EXPECT_EQ(Count<P_LASERBOOST>(), 1);
    EXPECT_EQ(a->money, 0);
    L->Segments[0]->Type = 0;
    a->DrawCockpit();
    EXPECT_EQ(a->shopState, -1);
}
