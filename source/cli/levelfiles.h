// The document a level command works on.
#pragma once

#include "editor/document.h"

// Objects take their boxes from the shared meshes and the reader builds them
// from the game's classes, so both are ready before the level exists.
struct WORLDREADY
{
    WORLDREADY();
};

class CLIDOCUMENT : private WORLDREADY, public ORVEDOCUMENT
{
};
