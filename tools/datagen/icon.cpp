// The program's icon: a cell of the level in perspective, its near side lit,
// on a dark rounded square. One list of shapes is written as SVG (every size)
// and rasterised into PNGs for the sizes desktops ask for.
#include "datagen.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

enum KIND { FILLED, ROUNDED, STROKED, OPEN };
enum GRADIENT { FLAT, DOWN, DIAGONAL };

struct SHAPE
{
    KIND Kind;
    std::vector<double> Points; // x, y pairs; for ROUNDED: x, y, w, h, radius
    uint32_t From, To;          // 0xRRGGBB; To only with a gradient
    GRADIENT Gradient;
    double Opacity, Width;
};

const std::vector<SHAPE>& Shapes()
{
    static const std::vector<SHAPE> shapes = {
        {ROUNDED, {8, 8, 240, 240, 36}, 0x1b2633, 0x06090d, DOWN, 1.0, 0},
        {FILLED, {70, 92, 186, 92, 186, 208, 70, 208}, 0x9fb4c8, 0x4d6275, DIAGONAL, 0.85, 0},
        {FILLED, {70, 92, 112, 56, 228, 56, 186, 92}, 0x6f879c, 0, FLAT, 0.9, 0},
        {FILLED, {186, 92, 228, 56, 228, 172, 186, 208}, 0x3b4d5e, 0, FLAT, 0.9, 0},
        {STROKED, {70, 92, 186, 92, 186, 208, 70, 208}, 0x5ac8ff, 0, FLAT, 1.0, 5},
        {OPEN, {70, 92, 112, 56, 228, 56, 228, 172, 186, 208}, 0x5ac8ff, 0, FLAT, 1.0, 5},
        {OPEN, {186, 92, 228, 56}, 0x5ac8ff, 0, FLAT, 1.0, 5},
        {OPEN, {28, 150, 128, 150}, 0xff5a3c, 0, FLAT, 1.0, 4},
        {FILLED, {118, 138, 146, 150, 118, 162, 124, 150}, 0xffd04a, 0, FLAT, 1.0, 0},
    };
    return shapes;
}

std::string Hex(uint32_t c)
{
    char s[8];
    std::snprintf(s, sizeof s, "#%06x", c);
    return s;
}

std::string Num(double v)
{
    char s[32];
    std::snprintf(s, sizeof s, "%g", v);
    return s;
}

std::string PointList(const std::vector<double>& p)
{
    std::string s;
    for (size_t i = 0; i + 1 < p.size(); i += 2)
        s += (i ? " " : "") + Num(p[i]) + "," + Num(p[i + 1]);
    return s;
}

