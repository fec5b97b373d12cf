#include "render/offscreen.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <png.h>

#include <cstdio>
#include <cstring>

namespace {

std::string EglError(const char* what)
{
    char text[96];
    std::snprintf(text, sizeof text, "%s failed (EGL error 0x%04X)", what, unsigned(eglGetError()));
    return text;
}

} // namespace

OFFSCREENCONTEXT::OFFSCREENCONTEXT(int width, int height) : W(width), H(height)
{
    auto getDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (!getDisplay)
    {
        Message = "EGL has no platform displays (eglGetPlatformDisplayEXT)";
        return;
    }
    EGLDisplay display = getDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    EGLint major = 0, minor = 0;
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, &major, &minor))
    {
        Message = EglError("opening Mesa's surfaceless EGL display");
        return;
    }
    Display = display;
    if (!eglBindAPI(EGL_OPENGL_API))
    {
        Message = EglError("eglBindAPI(EGL_OPENGL_API)");
        return;
    }

    // 8 bits per colour channel as the view's pixel format asks; the
    // deepest depth buffer on offer.
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                             EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_DEPTH_SIZE, 24, EGL_NONE};
    EGLConfig configs[64];
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted, configs, 64, &count) || count == 0)
    {
        Message = "no EGL configuration with 8-bit colour, a depth buffer and pbuffers";
        return;
    }
    EGLConfig best = nullptr;
    EGLint bestDepth = -1;
    for (EGLint i = 0; i < count; ++i)
    {
        EGLint r, g, b, a, depth;
        eglGetConfigAttrib(display, configs[i], EGL_RED_SIZE, &r);
        eglGetConfigAttrib(display, configs[i], EGL_GREEN_SIZE, &g);
        eglGetConfigAttrib(display, configs[i], EGL_BLUE_SIZE, &b);
        eglGetConfigAttrib(display, configs[i], EGL_ALPHA_SIZE, &a);
        eglGetConfigAttrib(display, configs[i], EGL_DEPTH_SIZE, &depth);
        if (r == 8 && g == 8 && b == 8 && a == 0 && depth > bestDepth)
        {
            best = configs[i];
            bestDepth = depth;
        }
    }
    if (!best)
        best = configs[0];
    Config = best;

    const EGLint surfaceAttributes[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(display, best, surfaceAttributes);
    if (surface == EGL_NO_SURFACE)
    {
        Message = EglError("eglCreatePbufferSurface");
        return;
    }
    Surface = surface;
    const EGLint contextAttributes[] = {EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                        EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT, EGL_NONE};
    EGLContext context = eglCreateContext(display, best, EGL_NO_CONTEXT, contextAttributes);
    if (context == EGL_NO_CONTEXT)
    {
        Message = EglError("eglCreateContext (compatibility profile)");
        return;
    }
    if (!eglMakeCurrent(display, surface, surface, context))
    {
        Message = EglError("eglMakeCurrent");
        eglDestroyContext(display, context);
        return;
    }
    Context = context;
}

OFFSCREENCONTEXT::~OFFSCREENCONTEXT()
{
    if (!Display)
        return;
    eglMakeCurrent(Display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (Context)
        eglDestroyContext(Display, Context);
    if (Surface)
        eglDestroySurface(Display, Surface);
    // The display stays initialised: another context in this process may
    // still use it, and EGL counts no references.
}

void OFFSCREENCONTEXT::MakeCurrent()
{
    if (Context)
        eglMakeCurrent(Display, Surface, Surface, Context);
}

void OFFSCREENCONTEXT::Swap()
{
    glFinish();
}

std::vector<uint8_t> OFFSCREENCONTEXT::ReadPixels() const
{
    std::vector<uint8_t> rgb(size_t(W) * size_t(H) * 3);
    if (!Context || rgb.empty())
        return rgb;
    std::vector<uint8_t> bottomUp(rgb.size());
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_ROWS, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glReadPixels(0, 0, W, H, GL_RGB, GL_UNSIGNED_BYTE, bottomUp.data());
    glPopClientAttrib();
    size_t row = size_t(W) * 3;
    for (int y = 0; y < H; ++y)
        std::memcpy(&rgb[size_t(y) * row], &bottomUp[size_t(H - 1 - y) * row], row);
    return rgb;
}

bool WritePng(const std::string& path, int width, int height, const std::vector<uint8_t>& rgb, std::string* error)
{
    png_image image;
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(width);
    image.height = png_uint_32(height);
    image.format = PNG_FORMAT_RGB;
    if (rgb.size() != size_t(width) * size_t(height) * 3)
    {
        if (error)
            *error = "wrong pixel count";
        return false;
    }
    if (!png_image_write_to_file(&image, path.c_str(), 0, rgb.data(), width * 3, nullptr))
    {
        if (error)
            *error = image.message;
        png_image_free(&image);
        return false;
    }
    return true;
}
