#include "things/spaceship.h"

#include "graphics/drawing.h"
#include "graphics/trimesh.h"
#include "math/geometry.h"
#include "math/random.h"
#include "orvlevel/level.h"
#include "platform/cp1250.h"
#include "platform/platform.h"
#include "things/effects.h"
#include "things/pickup.h"
#include "things/thingmeshes.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <typeinfo>
#include <vector>

namespace {

// Room for what a destroyed ship leaves behind.
constexpr size_t MAX_DROPS = 256;

SEGMENT* SegmentOf(const ORVLEVEL* level, int32_t index)
{
    if (!level || !level->Segments || index < 0 || index >= MAX_SEGMENTS)
        return nullptr;
    return level->Segments[index];
}

SPACESHIP* AsShip(THING* t)
{
    return t && typeid(*t) == typeid(SPACESHIP) ? static_cast<SPACESHIP*>(t) : nullptr;
}

THING* ThingAt(const ORVLEVEL* level, int32_t slot)
{
    if (!level || !level->Things || slot < 0 || slot >= MAX_THINGS)
        return nullptr;
    return level->Things[slot];
}

// The world-aligned frame of dropped and bought items.
const VECTOR3D ItemZ(1, 0, 0), ItemY(0, 1, 0), ItemX(0, 0, 1);

} // namespace

int32_t Fibonacci(int32_t n)
{
    if (n < 0)
        return 0;
    int32_t a = 1, b = 1; // F(0), F(1)
    for (int32_t i = 1; i < n; ++i)
    {
        int32_t c = a + b;
        a = b;
        b = c;
    }
    return b;
}

RGBA BarColour(float v, float a)
{
    if (v <= 0.0f)
        return {1, 0, 0, a};
    if (v >= 2.0f)
        return {0, 0, 1, a};
    if (v <= 0.5f)
        return {1, 2 * v, 0, a};
    if (v <= 1.0f)
        return {1 - 2 * (v - 0.5f), 1, 0, a};
    if (v <= 1.5f)
        return {0, 1, 2 * (v - 1.0f), a};
    return {0, 1 - 2 * (v - 1.5f), 1, a};
}

SPACESHIP::SPACESHIP() : strafeDirection(int32_t(LRand() % 4))
{
    pushDistance = float(std::sqrt(3.0) * 10.0);
    BoxFromMesh(*this, ThingMeshes.Ship);
}

SPACESHIP::~SPACESHIP()
{
    if (!LeavesEffects())
        return;
    std::vector<THING*> made;
    made.push_back(new EXPLOSION(10.0f, 300.0f, oldPosition + RandomBoxOffset()));

    // Each kind's count is drawn, then its items with their places.
    auto drop = [&](int n, auto make) {
        for (int i = 0; i < n && made.size() < MAX_DROPS; ++i)
            made.push_back(make(position + RandomOffset(30.0f)));
    };
    if (secondaryWeapon == 0)
        drop((tempestCount != 0 ? int(LRand() % tempestCount) : 0) + 1,
             [](VECTOR3D p) { return new P_TEMPEST(p, ItemZ, ItemY, ItemX); });
    if (primaryWeapon >= 0 && primaryWeapon <= 9)
        drop(int(LRand() % (primaryWeapon + 1)) + 1, [](VECTOR3D p) { return new P_LASERBOOST(p, ItemZ, ItemY, ItemX); });
    // Truncated toward zero; a stored energy beyond any game range drops nothing.
    float q = energy * (1.0f / 15.0f);
    int32_t k = std::fabs(q) < 1.0e9f ? int32_t(q) : 0;
    drop(k != 0 ? int(LRand() % k) : 0, [](VECTOR3D p) { return new P_ENERGY(p, ItemZ, ItemY, ItemX); });
    int32_t r = int32_t(LRand() % 64);
    int shields = 0;
    for (int32_t mask : {2, 6, 14, 30})
        if ((r & mask) == mask)
            ++shields;
    drop(shields, [](VECTOR3D p) { return new P_SHIELD(p, ItemZ, ItemY, ItemX); });
    for (THING* t : made)
        HandToLevel(Level, t);
}

