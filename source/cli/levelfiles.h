// The level a command works on and the file operations the level commands
// share.
#pragma once

#include "orvlevel/level.h"
#include "things/thingmeshes.h"

#include <memory>

// Things reach the level through TheLevel, so the level a command works on
// is installed there for its lifetime. Objects take their boxes from the
// shared meshes, which are loaded first.
class CURRENTLEVEL
{
public:
    CURRENTLEVEL()
    {
        LoadThingMeshes();
        Level = std::make_unique<ORVLEVEL>();
        TheLevel = Level.get();
    }
    ~CURRENTLEVEL()
    {
        Level.reset();
        TheLevel = nullptr;
    }
    CURRENTLEVEL(const CURRENTLEVEL&) = delete;
    CURRENTLEVEL& operator=(const CURRENTLEVEL&) = delete;
    ORVLEVEL& operator*() { return *Level; }

private:
    std::unique_ptr<ORVLEVEL> Level;
};

// False when the file could not be read: LoadLevel has said so, and the level
// keeps what it had, file name included.
bool LoadLevelFile(ORVLEVEL& level, const char* name);

// Saves and reads the file back: SaveLevel reports a failure only as a
// message, so the status comes from the bytes on disk.
bool SaveLevelFile(ORVLEVEL& level, const char* name);
