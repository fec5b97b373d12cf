// What a bitmap file's header says, read without decoding its pixels, so the
// editor can turn away a file the texture loader would not take before it
// replaces anything.
#pragma once

#include <cstdint>

struct BITMAPHEADER
{
    // The file could be opened the way the loader opens it (read and write);
    // when not, the loader ends the program with its not-found message.
    bool Opened = false;
    bool Signature = false; // begins with "BM"
    int32_t Width = 0;
    int32_t Height = 0;
    uint16_t BitsPerPixel = 0;
};

// The header fields the loader uses; a short file reads as zeros beyond its end.
BITMAPHEADER ReadBitmapHeader(const char* storedName);

enum BITMAPVERDICT
{
    BITMAP_USABLE = 0,
    BITMAP_MISSING,   // cannot be opened
    BITMAP_NOTBITMAP, // no "BM" signature
    BITMAP_DEPTH,     // not 8 or 24 bits per pixel
    BITMAP_EMPTY,     // no pixels: width or height not positive (top-down files too)
    BITMAP_TOOLARGE,  // more pixels than the loader's staging buffer holds
};

BITMAPVERDICT JudgeBitmap(const BITMAPHEADER& header);
