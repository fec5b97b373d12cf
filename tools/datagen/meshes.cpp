// The seven object meshes, written as LightWave "LWOB" files (big-endian IFF:
// PNTS, SRFS, SURF with COLR, POLS). Sizes are in file units; the game scales
// them on load (ship 5, missile and laser 10, items 5 to 30), so every object
// ends up some 15 to 30 units across inside 200-unit segments.
//
// Which face is visible depends on the frame a mesh is drawn with: the ship,
// the laser bolt and the missile are drawn with a rotation, their faces are
// written clockwise seen from outside; the items are drawn with a mirrored
// frame, their faces are written counter-clockwise. The missile is also drawn
// as an item, so it carries both windings.
#include "datagen.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr float PI = 3.14159265f;

struct V3
{
    float x, y, z;
};

V3 operator+(V3 a, V3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
V3 operator-(V3 a, V3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
V3 operator*(V3 a, float k) { return {a.x * k, a.y * k, a.z * k}; }
float Dot(V3 a, V3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

enum WINDING
{
    CLOCKWISE_OUTSIDE,        // drawn with a rotation
    COUNTERCLOCKWISE_OUTSIDE, // drawn with a mirrored frame
    BOTH_WINDINGS,            // drawn both ways
};

struct POLYGON
{
    std::vector<int> Index;
    int Surface; // 1-based, as the file stores it
};

struct SURFACE
{
    std::string Name;
    uint8_t R, G, B;
};

struct MESH
{
    std::vector<V3> Points;
    std::vector<SURFACE> Surfaces;
    std::vector<POLYGON> Polygons;

    int Surface(const char* name, uint8_t r, uint8_t g, uint8_t b)
    {
        Surfaces.push_back({name, r, g, b});
        return int(Surfaces.size());
    }

    int Point(V3 p)
    {
        Points.push_back(p);
        return int(Points.size()) - 1;
    }

    // Adds a face, turned so that its counter-clockwise normal points along
    // `outward` (any vector on the outer side of the face).
    void Face(int surface, std::vector<int> index, V3 outward)
    {
        V3 n{0, 0, 0};
        for (size_t i = 0; i < index.size(); ++i) {
            V3 a = Points[index[i]];
            V3 b = Points[index[(i + 1) % index.size()]];
            n.x += (a.y - b.y) * (a.z + b.z);
            n.y += (a.z - b.z) * (a.x + b.x);
            n.z += (a.x - b.x) * (a.y + b.y);
        }
        if (Dot(n, outward) < 0)
            index = std::vector<int>(index.rbegin(), index.rend());
        Polygons.push_back({index, surface});
    }

    V3 Centre(const std::vector<int>& index) const
    {
        V3 c{0, 0, 0};
        for (int i : index)
            c = c + Points[i];
        return c * (1.0f / float(index.size()));
    }

    // A face of a convex piece whose inside contains `inside`.
    void ConvexFace(int surface, std::vector<int> index, V3 inside)
    {
        V3 outward = Centre(index) - inside;
        Face(surface, std::move(index), outward);
    }

    // A convex solid between two rings of equal size (a ring of one point is
    // an apex); capA and capB, when not 0, close the rings with that surface.
    void Loft(int side, const std::vector<V3>& a, const std::vector<V3>& b, int capA = 0, int capB = 0)
    {
        std::vector<int> ia, ib;
        for (V3 p : a)
            ia.push_back(Point(p));
        for (V3 p : b)
            ib.push_back(Point(p));
        V3 inside = (Centre(ia) + Centre(ib)) * 0.5f;
        size_t n = ia.size() > ib.size() ? ia.size() : ib.size();
        for (size_t i = 0; i < n; ++i) {
            size_t j = (i + 1) % n;
            std::vector<int> f;
            f.push_back(ia[ia.size() == 1 ? 0 : i]);
            if (ia.size() > 1)
                f.push_back(ia[j]);
            if (ib.size() > 1)
                f.push_back(ib[j]);
            f.push_back(ib[ib.size() == 1 ? 0 : i]);
            ConvexFace(side, f, inside);
        }
        if (capA && ia.size() >= 3)
            ConvexFace(capA, ia, inside);
        if (capB && ib.size() >= 3)
            ConvexFace(capB, ib, inside);
    }
};

// A ring of n points about the z axis.
std::vector<V3> RingZ(int n, float radius, float z, float turn = 0.0f)
{
    std::vector<V3> ring;
    for (int i = 0; i < n; ++i) {
        float a = turn + 2.0f * PI * float(i) / float(n);
        ring.push_back({radius * std::cos(a), radius * std::sin(a), z});
    }
    return ring;
}

// A ring of n points about the y axis.
std::vector<V3> RingY(int n, float radius, float y)
{
    std::vector<V3> ring;
    for (int i = 0; i < n; ++i) {
        float a = 2.0f * PI * float(i) / float(n);
        ring.push_back({radius * std::cos(a), y, radius * std::sin(a)});
    }
    return ring;
}

// ---------------------------------------------------------------------------

MESH SpaceShip()
{
    MESH m;
    int hull = m.Surface("Hull", 170, 176, 188);
    int wing = m.Surface("Wing", 84, 96, 122);
    int glass = m.Surface("Glass", 90, 205, 255);
    int engine = m.Surface("Engine", 255, 140, 30);
    int stripe = m.Surface("Stripe", 200, 40, 40);

    // Fuselage: nose at +z, widest behind the cockpit, flat tail.
    std::vector<V3> nose{{0, 0, 3.2f}};
    std::vector<V3> front{{0.75f, 0, 0.9f}, {0, 0.62f, 0.9f}, {-0.75f, 0, 0.9f}, {0, -0.45f, 0.9f}};
    std::vector<V3> rear{{0.7f, 0, -2.3f}, {0, 0.55f, -2.3f}, {-0.7f, 0, -2.3f}, {0, -0.4f, -2.3f}};
    m.Loft(hull, nose, front);
    m.Loft(hull, front, rear, 0, stripe);

    // Cockpit canopy on the spine, ahead of the wings.
    m.Loft(glass, {{0, 0.55f, 2.1f}}, {{0.3f, 0.52f, 0.9f}, {0, 0.95f, 0.6f}, {-0.3f, 0.52f, 0.9f}}, 0, glass);

    for (float s : {1.0f, -1.0f}) {
        // Swept wing, a thin wedge from the fuselage side to the tip.
        std::vector<V3> root{{0.6f * s, 0.12f, 0.4f}, {0.6f * s, 0.12f, -2.0f}, {0.6f * s, -0.12f, -2.0f},
                             {0.6f * s, -0.12f, 0.4f}};
        std::vector<V3> tip{{3.0f * s, 0.03f, -1.5f}, {3.0f * s, 0.03f, -2.2f}, {3.0f * s, -0.03f, -2.2f},
                            {3.0f * s, -0.03f, -1.5f}};
        m.Loft(wing, root, tip, 0, stripe);
        // Engine pod under the wing, its exhaust facing back.
        std::vector<V3> podFront = RingZ(6, 0.28f, -0.6f);
        std::vector<V3> podRear = RingZ(6, 0.34f, -2.6f);
        for (V3& p : podFront)
            p = p + V3{1.35f * s, -0.25f, 0};
        for (V3& p : podRear)
            p = p + V3{1.35f * s, -0.25f, 0};
        m.Loft(hull, podFront, podRear, hull, engine);
    }

    // Tail fin.
    m.Loft(wing, {{0, 0.5f, -0.9f}, {0.06f, 0.5f, -2.2f}, {-0.06f, 0.5f, -2.2f}},
           {{0, 1.45f, -2.3f}, {0.03f, 1.45f, -2.75f}, {-0.03f, 1.45f, -2.75f}}, 0, wing);
    return m;
}

MESH Tempest()
{
    MESH m;
    int body = m.Surface("Body", 232, 232, 236);
    int warhead = m.Surface("Warhead", 220, 30, 30);
    int fin = m.Surface("Fin", 110, 114, 128);
    int exhaust = m.Surface("Exhaust", 255, 120, 0);

    std::vector<V3> neck = RingZ(8, 0.1f, 0.45f);
    std::vector<V3> tail = RingZ(8, 0.1f, -0.7f);
    m.Loft(warhead, {{0, 0, 0.8f}}, neck);
    m.Loft(body, neck, tail);
    m.Loft(body, tail, RingZ(8, 0.07f, -0.8f), 0, exhaust);

    // Four swept fins at the tail, in the two planes through the axis.
    for (int k = 0; k < 4; ++k) {
        float a = PI / 2.0f * float(k);
        float c = std::cos(a), s = std::sin(a);
        auto fin2d = [&](float side) {
            // (distance from the axis, z) of the fin's corners
            const float corners[4][2] = {{0.09f, -0.35f}, {0.32f, -0.62f}, {0.32f, -0.78f}, {0.09f, -0.78f}};
            std::vector<V3> outline;
            for (const auto& corner : corners)
                outline.push_back({corner[0] * c - side * s, corner[0] * s + side * c, corner[1]});
            return outline;
        };
        m.Loft(fin, fin2d(0.012f), fin2d(-0.012f), fin, fin);
    }
    return m;
}

MESH LaserBase()
{
    MESH m;
    // Near white, so that the shot's level colour (the ambient light) tints it.
    int bolt = m.Surface("Bolt", 255, 255, 255);
    int glow = m.Surface("Glow", 210, 230, 255);
    std::vector<V3> mid = RingZ(6, 0.08f, 0.0f);
    m.Loft(bolt, {{0, 0, 0.5f}}, mid);
    m.Loft(glow, mid, {{0, 0, -0.5f}});
    return m;
}

// Ship level upgrade: a faceted golden star, standing upright.
MESH ShipLevel()
{
    MESH m;
    int gold = m.Surface("StarGold", 255, 200, 40);
    int amber = m.Surface("StarAmber", 215, 140, 20);
    std::vector<int> ring;
    for (int i = 0; i < 10; ++i) {
        float a = PI / 2.0f + 2.0f * PI * float(i) / 10.0f;
        float r = (i % 2 == 0) ? 0.25f : 0.105f;
        ring.push_back(m.Point({r * std::cos(a), r * std::sin(a), 0}));
    }
    int front = m.Point({0, 0, 0.07f});
    int back = m.Point({0, 0, -0.07f});
    for (int i = 0; i < 10; ++i) {
        int a = ring[i], b = ring[(i + 1) % 10];
        int s = (i % 2 == 0) ? gold : amber;
        m.Face(s, {front, a, b}, {0, 0, 1});
        m.Face(s, {back, b, a}, {0, 0, -1});
    }
    return m;
}

// Laser upgrade: a tall red crystal.
MESH LaserBoost()
{
    MESH m;
    int crystal = m.Surface("Crystal", 235, 45, 30);
    int facet = m.Surface("Facet", 150, 20, 25);
    std::vector<V3> upper = RingY(6, 0.3f, 0.2f);
    std::vector<V3> lower = RingY(6, 0.3f, -0.2f);
    m.Loft(crystal, {{0, 0.7f, 0}}, upper);
    m.Loft(facet, upper, lower);
    m.Loft(crystal, lower, {{0, -0.7f, 0}});
    return m;
}

// +15 energy: a green power cell with a terminal on top.
MESH Energy()
{
    MESH m;
    int cell = m.Surface("Cell", 40, 220, 70);
    int terminal = m.Surface("Terminal", 205, 205, 215);
    int base = m.Surface("Base", 30, 90, 40);
    m.Loft(cell, RingY(12, 0.7f, -1.2f), RingY(12, 0.7f, 0.95f), base, base);
    m.Loft(terminal, RingY(12, 0.3f, 0.95f), RingY(12, 0.3f, 1.35f), 0, terminal);
    return m;
}

// +15 shield: a blue heraldic shield with a raised boss on each face.
MESH Shield()
{
    MESH m;
    int blue = m.Surface("ShieldBlue", 40, 95, 235);
    int rim = m.Surface("Rim", 200, 205, 220);
    int boss = m.Surface("Boss", 235, 235, 255);
    std::vector<V3> outline{{-1.1f, 1.2f, 0},  {-1.1f, 0.1f, 0}, {-0.85f, -0.6f, 0},
                            {-0.45f, -1.1f, 0}, {0, -1.4f, 0},   {0.45f, -1.1f, 0},
                            {0.85f, -0.6f, 0},  {1.1f, 0.1f, 0}, {1.1f, 1.2f, 0}};
    // Front and back are single nine-sided polygons, the sides the rim.
    std::vector<int> a, b;
    for (V3 p : outline) {
        a.push_back(m.Point({p.x, p.y, 0.15f}));
        b.push_back(m.Point({p.x, p.y, -0.15f}));
    }
    m.Face(blue, a, {0, 0, 1});
    m.Face(blue, b, {0, 0, -1});
    for (size_t i = 0; i < outline.size(); ++i) {
        size_t j = (i + 1) % outline.size();
        m.ConvexFace(rim, {a[i], a[j], b[j], b[i]}, {0, 0, 0});
    }
    for (float z : {1.0f, -1.0f})
        m.Loft(boss, {{0, 0.15f, 0.45f * z}},
               {{0.35f, 0.15f, 0.15f * z}, {0, 0.5f, 0.15f * z}, {-0.35f, 0.15f, 0.15f * z}, {0, -0.2f, 0.15f * z}});
    return m;
}

// ---------------------------------------------------------------------------
// LWOB writing.

struct OUT
{
    std::vector<uint8_t> Bytes;

    void U8(uint8_t v) { Bytes.push_back(v); }
    void U16(uint16_t v)
    {
        U8(uint8_t(v >> 8));
        U8(uint8_t(v));
    }
    void U32(uint32_t v)
    {
        U16(uint16_t(v >> 16));
        U16(uint16_t(v));
    }
    void F32(float f)
    {
        uint32_t bits;
        std::memcpy(&bits, &f, 4);
        U32(bits);
    }
    void Id(const char* id) { Bytes.insert(Bytes.end(), id, id + 4); }
    // A name with its terminating zero, padded to an even length.
    void Name(const std::string& s)
    {
        Bytes.insert(Bytes.end(), s.begin(), s.end());
        U8(0);
        if ((s.size() + 1) % 2)
            U8(0);
    }
    void Chunk(const char* id, const OUT& body)
    {
        Id(id);
        U32(uint32_t(body.Bytes.size()));
        Bytes.insert(Bytes.end(), body.Bytes.begin(), body.Bytes.end());
    }
};

std::vector<uint8_t> Encode(const MESH& m, WINDING winding)
{
    OUT pnts, srfs, pols;
    for (V3 p : m.Points) {
        pnts.F32(p.x);
        pnts.F32(p.y);
        pnts.F32(p.z);
    }
    for (const SURFACE& s : m.Surfaces)
        srfs.Name(s.Name);
    for (const POLYGON& p : m.Polygons) {
        auto write = [&](bool reversed) {
            pols.U16(uint16_t(p.Index.size()));
            for (size_t i = 0; i < p.Index.size(); ++i)
                pols.U16(uint16_t(reversed ? p.Index[p.Index.size() - 1 - i] : p.Index[i]));
            pols.U16(uint16_t(p.Surface));
        };
        // Faces are built counter-clockwise seen from outside.
        if (winding != CLOCKWISE_OUTSIDE)
            write(false);
        if (winding != COUNTERCLOCKWISE_OUTSIDE)
            write(true);
    }

    OUT body;
    body.Id("LWOB");
    body.Chunk("PNTS", pnts);
    body.Chunk("SRFS", srfs);
    for (const SURFACE& s : m.Surfaces) {
        // A colour and the usual shading sub-chunks after it; the reader
        // looks for the colour only well before the end of the chunk.
        OUT surf;
        surf.Name(s.Name);
        surf.Id("COLR");
        surf.U16(4);
        surf.U8(s.R);
        surf.U8(s.G);
        surf.U8(s.B);
        surf.U8(0);
        surf.Id("FLAG");
        surf.U16(2);
        surf.U16(0);
        surf.Id("DIFF");
        surf.U16(2);
        surf.U16(256);
        surf.Id("LUMI");
        surf.U16(2);
        surf.U16(0);
        surf.Id("GLOS");
        surf.U16(2);
        surf.U16(64);
        body.Chunk("SURF", surf);
    }
    body.Chunk("POLS", pols);

    OUT file;
    file.Chunk("FORM", body);
    return file.Bytes;
}


} // namespace

bool WriteMeshes(const std::string& dir)
{
    struct ITEM
    {
        const char* Name;
        MESH Mesh;
        WINDING Winding;
    };
    const ITEM items[] = {
        {"pShipLevel.lwo", ShipLevel(), COUNTERCLOCKWISE_OUTSIDE},
        {"pLaserBoost.lwo", LaserBoost(), COUNTERCLOCKWISE_OUTSIDE},
        {"pEnergy.lwo", Energy(), COUNTERCLOCKWISE_OUTSIDE},
        {"pShield.lwo", Shield(), COUNTERCLOCKWISE_OUTSIDE},
        {"SpaceShip.lwo", SpaceShip(), CLOCKWISE_OUTSIDE},
        {"Tempest.lwo", Tempest(), BOTH_WINDINGS},
        {"LaserBase.lwo", LaserBase(), CLOCKWISE_OUTSIDE},
    };
    bool ok = true;
    for (const ITEM& item : items)
        ok = WriteFile(dir + "/" + item.Name, Encode(item.Mesh, item.Winding)) && ok;
    return ok;
}