void SPACESHIP::Draw()
{
    VECTOR3D ambient = SegmentAmbient(*this);
    if (segment != lastSegment)
        lastSegment = segment;
    if (ThingMeshes.Ship)
        ThingMeshes.Ship->Draw(position, axisX, axisY, axisZ, 1, ambient);
    // Later drawing starts untextured.
    if (Drawing().BindTexture)
        Drawing().BindTexture(0);
}

void SPACESHIP::DrawCockpit()
{
    // The shop is open only inside a support segment.
    SEGMENT* s = SegmentOf(Level, segment);
    if (!s || s->Type != 3)
        shopState = -1;
    if (Drawing().DrawCockpit)
        Drawing().DrawCockpit(*this);
}

void SPACESHIP::AfterLoad()
{
    goal = position;
    launchSide = (LRand() & 1) != 0;
}

void SPACESHIP::WriteRecord(BINWRITER& out, int32_t index) const
{
    WriteClassRecord(out, index);
}

void SPACESHIP::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.F32("energy", energy);
    m.F32("shield", shield);
    m.I32("primaryWeapon", primaryWeapon);
    m.I32("secondaryWeapon", secondaryWeapon);
    m.I32("primaryCooldown", primaryCooldown);
    m.I32("secondaryCooldown", secondaryCooldown);
    m.I32("playerControlled", playerControlled);
    m.I32("team", team);
    m.Flag("launchSide", launchSide);
    m.Flag("dying", dying);
    m.I32("dyingTicks", dyingTicks);
    m.I32("strafeTicks", strafeTicks);
    m.I32("strafeDirection", strafeDirection);
    m.I32("target", target);
    m.I32("skill", skill);
    m.I32("tempestCount", tempestCount);
    m.Vec("goal", goal);
    m.I32("shipLevel", shipLevel);
    m.I32("shopState", shopState);
    m.F32("money", money);
    m.Texts("messages", &messages[0][0], SHIP_MESSAGES, SHIP_MESSAGE_SIZE);
    m.I32("messageTicks", messageTicks);
}

void SPACESHIP::Update()
{
    money += 0.1f;
    if ((messageTicks = CountDown(messageTicks)) == 0)
    {
        messageTicks = 20;
        ScrollMessages();
    }
    if (primaryCooldown > 0)
        --primaryCooldown;
    if (secondaryCooldown > 0)
        --secondaryCooldown;
    if (shield <= 0.0f && !dying)
    {
        dying = true;
        dyingTicks = 100;
    }
    const float limit = float(ShipLevelLimit(shipLevel));
    if (shield > limit)
        shield = limit;
    if (energy > limit)
        energy = limit;
    SEGMENT* s = SegmentOf(Level, segment);
    if (s && s->Type == 1 && energy < 100.0f)
        energy += 0.1f;

    if (dying)
    {
        dyingTicks = CountDown(dyingTicks);
        if (int32_t(LRand() % 5) == dyingTicks % 5)
            HandToLevel(Level, new EXPLOSION(1.0f, 12.0f, oldPosition + RandomBoxOffset()));
        if (dyingTicks <= 0)
            dead = true;
        for (int how : {7, 11, 8})
            Control(how, float(LRand() % 20) * 0.01f - 0.1f);
        for (int how : {0, 3, 4})
            Control(how, float(LRand() % 10) - 5.0f);
        return;
    }
    if (playerControlled == 0)
    {
        AcquireTarget();
        AttackTarget();
    }
}

float SPACESHIP::TurnRate() const
{
    static const float rates[4] = {0.05f, 0.1f, 0.15f, 0.2f};
    // Only a stored record can carry another skill; take the nearest one.
    return rates[skill < 0 ? 0 : skill > 3 ? 3 : skill];
}

void SPACESHIP::AcquireTarget()
{
    if (target != -1)
    {
        if (THING* t = ThingAt(Level, target))
            goal = t->position;
        else
            target = -1;
        return;
    }
    for (int i = 0; Level && Level->Things && i < MAX_THINGS; ++i)
    {
        SPACESHIP* other = AsShip(Level->Things[i]);
        if (!other || other == this || other->dying || (other->team != 0 && other->team == team))
            continue;
        if (Level->LineOfSight(position, other->position, SegmentOf(Level, segment)))
        {
            target = i;
            return;
        }
    }
    if (skill > 0)
        SteerTo(goal);
}

