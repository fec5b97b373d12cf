// The differences between two levels, one line each, named by their path in
// the level's JSON dump: "segments[0].sides[3].texture: 0 -> -1" for a
// changed value (as the dump writes it), "+ segments[1]" for an added record
// and "- points[8]" for a removed one. Records are matched by table index;
// the file name is not compared.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class ORVLEVEL;

struct LEVELDIFFLINE
{
    std::string Text;
    // The dump table (DUMPTABLE) and slot the line is about; -1 for the
    // members before the tables.
    int Table = -1;
    int32_t Index = -1;
    // For segment lines: the side whose field or neighbour changed, the
    // corner slot that changed, or -1.
    int32_t Side = -1;
    int32_t Corner = -1;
};

std::vector<LEVELDIFFLINE> DiffLevels(const ORVLEVEL& a, const ORVLEVEL& b);
