// The bitmap font's glyphs, one per code page 1250 code, generated at build
// time by orvane-fontgen from a system TrueType font.
#pragma once

struct FONTGLYPH
{
    unsigned char Width, Height; // bitmap size in pixels
    signed char XOrig, YOrig;    // glBitmap origin: the baseline point inside the bitmap
    unsigned char Advance;       // raster position move after the glyph
    unsigned int Offset;         // first byte in FontBits: rows bottom first, whole bytes each
};

extern const int FontLineHeight;
extern const FONTGLYPH FontGlyphs[256];
extern const unsigned char FontBits[];
