// diff: the differences between two level files, one line each, named by
// their path in the dump; with --png also both first frames side by side,
// the changed sides tinted.
#include "cli/commands.h"
#include "cli/levelfiles.h"

#include "graphics/texture.h"
#include "orvlevel/leveldiff.h"
#include "orvlevel/leveldump.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/offscreen.h"
#include "render/view.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace {

constexpr int FRAME_W = 640, FRAME_H = 480, GAP = 4;

int Usage(const char* reason)
{
    std::fprintf(stderr, "orvane-cli diff: %s\nusage: orvane-cli diff A B [--png OUT]\n", reason);
    return EXIT_USAGE;
}

using SIDESET = std::set<std::pair<int32_t, int32_t>>;

// The sides each line touches in its own level: a side's field, every side
// of a changed segment, every side on a moved point.
void ChangedSides(const ORVLEVEL& level, const std::vector<LEVELDIFFLINE>& lines, SIDESET& out)
{
    std::set<int32_t> points;
    for (const LEVELDIFFLINE& l : lines)
    {
        if (l.Table == DUMP_SEGMENTS && level.Segments && l.Index < level.SegmentsEnd() && level.Segments[l.Index])
        {
            if (l.Side >= 0 && l.Side < 6)
                out.insert({l.Index, l.Side});
            else if (l.Corner >= 0 && l.Corner < 8)
            {
                for (int s = 0; s < 6; ++s)
                    if (std::count(SideCorners[s], SideCorners[s] + 4, l.Corner))
                        out.insert({l.Index, s});
            }
            else
                for (int s = 0; s < 6; ++s)
                    out.insert({l.Index, s});
        }
        else if (l.Table == DUMP_POINTS)
            points.insert(l.Index);
    }
    if (points.empty() || !level.Segments)
        return;
    for (int32_t s = 0; s < level.SegmentsEnd(); ++s)
        if (const SEGMENT* seg = level.Segments[s])
            for (int side = 0; side < 6; ++side)
                for (int k = 0; k < 4; ++k)
                    if (points.count(seg->Corners[SideCorners[side][k]]))
                    {
                        out.insert({s, side});
                        break;
                    }
}

struct PIXELS
{
    std::vector<uint8_t> Rgb;
    int W, H;
};

// Blends a convex polygon (screen x right, y down) into the picture.
void Fill(PIXELS& p, const std::vector<std::pair<float, float>>& poly)
{
    if (poly.size() < 3)
        return;
    float top = 1e30f, bottom = -1e30f;
    for (auto [x, y] : poly)
        top = std::min(top, y), bottom = std::max(bottom, y);
    const int y0 = std::max(0, int(std::ceil(top))), y1 = std::min(p.H - 1, int(std::floor(bottom)));
    for (int y = y0; y <= y1; ++y)
    {
        float left = 1e30f, right = -1e30f;
        for (size_t k = 0; k < poly.size(); ++k)
        {
            auto [ax, ay] = poly[k];
            auto [bx, by] = poly[(k + 1) % poly.size()];
            if ((ay <= y && by >= y) || (by <= y && ay >= y))
            {
                float x = ay == by ? ax : ax + (bx - ax) * (float(y) - ay) / (by - ay);
                if (ay == by)
                    left = std::min({left, ax, bx}), right = std::max({right, ax, bx});
                else
                    left = std::min(left, x), right = std::max(right, x);
            }
        }
        const int x0 = std::max(0, int(std::ceil(left))), x1 = std::min(p.W - 1, int(std::floor(right)));
        for (int x = x0; x <= x1; ++x)
        {
            uint8_t* px = &p.Rgb[(size_t(y) * size_t(p.W) + size_t(x)) * 3];
            // Yellow: far from the purple walls and the axes' colours.
            px[0] = uint8_t((px[0] + 255) / 2);
            px[1] = uint8_t((px[1] + 255) / 2);
            px[2] = uint8_t(px[2] / 4);
        }
    }
}

