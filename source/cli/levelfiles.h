// The document a level command works on.
#pragma once

#include "editor/document.h"

// Objects take their boxes from the shared meshes and the reader builds them
// from the game's classes, so both are ready before the level exists.
struct WORLDREADY
{
    WORLDREADY();
};

// Opens a level for a command: a file the loader complained about (a wrong
// header, a short file) counts as not opened, even where the loader goes on
// with what it could read, since the command's output would not be that file.
bool OpenWhole(ORVEDOCUMENT& doc, const std::string& path);

class CLIDOCUMENT : private WORLDREADY, public ORVEDOCUMENT
{
public:
    bool Open(const std::string& path) { return OpenWhole(*this, path); }
};