namespace {

// The part of a turn shared by steering home and attacking: false when the
// ship had to turn at full rate.
struct AIM
{
    float a = 0, b = 0, c = 0, dist = 0;
    bool FullTurn = false;
};

AIM Aim(SPACESHIP& ship, VECTOR3D p, float rate)
{
    AIM aim;
    VECTOR3D d = p - ship.position;
    aim.dist = Length(d);
    Decompose3(ship.axisZ, ship.axisY, ship.axisX, &aim.a, &aim.b, &aim.c, d);
    float cos = CosAngle(ship.axisX, d);
    if (std::fabs(cos) > 1.0f || std::acos(cos) >= rate)
    {
        aim.FullTurn = true;
        ship.Control(aim.a <= 0.0f ? 6 : 7, rate);
        ship.Control(aim.b <= 0.0f ? 8 : 9, rate);
    }
    return aim;
}

} // namespace

void SPACESHIP::SteerTo(VECTOR3D p)
{
    if (Length(p - position) < 10.0f)
        return;
    AIM aim = Aim(*this, p, TurnRate());
    if (aim.FullTurn)
        return;
    Control(7, std::atan(aim.a / aim.dist));
    Control(9, std::atan(aim.b / aim.dist));
    if (aim.dist > 10.0f)
        Control(0, 10.0f);
}

void SPACESHIP::AttackTarget()
{
    if (target == -1)
        return;
    THING* t = ThingAt(Level, target);
    if (!t || !Level->LineOfSight(position, t->position, SegmentOf(Level, segment)))
    {
        target = -1;
        return;
    }
    const float rate = TurnRate();
    if (skill > 0)
    {
        static const int moves[4] = {2, 3, 4, 5};
        if (strafeDirection >= 0 && strafeDirection < 4)
            Control(moves[strafeDirection], 10.0f);
    }
    if ((strafeTicks = CountDown(strafeTicks)) < 1 && skill > 0)
    {
        strafeTicks = skill == 1 ? 20 : 10;
        strafeDirection = int32_t(LRand() % 4);
    }
    if (SPACESHIP* ship = AsShip(t); ship && ship->dying)
        target = -1;
    AIM aim = Aim(*this, t->position, rate);
    if (aim.FullTurn)
        return;
    Control(7, std::atan(aim.a / aim.dist));
    Control(9, std::atan(aim.b / aim.dist));
    FirePrimary(Level);
    FireSecondary(Level);
    if (skill == 3)
    {
        if (aim.dist > 100.0f)
            Control(0, 10.0f);
        if (aim.dist < 75.0f)
            Control(1, 10.0f);
    }
}

void SPACESHIP::Launch(LASERSHOT* shot, VECTOR3D muzzle, float damage, float speed)
{
    shot->position = muzzle;
    shot->axisX = axisX;
    shot->axisY = axisY;
    shot->axisZ = axisZ;
    shot->level = primaryWeapon + 1;
    shot->owner = this;
    shot->lastPoint = muzzle;
    shot->damage = damage;
    shot->speed = speed;
}

void SPACESHIP::FirePrimary(ORVLEVEL* level)
{
    if (dying || primaryCooldown >= 1)
        return;
    if (primaryWeapon < 0 || primaryWeapon > 9)
        FatalMessage("Invalid primary weapon!", "FATAL!", MSGICON_STOP);
    float cost = 0.1f * float(Fibonacci(primaryWeapon + 3));
    if (energy < cost)
        return;
    energy -= cost;
    for (float side : {-1.0f, 1.0f})
    {
        VECTOR3D muzzle = position + axisX * 15.0f + axisZ * (15.0f * side);
        auto* shot = new LASERSHOT(true, muzzle);
        Launch(shot, muzzle, float(Fibonacci(primaryWeapon + 1)), float(10 * primaryWeapon + 20));
        HandToLevel(level, shot);
    }
    primaryCooldown = (primaryWeapon / 2) * 5 + 10;
}

