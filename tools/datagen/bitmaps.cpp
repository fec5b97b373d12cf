// The three built-in bitmaps: the default wall texture, the pattern of sides
// without texture and the explosion sprite. Pure black is the transparent
// colour key of every texture, so the wall avoids it and the other two use it
// for their see-through parts.
#include "datagen.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

struct COLOUR
{
    float r, g, b;
};

// An image in memory, top row first, three bytes (red, green, blue) a pixel.
struct IMAGE
{
    int Width, Height;
    std::vector<uint8_t> Rgb;

    IMAGE(int w, int h) : Width(w), Height(h), Rgb(size_t(w) * h * 3, 0) {}

    void Set(int x, int y, COLOUR c)
    {
        uint8_t* p = &Rgb[(size_t(y) * Width + x) * 3];
        p[0] = uint8_t(std::lround(std::fmin(std::fmax(c.r, 0.0f), 255.0f)));
        p[1] = uint8_t(std::lround(std::fmin(std::fmax(c.g, 0.0f), 255.0f)));
        p[2] = uint8_t(std::lround(std::fmin(std::fmax(c.b, 0.0f), 255.0f)));
    }
};

// ---------------------------------------------------------------------------
// Deterministic noise: an integer hash of the lattice point, so the files are
// the same on every build.

uint32_t Hash(int x, int y, uint32_t seed)
{
    uint32_t h = uint32_t(x) * 0x8DA6B343u ^ uint32_t(y) * 0xD8163841u ^ seed * 0xCB1AB31Fu;
    h ^= h >> 13;
    h *= 0x5BD1E995u;
    h ^= h >> 15;
    h *= 0x27D4EB2Du;
    h ^= h >> 16;
    return h;
}

float Hash01(int x, int y, uint32_t seed)
{
    return float(Hash(x, y, seed) & 0xFFFFFF) / 16777216.0f;
}

int Wrap(int v, int period)
{
    v %= period;
    return v < 0 ? v + period : v;
}

// Value noise on a lattice of cellX by cellY pixels, repeating every
// periodX by periodY lattice cells so a texture tiles without seams.
float Noise(float x, float y, int cellX, int cellY, int periodX, int periodY, uint32_t seed)
{
    float gx = x / cellX, gy = y / cellY;
    int ix = int(std::floor(gx)), iy = int(std::floor(gy));
    float fx = gx - ix, fy = gy - iy;
    fx = fx * fx * (3 - 2 * fx);
    fy = fy * fy * (3 - 2 * fy);
    int x0 = Wrap(ix, periodX), x1 = Wrap(ix + 1, periodX);
    int y0 = Wrap(iy, periodY), y1 = Wrap(iy + 1, periodY);
    float a = Hash01(x0, y0, seed), b = Hash01(x1, y0, seed);
    float c = Hash01(x0, y1, seed), d = Hash01(x1, y1, seed);
    float top = a + (b - a) * fx, bottom = c + (d - c) * fx;
    return top + (bottom - top) * fy;
}

// Several octaves of square-cell noise over a size by size tile, 0 ... 1.
float Fractal(float x, float y, int size, int cell, int octaves, uint32_t seed)
{
    float sum = 0, weight = 0, amplitude = 1;
    for (int o = 0; o < octaves && cell >= 1; ++o) {
        sum += amplitude * Noise(x, y, cell, cell, size / cell, size / cell, seed + o);
        weight += amplitude;
        amplitude *= 0.5f;
        cell /= 2;
    }
    return sum / weight;
}

// ---------------------------------------------------------------------------
// Writing: a 14-byte file header and a 40-byte information header, pixel rows
// bottom first as the format stores them. Widths are multiples of 4, so rows
// need no padding.

void Put16(std::vector<uint8_t>& out, uint32_t v)
{
    out.push_back(uint8_t(v));
    out.push_back(uint8_t(v >> 8));
}

void Put32(std::vector<uint8_t>& out, uint32_t v)
{
    Put16(out, v & 0xFFFF);
    Put16(out, v >> 16);
}

void PutHeaders(std::vector<uint8_t>& out, int width, int height, int bpp, uint32_t paletteEntries)
{
    uint32_t imageSize = uint32_t(width) * height * (bpp / 8);
    uint32_t dataOffset = 54 + paletteEntries * 4;
    out.push_back('B');
    out.push_back('M');
    Put32(out, dataOffset + imageSize);
    Put32(out, 0); // two reserved 16-bit fields
    Put32(out, dataOffset);
    Put32(out, 40);
    Put32(out, uint32_t(width));
    Put32(out, uint32_t(height));
    Put16(out, 1); // planes
    Put16(out, uint32_t(bpp));
    Put32(out, 0); // uncompressed
    Put32(out, imageSize);
    Put32(out, 2835); // 72 dots per inch, in dots per metre
    Put32(out, 2835);
    Put32(out, paletteEntries);
    Put32(out, 0);
}


