// The level file reader on any bytes, with the game's object classes
// registered so that ship and item records are read too.
#include "fuzzing.h"
#include "math/trig.h"
#include "orvlevel/level.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

namespace {

// One level for the whole run: its tables are allocated once.
ORVLEVEL* Level;

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** argv)
{
    FuzzSetUp((*argv)[0]);
    InitTrigTables();
    LoadThingMeshes();
    RegisterThingClasses();
    Level = new ORVLEVEL();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    try
    {
        Level->Clear();
        Level->Deserialize(data, size);
        // What was read must write out again.
        Level->Serialize();
    }
    catch (const FUZZEXIT&)
    {
    }
    return 0;
}
