// Texture upload and binding: bitmaps decoded into the shared PixelBuffer
// with black as the transparent colour key, and a one-entry cache in front of
// glBindTexture.
#pragma once

#include <cstdint>

// The name last passed to glBindTexture through BindTexture.
extern uint32_t BoundTexture;

// Decodes the bitmap and uploads it as texture `name` (bound directly, not
// through the cache) with the given filter and wrap mode for both
// directions. An unsupported depth, an image-size field of 0 or an image
// larger than PixelBuffer uploads nothing. A missing file ends the program.
void LoadTexture(const char* file, uint32_t name, int filter, int wrap);

// Binds name to the 2D target unless it is the one bound last.
void BindTexture(uint32_t name);
// Forgets the cache for a new context: binds 0 and records it.
void ResetBoundTexture();
