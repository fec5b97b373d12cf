#include "orvlevel/levelcheck.h"

#include "graphics/texture.h"
#include "math/geometry.h"
#include "orvlevel/level.h"
#include "platform/datafile.h"
#include "things/thing.h"
#include "things/thingmeshes.h"
#include "graphics/trimesh.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <unordered_map>

namespace {

// Four corner positions in a fixed order, so two sides on the same corners
// meet under one key whatever their corner order.
struct SIDEKEY
{
    std::array<uint32_t, 12> Bits;
    bool operator==(const SIDEKEY&) const = default;
};

struct SIDEKEYHASH
{
    size_t operator()(const SIDEKEY& k) const
    {
        size_t h = 1469598103934665603ull;
        for (uint32_t b : k.Bits)
            h = (h ^ b) * 1099511628211ull;
        return h;
    }
};

SIDEKEY KeyOf(VECTOR3D* const c[4])
{
    std::array<std::array<uint32_t, 3>, 4> corners;
    for (int k = 0; k < 4; ++k)
    {
        // +0.0f turns -0 into 0, so equal positions give equal bits.
        float v[3] = {c[k]->x + 0.0f, c[k]->y + 0.0f, c[k]->z + 0.0f};
        std::memcpy(corners[k].data(), v, sizeof v);
    }
    std::sort(corners.begin(), corners.end());
    SIDEKEY key;
    for (int k = 0; k < 4; ++k)
        std::copy(corners[k].begin(), corners[k].end(), key.Bits.begin() + 3 * k);
    return key;
}

bool FileExists(const char* storedName)
{
    return !FindBitmapFile(storedName).empty();
}

class CHECKER
{
public:
    explicit CHECKER(const ORVLEVEL& level) : L(level) {}

    std::vector<LEVELPROBLEM> Run()
    {
        if (!L.Segments || !L.Points)
            return {};
        if (ThingMeshes.Ship)
        {
            float box[6], inner = 0.0f, outer = 0.0f;
            ThingMeshes.Ship->GetBounds(&box[0], &box[1], &box[2], &box[3], &box[4], &box[5], &outer, &inner);
            ShipDiameter = 2.0f * outer;
        }
        Segments();
        Textures();
        UnusedPoints();
        Objects();
        StartPoints();
        return std::move(Found);
    }

private:
    const ORVLEVEL& L;
    std::vector<LEVELPROBLEM> Found;
    std::bitset<MAX_POINTS> Used;
    std::unordered_map<SIDEKEY, std::pair<int32_t, int32_t>, SIDEKEYHASH> SidesAt;

    // The narrowest opening the ship fits through; 0 while its mesh is not loaded.
    float ShipDiameter = 0.0f;

    void Add(std::string text, int32_t segment = -1, int32_t side = -1, int32_t point = -1, int32_t fix = FIX_NONE,
             int32_t object = -1)
    {
        Found.push_back({std::move(text), segment, side, point, fix, object});
    }

    const SEGMENT* SegmentAt(int32_t i) const
    {
        return i >= 0 && i < MAX_SEGMENTS ? L.Segments[i] : nullptr;
    }

    void Segments()
    {
        for (int32_t s = 0; s < L.SegmentsEnd(); ++s)
        {
            const SEGMENT* seg = L.Segments[s];
            if (!seg)
                continue;
            bool whole = true;
            for (int k = 0; k < 8; ++k)
            {
                int32_t p = seg->Corners[k];
                if (L.PointAt(p))
                    Used.set(size_t(p));
                else
                {
                    whole = false;
                    Add(FormatProblem("Szegmens %d: a(z) %d. sarka nem létező pontra mutat (%d).", s, k, p), s, -1, p);
                }
            }
            for (int i = 0; i < 6; ++i)
                Side(s, *seg, i, whole);
        }
    }

    void Side(int32_t s, const SEGMENT& seg, int i, bool whole)
    {
        const SIDE& side = seg.Sides[i];
        const int32_t n = seg.Neighbours[i];
        if (n != -1)
        {
            const SEGMENT* other = SegmentAt(n);
            if (!other)
                Add(FormatProblem("Szegmens %d, oldal %d: a szomszédja (%d) nem létező szegmens.", s, i, n), s, i, -1,
                    FIX_CUTNEIGHBOUR);
            else if (std::find(std::begin(other->Neighbours), std::end(other->Neighbours), s) ==
                     std::end(other->Neighbours))
                Add(FormatProblem("Szegmens %d, oldal %d: a(z) %d. szegmenssel való kapcsolat egyirányú.", s, i, n), s, i, -1,
                    FIX_ONEWAYLINK);
        }
        else if (side.WallType == WALL_PASSABLE)
            Add(FormatProblem("Szegmens %d, oldal %d: átjárható, de nincs mögötte szegmens (lyuk a semmibe).", s, i), s, i, -1,
                FIX_WALLUP);
        if (side.Texture != -1 && (side.Texture < 0 || side.Texture >= MAX_TEXTURES || !L.Textures ||
                                   !L.Textures[side.Texture]))
            Add(FormatProblem("Szegmens %d, oldal %d: a(z) %d. textúrahely üres.", s, i, side.Texture), s, i, -1,
                FIX_EMPTYTEXTURE);
        if (!whole)
            return;

        VECTOR3D* c[4];
        for (int k = 0; k < 4; ++k)
            c[k] = const_cast<VECTOR3D*>(L.PointAt(seg.Corners[SideCorners[i][k]]));
        VECTOR3D area = Cross(*c[2] - *c[0], *c[3] - *c[1]);
        if (!(Length(area) > 0.0f))
            Add(FormatProblem("Szegmens %d, oldal %d: az oldal területe nulla.", s, i), s, i);
        else
        {
            // The inward normal must face the middle of the segment.
            VECTOR3D centre;
            for (int32_t corner : seg.Corners)
                centre += *L.PointAt(corner);
            centre /= 8.0f;
            if (Dot(centre - *c[0], TriangleNormal(*c[0], *c[1], *c[2])) < 0.0f)
                Add(FormatProblem("Szegmens %d, oldal %d: kifelé néz, a szegmens ki van fordulva.", s, i), s, i);
        }
        Opening(s, i, n, c);
        auto [at, fresh] = SidesAt.try_emplace(KeyOf(c), s, i);
        if (!fresh && at->second.first != s && n != at->second.first)
            Add(FormatProblem("Szegmens %d, oldal %d: egybeesik a(z) %d. szegmens %d. oldalával, de nincsenek összekötve.", s,
                       i, at->second.first, at->second.second),
                s, i);
    }

