// Level diagnostics: everything in a level that would show as a hole, a
// glitch or a missing file in the game, each with the numbers a designer
// needs to find it. One pass over each table, so it stays fast on the
// largest levels.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class ORVLEVEL;

struct LEVELPROBLEM
{
    std::string Text;     // one line, Hungarian, UTF-8, with its numbers
    int32_t Segment = -1; // where to go to fix it, or -1
    int32_t Side = -1;
    int32_t Point = -1;
};

// Bitmap names are looked up against the current directory, as the editor
// loads them.
std::vector<LEVELPROBLEM> CheckLevel(const ORVLEVEL& level);
