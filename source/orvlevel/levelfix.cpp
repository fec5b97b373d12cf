#include "orvlevel/levelfix.h"

#include "orvlevel/level.h"
#include "things/thing.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <memory>
#include <cstdarg>
#include <cstdio>

namespace {

SEGMENT* SegmentAt(ORVLEVEL& level, int32_t i)
{
    return level.Segments && i >= 0 && i < MAX_SEGMENTS ? level.Segments[i] : nullptr;
}

SIDE* SideOf(ORVLEVEL& level, int32_t s, int32_t side)
{
    SEGMENT* seg = SegmentAt(level, s);
    return seg && side >= 0 && side < 6 ? &seg->Sides[side] : nullptr;
}

// The side's corner positions in a fixed order, false when one is missing.
bool SortedCorners(const ORVLEVEL& level, const SEGMENT& seg, int side, std::array<VECTOR3D, 4>& out)
{
    for (int k = 0; k < 4; ++k)
    {
        const VECTOR3D* p = level.PointAt(seg.Corners[SideCorners[side][k]]);
        if (!p)
            return false;
        out[size_t(k)] = *p;
    }
    std::sort(out.begin(), out.end(), [](VECTOR3D a, VECTOR3D b) {
        return a.x != b.x ? a.x < b.x : a.y != b.y ? a.y < b.y : a.z < b.z;
    });
    return true;
}

// Cuts side `side` of segment s; a passable side becomes a wall.
void Cut(ORVLEVEL& level, SEGMENT& seg, int side)
{
    seg.Neighbours[side] = -1;
    if (seg.Sides[side].WallType == WALL_PASSABLE)
        seg.Sides[side].WallType = WALL_NORMAL;
}

std::string CutNeighbour(ORVLEVEL& level, const LEVELPROBLEM& p)
{
    SEGMENT* seg = SegmentAt(level, p.Segment);
    if (!seg || !SideOf(level, p.Segment, p.Side))
        return "";
    const int32_t n = seg->Neighbours[p.Side];
    if (n == -1 || SegmentAt(level, n))
        return "";
    Cut(level, *seg, p.Side);
    return FormatProblem("Szegmens %d, oldal %d: a nem létező szomszédra (%d) mutató kapcsolat levágva.", p.Segment, p.Side, n);
}

std::string OneWayLink(ORVLEVEL& level, const LEVELPROBLEM& p)
{
    SEGMENT* seg = SegmentAt(level, p.Segment);
    if (!seg || !SideOf(level, p.Segment, p.Side))
        return "";
    const int32_t n = seg->Neighbours[p.Side];
    SEGMENT* other = SegmentAt(level, n);
    if (!other || std::count(std::begin(other->Neighbours), std::end(other->Neighbours), p.Segment))
        return "";
    // The other end is the one free side on the same four corners; none, or
    // more than one, leaves nothing to link.
    std::array<VECTOR3D, 4> mine, theirs;
    int match = -1, matches = 0;
    if (SortedCorners(level, *seg, p.Side, mine))
        for (int j = 0; j < 6; ++j)
            if (SortedCorners(level, *other, j, theirs) && theirs == mine)
            {
                match = j;
                ++matches;
            }
    if (matches == 1 && other->Neighbours[match] == -1 && n != p.Segment)
    {
        other->Neighbours[match] = p.Segment;
        return FormatProblem("Szegmens %d, oldal %d: a(z) %d. szegmens %d. oldala visszakötve, a kapcsolat kétirányú lett.",
                      p.Segment, p.Side, n, match);
    }
    Cut(level, *seg, p.Side);
    return FormatProblem("Szegmens %d, oldal %d: a(z) %d. szegmenssel való egyirányú kapcsolat levágva (az oldalak nem "
                  "fekszenek egymáson).",
                  p.Segment, p.Side, n);
}

std::string WallUp(ORVLEVEL& level, const LEVELPROBLEM& p)
{
    SIDE* side = SideOf(level, p.Segment, p.Side);
    if (!side || side->WallType != WALL_PASSABLE || level.Segments[p.Segment]->Neighbours[p.Side] != -1)
        return "";
    side->WallType = WALL_NORMAL;
    return FormatProblem("Szegmens %d, oldal %d: az átjárható oldal mögött nincs szegmens, fal lett belőle.", p.Segment, p.Side);
}

using USEDPOINTS = std::bitset<MAX_POINTS>;

void MarkUsed(const ORVLEVEL& level, USEDPOINTS& used)
{
    for (int32_t s = 0; s < level.SegmentsEnd(); ++s)
        if (const SEGMENT* seg = level.Segments[s])
            for (int32_t c : seg->Corners)
                if (c >= 0 && c < MAX_POINTS)
                    used.set(size_t(c));
}

// `used`: the corners of every segment, when the caller already knows them.
std::string UnusedPoint(ORVLEVEL& level, const LEVELPROBLEM& p, const USEDPOINTS* used)
{
    if (!level.PointAt(p.Point))
        return "";
    USEDPOINTS own;
    if (!used)
    {
        MarkUsed(level, own);
        used = &own;
    }
    if (used->test(size_t(p.Point)))
        return "";
    level.DeletePoint(p.Point);
    return FormatProblem("Pont %d: törölve, egyik szegmens sem használta.", p.Point);
}

std::string EmptyTexture(ORVLEVEL& level, const LEVELPROBLEM& p)
{
    SIDE* side = SideOf(level, p.Segment, p.Side);
    if (!side || side->Texture == -1 ||
        (side->Texture >= 0 && side->Texture < MAX_TEXTURES && level.Textures && level.Textures[side->Texture]))
        return "";
    const int32_t was = side->Texture;
    side->Texture = -1;
    return FormatProblem("Szegmens %d, oldal %d: az üres textúrahely (%d) helyett textúrázatlan lett (-1).", p.Segment,
                  p.Side, was);
}

// The centre of the segment whose centre is nearest to p, among segments
// that hold their own centre; -1 when there is none.
int32_t NearestCentre(const ORVLEVEL& level, VECTOR3D p, VECTOR3D& centre)
{
    int32_t best = -1;
    float bestDistance = 0.0f;
    for (int32_t s = 0; s < level.SegmentsEnd(); ++s)
    {
        const SEGMENT* seg = level.Segments[s];
        if (!seg)
            continue;
        VECTOR3D c;
        bool whole = true;
        for (int32_t corner : seg->Corners)
            if (const VECTOR3D* v = level.PointAt(corner))
                c += *v;
            else
                whole = false;
        if (!whole)
            continue;
        c /= 8.0f;
        const float d = Length(c - p);
        if ((best < 0 || d < bestDistance) && level.FindSegment(c) >= 0)
        {
            best = s;
            bestDistance = d;
            centre = c;
        }
    }
    return best;
}

std::string MoveObject(ORVLEVEL& level, const LEVELPROBLEM& p)
{
    VECTOR3D* at = nullptr;
    THING* thing = nullptr;
    if (p.Fix == FIX_MOVETHING && level.Things && p.Object >= 0 && p.Object < MAX_THINGS && level.Things[p.Object])
        at = &(thing = level.Things[p.Object])->position;
    else if (p.Fix == FIX_MOVELIGHT && level.Lights && p.Object >= 0 && p.Object < MAX_LIGHTS && level.Lights[p.Object])
        at = &level.Lights[p.Object]->Position;
    else if (p.Fix == FIX_MOVESPECPOINT && level.SpecPoints && p.Object >= 0 && p.Object < MAX_SPECPOINTS &&
             level.SpecPoints[p.Object])
        at = &level.SpecPoints[p.Object]->Position;
    VECTOR3D centre;
    const int32_t s = at && level.FindSegment(*at) < 0 ? NearestCentre(level, *at, centre) : -1;
    if (s < 0)
        return "";
    *at = centre;
    if (thing)
        thing->oldPosition = centre;
    switch (p.Fix)
    {
    case FIX_MOVETHING:
        return FormatProblem("Cucc %d (%s): áthelyezve a(z) %d. szegmens közepére.", p.Object, thing->ClassName(), s);
    case FIX_MOVELIGHT: return FormatProblem("Fényforrás %d: áthelyezve a(z) %d. szegmens közepére.", p.Object, s);
    default: return FormatProblem("Különleges pont %d: áthelyezve a(z) %d. szegmens közepére.", p.Object, s);
    }
}

} // namespace

