#include "cli/levelfiles.h"

#include "things/thingclasses.h"
#include "things/thingmeshes.h"

WORLDREADY::WORLDREADY()
{
    LoadThingMeshes();
    RegisterThingClasses();
}
