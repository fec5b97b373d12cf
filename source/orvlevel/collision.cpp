// Points against the solid sides of the level, and sight through the chain
// of segments between two points.
#include "orvlevel/level.h"
#include "orvlevel/levelindex.h"

#include "math/geometry.h"
#include "platform/platform.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float TINY = 0.000001f;
constexpr int32_t INDEX_UNKNOWN = -2;

inline VECTOR3D Min(VECTOR3D a, VECTOR3D b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

inline VECTOR3D Max(VECTOR3D a, VECTOR3D b)
{
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

inline float Magnitude(VECTOR3D a)
{
    return std::max(std::fabs(a.x), std::max(std::fabs(a.y), std::fabs(a.z)));
}

// How far beyond `distance` a wall must lie from the tested point or path to
// be left untested. Besides a unit of room it covers the rounding of the
// tests: the edge test's distance from a difference of squares errs by up to
// a thousandth of the lengths involved (coordinates, wall size, distance).
inline double CollisionReach(double distance, double magnitude, double extent)
{
    return distance + 1.0 + 2.0e-3 * (magnitude + extent + distance);
}

// The triangle test proper; w receives the factor of the last correction
// along the normal (never positive for a non-negative distance).
bool TriangleTest(VECTOR3D* from, VECTOR3D a, VECTOR3D b, VECTOR3D c, float distance, bool swept,
                  VECTOR3D* to, bool correct, float* w)
{
    VECTOR3D n = -TriangleNormal(a, b, c);
    float t, u, v;
    if (swept)
    {
        // A path that leaves through the triangle within this move is caught
        // even when its end point is already far beyond the wall.
        VECTOR3D d = *to - *from;
        float length = Length(d);
        if (!(std::fabs(length) < TINY))
        {
            VECTOR3D dir = d / length;
            float k = CosAngle(dir, n);
            if (IntersectRayTriangle(a, b, c, *from, dir, &t, &u, &v, true) && t >= TINY && t <= length &&
                k >= 0.0f)
            {
                if (correct)
                {
                    *w = -(length - t) * k - distance;
                    *to += n * *w;
                }
                return true;
            }
        }
    }

    VECTOR3D* p = swept ? to : from;
    if (IntersectRayTriangle(a, b, c, *p, n, &t, &u, &v, true))
    {
        if (!(t >= 0.0f && t <= distance))
            return false;
        if (correct)
        {
            *w = t - distance;
            *p += n * *w;
        }
        return true;
    }

    bool hit = ORVLEVEL::CollideEdge(a, b, p, distance, correct);
    hit |= ORVLEVEL::CollideEdge(b, c, p, distance, correct);
    hit |= ORVLEVEL::CollideEdge(c, a, p, distance, correct);
    return hit;
}

} // namespace

bool ORVLEVEL::CollideEdge(VECTOR3D a, VECTOR3D b, VECTOR3D* p, float distance, bool correct)
{
    if (!p)
        return false;
    VECTOR3D e = b - a;
    VECTOR3D pa = *p - a;
    VECTOR3D pb = *p - b;
    float lengthE = Length(e);
    float lengthPa = Length(pa);
    float lengthPb = Length(pb);
    if (lengthPb < TINY || lengthPa < TINY || lengthE < TINY)
        return false;
    float ka = Dot(e, pa) / (lengthPa * lengthE);
    float kb = Dot(a - b, pb) / (lengthPb * lengthE);
    // Written so that undefined values (a broken level) count as a miss.
    if (!(ka >= 0.0f) || !(kb >= 0.0f))
        return false; // the foot lies beyond an end of the edge
    float s = lengthPa * ka;
    float h = std::sqrt(lengthPa * lengthPa - s * s); // rounding may make it undefined: a miss
    if (!(h <= distance) || std::fabs(h) < TINY)
        return false;
    if (correct)
    {
        VECTOR3D foot = a + e * s / lengthE;
        *p = foot + (*p - foot) / h * distance;
    }
    return true;
}

bool ORVLEVEL::CollideTriangle(VECTOR3D* from, VECTOR3D a, VECTOR3D b, VECTOR3D c, float distance,
                               bool swept, VECTOR3D* to, bool correct)
{
    if (!(swept ? from && to : from != nullptr))
        return false;
    // A radius read from a broken file must not throw points about.
    if (!(distance >= 0.0f))
        distance = 0.0f;
    float w = 0.0f;
    bool hit = false;
    try
    {
        hit = TriangleTest(from, a, b, c, distance, swept, to, correct, &w);
    }
    catch (...)
    {
        FatalMessage("An exception is trown", "FATAL!", MSGICON_STOP);
    }
    // A correction must never push a point out through the wall.
    ORV_ASSERT(w<=0, "source/orvlevel");
    return hit;
}

bool ORVLEVEL::MovedSideCorners(const SEGMENT& s, int32_t& index, int side, VECTOR3D c[4]) const
{
    VECTOR3D* p[4];
    if (!SidePoints(s, side, p))
        return false;
    for (int k = 0; k < 4; ++k)
        c[k] = *p[k];
    if (s.Sides[side].WallType == WALL_DOOR)
    {
        if (index == INDEX_UNKNOWN)
            index = SegmentIndexOf(&s);
        VECTOR3D offset = DoorOffset(index, side);
        int32_t e = DoorSlideEdge(index, side);
        c[(e + 1) % 4] += offset;
        c[(e + 2) % 4] += offset;
    }
    return true;
}

bool ORVLEVEL::CollideSegmentAt(VECTOR3D* from, SEGMENT& s, int32_t index, float distance, bool swept,
                                VECTOR3D* to, bool correct)
{
    // Nothing of a cell whose corners all lie out of reach of the tested
    // point (or path) can be hit, so walls of such a cell are skipped. The
    // reach has a generous margin over the distance for rounding; doors are
    // always tested, since their sliding corners may leave the cell's box.
    if (!Points)
        return false;
    VECTOR3D lo = swept ? Min(*from, *to) : *from;
    VECTOR3D hi = swept ? Max(*from, *to) : *from;
    bool haveBox = false;
    VECTOR3D cellLo, cellHi;
    for (int32_t corner : s.Corners)
    {
        const VECTOR3D* p = corner >= 0 && corner < MAX_POINTS ? Points[corner] : nullptr;
        if (!p)
            continue;
        cellLo = haveBox ? Min(cellLo, *p) : *p;
        cellHi = haveBox ? Max(cellHi, *p) : *p;
        haveBox = true;
    }
    float reach = float(CollisionReach(distance > 0.0f ? distance : 0.0f, std::max(Magnitude(lo), Magnitude(hi)),
                                       Magnitude(cellHi - cellLo)));
    bool outOfReach = !haveBox || cellLo.x > hi.x + reach || cellLo.y > hi.y + reach ||
                      cellLo.z > hi.z + reach || cellHi.x < lo.x - reach || cellHi.y < lo.y - reach ||
                      cellHi.z < lo.z - reach;

    bool any = false;
    for (int i = 0; i < 6; ++i)
    {
        int32_t wall = s.Sides[i].WallType;
        if (wall == WALL_PASSABLE || (outOfReach && wall != WALL_DOOR))
            continue;
        VECTOR3D c[4];
        if (!MovedSideCorners(s, index, i, c))
            continue;
        // Split along c1-c3, the other diagonal than drawing uses.
        bool hit = CollideTriangle(from, c[0], c[1], c[3], distance, swept, to, correct);
        if (!hit)
            hit = CollideTriangle(from, c[1], c[2], c[3], distance, swept, to, correct);
        if (hit && wall == WALL_DOOR && correct)
        {
            if (index == INDEX_UNKNOWN)
                index = SegmentIndexOf(&s);
            OpenDoor(index, i);
        }
        any |= hit;
    }
    return any;
}

bool ORVLEVEL::CollideSegment(VECTOR3D* from, SEGMENT* s, float distance, bool swept, VECTOR3D* to,
                              bool correct)
{
    if (!s || !from || (swept && !to))
        return false;
    return CollideSegmentAt(from, *s, INDEX_UNKNOWN, distance, swept, to, correct);
}

bool ORVLEVEL::CollidePoint(VECTOR3D* from, int32_t mode, SEGMENT* start, float distance, bool swept,
                            VECTOR3D* to, bool correct)
{
    if (!Segments || !from || (swept && !to))
        return false;
    if ((mode == 1 || mode == 2) && start)
    {
        bool hit = CollideSegmentAt(from, *start, INDEX_UNKNOWN, distance, swept, to, correct);
        if (mode == 2)
            return hit;
        // The neighbours in slot order, each once.
        int32_t next[6];
        std::copy(start->Neighbours, start->Neighbours + 6, next);
        std::sort(next, next + 6);
        for (int i = 0; i < 6; ++i)
        {
            if (i > 0 && next[i] == next[i - 1])
                continue;
            if (SEGMENT* n = SegmentAt(next[i]))
                hit |= CollideSegmentAt(from, *n, next[i], distance, swept, to, correct);
        }
        return hit;
    }
    if (mode < 0 || mode > 2)
        return false;
    return CollideEverySegment(from, distance, swept, to, correct);
}

bool ORVLEVEL::CollideEverySegment(VECTOR3D* from, float distance, bool swept, VECTOR3D* to, bool correct)
{
    LEVELINDEX& index = CurrentIndex();
    // The box of the tested point, or of the path, as corrections leave it.
    auto region = [&](double lo[3], double hi[3]) {
        VECTOR3D a = *from, b = swept ? *to : *from;
        lo[0] = std::min(a.x, b.x), lo[1] = std::min(a.y, b.y), lo[2] = std::min(a.z, b.z);
        hi[0] = std::max(a.x, b.x), hi[1] = std::max(a.y, b.y), hi[2] = std::max(a.z, b.z);
    };
    const double d = distance > 0.0f ? distance : 0.0;
    // How far corrections may move the point before the segments near it
    // are sought again.
    const double slack = index.Cell * 0.5;
    bool hit = false;
    int32_t first = 0; // segments below it are done
    for (;;)
    {
        double lo[3], hi[3];
        region(lo, hi);
        double magnitude = 0;
        bool tame = true;
        for (int k = 0; k < 3; ++k)
        {
            tame = tame && LEVELINDEX::Tame(lo[k]) && LEVELINDEX::Tame(hi[k]);
            magnitude = std::max(magnitude, std::max(std::fabs(lo[k]), std::fabs(hi[k])));
        }
        double reach = CollisionReach(d, magnitude + slack, index.Extent) + slack;
        if (!tame || !LEVELINDEX::Tame(reach))
        {
            // Beyond what the grid can answer for: every segment.
            for (int32_t s = first; s < SegmentsEnd(); ++s)
                if (Segments[s])
                    hit |= CollideSegmentAt(from, *Segments[s], s, distance, swept, to, correct);
            return hit;
        }
        double qlo[3], qhi[3];
        for (int k = 0; k < 3; ++k)
        {
            qlo[k] = lo[k] - reach;
            qhi[k] = hi[k] + reach;
        }
        bool moved = false;
        for (int32_t s : index.SegmentsNear(qlo, qhi, first))
        {
            double nlo[3], nhi[3];
            region(nlo, nhi);
            for (int k = 0; k < 3 && !moved; ++k)
                moved = !(nlo[k] >= lo[k] - slack && nhi[k] <= hi[k] + slack);
            if (moved)
            {
                first = s;
                break;
            }
            if (Segments[s])
                hit |= CollideSegmentAt(from, *Segments[s], s, distance, swept, to, correct);
        }
        if (!moved)
            return hit;
    }
}

// ---------------------------------------------------------------------------
// Sight

int32_t ORVLEVEL::FindCrossedSide(VECTOR3D from, VECTOR3D to, int32_t k) const
{
    const SEGMENT* s = SegmentAt(k);
    if (!s)
        return -1;
    VECTOR3D d = to - from;
    int32_t index = k;
    for (int i = 0; i < 6; ++i)
    {
        VECTOR3D c[4];
        if (!MovedSideCorners(*s, index, i, c))
            continue;
        // Culled: only the faces seen from inside count, so the side the line
        // entered through is never found again.
        float t, u, v;
        if (IntersectRayTriangle(c[0], c[1], c[3], from, d, &t, &u, &v, true) && t < 1.0f)
            return i;
        if (IntersectRayTriangle(c[1], c[2], c[3], from, d, &t, &u, &v, true) && t < 1.0f)
            return i;
    }
    return -1;
}

int32_t ORVLEVEL::SightWalk(VECTOR3D from, VECTOR3D to, int32_t k) const
{
    // Along a straight line through convex cells no segment is entered
    // twice, so a longer walk can only come from links that loop.
    for (int steps = 0; k >= 0; ++steps)
    {
        int32_t i = FindCrossedSide(from, to, k);
        if (i < 0)
            return -1;
        const SEGMENT& s = *Segments[k];
        int32_t wall = s.Sides[i].WallType;
        bool seeThrough = wall == WALL_PASSABLE || wall == WALL_SHOOTTHROUGH || wall == WALL_SEETHROUGH;
        // A link to an empty or impossible slot leads nowhere: it blocks.
        if (!seeThrough || !SegmentAt(s.Neighbours[i]) || steps >= MAX_SEGMENTS)
            return i;
        k = s.Neighbours[i];
    }
    return -1;
}

bool ORVLEVEL::LineOfSight(VECTOR3D from, VECTOR3D to, SEGMENT* start)
{
    int32_t k = start ? SegmentIndexOf(start) : -1;
    if (k < 0)
        k = FindSegment(from);
    if (k < 0)
        return false;
    return SightWalk(from, to, k) == -1;
}
