// The ship of the game: enemy ships placed in the editor and, in play, the
// player's ship. Carries energy, shield, weapons, level, money, a ten-line
// message log, its own flying behaviour and the shop state.
#pragma once

#include "math/camera.h"
#include "things/thing.h"

class LASERSHOT;
class ORVLEVEL;

constexpr int32_t SPACESHIP_SIZE = 1233;
constexpr int SHIP_MESSAGES = 10;
constexpr int SHIP_MESSAGE_SIZE = 100;

// F(n) = 0 for n < 0, F(0) = F(1) = 1, F(n) = F(n-1) + F(n-2).
int32_t Fibonacci(int32_t n);

// The shield and energy limit of a ship level, 150 + 50 * level. Levels come
// from files too, so the arithmetic wraps at 32 bits instead of overflowing.
inline int32_t ShipLevelLimit(int32_t shipLevel)
{
    return int32_t(150u + 50u * uint32_t(shipLevel));
}

// A stored counter one step down, wrapping at 32 bits like the counters of
// the records it comes from.
inline int32_t CountDown(int32_t ticks)
{
    return int32_t(uint32_t(ticks) - 1u);
}

struct RGBA
{
    float r, g, b, a;
};

// The colour of a cockpit bar at fill ratio v (red through green to blue).
RGBA BarColour(float v, float alpha);

class SPACESHIP : public THING
{
public:
    float energy = 100.0f;
    float shield = 100.0f;
    int32_t primaryWeapon = 0;   // -1 none, 0 ... 9 laser level
    int32_t secondaryWeapon = 0; // 0: Tempest missiles
    int32_t primaryCooldown = 0;
    int32_t secondaryCooldown = 0;
    int32_t playerControlled = 0;
    int32_t team = 0;
    bool launchSide = false;
    bool dying = false;
    int32_t dyingTicks = 0;
    int32_t strafeTicks = 0;
    int32_t strafeDirection; // random 0 ... 3 at construction
    int32_t target = -1;     // thing-table slot of the attacked ship
    int32_t skill = 3;       // 0 ... 3
    int32_t tempestCount = 10;
    VECTOR3D goal;
    int32_t shipLevel = 1; // 1 ... 5
    int32_t shopState = -1;
    float money = 5000.0f;
    // Code page 1250 texts, line 0 oldest; a line may fill its field
    // without a NUL (records from files), so readers stop at the field's end.
    char messages[SHIP_MESSAGES][SHIP_MESSAGE_SIZE] = {};
    int32_t messageTicks = 20;

    // The defaults above; pushDistance sqrt(3) * 10 and the box from the
    // ship mesh.
    SPACESHIP();
    // Leaves an explosion and dropped items in the current level.
    ~SPACESHIP() override;
    void Draw() override;
    void Update() override;
    void DrawCockpit() override;
    // goal := position; launchSide from a random draw.
    void AfterLoad() override;
    void WriteRecord(BINWRITER& out, int32_t index) const override;
    const char* ClassName() const override { return "SPACESHIP"; }
    int32_t RecordSize() const override { return SPACESHIP_SIZE; }
    void Members(THINGMEMBERS& m) override;

    // Behaviour of a ship without a pilot.
    void AcquireTarget();
    void AttackTarget();
    void SteerTo(VECTOR3D p);
    // Radians per tick for the ship's skill.
    float TurnRate() const;

    void FirePrimary(ORVLEVEL* level);
    void FireSecondary(ORVLEVEL* level);
    // `text` is code page 1250; a text already in the log is ignored.
    void ShowMessage(const char* text);
    void ScrollMessages();
    void DamageShield(float amount);

    // Shop and cockpit.
    void OpenShop();
    void ShopSelect(int32_t choice);
    float LaserPrice() const;
    void ToggleLaunchSide();
    // Code page 1250 texts in static buffers of their own; an invalid weapon
    // leaves the buffer's previous content.
    const char* PrimaryWeaponName() const;
    const char* SecondaryWeaponName() const;

private:
    // Readies a new shot or missile at `muzzle` in the ship's frame.
    void Launch(LASERSHOT* shot, VECTOR3D muzzle, float damage, float speed);
};

// A ship standing in a camera's frame (position; view, up and right as its
// axes X, Y and Z), aiming at nothing, its goal where it stands.
SPACESHIP* NewShipAt(const CAMERA& frame, int32_t team, int32_t playerControlled);
