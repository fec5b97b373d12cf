// Level diagnostics: everything in a level that would show as a hole, a
// glitch or a missing file in the game, each with the numbers a designer
// needs to find it. One pass over each table, so it stays fast on the
// largest levels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class ORVLEVEL;

// The repair a problem admits without asking the designer anything
// (levelfix.h applies it).
enum LEVELFIXKIND
{
    FIX_NONE,
    FIX_CUTNEIGHBOUR,    // a neighbour that names no segment
    FIX_ONEWAYLINK,      // linked back when the sides lie on each other, else cut
    FIX_WALLUP,          // a passable side with nothing behind becomes a wall
    FIX_UNUSEDPOINT,     // dropped
    FIX_EMPTYTEXTURE,    // the side becomes untextured
    FIX_MOVETHING,       // to the nearest segment's centre; Object is the slot
    FIX_MOVELIGHT,
    FIX_MOVESPECPOINT,
};

struct LEVELPROBLEM
{
    std::string Text;     // one line, Hungarian, UTF-8, with its numbers
    int32_t Segment = -1; // where to go to fix it, or -1
    int32_t Side = -1;
    int32_t Point = -1;
    int32_t Fix = FIX_NONE;
    int32_t Object = -1; // the thing, light or special point slot
};

// Bitmap names are looked up against the current directory, as the editor
// loads them.
std::vector<LEVELPROBLEM> CheckLevel(const ORVLEVEL& level);

// printf into a problem's or a repair's line (they are a few hundred bytes at
// most).
std::string FormatProblem(const char* pattern, ...) __attribute__((format(printf, 1, 2)));