namespace {

std::string Apply(ORVLEVEL& level, const LEVELPROBLEM& problem, const USEDPOINTS* used)
{
    if (!level.Segments || !level.Points)
        return "";
    std::string done;
    switch (problem.Fix)
    {
    case FIX_CUTNEIGHBOUR: done = CutNeighbour(level, problem); break;
    case FIX_ONEWAYLINK: done = OneWayLink(level, problem); break;
    case FIX_WALLUP: done = WallUp(level, problem); break;
    case FIX_UNUSEDPOINT: done = UnusedPoint(level, problem, used); break;
    case FIX_EMPTYTEXTURE: done = EmptyTexture(level, problem); break;
    case FIX_MOVETHING:
    case FIX_MOVELIGHT:
    case FIX_MOVESPECPOINT: done = MoveObject(level, problem); break;
    default: break;
    }
    if (!done.empty())
        level.Changed();
    return done;
}

} // namespace

std::string ApplyFix(ORVLEVEL& level, const LEVELPROBLEM& problem)
{
    return Apply(level, problem, nullptr);
}

std::vector<std::string> FixLevel(ORVLEVEL& level)
{
    std::vector<std::string> lines;
    // A repair can uncover another (a cut side that was passable), so the
    // check runs again; a round that repairs nothing ends it.
    for (int round = 0; round < 8; ++round)
    {
        bool any = false;
        // No repair changes a corner, so one look serves every unused point.
        auto used = std::make_unique<USEDPOINTS>();
        MarkUsed(level, *used);
        for (const LEVELPROBLEM& p : CheckLevel(level))
            if (HasFix(p))
                if (std::string line = Apply(level, p, used.get()); !line.empty())
                {
                    lines.push_back(std::move(line));
                    any = true;
                }
        if (!any)
            break;
    }
    return lines;
}
