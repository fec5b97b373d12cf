#include "rendertesting.h"

#include "graphics/texture.h"
#include "render/glcontext.h"
#include "render/glthings.h"
#include "render/gltexture.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <cmath>
#include <memory>

OFFSCREENCONTEXT* TestContext()
{
    static std::unique_ptr<OFFSCREENCONTEXT> context = [] {
        auto c = std::make_unique<OFFSCREENCONTEXT>(TEST_WIDTH, TEST_HEIGHT);
        if (!c->Ok())
            return std::unique_ptr<OFFSCREENCONTEXT>();
        InstallGLDrawing();
        LoadThingMeshes();
        RegisterThingClasses();
        SetExplosionTexture(new TEXTURE("SmallExplosion.bmp"));
        BuildFont(FONT_LIST_BASE);
        return c;
    }();
    if (context)
        context->MakeCurrent();
    return context.get();
}

void RenderTest::SetUp()
{
    PlatformTest::SetUp();
    if (!TestContext())
        GTEST_SKIP() << "no offscreen OpenGL context";
    ResetBoundTexture();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
}

void RenderTest::TearDown()
{
    if (!TestContext())
        return;
    glPopClientAttrib();
    glPopAttrib();
    ResetBoundTexture();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

std::vector<FBITEM> Feedback(const std::function<void()>& draw)
{
    static std::vector<GLfloat> buffer(1 << 22);
    glFeedbackBuffer(GLsizei(buffer.size()), GL_3D_COLOR_TEXTURE, buffer.data());
    glRenderMode(GL_FEEDBACK);
    draw();
    GLint n = glRenderMode(GL_RENDER);
    EXPECT_GE(n, 0) << "feedback buffer overflow";
    std::vector<FBITEM> items;
    auto vertex = [&](GLint& i) {
        FBVERTEX v;
        const GLfloat* f = &buffer[size_t(i)];
        v = {f[0], f[1], f[2], f[3], f[4], f[5], f[6], f[7] / f[10], f[8] / f[10]};
        i += 11;
        return v;
    };
    for (GLint i = 0; i < n;)
    {
        FBITEM item;
        item.Token = GLenum(buffer[size_t(i++)]);
        if (item.Token == GL_LINE_RESET_TOKEN) // a line is a line, wherever the stipple restarts
            item.Token = GL_LINE_TOKEN;
        int count = 0;
        switch (item.Token)
        {
        case GL_PASS_THROUGH_TOKEN:
            item.Value = buffer[size_t(i++)];
            break;
        case GL_POLYGON_TOKEN:
            count = int(buffer[size_t(i++)]);
            break;
        case GL_LINE_TOKEN:
            count = 2;
            break;
        default: // points, bitmaps and pixel copies carry one vertex
            count = 1;
            break;
        }
        for (int k = 0; k < count; ++k)
            item.Vertices.push_back(vertex(i));
        items.push_back(item);
    }
    return items;
}

std::vector<FBITEM> Polygons(const std::vector<FBITEM>& items)
{
    std::vector<FBITEM> out;
    for (const FBITEM& item : items)
        if (item.Token == GL_POLYGON_TOKEN)
            out.push_back(item);
    return out;
}

std::string PassedText(const std::vector<FBITEM>& items)
{
    std::string text;
    for (const FBITEM& item : items)
        if (item.Token == GL_PASS_THROUGH_TOKEN)
            text += char(int(item.Value));
    return text;
}

const FBVERTEX* At(const std::vector<FBITEM>& items, float x, float y)
{
    for (const FBITEM& item : items)
        for (const FBVERTEX& v : item.Vertices)
            if (std::fabs(v.X - x) < 1e-3f && std::fabs(v.Y - y) < 1e-3f)
                return &v;
    return nullptr;
}

PROBEFONT::PROBEFONT()
{
    for (unsigned c = 0; c < 256; ++c)
    {
        glNewList(FONT_LIST_BASE + c, GL_COMPILE);
        glPassThrough(GLfloat(c));
        glEndList();
    }
}

PROBEFONT::~PROBEFONT()
{
    BuildFont(FONT_LIST_BASE);
}

void FlatView()
{
    glViewport(0, 0, TEST_WIDTH, TEST_HEIGHT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, TEST_WIDTH, 0, TEST_HEIGHT, -1000, 1000);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(TEST_WIDTH / 2.0f, TEST_HEIGHT / 2.0f, 0);
    glDisable(GL_CULL_FACE);
}

std::string WriteBmp24(const std::string& name, int width, int height, const std::vector<uint8_t>& rgb)
{
    static const TEMPDIR dir; // removed with everything in it when the test program ends
    std::vector<uint8_t> b(54, 0);
    auto put = [&](size_t at, uint32_t v) { for (int i = 0; i < 4; ++i) b[at + i] = uint8_t(v >> (8 * i)); };
    b[0] = 'B', b[1] = 'M', b[28] = 24;
    put(18, uint32_t(width));
    put(22, uint32_t(height));
    put(34, uint32_t(rgb.size()));
    for (size_t i = 0; i + 2 < rgb.size(); i += 3)
        b.insert(b.end(), {rgb[i + 2], rgb[i + 1], rgb[i]});
    return dir.Write(name, b);
}

std::vector<uint8_t> Pixels()
{
    return TestContext()->ReadPixels();
}

RGB PixelAt(const std::vector<uint8_t>& pixels, int x, int y)
{
    const uint8_t* p = &pixels[(size_t(y) * TEST_WIDTH + size_t(x)) * 3];
    return {p[0], p[1], p[2]};
}