    // A passage between two segments (listed once, from the lower index)
    // measured by the circle around its middle that touches its nearest edge.
    void Opening(int32_t s, int i, int32_t n, VECTOR3D* const c[4])
    {
        const SEGMENT* other = SegmentAt(n);
        const int wall = L.Segments[s]->Sides[i].WallType;
        if (!(ShipDiameter > 0.0f) || !other || (wall != WALL_PASSABLE && wall != WALL_DOOR))
            return;
        const bool back = std::find(std::begin(other->Neighbours), std::end(other->Neighbours), s) !=
                          std::end(other->Neighbours);
        if (back && n < s)
            return;
        const float width = 2.0f * InscribedRadius(c);
        if (width < ShipDiameter)
            Add(FormatProblem("Szegmens %d, oldal %d: a(z) %d. szegmens felé nyíló átjáró túl szűk a hajónak (%.0f < %.0f).",
                       s, i, n, double(width), double(ShipDiameter)),
                s, i);
    }

    static float InscribedRadius(VECTOR3D* const c[4])
    {
        VECTOR3D mid = (*c[0] + *c[1] + *c[2] + *c[3]) / 4.0f;
        float r = 1e30f;
        for (int k = 0; k < 4; ++k)
        {
            const VECTOR3D a = *c[k], edge = *c[(k + 1) % 4] - a;
            const float len2 = Dot(edge, edge);
            const VECTOR3D d = mid - a;
            const VECTOR3D off = len2 > 0.0f ? d - edge * (Dot(d, edge) / len2) : d;
            r = std::min(r, Length(off));
        }
        return r;
    }

    void Textures()
    {
        for (int t = 0; L.Textures && t < MAX_TEXTURES; ++t)
            if (const TEXTURE* tex = L.Textures[t]; tex && !FileExists(tex->FileName))
                Add(FormatProblem("Textúra %d: a(z) \"%s\" bitkép nem található.", t, ResolveDataPath(tex->FileName).c_str()));
    }

    void UnusedPoints()
    {
        for (int32_t p = 0; p < L.PointsEnd(); ++p)
            if (L.Points[p] && !Used.test(size_t(p)))
                Add(FormatProblem("Pont %d: egyik szegmens sem használja.", p), -1, -1, p, FIX_UNUSEDPOINT);
    }

    void Objects()
    {
        for (int t = 0; L.Things && t < MAX_THINGS; ++t)
            if (const THING* thing = L.Things[t]; thing && L.FindSegment(thing->position) < 0)
                Add(FormatProblem("Cucc %d (%s): egyik szegmensben sincs.", t, thing->ClassName()), -1, -1, -1, FIX_MOVETHING, t);
        for (int i = 0; L.Lights && i < MAX_LIGHTS; ++i)
            if (const STATICLIGHT* light = L.Lights[i]; light && L.FindSegment(light->Position) < 0)
                Add(FormatProblem("Fényforrás %d: egyik szegmensben sincs.", i), -1, -1, -1, FIX_MOVELIGHT, i);
        for (int i = 0; L.SpecPoints && i < MAX_SPECPOINTS; ++i)
            if (const SPECPOINT* sp = L.SpecPoints[i]; sp && L.FindSegment(sp->Position) < 0)
                Add(FormatProblem("Különleges pont %d: egyik szegmensben sincs.", i), -1, -1, -1, FIX_MOVESPECPOINT, i);
    }

    void StartPoints()
    {
        int starts = 0;
        for (int i = 0; L.SpecPoints && i < MAX_SPECPOINTS; ++i)
            starts += L.SpecPoints[i] && L.SpecPoints[i]->Type == 0;
        if (starts == 0)
            Add("Nincs egyfős játékos kezdőpont.");
        else if (starts > 1)
            Add(FormatProblem("%d egyfős játékos kezdőpont van, egynek kell lennie.", starts));
    }
};

} // namespace

std::string FormatProblem(const char* pattern, ...)
{
    char buffer[600];
    va_list args;
    va_start(args, pattern);
    std::vsnprintf(buffer, sizeof buffer, pattern, args);
    va_end(args);
    return buffer;
}

std::vector<LEVELPROBLEM> CheckLevel(const ORVLEVEL& level)
{
    return CHECKER(level).Run();
}
