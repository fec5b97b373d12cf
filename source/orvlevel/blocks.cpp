#include "orvlevel/blocks.h"

#include "graphics/texture.h"
#include "math/geometry.h"
#include "platform/binio.h"
#include "platform/fileio.h"
#include "platform/platform.h"
#include "things/spaceship.h"
#include "things/thing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

namespace {

const char* const BLOCK_NAME_FORMAT = "BLOKK %d %d";
const char* const MSG_CAPTION = "HIBA!";
const char* const MSG_CANNOT_SAVE = "Nem sikerült elmenteni a blokkot ide:\n";
const char* const MSG_NO_SEGMENT = "A blokkfájlban nincs egy szegmens sem:\n";
const char LEVEL_MAGIC[9] = {'O', 'R', 'V', 'L', 'E', 'V', 'E', 'L', 0};
constexpr int32_t END_OF_SECTION = -1;
// Walls spread over lie within this angle of the first one's plane.
constexpr double SPREAD_DEGREES = 5.0;
constexpr double PI = 3.14159265358979323846;

// ---------------------------------------------------------------------------
// Rigid motions and mirrors in double precision

struct D3
{
    double x = 0, y = 0, z = 0;
};
D3 operator+(D3 a, D3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
D3 operator-(D3 a, D3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
D3 operator*(double k, D3 a) { return {k * a.x, k * a.y, k * a.z}; }
double Dot(D3 a, D3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
D3 Cross(D3 a, D3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
D3 Of(VECTOR3D v) { return {v.x, v.y, v.z}; }

struct MATRIX
{
    double M[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    D3 operator*(D3 v) const
    {
        return {M[0][0] * v.x + M[0][1] * v.y + M[0][2] * v.z, M[1][0] * v.x + M[1][1] * v.y + M[1][2] * v.z,
                M[2][0] * v.x + M[2][1] * v.y + M[2][2] * v.z};
    }
    MATRIX operator*(const MATRIX& b) const
    {
        MATRIX r;
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                r.M[i][j] = M[i][0] * b.M[0][j] + M[i][1] * b.M[1][j] + M[i][2] * b.M[2][j];
        return r;
    }
};

// Turning by angle (given by its cosine and sine) about a unit axis,
// right-handed.
MATRIX AxisRotation(D3 n, double c, double s)
{
    MATRIX r;
    const double t = 1 - c;
    r.M[0][0] = c + t * n.x * n.x, r.M[0][1] = t * n.x * n.y - s * n.z, r.M[0][2] = t * n.x * n.z + s * n.y;
    r.M[1][0] = t * n.x * n.y + s * n.z, r.M[1][1] = c + t * n.y * n.y, r.M[1][2] = t * n.y * n.z - s * n.x;
    r.M[2][0] = t * n.x * n.z - s * n.y, r.M[2][1] = t * n.y * n.z + s * n.x, r.M[2][2] = c + t * n.z * n.z;
    return r;
}

// x -> R x + T. A mirror reverses handedness, which objects' frames undo.
struct MOTION
{
    MATRIX R;
    D3 T;
    bool Mirror = false;

    VECTOR3D Point(VECTOR3D p) const
    {
        D3 q = R * Of(p) + T;
        return VECTOR3D(float(q.x), float(q.y), float(q.z));
    }
    VECTOR3D Direction(VECTOR3D v) const
    {
        D3 q = R * Of(v);
        return VECTOR3D(float(q.x), float(q.y), float(q.z));
    }
};

// The normal of a quadrilateral from its diagonals: the direction
// TriangleNormal gives its first three corners, for any convex one.
bool QuadNormal(const D3 c[4], D3& n)
{
    n = Cross(c[2] - c[0], c[3] - c[1]);
    const double l = std::sqrt(Dot(n, n));
    if (!(l > 0) || !std::isfinite(l))
        return false;
    n = (1 / l) * n;
    return true;
}

// The rotation and translation that put `from` best onto `to`, corner by
// corner: the planes' normals exactly, then the in-plane turn of least
// squares about the centres.
bool FitSides(const VECTOR3D fromF[4], const VECTOR3D toF[4], MOTION& m)
{
    D3 from[4], to[4], a, b;
    for (int i = 0; i < 4; ++i)
        from[i] = Of(fromF[i]), to[i] = Of(toF[i]);
    if (!QuadNormal(from, a) || !QuadNormal(to, b))
        return false;
    MATRIX r1;
    const double c = Dot(a, b);
    if (c > -1 + 1e-9)
    {
        // R = I + [v] + [v]^2 / (1 + c) with v = a x b.
        const D3 v = Cross(a, b);
        const double k = 1 / (1 + c);
        const double vx[3][3] = {{0, -v.z, v.y}, {v.z, 0, -v.x}, {-v.y, v.x, 0}};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
            {
                double sq = 0;
                for (int l = 0; l < 3; ++l)
                    sq += vx[i][l] * vx[l][j];
                r1.M[i][j] = (i == j) + vx[i][j] + k * sq;
            }
    }
    else
    {
        // Opposite normals: half a turn about any axis in the plane.
        D3 u = std::fabs(a.x) < 0.9 ? Cross(a, D3{1, 0, 0}) : Cross(a, D3{0, 1, 0});
        u = (1 / std::sqrt(Dot(u, u))) * u;
        r1 = AxisRotation(u, -1, 0);
    }
    D3 cf, ct;
    for (int i = 0; i < 4; ++i)
        cf = cf + 0.25 * from[i], ct = ct + 0.25 * to[i];
    double sumDot = 0, sumCross = 0;
    for (int i = 0; i < 4; ++i)
    {
        D3 u = r1 * (from[i] - cf), v = to[i] - ct;
        u = u - Dot(u, b) * b;
        v = v - Dot(v, b) * b;
        sumDot += Dot(u, v);
        sumCross += Dot(b, Cross(u, v));
    }
    const double theta = std::atan2(sumCross, sumDot);
    m.R = AxisRotation(b, std::cos(theta), std::sin(theta)) * r1;
    m.T = ct - m.R * cf;
    for (const auto& row : m.R.M)
        for (double v : row)
            if (!std::isfinite(v))
                return false;
    return std::isfinite(m.T.x) && std::isfinite(m.T.y) && std::isfinite(m.T.z);
}

// ---------------------------------------------------------------------------
// Lists of segments

bool HasTables(const ORVLEVEL& level)
{
    return level.Points && level.Segments && level.Textures && level.Things && level.Lights && level.SpecPoints;
}

std::vector<int32_t> Existing(const ORVLEVEL& level, std::span<const int32_t> segments)
{
    std::vector<int32_t> list;
    if (!HasTables(level))
        return list;
    list.reserve(segments.size());
    for (int32_t s : segments)
        if (s >= 0 && s < level.SegmentsEnd() && level.Segments[s] && (list.empty() || list.back() < s))
            list.push_back(s);
    return list;
}

// One byte per segment slot up to SegmentsEnd: whether the slot is listed.
std::vector<uint8_t> Flags(const ORVLEVEL& level, const std::vector<int32_t>& list)
{
    std::vector<uint8_t> in(size_t(level.SegmentsEnd()), 0);
    for (int32_t s : list)
        in[size_t(s)] = 1;
    return in;
}

// The points the segments use, each once; false when a corner names none.
bool UsedPoints(const ORVLEVEL& level, const std::vector<int32_t>& list, std::vector<int32_t>& points)
{
    std::vector<uint8_t> seen(size_t(level.PointsEnd()), 0);
    for (int32_t s : list)
        for (int32_t c : level.Segments[s]->Corners)
        {
            if (!level.PointAt(c))
                return false;
            if (!seen[size_t(c)])
            {
                seen[size_t(c)] = 1;
                points.push_back(c);
            }
        }
    return true;
}

// What lies inside the listed segments: objects, lights, special points.
struct CONTENTS
{
    std::vector<int32_t> Things, Lights, SpecPoints;
};

CONTENTS Inside(const ORVLEVEL& level, const std::vector<uint8_t>& in)
{
    CONTENTS c;
    auto holds = [&](VECTOR3D p) {
        int32_t s = level.FindSegment(p);
        return s >= 0 && size_t(s) < in.size() && in[size_t(s)];
    };
    for (int32_t i = 0; i < MAX_THINGS; ++i)
        if (level.Things[i] && holds(level.Things[i]->position))
            c.Things.push_back(i);
    for (int32_t i = 0; i < MAX_LIGHTS; ++i)
        if (level.Lights[i] && holds(level.Lights[i]->Position))
            c.Lights.push_back(i);
    for (int32_t i = 0; i < MAX_SPECPOINTS; ++i)
        if (level.SpecPoints[i] && holds(level.SpecPoints[i]->Position))
            c.SpecPoints.push_back(i);
    return c;
}

void MoveThing(THING& t, const MOTION& m)
{
    t.position = m.Point(t.position);
    t.oldPosition = m.Point(t.oldPosition);
    for (VECTOR3D* axis : {&t.axisX, &t.axisY, &t.axisZ, &t.oldAxisX, &t.oldAxisY, &t.oldAxisZ})
        *axis = m.Direction(*axis);
    if (m.Mirror)
    {
        // A mirrored frame is left-handed; turning one axis back makes it a frame again.
        t.axisZ = -t.axisZ;
        t.oldAxisZ = -t.oldAxisZ;
    }
    if (auto* ship = dynamic_cast<SPACESHIP*>(&t))
        ship->goal = m.Point(ship->goal);
}

void MoveContents(ORVLEVEL& level, const CONTENTS& c, const MOTION& m)
{
    for (int32_t i : c.Things)
        MoveThing(*level.Things[i], m);
    for (int32_t i : c.Lights)
        level.Lights[i]->Position = m.Point(level.Lights[i]->Position);
    for (int32_t i : c.SpecPoints)
        level.SpecPoints[i]->Position = m.Point(level.SpecPoints[i]->Position);
}

template <class T>
int FreeSlots(T* const* table, int count)
{
    int n = 0;
    for (int i = 0; i < count; ++i)
        n += table[i] == nullptr;
    return n;
}

// ---------------------------------------------------------------------------
// Mirrored corner numbering

// Corner slot k of a mirrored segment takes the point of slot k ^ 1 (a mirror
// of the cell's numbering, which undoes the mirror of its shape). Then new
// side i is old side Side[i], and its corner j old corner Corner[i][j].
struct MIRRORTABLE
{
    int Side[6];
    int Corner[6][4];

    MIRRORTABLE()
    {
        for (int i = 0; i < 6; ++i)
            for (int o = 0; o < 6; ++o)
            {
                int found = 0;
                for (int j = 0; j < 4; ++j)
                    for (int k = 0; k < 4; ++k)
                        if ((SideCorners[i][j] ^ 1) == SideCorners[o][k])
                        {
                            Corner[i][j] = k;
                            ++found;
                        }
                if (found == 4)
                {
                    Side[i] = o;
                    break;
                }
            }
    }
};

void RenumberMirrored(SEGMENT& s)
{
    static const MIRRORTABLE table;
    const SEGMENT old = s;
    for (int k = 0; k < 8; ++k)
        s.Corners[k] = old.Corners[k ^ 1];
    for (int i = 0; i < 6; ++i)
    {
        const int o = table.Side[i];
        const SIDE& from = old.Sides[o];
        SIDE& to = s.Sides[i];
        to = from;
        s.Neighbours[i] = old.Neighbours[o];
        int slideFrom = 0; // the new corner that holds the old slide edge's first corner
        const int edge = ((from.Door.SlideEdge % 4) + 4) % 4;
        for (int j = 0; j < 4; ++j)
        {
            const int k = table.Corner[i][j];
            to.TexCoords[j] = from.TexCoords[k];
            to.Colours[j] = from.Colours[k];
            if (k == edge)
                slideFrom = j;
        }
        // The corners now run the other way round: the panel keeps sliding
        // onto the same edge from the same corners.
        if (from.WallType == WALL_DOOR)
            to.Door.SlideEdge = (slideFrom + 1) % 4;
    }
}

// Moves every point of the segments and what lies inside them.
bool TransformBlock(ORVLEVEL& level, const std::vector<int32_t>& list, const std::vector<int32_t>& points,
                    const MOTION& m)
{
    const CONTENTS contents = Inside(level, Flags(level, list));
    for (int32_t p : points)
        *level.Points[p] = m.Point(*level.Points[p]);
    if (m.Mirror)
        for (int32_t s : list)
            RenumberMirrored(*level.Segments[s]);
    MoveContents(level, contents, m);
    level.Changed();
    return true;
}

// The centre of the box around the points.
D3 BoxCentre(const ORVLEVEL& level, const std::vector<int32_t>& points)
{
    D3 lo{HUGE_VAL, HUGE_VAL, HUGE_VAL}, hi{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (int32_t p : points)
    {
        const D3 v = Of(*level.Points[p]);
        lo = {std::min(lo.x, v.x), std::min(lo.y, v.y), std::min(lo.z, v.z)};
        hi = {std::max(hi.x, v.x), std::max(hi.y, v.y), std::max(hi.z, v.z)};
    }
    return 0.5 * (lo + hi);
}

} // namespace

// ---------------------------------------------------------------------------

bool CopyBlock(const ORVLEVEL& level, std::span<const int32_t> segments, int32_t anchorSegment,
               int32_t anchorSide, LEVELBLOCK& block)
{
    const std::vector<int32_t> list = Existing(level, segments);
    if (list.empty() || anchorSide < 0 || anchorSide > 5)
        return false;
    std::vector<int32_t> segMap(size_t(level.SegmentsEnd()), -1);
    for (size_t i = 0; i < list.size(); ++i)
        segMap[size_t(list[i])] = int32_t(i);
    auto inBlock = [&](int32_t s) { return s >= 0 && size_t(s) < segMap.size() ? segMap[size_t(s)] : -1; };
    if (inBlock(anchorSegment) < 0 || inBlock(level.Segments[anchorSegment]->Neighbours[anchorSide]) >= 0)
        return false;

    LEVELBLOCK out;
    std::vector<int32_t> pointMap(size_t(level.PointsEnd()), -1);
    int32_t textureMap[MAX_TEXTURES];
    std::fill(std::begin(textureMap), std::end(textureMap), -1);
    out.Segments.reserve(list.size());
    for (int32_t s : list)
    {
        SEGMENT seg = *level.Segments[s];
        seg.RecordSize = SEGMENT_RECORD_SIZE;
        for (int32_t& c : seg.Corners)
        {
            const VECTOR3D* p = level.PointAt(c);
            if (!p)
                return false;
            int32_t& to = pointMap[size_t(c)];
            if (to < 0)
            {
                to = int32_t(out.Points.size());
                out.Points.push_back(*p);
            }
            c = to;
        }
        for (int i = 0; i < 6; ++i)
        {
            SIDE& side = seg.Sides[i];
            const int32_t n = seg.Neighbours[i];
            seg.Neighbours[i] = inBlock(n);
            // The opening towards a segment left behind is closed, as unlinking closes it.
            if (n != -1 && seg.Neighbours[i] < 0 && side.WallType == WALL_PASSABLE)
                side.WallType = WALL_NORMAL;
            if (side.Texture == -1)
                continue;
            const TEXTURE* t = side.Texture >= 0 && side.Texture < MAX_TEXTURES ? level.Textures[side.Texture] : nullptr;
            if (!t)
            {
                side.Texture = -1;
                continue;
            }
            int32_t& to = textureMap[side.Texture];
            if (to < 0)
            {
                to = int32_t(out.Textures.size());
                out.Textures.emplace_back(t->FileName);
            }
            side.Texture = to;
        }
        out.Segments.push_back(seg);
    }

    std::vector<uint8_t> in(segMap.size());
    for (size_t i = 0; i < in.size(); ++i)
        in[i] = segMap[i] >= 0;
    const CONTENTS contents = Inside(level, in);
    for (int32_t i : contents.Things)
    {
        BINWRITER w;
        level.Things[i]->WriteRecord(w, i);
        if (w.Bytes.size() > 4) // objects that keep no record stay behind
            out.Things.emplace_back(w.Bytes.begin() + 4, w.Bytes.end());
    }
    for (int32_t i : contents.Lights)
        out.Lights.push_back(*level.Lights[i]);
    for (int32_t i : contents.SpecPoints)
        out.SpecPoints.push_back(*level.SpecPoints[i]);
    out.AnchorSegment = inBlock(anchorSegment);
    out.AnchorSide = anchorSide;
    block = std::move(out);
    return true;
}

namespace {

// A block that can be pasted: every index inside it names something.
bool Coherent(const LEVELBLOCK& b)
{
    const int32_t points = int32_t(b.Points.size()), segments = int32_t(b.Segments.size()),
                  textures = int32_t(b.Textures.size());
    if (b.AnchorSegment < 0 || b.AnchorSegment >= segments || b.AnchorSide < 0 || b.AnchorSide > 5)
        return false;
    for (const SEGMENT& s : b.Segments)
    {
        for (int32_t c : s.Corners)
            if (c < 0 || c >= points)
                return false;
        for (int i = 0; i < 6; ++i)
            if (s.Neighbours[i] < -1 || s.Neighbours[i] >= segments || s.Sides[i].Texture < -1 ||
                s.Sides[i].Texture >= textures)
                return false;
    }
    return b.Segments[size_t(b.AnchorSegment)].Neighbours[b.AnchorSide] == -1;
}

// An object record's class, or null when no registered class has its name
// and size.
const THINGCLASS* ClassOf(const std::vector<uint8_t>& record)
{
    if (record.size() < THING_CLASS_NAME_SIZE + 4)
        return nullptr;
    char name[THING_CLASS_NAME_SIZE + 1] = {};
    std::memcpy(name, record.data(), THING_CLASS_NAME_SIZE);
    int32_t size = 0;
    BINREADER(record.data() + THING_CLASS_NAME_SIZE, 4).I32(size);
    for (const THINGCLASS& c : ThingClasses())
        if (std::strcmp(c.Name, name) == 0)
            return c.Size == size && record.size() >= size_t(THING_CLASS_NAME_SIZE + size) ? &c : nullptr;
    return nullptr;
}

} // namespace

bool PasteBlock(ORVLEVEL& level, const LEVELBLOCK& block, int32_t segment, int32_t side, int32_t shift,
                std::vector<int32_t>* pasted)
{
    if (!HasTables(level) || block.Empty() || !Coherent(block) || segment < 0 || segment >= MAX_SEGMENTS ||
        !level.Segments[segment] || side < 0 || side > 5)
        return false;
    SEGMENT& target = *level.Segments[segment];
    if (target.Neighbours[side] != -1)
        return false;
    int32_t targetPoints[4];
    VECTOR3D to[4], from[4];
    for (int k = 0; k < 4; ++k)
    {
        targetPoints[k] = target.Corners[SideCorners[side][k]];
        const VECTOR3D* p = level.PointAt(targetPoints[k]);
        if (!p)
            return false;
        to[k] = *p;
    }

    // The anchor side's points become the target side's, matched as joining matches corners.
    const SEGMENT& anchor = block.Segments[size_t(block.AnchorSegment)];
    std::vector<int32_t> pointMap(block.Points.size(), -1);
    const int32_t s = ((shift % 4) + 4) % 4;
    for (int i = 0; i < 4; ++i)
    {
        const int k = 3 - (s + i) % 4;
        const int32_t a = anchor.Corners[SideCorners[block.AnchorSide][k]];
        if (pointMap[size_t(a)] != -1)
            return false; // a side on fewer than four points has no plane to fit
        pointMap[size_t(a)] = targetPoints[i];
        from[i] = block.Points[size_t(a)];
    }
    MOTION m;
    if (!FitSides(from, to, m))
        return false;

    // Everything must fit before anything is added.
    std::vector<int32_t> textureIndex(block.Textures.size(), -1);
    int missingTextures = 0;
    for (size_t i = 0; i < block.Textures.size(); ++i)
    {
        for (int32_t t = 0; t < MAX_TEXTURES && textureIndex[i] < 0; ++t)
            if (level.Textures[t] && block.Textures[i] == level.Textures[t]->FileName)
                textureIndex[i] = t;
        missingTextures += textureIndex[i] < 0;
    }
    std::vector<const THINGCLASS*> classes;
    for (const std::vector<uint8_t>& record : block.Things)
    {
        classes.push_back(ClassOf(record));
        if (!classes.back())
            return false;
    }
    bool hasStart = false;
    for (int32_t i = 0; i < MAX_SPECPOINTS; ++i)
        hasStart = hasStart || (level.SpecPoints[i] && level.SpecPoints[i]->Type == 0);
    size_t specPoints = 0;
    for (const SPECPOINT& sp : block.SpecPoints)
        if (sp.Type != 0 || !std::exchange(hasStart, true))
            ++specPoints;
    if (FreeSlots(level.Points, MAX_POINTS) < int(block.Points.size()) - 4 ||
        FreeSlots(level.Segments, MAX_SEGMENTS) < int(block.Segments.size()) ||
        FreeSlots(level.Textures, MAX_TEXTURES) < missingTextures ||
        FreeSlots(level.Things, MAX_THINGS) < int(block.Things.size()) ||
        FreeSlots(level.Lights, MAX_LIGHTS) < int(block.Lights.size()) ||
        FreeSlots(level.SpecPoints, MAX_SPECPOINTS) < int(specPoints))
        return false;
    std::vector<int32_t> slots;
    slots.reserve(block.Segments.size());
    for (int32_t i = 0; i < MAX_SEGMENTS && slots.size() < block.Segments.size(); ++i)
        if (!level.Segments[i])
            slots.push_back(i);

    for (size_t i = 0; i < block.Textures.size(); ++i)
        if (textureIndex[i] < 0)
            textureIndex[i] = level.Add(block.Textures[i].c_str());
    for (size_t j = 0; j < block.Points.size(); ++j)
        if (pointMap[j] < 0)
            pointMap[j] = level.Add(m.Point(block.Points[j]));
    for (size_t b = 0; b < block.Segments.size(); ++b)
    {
        SEGMENT rec = block.Segments[b];
        for (int32_t& c : rec.Corners)
            c = pointMap[size_t(c)];
        for (int i = 0; i < 6; ++i)
        {
            if (rec.Neighbours[i] >= 0)
                rec.Neighbours[i] = slots[size_t(rec.Neighbours[i])];
            if (rec.Sides[i].Texture >= 0)
                rec.Sides[i].Texture = textureIndex[size_t(rec.Sides[i].Texture)];
        }
        if (int32_t(b) == block.AnchorSegment)
        {
            rec.Neighbours[block.AnchorSide] = segment;
            rec.Sides[block.AnchorSide].Texture = -1;
            rec.Sides[block.AnchorSide].WallType = WALL_PASSABLE;
        }
        level.PutSegment(slots[b], rec);
    }
    target.Neighbours[side] = slots[size_t(block.AnchorSegment)];
    target.Sides[side].Texture = -1;
    target.Sides[side].WallType = WALL_PASSABLE;

    for (size_t i = 0; i < block.Things.size(); ++i)
    {
        const std::vector<uint8_t>& record = block.Things[i];
        THING* t = classes[i]->Construct();
        BINREADER in(record.data() + THING_CLASS_NAME_SIZE + 4, record.size() - THING_CLASS_NAME_SIZE - 4);
        t->ReadMembers(in);
        MoveThing(*t, m);
        t->segment = t->lastSegment = level.FindSegment(t->position);
        if (auto* ship = dynamic_cast<SPACESHIP*>(t))
            ship->target = -1; // a slot of the level it came from
        HandToLevel(&level, t);
    }
    for (STATICLIGHT l : block.Lights)
    {
        l.Position = m.Point(l.Position);
        level.Add(l);
    }
    for (SPECPOINT sp : block.SpecPoints)
    {
        if (sp.Type == 0)
        {
            bool start = false;
            for (int32_t i = 0; i < MAX_SPECPOINTS; ++i)
                start = start || (level.SpecPoints[i] && level.SpecPoints[i]->Type == 0);
            if (start)
                continue;
        }
        sp.Position = m.Point(sp.Position);
        level.Add(sp);
    }
    level.Changed();
    if (pasted)
        *pasted = std::move(slots);
    return true;
}

bool DeleteBlock(ORVLEVEL& level, std::span<const int32_t> segments)
{
    const std::vector<int32_t> list = Existing(level, segments);
    if (list.empty())
        return false;
    // Unlinking each first and sweeping the points once leaves what deleting
    // them one by one leaves.
    for (int32_t s : list)
    {
        for (int i = 0; i < 6; ++i)
            if (level.Segments[s]->Neighbours[i] != -1)
                level.Unlink(s, i);
        level.DropSegment(s);
    }
    level.RemoveUnusedPoints();
    level.Changed();
    return true;
}

bool MoveBlock(ORVLEVEL& level, std::span<const int32_t> segments, VECTOR3D offset)
{
    const std::vector<int32_t> list = Existing(level, segments);
    std::vector<int32_t> points;
    if (list.empty() || !UsedPoints(level, list, points) || !std::isfinite(offset.x) || !std::isfinite(offset.y) ||
        !std::isfinite(offset.z))
        return false;
    MOTION m;
    m.T = Of(offset);
    return TransformBlock(level, list, points, m);
}

bool RotateBlock(ORVLEVEL& level, std::span<const int32_t> segments, int axis, double degrees)
{
    const std::vector<int32_t> list = Existing(level, segments);
    std::vector<int32_t> points;
    if (list.empty() || axis < 0 || axis > 2 || !std::isfinite(degrees) || !UsedPoints(level, list, points))
        return false;
    // Quarter turns exactly, so a grid stays a grid.
    double c, s;
    const double quarters = degrees / 90.0;
    if (quarters == std::floor(quarters))
    {
        static const double Cos[4] = {1, 0, -1, 0}, Sin[4] = {0, 1, 0, -1};
        const int q = int(((std::fmod(quarters, 4.0)) + 4.0)) % 4;
        c = Cos[q], s = Sin[q];
    }
    else
    {
        c = std::cos(degrees * PI / 180.0);
        s = std::sin(degrees * PI / 180.0);
    }
    D3 n;
    (axis == 0 ? n.x : axis == 1 ? n.y : n.z) = 1;
    const D3 centre = BoxCentre(level, points);
    MOTION m;
    m.R = AxisRotation(n, c, s);
    m.T = centre - m.R * centre;
    return TransformBlock(level, list, points, m);
}

bool MirrorBlock(ORVLEVEL& level, std::span<const int32_t> segments, int axis)
{
    const std::vector<int32_t> list = Existing(level, segments);
    std::vector<int32_t> points;
    if (list.empty() || axis < 0 || axis > 2 || !UsedPoints(level, list, points))
        return false;
    const D3 centre = BoxCentre(level, points);
    MOTION m;
    m.Mirror = true;
    m.R.M[axis][axis] = -1;
    m.T = centre - m.R * centre;
    return TransformBlock(level, list, points, m);
}

// ---------------------------------------------------------------------------
// Block files

std::vector<uint8_t> BlockImage(const LEVELBLOCK& block)
{
    BINWRITER w;
    w.Raw(LEVEL_MAGIC, sizeof LEVEL_MAGIC);
    char name[LEVEL_NAME_SIZE] = {};
    std::snprintf(name, sizeof name, BLOCK_NAME_FORMAT, int(block.AnchorSegment), int(block.AnchorSide));
    w.Raw(name, LEVEL_NAME_SIZE);
    for (size_t i = 0; i < block.Points.size(); ++i)
    {
        w.I32(int32_t(i));
        w.Vec(block.Points[i]);
    }
    w.I32(END_OF_SECTION);
    for (size_t i = 0; i < block.Segments.size(); ++i)
    {
        SEGMENT s = block.Segments[i];
        s.RecordSize = SEGMENT_RECORD_SIZE;
        w.I32(int32_t(i));
        w.Raw(&s, sizeof s);
    }
    w.I32(END_OF_SECTION);
    for (size_t i = 0; i < block.Textures.size(); ++i)
    {
        w.I32(int32_t(i));
        w.I32(TEXTURE_NAME_SIZE);
        w.Text(block.Textures[i].c_str(), TEXTURE_NAME_SIZE);
    }
    w.I32(END_OF_SECTION);
    for (size_t i = 0; i < block.Things.size(); ++i)
    {
        w.I32(int32_t(i));
        w.Raw(block.Things[i].data(), block.Things[i].size());
    }
    w.I32(END_OF_SECTION);
    for (size_t i = 0; i < block.Lights.size(); ++i)
    {
        w.I32(int32_t(i));
        w.Vec(block.Lights[i].Position);
        w.Vec(block.Lights[i].Colour);
        w.F32(block.Lights[i].Brightness);
    }
    w.I32(END_OF_SECTION);
    for (size_t i = 0; i < block.SpecPoints.size(); ++i)
    {
        w.I32(int32_t(i));
        w.Vec(block.SpecPoints[i].Position);
        w.I32(block.SpecPoints[i].Type);
    }
    w.I32(END_OF_SECTION);
    return std::move(w.Bytes);
}

bool SaveBlock(const LEVELBLOCK& block, const char* fileName)
{
    const std::vector<uint8_t> image = BlockImage(block);
    const std::string name = fileName ? fileName : "";
    if (ReplaceFile(name, image.data(), image.size()))
        return true;
    ShowMessage(MSG_CANNOT_SAVE + name, MSG_CAPTION, MSGICON_STOP);
    return false;
}

bool LoadBlock(const char* fileName, LEVELBLOCK& block)
{
    // Read as a level of its own, whose objects leave nothing behind when it goes.
    auto level = std::make_unique<ORVLEVEL>();
    level->Restoring = true;
    if (!level->LoadLevel(fileName))
        return false;
    std::vector<int32_t> all;
    for (int32_t s = 0; s < level->SegmentsEnd(); ++s)
        if (level->Segments[s])
            all.push_back(s);
    if (all.empty())
    {
        ShowMessage(MSG_NO_SEGMENT + std::string(fileName), MSG_CAPTION, MSGICON_STOP);
        return false;
    }
    int anchorSegment = -1, anchorSide = -1;
    if (std::sscanf(level->Name, BLOCK_NAME_FORMAT, &anchorSegment, &anchorSide) != 2 || anchorSegment < 0 ||
        anchorSegment >= level->SegmentsEnd() || !level->Segments[anchorSegment] || anchorSide < 0 || anchorSide > 5 ||
        level->Segments[anchorSegment]->Neighbours[anchorSide] != -1)
    {
        // A plain level: its first side that leads nowhere.
        anchorSegment = -1;
        for (size_t i = 0; i < all.size() && anchorSegment < 0; ++i)
            for (int j = 0; j < 6 && anchorSegment < 0; ++j)
                if (level->Segments[all[i]]->Neighbours[j] == -1)
                    anchorSegment = all[i], anchorSide = j;
    }
    return CopyBlock(*level, all, anchorSegment, anchorSide, block);
}

// ---------------------------------------------------------------------------
// Spreading a texture

bool SpreadTexture(ORVLEVEL& level, int32_t segment, int32_t side)
{
    if (!HasTables(level) || segment < 0 || segment >= level.SegmentsEnd() || !level.Segments[segment] || side < 0 ||
        side > 5)
        return false;
    const SIDE& first = level.Segments[segment]->Sides[side];
    VECTOR3D* corners = level.GetSideCorners(segment, side);
    if (first.Texture == -1 || first.WallType == WALL_PASSABLE || !corners)
        return false;
    const int32_t texture = first.Texture;
    const VECTOR3D normal = TriangleNormal(corners[0], corners[1], corners[2]);
    const float limit = float(std::cos(SPREAD_DEGREES * PI / 180.0));

    // The segments on each point, to find the sides across an edge.
    const int32_t points = level.PointsEnd(), segments = level.SegmentsEnd();
    std::vector<int32_t> start(size_t(points) + 1, 0), users;
    for (int32_t s = 0; s < segments; ++s)
        if (level.Segments[s])
            for (int32_t c : level.Segments[s]->Corners)
                if (c >= 0 && c < points)
                    ++start[size_t(c) + 1];
    for (int32_t p = 0; p < points; ++p)
        start[size_t(p) + 1] += start[size_t(p)];
    users.resize(size_t(start.back()));
    std::vector<int32_t> fill(start.begin(), start.end() - 1);
    for (int32_t s = 0; s < segments; ++s)
        if (level.Segments[s])
            for (int32_t c : level.Segments[s]->Corners)
                if (c >= 0 && c < points)
                    users[size_t(fill[size_t(c)]++)] = s;

    std::vector<uint8_t> seen(size_t(segments) * 6, 0);
    std::vector<std::pair<int32_t, int32_t>> queue{{segment, side}};
    seen[size_t(segment) * 6 + size_t(side)] = 1;
    for (size_t next = 0; next < queue.size(); ++next)
    {
        const auto [a, sa] = queue[next];
        const int32_t* ca = level.Segments[a]->Corners;
        for (int e = 0; e < 4; ++e)
        {
            const int32_t p = ca[SideCorners[sa][e]], q = ca[SideCorners[sa][(e + 1) % 4]];
            for (int32_t u = start[size_t(p)]; u < start[size_t(p) + 1]; ++u)
            {
                const int32_t b = users[size_t(u)];
                SEGMENT& B = *level.Segments[b];
                for (int sb = 0; sb < 6; ++sb)
                {
                    uint8_t& done = seen[size_t(b) * 6 + size_t(sb)];
                    if (done)
                        continue;
                    bool edge = false;
                    for (int k = 0; k < 4; ++k)
                    {
                        const int32_t x = B.Corners[SideCorners[sb][k]], y = B.Corners[SideCorners[sb][(k + 1) % 4]];
                        edge = edge || (x == p && y == q) || (x == q && y == p);
                    }
                    if (!edge)
                        continue;
                    SIDE& s = B.Sides[sb];
                    VECTOR3D* c = level.GetSideCorners(b, sb);
                    if (s.Texture == -1 || s.WallType == WALL_PASSABLE || !c ||
                        Dot(TriangleNormal(c[0], c[1], c[2]), normal) < limit)
                    {
                        done = 1; // never a wall to spread onto, from whichever edge
                        continue;
                    }
                    if (!level.FitTexture(a, sa, b, sb))
                        continue;
                    s.Texture = texture;
                    done = 1;
                    queue.emplace_back(b, sb);
                }
            }
        }
    }
    level.Changed();
    return true;
}
