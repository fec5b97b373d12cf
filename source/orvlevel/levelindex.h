// A uniform grid over the level's segments, so that picking, FindSegment and
// collision test the few segments near a ray, point or box instead of all of
// them. It holds geometry only: which slots exist, their corner points and
// whether a side is a door. Wall types, links and door states are read from
// the level at each use, and the tests themselves are the level's own, so a
// query gives exactly what testing every segment in index order gives.
//
// The level brings it up to date whenever its Revision has moved: one pass
// over the segments finds those whose corners changed; they leave the grid
// for the loose list, which every query tests, and when too many have left,
// the grid is built again.
#pragma once

#include "orvlevel/level.h"

#include <cmath>
#include <cstdint>
#include <vector>

// What the index knows of one segment slot.
struct SEGMENTSHAPE
{
    bool Exists = false;
    bool HasDoor = false;
    // Its entries in the grid's cells are current; otherwise it is loose.
    bool InGrid = false;
    // Every corner names a point and every coordinate is tame (Tame below).
    bool Boxed = false;
    // FindSegment can only find a point inside Lo ... Hi in this segment.
    bool Bounded = false;
    uint8_t Missing = 0; // bit k: corner slot k names no point
    int32_t Corners[8] = {};
    VECTOR3D At[8];      // the corner positions when last looked at
    double Lo[3] = {}, Hi[3] = {}; // the corners' box with a margin for rounding
};

struct LEVELINDEX
{
    bool Built = false;
    uint64_t Revision = 0;
    // Segments that left the grid since it was built.
    int Left = 0;

    std::vector<SEGMENTSHAPE> Shapes;
    // In index order: existing segments outside the grid; those plus the
    // grid's segments whose FindSegment region is not bounded by their box;
    // segments with a door side (a door's corners slide out of the box).
    std::vector<int32_t> Loose, LooseFind, Doors;

    // The grid: Dims cubes of side Cell from Origin; CellStart[c] ...
    // CellStart[c + 1] - 1 are cell c's entries in CellSegments, in index order.
    double Origin[3] = {};
    double Cell = 1;
    int Dims[3] = {};
    std::vector<int32_t> CellStart, CellSegments;
    // The largest side of any gridded segment's box.
    double Extent = 0;

    // Each query marks the segments it has handed out, so that a segment in
    // several cells is visited once.
    std::vector<uint32_t> Stamp;
    uint32_t StampNow = 0;
    std::vector<int32_t> Found;

    // Up to date with the level: built anew, or refreshed when only a few
    // segments changed.
    void Update(const ORVLEVEL& level);
    void Build(const ORVLEVEL& level);

    // Coordinates beyond this (or not finite) are left to the plain scans:
    // squaring them in float would overflow.
    static bool Tame(double v) { return std::fabs(v) <= 1.0e15; }
    static bool Tame(VECTOR3D v) { return Tame(v.x) && Tame(v.y) && Tame(v.z); }

    // The first segment in index order that `holds` p, among those that can;
    // -1 when none does. p must be tame.
    template <class HOLDS>
    int32_t FirstHolding(VECTOR3D p, HOLDS holds) const;

    // In index order, from `first` on, every segment that collision within
    // lo ... hi can touch: the gridded segments whose boxes meet it, the
    // loose ones and those with doors. Returns Found.
    const std::vector<int32_t>& SegmentsNear(const double lo[3], const double hi[3], int32_t first);

    // Visits the segments the ray o + t d (t > 0) can hit in the order it
    // meets them, loose ones first. `visit`(s) tests segment s and answers
    // the nearest t found so far (or any value when none); the walk ends
    // once the ray has gone past it. o and d must be tame, d not zero.
    template <class VISIT>
    void TraceRay(VECTOR3D o, VECTOR3D d, VISIT visit);

private:
    void Shape(const ORVLEVEL& level, int32_t s, SEGMENTSHAPE& out) const;
    bool Same(const ORVLEVEL& level, int32_t s) const;
    void MakeLists();
    void MakeGrid();
    int CellIndex(int axis, double v) const;
    uint32_t NextStamp();
};

// ---------------------------------------------------------------------------

