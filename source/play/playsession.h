// A play-test of a level: a copy of it with the player's ship added, run one
// game tick at a time under the player's input. The level it was copied from
// is never touched. Window-independent: the editor feeds it keys and the
// mouse every 40 ms, the command-line tool an input file tick by tick.
#pragma once

#include "math/camera.h"

#include <cstdint>
#include <memory>

class ORVLEVEL;
class SPACESHIP;

// The held actions: the twelve camera operations (CAMERAMOVE codes), then the
// two weapons.
enum PLAYACTION
{
    PLAY_LASER = CAMERA_MOVES,
    PLAY_TEMPEST,
    PLAY_ACTIONS
};

// Ticks the picture stays on after the player's ship is gone: two seconds.
constexpr int PLAY_END_TICKS = 50;

// The player's start without a camera of its own: the level's single-player
// start (the first special point of type 0) facing -z, up +y, right +x; false
// when the level has none.
bool PlayStartOf(const ORVLEVEL& level, CAMERA& start);

class PLAYSESSION
{
public:
    // Copies the level through its file image (reading the copy draws from
    // the random generator, as loading does) and adds the player's ship at
    // the start frame: position, then ViewDir, Up and Right as its axes X, Y
    // and Z.
    PLAYSESSION(const ORVLEVEL& level, const CAMERA& start);
    // Tears the copy down quietly: its objects leave no explosions or sounds.
    ~PLAYSESSION();
    PLAYSESSION(const PLAYSESSION&) = delete;
    PLAYSESSION& operator=(const PLAYSESSION&) = delete;

    // False when the copy's object table had no room for the ship; such a
    // session only ends.
    bool Started() const { return Slot >= 0; }
    ORVLEVEL& Level() { return *Copy; }
    // The player's ship, or null once it has been removed.
    SPACESHIP* Ship() { return Player; }
    int32_t ShipSlot() const { return Slot; }

    // What the player holds during the next tick.
    bool Held[PLAY_ACTIONS] = {};
    // Mouse look for the next tick (radians): turn right, then look down.
    bool Looking = false;
    float LookRight = 0.0f, LookDown = 0.0f;

    // The shop keys and the missile side, acting at once.
    void OpenShop();
    void ShopSelect(int32_t choice);
    void ToggleLaunchSide();

    // One tick: the held operations move the ship through Control (10 units,
    // 0.1 radian), the mouse look turns it, the weapons fire; then the game
    // tick with the listener at the ship, and the physics step.
    void Tick();
    int32_t Ticks() const { return TickCount; }
    // The ship is gone and its last picture has been shown long enough.
    bool Ended() const { return !Player && EndTicks <= 0; }

    // The frame to draw from: the ship's, or after it is gone, its last one.
    CAMERA Eye;

private:
    void FollowShip();

    std::unique_ptr<ORVLEVEL> Copy;
    SPACESHIP* Player = nullptr;
    int32_t Slot = -1;
    int32_t TickCount = 0;
    int EndTicks = PLAY_END_TICKS;
};
