// The context's pacing, the bitmap font, textures and the object drawing.
#include "rendertesting.h"

#include "graphics/bitmap.h"
#include "graphics/trimesh.h"
#include "math/camera.h"
#include "orvlevel/level.h"
#include "platform/cp1250.h"
#include "render/fontdata.h"
#include "render/glcontext.h"
#include "render/glthings.h"
#include "render/gltexture.h"
#include "things/effects.h"
#include "things/spaceship.h"

#include <cmath>
#include <cstring>

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

TEST(FontTest, EveryPrintableCodeHasItsOwnGlyph)
{
    auto bits = [](int code) {
        const FONTGLYPH& g = FontGlyphs[code];
        return std::string(reinterpret_cast<const char*>(FontBits + g.Offset), size_t((g.Width + 7) / 8 * g.Height));
    };
    for (int code = 0x21; code < 256; ++code)
        EXPECT_TRUE(code == 0x7F || code == 0xA0 || Cp1250ToUtf8(std::string(1, char(code))) == "\uFFFD" ||
                    (FontGlyphs[code].Width * FontGlyphs[code].Height > 0 && FontGlyphs[code].Advance > 0)) << code;
    // The Hungarian letters differ from their plain forms and from each other.
    const std::string letters = Utf8ToCp1250("aáeéiíoóöőuúüűAÁEÉIÍOÓÖŐUÚÜŰ");
    for (size_t i = 0; i < letters.size(); ++i)
        for (size_t j = i + 1; j < letters.size(); ++j)
            EXPECT_NE(bits(uint8_t(letters[i])), bits(uint8_t(letters[j]))) << i << " " << j;
    // One advance for every printable character, so columns of numbers line up.
    EXPECT_TRUE(FontGlyphs[uint8_t('1')].Advance == FontGlyphs[uint8_t('[')].Advance &&
                FontGlyphs[uint8_t('.')].Advance == FontGlyphs[0xFB].Advance);
}

TEST_F(RenderTest, GlyphListsDrawTheirBitmapAndAdvance)
{
    FlatView();
    // "SP start": eight list calls from base 1000, each moving the raster
    // position on by the glyph's advance.
    std::vector<FBITEM> items = Feedback([] { Print3D(0, 0, 0, "SP start", FONT_LIST_BASE); });
    ASSERT_EQ(items.size(), 8u);
    float x = 320;
    for (const FBITEM& item : items)
    {
        EXPECT_TRUE(item.Token == GL_BITMAP_TOKEN && std::fabs(item.Vertices[0].X - x) < 1e-3f) << x;
        x += FontGlyphs[uint8_t('S')].Advance;
    }

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

TEST_F(RenderTest, TexturesKeyOutBlackAndTheBindCacheTrustsItself)
{
    // (0,0,0) (255,0,0) / (0,0,1) (10,20,30), bottom row first.
    std::string file = WriteBmp24("key.bmp", 2, 2, {0, 0, 0, 255, 0, 0, 0, 0, 1, 10, 20, 30});
    GLuint names[2];
    glGenTextures(2, names);
    BindTexture(names[1]);
    LoadTexture(file.c_str(), names[0], GL_NEAREST, GL_CLAMP);
    uint8_t rgba[16] = {};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    const uint8_t expected[16] = {0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 1, 255, 10, 20, 30, 255};
    EXPECT_EQ(std::memcmp(rgba, expected, 16), 0);

    // The upload bound its texture directly: the cache still names the old
    // one, so binding that one again does not reach OpenGL.
    GLint bound = 0;
    BindTexture(names[1]);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(GLuint(bound), names[0]);
    BindTexture(0);
    BindTexture(names[1]);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(GLuint(bound), names[1]);

    // A bitmap larger than the staging buffer is refused like a 32-bit one,
    // and the buffer's neighbour is untouched.
    std::string big = WriteBmp24("big.bmp", 1000, 751, std::vector<uint8_t>(1000 * 751 * 3, 7));
    LoadTexture(big.c_str(), names[1], GL_LINEAR, GL_REPEAT);
    GLint width = -1;
    glBindTexture(GL_TEXTURE_2D, names[1]);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 0);
    std::string fits = WriteBmp24("fits.bmp", 1000, 750, std::vector<uint8_t>(1000 * 750 * 3, 7));
    LoadTexture(fits.c_str(), names[1], GL_LINEAR, GL_REPEAT);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    EXPECT_EQ(width, 1000);
    glDeleteTextures(2, names);
    ResetBoundTexture();
}

