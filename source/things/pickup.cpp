#include "things/pickup.h"

#include "graphics/trimesh.h"
#include "orvlevel/level.h"
#include "platform/cp1250.h"
#include "sound/buffer.h"
#include "things/effects.h"
#include "things/spaceship.h"
#include "things/thingmeshes.h"

#include <cstdio>
#include <typeinfo>

namespace {

// The ship's log takes code page 1250 texts of at most 99 bytes.
void Tell(SPACESHIP* ship, const char* utf8)
{
    std::string text = Utf8ToCp1250(utf8);
    if (text.size() > SHIP_MESSAGE_SIZE - 1)
        text.resize(SHIP_MESSAGE_SIZE - 1);
    ship->ShowMessage(text.c_str());
}

} // namespace

PICKUP::PICKUP() = default;

PICKUP::PICKUP(VECTOR3D p, VECTOR3D z, VECTOR3D y, VECTOR3D x)
{
    position = p;
    axisZ = z;
    axisY = y;
    axisX = x;
}

PICKUP::~PICKUP()
{
    if (LeavesEffects())
        HandToLevel(Level, new SOUNDEFFECT(PowerupSound, position, false));
}

void PICKUP::Update()
{
    if (!ghost && (solidTicks = CountDown(solidTicks)) <= 0)
        ghost = true;
    if (!Level)
        return;
    THING* other = Level->FindTouchingThing(this, position);
    if (other && typeid(*other) == typeid(SPACESHIP) && ApplyTo(static_cast<SPACESHIP*>(other)))
        dead = true;
}

void PICKUP::WriteRecord(BINWRITER& out, int32_t index) const
{
    WriteClassRecord(out, index);
}

void PICKUP::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.I32("solidTicks", solidTicks);
}

bool PICKUP::ApplyTo(SPACESHIP*)
{
    return false;
}

void PICKUP::ItemUpdate()
{
    PICKUP::Update();
    Control(6, 0.1f);
}

void PICKUP::DrawItem(TRIMESH* mesh)
{
    if (mesh)
        mesh->Draw(position, axisZ, axisY, axisX, 1, VECTOR3D(1, 1, 1));
}

// The five items differ only in their mesh and their rule.
#define ITEM_COMMON(C, MESH)                                                                                  \
    C::C(VECTOR3D p, VECTOR3D z, VECTOR3D y, VECTOR3D x) : PICKUP(p, z, y, x) {}                              \
    void C::Draw() { DrawItem(ThingMeshes.MESH); }                                                            \
    void C::Update() { ItemUpdate(); }

ITEM_COMMON(P_SHIELD, Shield)
ITEM_COMMON(P_ENERGY, Energy)
ITEM_COMMON(P_TEMPEST, Tempest)
ITEM_COMMON(P_LASERBOOST, LaserBoost)
ITEM_COMMON(P_SHIPLEVEL, ShipLevel)

bool P_SHIPLEVEL::ApplyTo(SPACESHIP* ship)
{
    if (ship->shipLevel < 5)
    {
        ++ship->shipLevel;
        return true;
    }
    Tell(ship, "Már teljesen ki van fejlesztve a hajód.");
    return false;
}

bool P_LASERBOOST::ApplyTo(SPACESHIP* ship)
{
    int32_t& w = ship->primaryWeapon;
    const int32_t s = ship->shipLevel;
    // Twice the ship level, wrapping at 32 bits like the stored level itself.
    const int32_t twice = int32_t(2u * uint32_t(s));
    if (w == -1)
    {
        w = 0;
        return true;
    }
    if (w >= 0 && w < 9 && twice > w + 1)
    {
        ++w;
        return true;
    }
    if (w < 0 || w > 9)
        Tell(ship, "Nem tudod felvenni a lézert: más fegyvered van már!");
    else if (w == 9)
        Tell(ship, "Nem tudod felvenni a lézert: teljesen ki van már fejlesztve!");
    else
    {
        char text[200];
        std::snprintf(text, sizeof text, "%d. színtű hajó csak %d. színtig fejlesztheti a lézert!", int(s), int(twice));
        Tell(ship, text);
    }
    return false;
}

bool P_TEMPEST::ApplyTo(SPACESHIP* ship)
{
    if (ship->secondaryWeapon == 0 && ship->tempestCount < 20)
    {
        ++ship->tempestCount;
        return true;
    }
    if (ship->secondaryWeapon != 0)
        Tell(ship, "Csak egyféle rakétád lehet egyszerre. Amid van, nem Tempest.");
    else
        Tell(ship, "Max 20 Tempest rakétád lehet.");
    return false;
}

bool P_ENERGY::ApplyTo(SPACESHIP* ship)
{
    const int32_t limit = ShipLevelLimit(ship->shipLevel);
    if (float(limit) > ship->energy)
    {
        ship->energy += 15.0f;
        return true;
    }
    char text[200];
    std::snprintf(text, sizeof text, "A hajódnak a %d. szinten max. %d energiája lehet.", int(ship->shipLevel), int(limit));
    Tell(ship, text);
    return false;
}

bool P_SHIELD::ApplyTo(SPACESHIP* ship)
{
    const int32_t limit = ShipLevelLimit(ship->shipLevel);
    if (float(limit) > ship->shield)
    {
        ship->shield += 15.0f;
        return true;
    }
    char text[200];
    std::snprintf(text, sizeof text, "A hajódnak a %d. szinten max. %d pajzsa lehet.", int(ship->shipLevel), int(limit));
    Tell(ship, text);
    return false;
}