std::string Svg()
{
    std::string defs, body;
    int gradients = 0;
    for (const SHAPE& s : Shapes()) {
        std::string paint = Hex(s.From);
        if (s.Gradient != FLAT) {
            std::string id = "g" + std::to_string(gradients++);
            defs += "    <linearGradient id=\"" + id + "\" x1=\"0\" y1=\"0\" x2=\"" +
                    (s.Gradient == DIAGONAL ? "1" : "0") + "\" y2=\"1\">\n      <stop offset=\"0\" stop-color=\"" +
                    Hex(s.From) + "\"/>\n      <stop offset=\"1\" stop-color=\"" + Hex(s.To) +
                    "\"/>\n    </linearGradient>\n";
            paint = "url(#" + id + ")";
        }
        std::string opacity = s.Opacity < 1.0 ? " opacity=\"" + Num(s.Opacity) + "\"" : "";
        const std::vector<double>& p = s.Points;
        std::string stroke = " fill=\"none\" stroke=\"" + paint + "\" stroke-width=\"" + Num(s.Width) +
                             "\" stroke-linejoin=\"round\"";
        if (s.Kind == ROUNDED)
            body += "  <rect x=\"" + Num(p[0]) + "\" y=\"" + Num(p[1]) + "\" width=\"" + Num(p[2]) + "\" height=\"" +
                    Num(p[3]) + "\" rx=\"" + Num(p[4]) + "\" fill=\"" + paint + "\"" + opacity + "/>\n";
        else if (s.Kind == FILLED)
            body += "  <polygon points=\"" + PointList(p) + "\" fill=\"" + paint + "\"" + opacity + "/>\n";
        else
            body += std::string("  <") + (s.Kind == STROKED ? "polygon" : "polyline") + " points=\"" + PointList(p) +
                    "\"" + stroke + opacity + "/>\n";
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"256\" height=\"256\" viewBox=\"0 0 256 256\">\n"
           "  <defs>\n" + defs + "  </defs>\n" + body + "</svg>\n";
}

// Whether (x, y) lies inside the shape, or on its stroke.
bool Covers(const SHAPE& s, double x, double y)
{
    const std::vector<double>& p = s.Points;
    if (s.Kind == ROUNDED) {
        double r = p[4];
        double cx = std::clamp(x, p[0] + r, p[0] + p[2] - r), cy = std::clamp(y, p[1] + r, p[1] + p[3] - r);
        return x >= p[0] && x <= p[0] + p[2] && y >= p[1] && y <= p[1] + p[3] &&
               (x - cx) * (x - cx) + (y - cy) * (y - cy) <= r * r;
    }
    size_t n = p.size() / 2;
    if (s.Kind == FILLED) {
        bool inside = false;
        for (size_t i = 0, j = n - 1; i < n; j = i++)
            if ((p[2 * i + 1] > y) != (p[2 * j + 1] > y) &&
                x < (p[2 * j] - p[2 * i]) * (y - p[2 * i + 1]) / (p[2 * j + 1] - p[2 * i + 1]) + p[2 * i])
                inside = !inside;
        return inside;
    }
    size_t segments = s.Kind == STROKED ? n : n - 1;
    for (size_t i = 0; i < segments; ++i) {
        double ax = p[2 * i], ay = p[2 * i + 1], bx = p[2 * ((i + 1) % n)], by = p[2 * ((i + 1) % n) + 1];
        double dx = bx - ax, dy = by - ay;
        double t = std::clamp(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
        double ex = ax + t * dx - x, ey = ay + t * dy - y;
        if (ex * ex + ey * ey <= s.Width * s.Width / 4)
            return true;
    }
    return false;
}

// The shape's colour at (x, y), its gradient running across its bounding box.
void Paint(const SHAPE& s, double x, double y, double rgb[3])
{
    double t = 0.0;
    if (s.Gradient != FLAT) {
        const std::vector<double>& p = s.Points;
        double x0 = 1e9, y0 = 1e9, x1 = -1e9, y1 = -1e9;
        if (s.Kind == ROUNDED) {
            x0 = p[0], y0 = p[1], x1 = p[0] + p[2], y1 = p[1] + p[3];
        } else {
            for (size_t i = 0; i + 1 < p.size(); i += 2) {
                x0 = std::min(x0, p[i]), x1 = std::max(x1, p[i]);
                y0 = std::min(y0, p[i + 1]), y1 = std::max(y1, p[i + 1]);
            }
        }
        double u = (x - x0) / (x1 - x0), v = (y - y0) / (y1 - y0);
        t = std::clamp(s.Gradient == DOWN ? v : (u + v) / 2, 0.0, 1.0);
    }
    for (int c = 0; c < 3; ++c) {
        double a = double((s.From >> (16 - 8 * c)) & 0xFF), b = double((s.To >> (16 - 8 * c)) & 0xFF);
        rgb[c] = (a + (b - a) * t) / 255.0;
    }
}

// The icon at size x size pixels, RGBA, 4 x 4 samples a pixel.
std::vector<uint8_t> Rasterise(int size)
{
    std::vector<uint8_t> rgba(size_t(size) * size * 4);
    const int grid = 4;
    for (int py = 0; py < size; ++py)
        for (int px = 0; px < size; ++px) {
            double sum[4] = {};
            for (int sy = 0; sy < grid; ++sy)
                for (int sx = 0; sx < grid; ++sx) {
                    double x = (px + (sx + 0.5) / grid) * 256.0 / size, y = (py + (sy + 0.5) / grid) * 256.0 / size;
                    double colour[3] = {}, alpha = 0.0; // premultiplied
                    for (const SHAPE& s : Shapes()) {
                        if (!Covers(s, x, y))
                            continue;
                        double rgb[3];
                        Paint(s, x, y, rgb);
                        for (int c = 0; c < 3; ++c)
                            colour[c] = rgb[c] * s.Opacity + colour[c] * (1.0 - s.Opacity);
                        alpha = s.Opacity + alpha * (1.0 - s.Opacity);
                    }
                    for (int c = 0; c < 3; ++c)
                        sum[c] += colour[c];
                    sum[3] += alpha;
                }
            uint8_t* out = &rgba[(size_t(py) * size + px) * 4];
            double a = sum[3] / (grid * grid);
            for (int c = 0; c < 3; ++c)
                out[c] = uint8_t(std::lround(a > 0 ? 255.0 * sum[c] / sum[3] : 0.0));
            out[3] = uint8_t(std::lround(255.0 * a));
        }
    return rgba;
}

void Chunk(std::vector<uint8_t>& png, const char* type, const std::vector<uint8_t>& data)
{
    auto put32 = [&](uint32_t v) {
        for (int s = 24; s >= 0; s -= 8)
            png.push_back(uint8_t(v >> s));
    };
    put32(uint32_t(data.size()));
    size_t start = png.size();
    png.insert(png.end(), type, type + 4);
    png.insert(png.end(), data.begin(), data.end());
    put32(uint32_t(crc32(0, png.data() + start, uInt(png.size() - start))));
}

bool WritePngIcon(const std::string& path, int size)
{
    std::vector<uint8_t> rgba = Rasterise(size), rows;
    for (int y = 0; y < size; ++y) {
        rows.push_back(0); // no filter
        rows.insert(rows.end(), rgba.begin() + size_t(y) * size * 4, rgba.begin() + size_t(y + 1) * size * 4);
    }
    std::vector<uint8_t> packed(compressBound(uLong(rows.size())));
    uLongf packedSize = uLongf(packed.size());
    if (compress2(packed.data(), &packedSize, rows.data(), uLong(rows.size()), 9) != Z_OK)
        return false;
    packed.resize(packedSize);
    std::vector<uint8_t> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const uint8_t s1 = uint8_t(size >> 8), s0 = uint8_t(size);
    Chunk(png, "IHDR", {0, 0, s1, s0, 0, 0, s1, s0, 8, 6, 0, 0, 0}); // 8-bit RGBA
    Chunk(png, "IDAT", packed);
    Chunk(png, "IEND", {});
    return WriteFile(path, png);
}

} // namespace

bool WriteIcon(const std::string& dir)
{
    const std::string svg = Svg();
    bool ok = WriteFile(dir + "/orvane-builder.svg", std::vector<uint8_t>(svg.begin(), svg.end()));
    for (int size : {48, 128})
        ok = WritePngIcon(dir + "/orvane-builder-" + std::to_string(size) + ".png", size) && ok;
    return ok;
}
