#include "play/playsession.h"

#include "orvlevel/level.h"
#include "things/spaceship.h"

#include <vector>

namespace {

constexpr float STEP_DISTANCE = 10.0f;
constexpr float STEP_ANGLE = 0.1f;

} // namespace

bool PlayStartOf(const ORVLEVEL& level, CAMERA& start)
{
    for (int i = 0; level.SpecPoints && i < MAX_SPECPOINTS; ++i)
        if (const SPECPOINT* sp = level.SpecPoints[i]; sp && sp->Type == 0)
        {
            start.Position = sp->Position;
            start.ViewDir = VECTOR3D(0, 0, -1);
            start.Up = VECTOR3D(0, 1, 0);
            start.Right = VECTOR3D(1, 0, 0);
            return true;
        }
    return false;
}

PLAYSESSION::PLAYSESSION(const ORVLEVEL& level, const CAMERA& start) : Eye(start), Copy(std::make_unique<ORVLEVEL>())
{
    const std::vector<uint8_t> image = level.Serialize();
    Copy->Clear();
    Copy->Deserialize(image.data(), image.size());
    // Drawn every frame in full, as the editor draws its own level, and with
    // nothing selected.
    Copy->ListBuilt = true;
    Copy->DisplayList = 0;
    Copy->CurrentSegment = -1;

    SPACESHIP* ship = NewShipAt(start, 1, 1);
    // Known from the start, so that the shop opens before the first tick.
    ship->segment = Copy->FindSegment(ship->position);
    Slot = Copy->AddThing(ship);
    if (Slot < 0)
    {
        delete ship;
        EndTicks = 0;
        return;
    }
    Player = ship;
    FollowShip();
}

PLAYSESSION::~PLAYSESSION()
{
    Copy->Restoring = true;
    Copy.reset();
}

void PLAYSESSION::OpenShop()
{
    if (Player)
        Player->OpenShop();
}

void PLAYSESSION::ShopSelect(int32_t choice)
{
    if (Player)
        Player->ShopSelect(choice);
}

void PLAYSESSION::ToggleLaunchSide()
{
    if (Player)
        Player->ToggleLaunchSide();
}

void PLAYSESSION::FollowShip()
{
    Eye.Position = Player->position;
    Eye.ViewDir = Player->axisX;
    Eye.Up = Player->axisY;
    Eye.Right = Player->axisZ;
}

void PLAYSESSION::Tick()
{
    ++TickCount;
    // A breaking ship tumbles on its own and can no longer fire.
    if (Player && !Player->dying)
    {
        for (int op = 0; op < CAMERA_MOVES; ++op)
            if (Held[op])
                Player->Control(op, op < 6 ? STEP_DISTANCE : STEP_ANGLE);
        if (Looking)
        {
            Player->Control(CAM_TURNRIGHT, LookRight);
            Player->Control(CAM_LOOKDOWN, LookDown);
        }
        if (Held[PLAY_LASER])
            Player->FirePrimary(Copy.get());
        if (Held[PLAY_TEMPEST])
            Player->FireSecondary(Copy.get());
    }
    if (Player)
        FollowShip();
    Copy->GameTick(Eye);
    Copy->PhysicsStep();
    if (!Player)
    {
        --EndTicks;
        return;
    }
    // GameTick destroys a dead ship and empties its slot; nothing a tick
    // creates is a ship, so no other object can take the slot at its address.
    if (Copy->Things[Slot] != Player)
        Player = nullptr;
    else
        FollowShip();
}