template <class HOLDS>
int32_t LEVELINDEX::FirstHolding(VECTOR3D p, HOLDS holds) const
{
    const int32_t* a = nullptr;
    const int32_t* aEnd = nullptr;
    const double q[3] = {p.x, p.y, p.z};
    bool inGrid = Dims[0] > 0;
    for (int k = 0; k < 3 && inGrid; ++k)
        inGrid = q[k] >= Origin[k] && q[k] <= Origin[k] + Dims[k] * Cell;
    if (inGrid)
    {
        int c = (CellIndex(2, q[2]) * Dims[1] + CellIndex(1, q[1])) * Dims[0] + CellIndex(0, q[0]);
        a = CellSegments.data() + CellStart[c];
        aEnd = CellSegments.data() + CellStart[c + 1];
    }
    const int32_t* b = LooseFind.data();
    const int32_t* bEnd = b + LooseFind.size();
    // Both lists are in index order: merge them, so the first that holds p
    // is the first in index order.
    while (a != aEnd || b != bEnd)
    {
        int32_t s;
        if (b == bEnd || (a != aEnd && *a < *b))
        {
            s = *a++;
            const SEGMENTSHAPE& sh = Shapes[s];
            if (!sh.InGrid || !sh.Bounded || q[0] < sh.Lo[0] || q[0] > sh.Hi[0] || q[1] < sh.Lo[1] ||
                q[1] > sh.Hi[1] || q[2] < sh.Lo[2] || q[2] > sh.Hi[2])
                continue; // out of its reach, or in the loose list
        }
        else
            s = *b++;
        if (holds(s))
            return s;
    }
    return -1;
}

template <class VISIT>
void LEVELINDEX::TraceRay(VECTOR3D o, VECTOR3D d, VISIT visit)
{
    uint32_t stamp = NextStamp();
    double best = INFINITY;
    for (int32_t s : Loose)
    {
        Stamp[s] = stamp;
        best = visit(s);
    }
    if (Dims[0] == 0)
        return;

    // The part of the ray inside the grid.
    const double org[3] = {o.x, o.y, o.z};
    const double dir[3] = {d.x, d.y, d.z};
    double t0 = 0, t1 = INFINITY;
    for (int k = 0; k < 3; ++k)
    {
        double lo = Origin[k], hi = Origin[k] + Dims[k] * Cell;
        if (dir[k] == 0)
        {
            if (org[k] < lo || org[k] > hi)
                return;
            continue;
        }
        double a = (lo - org[k]) / dir[k], b = (hi - org[k]) / dir[k];
        t0 = std::fmax(t0, std::fmin(a, b));
        t1 = std::fmin(t1, std::fmax(a, b));
    }
    if (t0 > t1)
        return;

    // Cell by cell along the ray.
    int cell[3], step[3];
    double next[3], delta[3];
    for (int k = 0; k < 3; ++k)
    {
        cell[k] = CellIndex(k, org[k] + t0 * dir[k]);
        step[k] = dir[k] > 0 ? 1 : -1;
        delta[k] = dir[k] == 0 ? INFINITY : Cell / std::fabs(dir[k]);
        double edge = Origin[k] + (cell[k] + (dir[k] > 0 ? 1 : 0)) * Cell;
        next[k] = dir[k] == 0 ? INFINITY : (edge - org[k]) / dir[k];
    }
    for (;;)
    {
        int c = (cell[2] * Dims[1] + cell[1]) * Dims[0] + cell[0];
        for (int e = CellStart[c]; e < CellStart[c + 1]; ++e)
        {
            int32_t s = CellSegments[e];
            if (Stamp[s] == stamp || !Shapes[s].InGrid)
                continue;
            Stamp[s] = stamp;
            best = visit(s);
        }
        int k = next[0] <= next[1] ? (next[0] <= next[2] ? 0 : 2) : (next[1] <= next[2] ? 1 : 2);
        // Every hit nearer than `best` lies in a cell the ray entered before
        // it; the slack covers the rounding of the hits' distances.
        if (next[k] > t1 || next[k] > best * 1.001 + 1.0e-9)
            return;
        cell[k] += step[k];
        if (cell[k] < 0 || cell[k] >= Dims[k])
            return;
        next[k] += delta[k];
    }
}