void SPACESHIP::FireSecondary(ORVLEVEL* level)
{
    if (dying || secondaryCooldown >= 1)
        return;
    if (secondaryWeapon != 0)
        FatalMessage("Invalid primary weapon!", "FATAL!", MSGICON_STOP);
    if (tempestCount < 1)
        return;
    float s = launchSide ? 1.0f : -1.0f;
    VECTOR3D muzzle = position + axisX * 15.0f + axisZ * (15.0f * s);
    auto* missile = new TEMPEST(true, muzzle);
    Launch(missile, muzzle, 20.0f, 40.0f);
    HandToLevel(level, missile);
    secondaryCooldown = 20;
    launchSide = !launchSide;
    tempestCount = CountDown(tempestCount);
}

void SPACESHIP::ShowMessage(const char* text)
{
    for (const char* line : messages)
        if (std::strncmp(line, text, SHIP_MESSAGE_SIZE) == 0)
            return;
    ScrollMessages();
    std::strncpy(messages[SHIP_MESSAGES - 1], text, SHIP_MESSAGE_SIZE - 1);
}

void SPACESHIP::ScrollMessages()
{
    std::memmove(messages[0], messages[1], sizeof messages - SHIP_MESSAGE_SIZE);
    std::memset(messages[SHIP_MESSAGES - 1], 0, SHIP_MESSAGE_SIZE);
}

void SPACESHIP::DamageShield(float amount)
{
    shield -= amount;
}

void SPACESHIP::OpenShop()
{
    SEGMENT* s = SegmentOf(Level, segment);
    if (s && s->Type == 3 && shopState == -1)
        shopState = 0;
}

void SPACESHIP::ShopSelect(int32_t choice)
{
    SEGMENT* s = SegmentOf(Level, segment);
    if (!s || s->Type != 3)
        return;
    if (shopState == 0)
    {
        if (choice == -1)
            shopState = -1;
        else if (choice >= 0 && choice <= 2)
            shopState = choice + 1;
    }
    else if (shopState == 1)
    {
        if (choice == -1)
            shopState = 0;
        else if (choice == 0 && LaserPrice() <= money)
        {
            // Bought items reach the ship through the normal pickup rules.
            HandToLevel(Level, new P_LASERBOOST(position, ItemZ, ItemY, ItemX));
            money -= LaserPrice();
        }
    }
}

float SPACESHIP::LaserPrice() const
{
    if (primaryWeapon < 0 || primaryWeapon > 9)
        return 1000.0f;
    return float(Fibonacci(primaryWeapon + 1)) * 1000.0f;
}

void SPACESHIP::ToggleLaunchSide()
{
    launchSide = !launchSide;
}

const char* SPACESHIP::PrimaryWeaponName() const
{
    static char name[SHIP_MESSAGE_SIZE];
    if (primaryWeapon >= 0 && primaryWeapon <= 9)
    {
        char text[64];
        std::snprintf(text, sizeof text, "%d. szintű lézer", int(primaryWeapon + 1));
        std::snprintf(name, sizeof name, "%s", Utf8ToCp1250(text).c_str());
    }
    else if (primaryWeapon == -1)
        std::snprintf(name, sizeof name, "-");
    return name;
}

const char* SPACESHIP::SecondaryWeaponName() const
{
    static char name[SHIP_MESSAGE_SIZE];
    if (secondaryWeapon == 0)
        std::snprintf(name, sizeof name, "%s", Utf8ToCp1250("TEMPEST rakéta").c_str());
    return name;
}

SPACESHIP* NewShipAt(const CAMERA& frame, int32_t team, int32_t playerControlled)
{
    auto* ship = new SPACESHIP;
    ship->position = frame.Position;
    ship->axisX = frame.ViewDir;
    ship->axisY = frame.Up;
    ship->axisZ = frame.Right;
    ship->playerControlled = playerControlled;
    ship->team = team;
    ship->target = -1;
    ship->goal = ship->position;
    return ship;
}