// Tints the sides as the camera sees them, cut at the near plane; sides
// behind walls are tinted too, so no change hides.
void Tint(PIXELS& p, const ORVLEVEL& level, const CAMERA& cam, const SIDESET& sides)
{
    for (auto [s, side] : sides)
    {
        const SEGMENT& seg = *level.Segments[s];
        VECTOR3D c[4];
        bool whole = true;
        for (int k = 0; k < 4 && whole; ++k)
            if (const VECTOR3D* v = level.PointAt(seg.Corners[SideCorners[side][k]]))
                c[k] = *v - cam.Position;
            else
                whole = false;
        if (!whole)
            continue;
        std::vector<std::pair<float, float>> poly;
        auto project = [&](VECTOR3D d) {
            const float z = Dot(d, cam.ViewDir);
            poly.push_back({(Dot(d, cam.Right) / z + 1.0f) * 0.5f * float(p.W),
                            (1.0f - Dot(d, cam.Up) / (z * cam.Aspect)) * 0.5f * float(p.H)});
        };
        for (int k = 0; k < 4; ++k)
        {
            const VECTOR3D a = c[k], b = c[(k + 1) % 4];
            const float za = Dot(a, cam.ViewDir) - 1.0f, zb = Dot(b, cam.ViewDir) - 1.0f;
            if (za >= 0)
                project(a);
            if ((za >= 0) != (zb >= 0))
                project(a + (b - a) * (za / (za - zb)));
        }
        Fill(p, poly);
    }
}

} // namespace

int CmdDiff(std::span<char* const> args)
{
    std::vector<const char*> files;
    const char* png = nullptr;
    for (size_t i = 0; i < args.size(); ++i)
    {
        if (!std::strcmp(args[i], "--png"))
        {
            if (++i >= args.size())
                return Usage("--png takes a file name");
            png = args[i];
        }
        else
            files.push_back(args[i]);
    }
    if (files.size() != 2)
        return Usage("two level files are needed");

    // With a picture to draw, textures are OpenGL objects from the start.
    std::unique_ptr<OFFSCREENCONTEXT> context;
    std::unique_ptr<TEXTURE> explosion;
    if (png)
    {
        context = std::make_unique<OFFSCREENCONTEXT>(FRAME_W, FRAME_H);
        if (!context->Ok())
        {
            std::fprintf(stderr, "orvane-cli diff: no offscreen OpenGL context: %s\n", context->Error().c_str());
            return EXIT_USAGE;
        }
        InstallGLDrawing();
        explosion = std::make_unique<TEXTURE>("SmallExplosion.bmp");
        SetExplosionTexture(explosion.get());
    }
    int status = EXIT_USAGE;
    {
        CLIDOCUMENT a;
        std::optional<ORVEDOCUMENT> b;
        if (a.Open(files[0]) && (b.emplace(), OpenWhole(*b, files[1])))
        {
            const std::vector<LEVELDIFFLINE> lines = DiffLevels(a.Level(), b->Level());
            std::string out;
            for (const LEVELDIFFLINE& l : lines)
                out += l.Text + '\n';
            std::fwrite(out.data(), 1, out.size(), stdout);
            status = std::fflush(stdout) != 0 ? EXIT_USAGE : lines.empty() ? 0 : 1;
            if (png && status != EXIT_USAGE)
            {
                PIXELS picture{std::vector<uint8_t>(size_t(FRAME_W * 2 + GAP) * FRAME_H * 3, 255),
                               FRAME_W * 2 + GAP, FRAME_H};
                int column = 0;
                for (ORVLEVEL* level : {&a.Level(), &b->Level()})
                {
                    InvalidateDisplayList(*level);
                    ORVERENDER view([&] { context->MakeCurrent(); }, [&] { context->Swap(); });
                    view.Level = level;
                    view.SetClientSize(FRAME_W, FRAME_H);
                    view.Update();
                    PIXELS frame{context->ReadPixels(), FRAME_W, FRAME_H};
                    SIDESET sides;
                    ChangedSides(*level, lines, sides);
                    Tint(frame, *level, view.Camera, sides);
                    for (int y = 0; y < FRAME_H; ++y)
                        std::memcpy(&picture.Rgb[(size_t(y) * size_t(picture.W) + size_t(column)) * 3],
                                    &frame.Rgb[size_t(y) * FRAME_W * 3], FRAME_W * 3);
                    column += FRAME_W + GAP;
                }
                std::string error;
                if (!WritePng(png, picture.W, picture.H, picture.Rgb, &error))
                {
                    std::fprintf(stderr, "orvane-cli diff: cannot write %s: %s\n", png, error.c_str());
                    status = EXIT_USAGE;
                }
            }
        }
    }
    if (png)
    {
        SetExplosionTexture(nullptr);
        explosion.reset();
        UninstallGLDrawing();
    }
    return status;
}
