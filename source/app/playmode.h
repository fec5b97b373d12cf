// The play-test inside the editor: its commands. The window's side of it
// (starting, keys, the 40 ms ticks, ending) is in playmode.cpp.
#pragma once

enum PLAYCOMMAND
{
    CM_PLAYHERE = 12050,  // the ship at the camera's frame
    CM_PLAYSTART = 12051, // at the single-player start, with the camera's axes
};

inline bool IsPlayCommand(int id)
{
    return id == CM_PLAYHERE || id == CM_PLAYSTART;
}