TEST_F(RenderTest, MeshCompilesOnceThenReplaysItsList)
{
    FlatView();
    TRIMESH mesh;
    mesh.AddVertex(0, 0, 0);
    mesh.AddVertex(10, 0, 0);
    mesh.AddVertex(0, 20, 0);
    mesh.surfaces[0] = new VECTOR3D(1, 0.5f, 0.25f);
    mesh.AddTriangle({{0, 1, 2}, {}, 0});
    // Meshes set their own view from the camera: this one gives the flat view.
    CAMERA camera;
    camera.Position = VECTOR3D(-320, -240, 0), camera.ViewDir = VECTOR3D(0, 0, -1), camera.Up = VECTOR3D(0, 1, 0);
    DrawingView.Camera = &camera;
    // Model x along (0, 1, 0) and model y along (-1, 0, 0), from (5, 6, 7),
    // lit only by the ambient colour.
    auto draw = [&] {
        DrawMesh(mesh, VECTOR3D(5, 6, 7), VECTOR3D(0, 0, 1), VECTOR3D(-1, 0, 0), VECTOR3D(0, 1, 0), 1,
                 VECTOR3D(0.5f, 1, 1));
    };
    std::vector<FBITEM> first = Polygons(Feedback(draw));
    ASSERT_EQ(first.size(), 1u);
    EXPECT_TRUE(mesh.hasList && !mesh.dirty && glIsList(GLuint(mesh.listId)));
    // The current projection is left active, as the mesh drawer promises.
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_PROJECTION);
    glMatrixMode(GL_MODELVIEW);
    // Model (10, 0, 0) and (0, 20, 0).
    const FBVERTEX* b = At(first, 325, 256);
    ASSERT_TRUE(b && At(first, 305, 246));
    EXPECT_LT(Length(VECTOR3D(b->R, b->G, b->B) - VECTOR3D(0.5f, 0.5f, 0.25f)), 1e-6f);

    // Later draws call the list: a vertex changed in memory does not show.
    int32_t list = mesh.listId;
    mesh.vertices[1]->x = 99;
    std::vector<FBITEM> second = Polygons(Feedback(draw));
    glMatrixMode(GL_MODELVIEW);
    EXPECT_TRUE(second.size() == 1u && At(second, 325, 256) && mesh.listId == list);
    glDeleteLists(GLuint(list), 1);
    DrawingView = FRAMEVIEW();
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
}

TEST_F(RenderTest, SparkLinesAreWhiteAndReachTheirEnd)
{
    FlatView();
    std::vector<FBITEM> items = Feedback([] { DrawSparkLine(VECTOR3D(0, 0, 0), VECTOR3D(30, 40, 0), 1.0f); });
    ASSERT_FALSE(items.empty());
    for (const FBITEM& item : items)
        ASSERT_TRUE(item.Vertices.size() == 2u && item.Vertices[0].R + item.Vertices[0].G + item.Vertices[0].B == 3.0f);
    const FBVERTEX& end = items.back().Vertices[1];
    EXPECT_NEAR(std::hypot(end.X - 350, end.Y - 280), 0.0, 0.5);
    // A spark of negative size (never written by the program) draws nothing
    // instead of searching forever for an offset.
    SPARK spark(VECTOR3D(0, 0, 0), -1.0f, 0.1f);
    EXPECT_TRUE(Feedback([&] { spark.Draw(); }).empty());
}

TEST_F(RenderTest, CockpitBarsFollowTheShieldAndTheShopSpeaksInSupportSegments)
{
    SPACESHIP ship;
    ship.shipLevel = 1, ship.primaryWeapon = -1; // H = 100: the bar is full at 100 and turns blue at 200
    DrawingView.Width = 640, DrawingView.Height = 480;
    struct CASE { float Shield, Top; RGB Colour; const char* Text; };
    for (CASE c : {CASE{0, 100, {1, 0, 0}, "0.0-"}, CASE{100, -100, {0, 1, 0}, "100.0-"},
                   CASE{200, -100, {0, 0, 1}, "200.0-"}})
    {
        ship.shield = c.Shield;
        PROBEFONT probe;
        std::vector<FBITEM> items = Feedback([&] { DrawCockpit(ship); });
        std::vector<FBITEM> polygons = Polygons(items);
        ASSERT_GE(polygons.size(), 2u) << c.Shield;
        // The shield bar comes first: x from -100 to -80, from y = 100 (window
        // 140, y runs down) up to its top.
        std::vector<FBITEM> bar(polygons.begin(), polygons.begin() + 2);
        const FBVERTEX* v = At(bar, 320 - 80, 240 - c.Top);
        ASSERT_TRUE(v) << c.Shield;
        EXPECT_NEAR(v->A, 0.3f, 1e-3f);
        EXPECT_EQ((RGB{int(v->R), int(v->G), int(v->B)}), c.Colour) << c.Shield;
        std::string text = PassedText(items);
        EXPECT_EQ(text.substr(0, text.find('-') + 1), c.Text);
    }

    // Messages, and the shop's menu inside a support segment.
    ORVLEVEL level;
    level.Segments[0]->Type = SEGTYPE_SUPPORT;
    ship.Level = &level, ship.segment = 0, ship.shopState = 0;
    ship.ShowMessage("Hello");
    PROBEFONT probe;
    std::string text = PassedText(Feedback([&] { ship.DrawCockpit(); }));
    EXPECT_NE(text.find("Hello"), std::string::npos);
    EXPECT_NE(text.find(Utf8ToCp1250("1. Elsődleges fegyverek2. Másodlagos fegyverek3. Taktikai fegyverek")),
              std::string::npos);
    ship.Level = nullptr;
    DrawingView = FRAMEVIEW();
}