bool WriteBmp24(const std::string& path, const IMAGE& img)
{
    std::vector<uint8_t> out;
    PutHeaders(out, img.Width, img.Height, 24, 0);
    for (int y = img.Height - 1; y >= 0; --y)
        for (int x = 0; x < img.Width; ++x) {
            const uint8_t* p = &img.Rgb[(size_t(y) * img.Width + x) * 3];
            out.push_back(p[2]);
            out.push_back(p[1]);
            out.push_back(p[0]);
        }
    return WriteFile(path, out);
}

// indices: top row first; palette: up to 256 colours, the rest are black.
bool WriteBmp8(const std::string& path, int width, int height, const std::vector<uint8_t>& indices,
               const std::vector<COLOUR>& palette)
{
    std::vector<uint8_t> out;
    PutHeaders(out, width, height, 8, 256);
    for (size_t i = 0; i < 256; ++i) {
        COLOUR c = i < palette.size() ? palette[i] : COLOUR{0, 0, 0};
        out.push_back(uint8_t(c.b));
        out.push_back(uint8_t(c.g));
        out.push_back(uint8_t(c.r));
        out.push_back(0);
    }
    for (int y = height - 1; y >= 0; --y)
        for (int x = 0; x < width; ++x)
            out.push_back(indices[size_t(y) * width + x]);
    return WriteFile(path, out);
}

// ---------------------------------------------------------------------------
// WallTex: riveted steel panels in staggered rows, joined by dark grooves,
// with bevelled edges, a recessed inner plate, brushed grain and grime.

constexpr int WALL_SIZE = 256;
constexpr int PANEL_W = 128;
constexpr int PANEL_H = 64;
constexpr int GROOVE = 2; // groove pixels on each side of a panel joint
constexpr int BEVEL = 3;
constexpr int INSET = 12;
constexpr int RIVET_INSET = 7;
constexpr float RIVET_RADIUS = 3.2f;

COLOUR Scale(COLOUR c, float k)
{
    return {c.r * k, c.g * k, c.b * k};
}

COLOUR Add(COLOUR c, float d)
{
    return {c.r + d, c.g + d, c.b + d};
}

