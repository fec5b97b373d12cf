// Large zero-filled blocks straight from the system, for the level's fixed
// stores: pages nobody touches cost nothing, and a new block needs no
// clearing however often levels come and go.
#pragma once

#include <cstddef>

// Throws std::bad_alloc when the system has no room.
void* AllocatePages(size_t bytes);
// `bytes` as given to AllocatePages; null is ignored.
void FreePages(void* block, size_t bytes);
