#include "things/thingclasses.h"

#include "things/effects.h"
#include "things/pickup.h"
#include "things/spaceship.h"

namespace {

const VECTOR3D ORIGIN(0, 0, 0);

// Items are built world-aligned; the record then overwrites the frame.
template <class ITEM>
THING* NewItem()
{
    return new ITEM(ORIGIN, VECTOR3D(1, 0, 0), VECTOR3D(0, 1, 0), VECTOR3D(0, 0, 1));
}

// The order is the one the reader tries. A plain "PICKUP" is deliberately
// absent: such a record ends the program as an undefined thing. Explosions
// and sparks are never written, but records of them load.
const THINGCLASS Classes[] = {
    {"SPACESHIP", SPACESHIP_SIZE, []() -> THING* { return new SPACESHIP(); }},
    {"LASERSHOT", LASERSHOT_SIZE, []() -> THING* { return new LASERSHOT(false, ORIGIN); }},
    {"EXPLOSION", EXPLOSION_SIZE, []() -> THING* { return new EXPLOSION(); }},
    {"TEMPEST", LASERSHOT_SIZE, []() -> THING* { return new TEMPEST(false, ORIGIN); }},
    {"SPARK", SPARK_SIZE, []() -> THING* { return new SPARK(ORIGIN, 20.0f, 0.1f); }},
    {"P_SHIELD", PICKUP_SIZE, NewItem<P_SHIELD>},
    {"P_ENERGY", PICKUP_SIZE, NewItem<P_ENERGY>},
    {"P_TEMPEST", PICKUP_SIZE, NewItem<P_TEMPEST>},
    {"P_LASERBOOST", PICKUP_SIZE, NewItem<P_LASERBOOST>},
    {"P_SHIPLEVEL", PICKUP_SIZE, NewItem<P_SHIPLEVEL>},
};

} // namespace

std::span<const THINGCLASS> GameThingClasses()
{
    return Classes;
}

void RegisterThingClasses()
{
    SetThingClasses(Classes);
}