COLOUR Mix(COLOUR a, COLOUR b, float t)
{
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

COLOUR WallPixel(int x, int y)
{
    int row = y / PANEL_H;
    int shifted = Wrap(x - (row % 2) * (PANEL_W / 2), WALL_SIZE);
    int column = shifted / PANEL_W;
    int u = shifted % PANEL_W, v = y % PANEL_H;

    // Fine scratches along the rows, large smudges and a per-panel tint.
    float grain = Noise(float(x), float(y), 32, 1, WALL_SIZE / 32, WALL_SIZE, 11);
    float grime = Fractal(float(x), float(y), WALL_SIZE, 64, 4, 21);
    float speckle = Hash01(x, y, 31);
    float tint = Hash01(row, column, 41);

    COLOUR steel = {104 + 14 * tint, 110 + 10 * tint, 122 + 6 * tint};
    COLOUR c = Add(steel, (grain - 0.5f) * 22 + (speckle - 0.5f) * 8);
    c = Scale(c, 0.78f + 0.34f * grime);
    float rust = std::fmax(0.0f, grime - 0.62f) * 2.2f;
    c = Mix(c, COLOUR{120, 72, 44}, std::fmin(rust, 0.5f));

    // The groove between panels, darker towards its middle.
    int du = std::min(u, PANEL_W - 1 - u), dv = std::min(v, PANEL_H - 1 - v);
    int edge = std::min(du, dv);
    if (edge < GROOVE)
        return Add(COLOUR{20, 22, 27}, edge * 8 + speckle * 4);

    // Bevel: lit from the upper left.
    if (edge < GROOVE + BEVEL) {
        bool litSide = (du <= dv) ? (u < PANEL_W / 2) : (v < PANEL_H / 2);
        return Add(c, litSide ? 42.0f : -38.0f);
    }

    // Rivets near the four corners, shaded as small domes.
    for (int corner = 0; corner < 4; ++corner) {
        float cx = (corner & 1) ? PANEL_W - 1 - RIVET_INSET : RIVET_INSET;
        float cy = (corner & 2) ? PANEL_H - 1 - RIVET_INSET : RIVET_INSET;
        float dx = (u - cx) / RIVET_RADIUS, dy = (v - cy) / RIVET_RADIUS;
        float d2 = dx * dx + dy * dy;
        if (d2 <= 1.0f) {
            float nz = std::sqrt(1.0f - d2);
            float light = (-dx * 0.55f - dy * 0.55f + nz * 0.63f);
            float shade = 70 + 110 * std::fmax(light, 0.0f);
            float highlight = light > 0.9f ? 60 : 0;
            return Add(COLOUR{shade * 0.95f, shade, shade * 1.05f}, highlight);
        }
        if (d2 <= 1.7f && dx + dy > 0)
            c = Add(c, -26); // the rivet's shadow
    }

    // The recessed inner plate: its upper and left rims are in shadow.
    int left = INSET, right = PANEL_W - 1 - INSET, top = INSET, bottom = PANEL_H - 1 - INSET;
    if (u >= left && u <= right && v >= top && v <= bottom) {
        if (u == left || v == top)
            return Add(c, -44);
        if (u == right || v == bottom)
            return Add(c, 30);
        c = Add(c, -10);
        // Vent slots on some plates.
        if (Hash(row, column, 51) % 3 == 0) {
            int su = u - (left + 8), sv = v - (top + 6);
            if (su >= 0 && su < 40 && sv >= 0 && sv % 6 < 2 && v < bottom - 5)
                return Add(COLOUR{28, 30, 36}, sv % 6 == 0 ? 0.0f : 14.0f);
        }
    }
    return c;
}

bool WriteWallTex(const std::string& path)
{
    IMAGE img(WALL_SIZE, WALL_SIZE);
    for (int y = 0; y < WALL_SIZE; ++y)
        for (int x = 0; x < WALL_SIZE; ++x) {
            COLOUR c = WallPixel(x, y);
            // Black would be see-through.
            img.Set(x, y, {std::fmax(c.r, 6.0f), std::fmax(c.g, 6.0f), std::fmax(c.b, 6.0f)});
        }
    return WriteBmp24(path, img);
}

// ---------------------------------------------------------------------------
// InvSide: a frame and a diagonal hatch on black, so the side shows where it
// is but lets the view through.

bool WriteInvSide(const std::string& path)
{
    constexpr int size = 64;
    std::vector<COLOUR> palette = {{0, 0, 0}, {90, 200, 255}, {40, 110, 150}};
    std::vector<uint8_t> indices(size * size, 0);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            uint8_t& i = indices[size_t(y) * size + x];
            if (x == 0 || y == 0 || x == size - 1 || y == size - 1)
                i = 1;
            else if ((x + y) % 16 < 2)
                i = 2;
        }
    return WriteBmp8(path, size, size, indices, palette);
}

// ---------------------------------------------------------------------------
// SmallExplosion: a ragged fireball, white-hot in the middle and dark red at
// the rim, with a few embers, on black.

COLOUR FireRamp(float t)
{
    static const COLOUR stops[] = {
        {60, 4, 0}, {170, 34, 4}, {240, 110, 14}, {255, 190, 60}, {255, 240, 150}, {255, 255, 235},
    };
    constexpr int last = int(sizeof stops / sizeof stops[0]) - 1;
    t = std::fmin(std::fmax(t, 0.0f), 1.0f) * last;
    int i = std::min(int(t), last - 1);
    return Mix(stops[i], stops[i + 1], t - i);
}

bool WriteExplosion(const std::string& path)
{
    constexpr int size = 64;
    constexpr float centre = (size - 1) / 2.0f;
    constexpr float radius = 27.0f;
    IMAGE img(size, size);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            float dx = x - centre, dy = y - centre;
            float r = std::sqrt(dx * dx + dy * dy) / radius;
            float billow = Fractal(float(x), float(y), size, 16, 4, 61);
            float flicker = Noise(float(x), float(y), 4, 4, size / 4, size / 4, 71);
            float heat = 1.0f - r * r + (billow - 0.5f) * 0.9f + (flicker - 0.5f) * 0.25f;
            if (heat > 0.04f) {
                COLOUR c = FireRamp(heat * heat * 1.3f);
                // The rim fades into the black background.
                float fade = std::fmin(1.0f, (heat - 0.04f) / 0.18f);
                img.Set(x, y, Scale(c, fade));
            } else if (r < 1.05f && Hash(x, y, 81) % 53 == 0) {
                img.Set(x, y, COLOUR{255, 170, 60}); // an ember
            }
        }
    return WriteBmp24(path, img);
}

} // namespace

bool WriteBitmaps(const std::string& dir)
{
    std::string prefix = dir.empty() || dir.back() == '/' ? dir : dir + "/";
    bool ok = WriteWallTex(prefix + "WallTex.bmp");
    ok = WriteInvSide(prefix + "InvSide.bmp") && ok;
    ok = WriteExplosion(prefix + "SmallExplosion.bmp") && ok;
    return ok;
}
