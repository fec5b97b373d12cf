// What the drawing tests share: one offscreen context for the whole test
// program (made on first use, with the drawing seam installed and the game's
// meshes loaded), OpenGL's feedback mode read back as primitives, a font
// whose glyph lists report their codes, and bitmap files written on the fly.
#pragma once

#include "platform/tests/testplatform.h"
#include "render/offscreen.h"

#include <GL/gl.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

constexpr int TEST_WIDTH = 640, TEST_HEIGHT = 480;

// The shared context, current; null (and the test skipped) when the machine
// cannot make one.
OFFSCREENCONTEXT* TestContext();

// Every test gets the context and its OpenGL state back as it found them.
class RenderTest : public PlatformTest
{
protected:
    void SetUp() override;
    void TearDown() override;
};

struct FBVERTEX
{
    float X, Y, Z;    // window coordinates
    float R, G, B, A; // colour
    float S, T;       // texture pair
};

struct FBITEM
{
    GLenum Token; // GL_POLYGON_TOKEN, GL_LINE_TOKEN (also for resets), GL_BITMAP_TOKEN, GL_PASS_THROUGH_TOKEN ...
    std::vector<FBVERTEX> Vertices;
    float Value = 0; // pass-through value
};

// Runs draw in feedback mode and returns what OpenGL reports, in order.
std::vector<FBITEM> Feedback(const std::function<void()>& draw);
// The polygons alone, and the text the probe font reported.
std::vector<FBITEM> Polygons(const std::vector<FBITEM>& items);
std::string PassedText(const std::vector<FBITEM>& items);
// The first vertex at window (x, y), give or take 1e-3; null if none is.
const FBVERTEX* At(const std::vector<FBITEM>& items, float x, float y);

// Replaces the 256 font lists at base 1000 by lists that only pass their
// code through to feedback; puts the real font back when it ends.
struct PROBEFONT
{
    PROBEFONT();
    ~PROBEFONT();
};

// A window-sized orthographic view: world (x, y) lands at window (x + 320,
// y + 240), nothing culled.
void FlatView();

// Writes a 24-bit bitmap (pixels as red, green, blue, bottom row first) into
// the test's temporary directory; its file name.
std::string WriteBmp24(const std::string& name, int width, int height, const std::vector<uint8_t>& rgb);

// The framebuffer as red, green, blue bytes, top row first; one pixel.
std::vector<uint8_t> Pixels();
struct RGB
{
    int R, G, B;
    bool operator==(const RGB&) const = default;
};
RGB PixelAt(const std::vector<uint8_t>& pixels, int x, int y);
