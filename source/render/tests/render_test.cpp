// The font's lists, texture loading and the effects' drawing.
#include "rendertesting.h"

#include "math/camera.h"
#include "platform/cp1250.h"
#include "render/fontdata.h"
#include "render/glcontext.h"
#include "render/glthings.h"
#include "render/gltexture.h"
#include "things/effects.h"

namespace {

// Counts frames; the host's steps count into the caller's variables, which
// exist before the base constructor makes the context current.
class COUNTINGVIEW : public GLRENDERINGCONTEXT
{
public:
    int Draws = 0;
    COUNTINGVIEW(int& currents, int& swaps)
        : GLRENDERINGCONTEXT([&currents] { ++currents; }, [&swaps] { ++swaps; })
    {
    }
    void Draw() override { ++Draws; }
};

using ContextTest = PlatformTest;

} // namespace

TEST_F(ContextTest, UpdateDrawsAtOnceThenEvery40Ms)
{
    int currents = 0, swaps = 0;
    COUNTINGVIEW view(currents, swaps);
    EXPECT_EQ(currents, 1);
    view.Update(); // the frame timer starts unarmed
    EXPECT_TRUE(view.Draws == 1 && swaps == 1);
    P().Now += 40; // not strictly more than 40 ms yet
    view.Update();
    EXPECT_EQ(view.Draws, 1);
    P().Now += 1;
    view.Update();
    EXPECT_TRUE(view.Draws == 2 && swaps == 2 && currents == 3); // made current before each frame
}

TEST_F(RenderTest, GlyphListsDrawTheirBitmap)
{
    FlatView();
    // The pixels of "ő" drawn in white are its glyph's bits.
    const uint8_t code = uint8_t(Utf8ToCp1250("ő")[0]);
    const FONTGLYPH& g = FontGlyphs[code];
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_TEXTURE_2D);
    glColor3f(1, 1, 1);
    const char text[2] = {char(code), 0};
    Print2D(-300, -200, text, FONT_LIST_BASE); // window (20, 40)
    std::vector<uint8_t> pixels = Pixels();
    int set = 0;
    for (int row = 0; row < g.Height; ++row)
        for (int col = 0; col < g.Width; ++col)
        {
            bool bit = FontBits[g.Offset + row * ((g.Width + 7) / 8) + col / 8] & (0x80 >> (col % 8));
            int wx = 20 - g.XOrig + col, wy = 40 - g.YOrig + row; // rows bottom first
            RGB p = PixelAt(pixels, wx, TEST_HEIGHT - 1 - wy);
            EXPECT_EQ(p, (bit ? RGB{255, 255, 255} : RGB{0, 0, 0})) << col << "," << row;
            set += bit;
        }
    EXPECT_GT(set, 10);
}

TEST_F(RenderTest, TextureLargerThanTheStagingBufferIsRefused)
{
    // Refused like a 32-bit bitmap, without writing past the buffer; one
    // row less fits.
    GLuint name = 0;
    glGenTextures(1, &name);
    for (auto [height, width] : {std::pair{751, 0}, {750, 1000}})
    {
        std::vector<uint8_t> grey(1000 * size_t(height) * 3, 7);
        LoadTexture(WriteBmp24("big.bmp", 1000, height, grey).c_str(), name, GL_LINEAR, GL_REPEAT);
        GLint got = -1;
        glBindTexture(GL_TEXTURE_2D, name);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &got);
        EXPECT_EQ(got, width) << height;
    }
    glDeleteTextures(1, &name);
    ResetBoundTexture();
}

TEST_F(RenderTest, ExplosionFacesTheCameraAndFadesAsItGrows)
{
    FlatView();
    CAMERA camera;
    camera.Up = VECTOR3D(0, 1, 0), camera.Right = VECTOR3D(1, 0, 0);
    DrawingView.Camera = &camera;
    EXPLOSION e(1.0f, 25.0f, VECTOR3D(10, 20, 0));
    e.radius = 24;
    std::vector<FBITEM> p = Polygons(Feedback([&] { e.Draw(); }));
    DrawingView = FRAMEVIEW();
    ASSERT_EQ(p.size(), 2u); // the quadrilateral as two triangles
    const FBVERTEX* v = At(p, 320 + 10 + 24, 240 + 20 - 24); // C + R r - U r
    ASSERT_TRUE(v);
    EXPECT_TRUE(v->S == 0 && v->T == 1);
    EXPECT_NEAR(v->A, 1 - 24.0f / 25.0f, 1e-6);
    // The saved state comes back: depth writes and the view's alpha test.
    GLboolean depthWrites = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrites);
    EXPECT_TRUE(depthWrites);
    // A spark of negative size (never written by the program) draws nothing
    // instead of searching forever for an offset.
    SPARK spark(VECTOR3D(0, 0, 0), -1.0f, 0.1f);
    EXPECT_TRUE(Feedback([&] { spark.Draw(); }).empty());
}
