#include "render/glcontext.h"
#include "render/fontdata.h"

#include "platform/newordie.h"

#include <GL/gl.h>

#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <locale.h>

GLRENDERINGCONTEXT::GLRENDERINGCONTEXT(std::function<void()> makeCurrent, std::function<void()> swap)
    : MakeCurrent(std::move(makeCurrent)), Swap(std::move(swap))
{
    if (MakeCurrent)
        MakeCurrent();
    FrameTimer = NewOrDie<TIMER>("GLRENDERINGCONTEXT::GLRENDERINGCONTEXT: not enough mem.");
    SecondTimer = NewOrDie<TIMER>("GLRENDERINGCONTEXT::GLRENDERINGCONTEXT: not enough mem.");
}

GLRENDERINGCONTEXT::~GLRENDERINGCONTEXT()
{
    delete FrameTimer;
    delete SecondTimer;
}

void GLRENDERINGCONTEXT::Update()
{
    if (SecondTimer->Elapsed())
    {
        FramesLastSecond = FrameCount;
        FrameCount = 0;
        SecondTimer->Set(1000);
    }
    if (FrameTimer->Elapsed())
    {
        ++FrameCount;
        if (MakeCurrent)
            MakeCurrent();
        Draw();
        if (Swap)
            Swap();
        // Armed after drawing: the period is 40 ms plus the frame's own time.
        FrameTimer->Set(40);
    }
}

void GLRENDERINGCONTEXT::Draw()
{
}

void BuildFont(unsigned listBase)
{
    // glBitmap copies the glyph when the list is compiled, reading it with
    // the client's unpack state: byte-aligned rows, nothing skipped.
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_FALSE);
    glPixelStorei(GL_UNPACK_LSB_FIRST, GL_FALSE);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (unsigned code = 0; code < 256; ++code)
    {
        const FONTGLYPH& g = FontGlyphs[code];
        glNewList(listBase + code, GL_COMPILE);
        glBitmap(g.Width, g.Height, g.XOrig, g.YOrig, g.Advance, 0, FontBits + g.Offset);
        glEndList();
    }
    glPopClientAttrib();
}

void DeleteFont(unsigned listBase)
{
    glDeleteLists(listBase, 256);
}

namespace {

void CallGlyphs(const char* text, unsigned listBase)
{
    size_t n = text ? std::strlen(text) : 0;
    glListBase(listBase);
    if (n)
        glCallLists(GLsizei(n), GL_UNSIGNED_BYTE, text);
}

} // namespace

void Print2D(float x, float y, const char* text, unsigned listBase)
{
    glRasterPos2f(x, y);
    CallGlyphs(text, listBase);
}

void Print3D(float x, float y, float z, const char* text, unsigned listBase)
{
    glRasterPos3f(x, y, z);
    CallGlyphs(text, listBase);
}

void DrawWireBox(float x0, float y0, float z0, float x1, float y1, float z1)
{
    for (float y : {y0, y1})
    {
        glBegin(GL_LINE_STRIP);
        glVertex3f(x0, y, z0);
        glVertex3f(x1, y, z0);
        glVertex3f(x1, y, z1);
        glVertex3f(x0, y, z1);
        glVertex3f(x0, y, z0);
        glEnd();
    }
    glBegin(GL_LINES);
    glVertex3f(x0, y0, z0);
    glVertex3f(x0, y1, z0);
    glVertex3f(x1, y0, z0);
    glVertex3f(x1, y1, z0);
    glVertex3f(x1, y0, z1);
    glVertex3f(x1, y1, z1);
    glVertex3f(x0, y0, z1);
    glVertex3f(x0, y1, z1);
    glEnd();
}

int CFormat(char* out, size_t size, const char* format, ...)
{
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
    locale_t previous = c ? uselocale(c) : locale_t(0);
    va_list args;
    va_start(args, format);
    int n = std::vsnprintf(out, size, format, args);
    va_end(args);
    if (c)
        uselocale(previous);
    return n;
}
