// The OpenGL context of the editor's view, its paced redraw, the bitmap font
// that writes text into the scene and one wireframe helper.
//
// The context itself belongs to the host (a window toolkit's OpenGL widget,
// or the offscreen context of headless rendering): the host creates it, makes
// it current and hands this class two steps, one that makes it current again
// and one that shows the finished frame. Either may be empty when the host
// does that itself (a widget whose paint handler already has the context
// current and swaps on its own).
#pragma once

#include "platform/timer.h"

#include <cstdint>
#include <functional>

// Every text of the program uses these 256 display lists, one per code page
// 1250 code.
constexpr unsigned FONT_LIST_BASE = 1000;

class GLRENDERINGCONTEXT
{
public:
    uint32_t FrameCount = 0;       // frames drawn since the last one-second mark
    uint32_t FramesLastSecond = 0; // FrameCount as it stood at that mark
    TIMER* FrameTimer = nullptr;   // 40 ms between frames
    TIMER* SecondTimer = nullptr;  // one-second marks
    std::function<void()> MakeCurrent;
    std::function<void()> Swap;

    // Makes the context current once (when a step is given) and allocates
    // both timers unarmed, so the first Update draws at once.
    GLRENDERINGCONTEXT(std::function<void()> makeCurrent, std::function<void()> swap);
    virtual ~GLRENDERINGCONTEXT();
    GLRENDERINGCONTEXT(const GLRENDERINGCONTEXT&) = delete;
    GLRENDERINGCONTEXT& operator=(const GLRENDERINGCONTEXT&) = delete;

    // Called as often as the host likes (every paint request): draws and
    // swaps at most once per 40 ms.
    void Update();
    // One frame into the current context; the base draws nothing.
    virtual void Draw();
};

// The 256 glyph lists from list base on: one list per code page 1250 code
// draws its glyph at the raster position and moves the position on.
void BuildFont(unsigned listBase);
void DeleteFont(unsigned listBase);

// One list call per byte of the (code page 1250) text, at a 2D or 3D raster
// position placed by the current matrices and coloured by the current colour.
void Print2D(float x, float y, const char* text, unsigned listBase);
void Print3D(float x, float y, float z, const char* text, unsigned listBase);

// The twelve edges of the axis-aligned box spanned by the two corners, in the
// current colour and texture.
void DrawWireBox(float x0, float y0, float z0, float x1, float y1, float z1);

// snprintf in the C locale, whatever locale the host program has set. (The
// texts keep their "%-0.1f" forms, which the compiler's format check dislikes.)
int CFormat(char* out, size_t size, const char* format, ...);
