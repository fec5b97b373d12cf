// Repairs for the problems of the level check that need no decision of the
// designer's: cutting links that lead nowhere, pairing one-sided links,
// dropping unused points, clearing empty texture slots and bringing lost
// objects back into the level. The command line and the editor share them.
#pragma once

#include "orvlevel/levelcheck.h"

#include <string>
#include <vector>

class ORVLEVEL;

// Whether the problem has a repair.
inline bool HasFix(const LEVELPROBLEM& p)
{
    return p.Fix != FIX_NONE;
}

// Repairs one problem as the check found it and answers what was done, one
// Hungarian line; "" (and nothing changed) when the problem has no repair or
// is no longer there. A change advances the level's revision.
std::string ApplyFix(ORVLEVEL& level, const LEVELPROBLEM& problem);

// Every repair, checking again until none is left; the lines in the order done.
std::vector<std::string> FixLevel(ORVLEVEL& level);
