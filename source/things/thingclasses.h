// The classes the level reader constructs from stored class names, in the
// order it tries them.
#pragma once

#include <cstdint>
#include <span>

class THING;

struct THINGCLASS
{
    const char* Name;
    int32_t Size;
    THING* (*Construct)();
};

std::span<const THINGCLASS> ReaderClassList();
