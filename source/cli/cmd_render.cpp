// render: one frame of the editor's view of a level, drawn offscreen (no
// window system needed) and written as a PNG.
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/levelfiles.h"

#include "graphics/texture.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/offscreen.h"
#include "render/view.h"
#include "orvlevel/level.h"
#include "platform/platform.h"

#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int MAX_SIZE = 8192;

int Usage(const char* reason)
{
    std::fprintf(stderr, "orvane-cli render: %s\n", reason);
    std::fprintf(stderr, "usage: orvane-cli render LEVEL OUT.png [--size WxH] "
                         "[--camera PX PY PZ VX VY VZ UX UY UZ RX RY RZ] [--marked SEG,SEG,...]\n");
    return EXIT_USAGE;
}

bool Size(const char* text, int& w, int& h)
{
    int used = 0;
    return std::sscanf(text, "%5dx%5d%n", &w, &h, &used) == 2 && text[used] == 0 && w >= 1 && w <= MAX_SIZE &&
           h >= 1 && h <= MAX_SIZE;
}

// Segment numbers separated by commas, each flagged in `marked`.
bool Segments(const char* text, std::vector<uint8_t>& marked)
{
    for (const char* p = text;; ++p)
    {
        char* end = nullptr;
        errno = 0;
        long s = std::strtol(p, &end, 10);
        if (end == p || errno || s < 0 || s >= MAX_SEGMENTS || (*end && *end != ','))
            return false;
        marked[size_t(s)] = 1;
        if (!*end)
            return true;
        p = end;
    }
}

} // namespace

int CmdRender(std::span<char* const> args)
{
    const char* levelFile = args[0];
    std::string out = args[1];
    int width = 640, height = 480;
    bool haveCamera = false;
    float camera[12];
    std::vector<uint8_t> marked(MAX_SEGMENTS, 0); // drawn as the editor draws marked segments
    for (size_t i = 2; i < args.size(); ++i)
    {
        if (!std::strcmp(args[i], "--size"))
        {
            if (i + 1 >= args.size() || !Size(args[i + 1], width, height))
                return Usage("--size takes WxH, each from 1 to 8192");
            ++i;
        }
        else if (!std::strcmp(args[i], "--camera"))
        {
            if (!CameraOption(args, i, camera))
                return Usage("--camera takes 12 numbers");
            haveCamera = true;
        }
        else if (!std::strcmp(args[i], "--marked"))
        {
            if (i + 1 >= args.size() || !Segments(args[i + 1], marked))
                return Usage("--marked takes segment numbers separated by commas");
            ++i;
        }
        else
            return Usage((std::string("unknown option ") + args[i]).c_str());
    }

    OFFSCREENCONTEXT context(width, height);
    if (!context.Ok())
    {
        std::fprintf(stderr, "orvane-cli render: no offscreen OpenGL context: %s\n", context.Error().c_str());
        return 1;
    }
    // Textures are OpenGL objects from here on, the level's own included.
    InstallGLDrawing();
    std::unique_ptr<TEXTURE> explosion = std::make_unique<TEXTURE>("SmallExplosion.bmp");
    SetExplosionTexture(explosion.get());
    int status = 1;
    {
        CLIDOCUMENT doc;
        COUNTINGPLATFORM platform;
        SetPlatform(&platform);
        bool loaded = doc.Open(levelFile) && platform.Messages == 0;
        SetPlatform(nullptr);
        if (loaded)
        {
            InvalidateDisplayList(doc.Level());
            ORVERENDER view([&] { context.MakeCurrent(); }, [&] { context.Swap(); });
            if (haveCamera)
            {
                view.Camera.Position = VECTOR3D(camera[0], camera[1], camera[2]);
                view.Camera.ViewDir = VECTOR3D(camera[3], camera[4], camera[5]);
                view.Camera.Up = VECTOR3D(camera[6], camera[7], camera[8]);
                view.Camera.Right = VECTOR3D(camera[9], camera[10], camera[11]);
            }
            view.Level = &doc.Level();
            view.Marked = marked.data();
            view.SetClientSize(width, height);
            view.Update();
            std::string error;
            if (WritePng(out, width, height, context.ReadPixels(), &error))
                status = 0;
            else
                std::fprintf(stderr, "orvane-cli render: cannot write %s: %s\n", out.c_str(), error.c_str());
        }
    }
    SetExplosionTexture(nullptr);
    explosion.reset();
    UninstallGLDrawing();
    return status;
}
