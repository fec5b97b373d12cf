// The game's object classes, handed to the level reader in the order it
// tries them.
#pragma once

#include "orvlevel/level.h"

// Every program that loads levels with objects calls this once at start.
void RegisterThingClasses();
std::span<const THINGCLASS> GameThingClasses();
