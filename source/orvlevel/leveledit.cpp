// Building and changing the level's geometry: picking sides, extruding,
// joining and deleting segments, moving points and placing textures.
#include "orvlevel/level.h"
#include "orvlevel/levelindex.h"

#include "math/camera.h"
#include "math/geometry.h"
#include "platform/platform.h"

#include <cmath>

namespace {

// Picking starts with anything nearer than this.
constexpr float PICK_FAR = 1.0e20f;
// Texture units per world unit of a restored side.
constexpr float RESTORE_SCALE = 100.0f;

// A shift entered as 3 - k may be anything; only its value mod 4 counts.
int32_t ShiftMod4(int32_t shift)
{
    int32_t s = shift % 4;
    return s < 0 ? s + 4 : s;
}

// Rounding can leave a tiny negative value where the true one is 0.
double SafeSqrt(double v)
{
    return v > 0.0 ? std::sqrt(v) : 0.0;
}

template <class T>
bool CountFree(T* const* table, int count, int from, int needed)
{
    if (!table)
        return false;
    for (int i = from; i < count && needed > 0; ++i)
        if (!table[i])
            --needed;
    return needed <= 0;
}

} // namespace

bool ORVLEVEL::HasFreeSlots(TABLEID table, int needed) const
{
    // Every slot below the hint is in use.
    switch (table)
    {
    case TABLE_POINTS:
        return CountFree(Points, MAX_POINTS, FreeHint[table], needed);
    case TABLE_SEGMENTS:
        return CountFree(Segments, MAX_SEGMENTS, FreeHint[table], needed);
    default:
        return false;
    }
}

// ---------------------------------------------------------------------------
// Picking

void ORVLEVEL::PickSide(int x, int y, const CAMERA& camera, int width, int height)
{
    CurrentSide = 0;
    if (!Segments || width <= 0 || height <= 0)
        return;

    float halfW = width * 0.5f;
    float halfH = height * 0.5f;
    float sx = (x - halfW) / halfW;
    float sy = (y - halfH) / halfH * camera.Aspect;
    VECTOR3D o = camera.Position;
    VECTOR3D d = camera.ViewDir + sx * camera.Right - sy * camera.Up;

    // The nearest hit wins; among hits at the same distance the first in
    // index order (segment, then side), as a scan in that order finds.
    float best = PICK_FAR;
    int32_t bestSegment = -1;
    int bestSide = 0;
    auto test = [&](int32_t s) {
        const SEGMENT* seg = Segments[s];
        for (int i = 0; seg && i < 6; ++i)
        {
            VECTOR3D* c[4];
            if (!SidePoints(*seg, i, c))
                continue;
            float t, u, v;
            bool hit = IntersectRayTriangle(*c[0], *c[1], *c[2], o, d, &t, &u, &v, true) ||
                       IntersectRayTriangle(*c[0], *c[2], *c[3], o, d, &t, &u, &v, true);
            if (hit && (t < best || (t == best && bestSegment >= 0 &&
                                     (s < bestSegment || (s == bestSegment && i < bestSide)))))
            {
                best = t;
                bestSegment = s;
                bestSide = i;
            }
        }
        return bestSegment >= 0 ? double(best) : INFINITY;
    };
    if (LEVELINDEX::Tame(o) && LEVELINDEX::Tame(d) && !(d == VECTOR3D()))
        CurrentIndex().TraceRay(o, d, test);
    else // a ray the grid cannot follow
        for (int s = 0; s < SegmentsEnd(); ++s)
            test(s);
    if (bestSegment >= 0)
    {
        CurrentSide = bestSide;
        CurrentSegment = bestSegment;
    }
}

// ---------------------------------------------------------------------------
// Extruding

void ORVLEVEL::NewSegment()
{
    SIDE* side = GetCurrentSide();
    if (!side)
        return;
    SEGMENT& cur = *Segments[CurrentSegment];
    if (cur.Neighbours[CurrentSide] != -1)
    {
        InfoBeep();
        return;
    }
    VECTOR3D* c[4];
    if (!SidePoints(cur, CurrentSide, c))
    {
        InfoBeep(); // a broken side has no plane to extrude from
        return;
    }
    VECTOR3D p[4] = {*c[0], *c[1], *c[2], *c[3]};
    int32_t in[4];
    for (int k = 0; k < 4; ++k)
        in[k] = cur.Corners[SideCorners[CurrentSide][k]];

    // Outward: the opposite of the side's inward normal.
    VECTOR3D n = Cross(p[2] - p[0], p[1] - p[0]);
    float len = Length(n);
    // All four points and the segment must fit, or the new cell would name
    // point -1; a collapsed side has no direction to extrude in.
    if (len == 0.0f || !std::isfinite(len) || !HasFreeSlots(TABLE_POINTS, 4) ||
        !HasFreeSlots(TABLE_SEGMENTS, 1))
    {
        InfoBeep();
        return;
    }
    n = n / len;
    float depth = (Length(p[1] - p[0]) + Length(p[2] - p[1]) + Length(p[3] - p[2]) +
                   Length(p[0] - p[3])) * 0.25f;

    int32_t j[4];
    for (int k = 0; k < 4; ++k)
        j[k] = Add(p[k] + depth * n);

    SEGMENT rec;
    const int32_t corners[8] = {j[2], j[3], j[1], j[0], in[2], in[3], in[1], in[0]};
    for (int k = 0; k < 8; ++k)
        rec.Corners[k] = corners[k];
    for (int k = 0; k < 6; ++k)
    {
        rec.Sides[k] = *side;
        rec.Neighbours[k] = -1;
        rec.Sides[k].WallType = WALL_NORMAL;
    }
    // Side 5 is the selected side seen from the new cell.
    rec.Neighbours[5] = CurrentSegment;
    rec.Sides[5].Texture = -1;
    rec.Sides[5].WallType = WALL_PASSABLE;
    rec.Type = SEGTYPE_NORMAL;
    int32_t m = Add(&rec);

    cur.Neighbours[CurrentSide] = m;
    side->Texture = -1;
    side->WallType = WALL_PASSABLE;
    Changed();
}

// ---------------------------------------------------------------------------
// Joining

bool ORVLEVEL::JoinSides(int32_t a, int32_t sideA, int32_t b, int32_t sideB, int32_t shift)
{
    if (a == b && sideA == sideB)
        return false;
    SIDE* sa = SideAt(a, sideA);
    SIDE* sb = SideAt(b, sideB);
    VECTOR3D* pa[4];
    if (!sa || !sb || !SidePoints(*Segments[a], sideA, pa))
        return false; // B must not take over corners that name no point
    SEGMENT& A = *Segments[a];
    SEGMENT& B = *Segments[b];

    int32_t s = ShiftMod4(shift);
    for (int i = 0; i < 4; ++i)
    {
        int k = 3 - (s + i) % 4;
        B.Corners[SideCorners[sideB][k]] = A.Corners[SideCorners[sideA][i]];
    }
    sb->Texture = -1;
    sb->WallType = WALL_PASSABLE;
    B.Neighbours[sideB] = a;
    sa->Texture = -1;
    sa->WallType = WALL_PASSABLE;
    A.Neighbours[sideA] = b;
    RemoveUnusedPoints();
    Changed();
    return true;
}

bool ORVLEVEL::JoinWithPicked(int x, int y, const CAMERA& camera, int width, int height,
                              int32_t shift)
{
    // Without a selection before the click there is no first side: the click
    // only selects.
    bool hadFirst = GetCurrentSide() != nullptr;
    int32_t a = CurrentSegment, sideA = CurrentSide;
    PickSide(x, y, camera, width, height);
    if (!hadFirst || !GetCurrentSide())
        return false;
    return JoinSides(a, sideA, CurrentSegment, CurrentSide, shift);
}

// ---------------------------------------------------------------------------
// Texture fitting

bool ORVLEVEL::FitTexture(int32_t a, int32_t sideA, int32_t b, int32_t sideB)
{
    if (a == b && sideA == sideB)
        return false;
    SIDE* sa = SideAt(a, sideA);
    SIDE* sb = SideAt(b, sideB);
    VECTOR3D* pb[4];
    if (!sa || !sb || !SidePoints(*Segments[b], sideB, pb))
        return false;
    const SEGMENT& A = *Segments[a];
    const SEGMENT& B = *Segments[b];

    TEXPAIR work[4];
    for (int j = 0; j < 4; ++j)
        work[j] = sb->TexCoords[j];
    int known[2] = {-1, -1};
    int shared = 0;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            if (A.Corners[SideCorners[sideA][i]] == B.Corners[SideCorners[sideB][j]])
            {
                if (shared < 2)
                    known[shared] = j;
                ++shared;
                work[j] = sa->TexCoords[i];
            }
    if (shared != 2)
        return false;

    VECTOR3D points[4] = {*pb[0], *pb[1], *pb[2], *pb[3]};
    CalcTexCoordsFromEdge(work, points, 4, known[0], known[1]);
    for (int j = 0; j < 4; ++j)
        sb->TexCoords[j] = work[j];
    Changed();
    return true;
}

bool ORVLEVEL::FitTextureToPicked(int x, int y, const CAMERA& camera, int width, int height)
{
    bool hadFirst = GetCurrentSide() != nullptr;
    int32_t a = CurrentSegment, sideA = CurrentSide;
    PickSide(x, y, camera, width, height);
    if (!hadFirst || !GetCurrentSide())
        return false;
    return FitTexture(a, sideA, CurrentSegment, CurrentSide);
}

// ---------------------------------------------------------------------------
// Deleting

void ORVLEVEL::Unlink(int32_t index, int32_t side)
{
    SIDE* d = SideAt(index, side);
    if (!d)
        return;
    SEGMENT& S = *Segments[index];
    int32_t n = S.Neighbours[side];
    if (n == -1)
        return;
    S.Neighbours[side] = -1;
    d->WallType = WALL_NORMAL;
    Changed();
    // A link into an empty or impossible slot has no other end to clear.
    SEGMENT* N = SegmentAt(n);
    if (!N)
        return;
    for (int i = 0; i < 6; ++i)
        if (N->Neighbours[i] == index)
        {
            N->Neighbours[i] = -1;
            N->Sides[i].WallType = WALL_NORMAL;
        }
}

void ORVLEVEL::DeleteSegment(int32_t index)
{
    SEGMENT* s = SegmentAt(index);
    if (!s)
        return;
    for (int i = 0; i < 6; ++i)
        if (s->Neighbours[i] != -1)
            Unlink(index, i);
    Segments[index] = nullptr; // its room in the store waits for the next segment
    SlotFreed(TABLE_SEGMENTS, index);
    Changed();
    RemoveUnusedPoints();
}

void ORVLEVEL::DeleteCurrentSegment()
{
    // The selection keeps naming the emptied slot, which reads as none.
    if (GetCurrentSegment())
        DeleteSegment(CurrentSegment);
}

// ---------------------------------------------------------------------------
// Points and texture coordinates

void ORVLEVEL::MovePoint(float dx, float dy, float dz)
{
    if (VECTOR3D* p = GetCurrentPointPtr())
    {
        *p += VECTOR3D(dx, dy, dz);
        Changed();
    }
}

void ORVLEVEL::RestoreTexture()
{
    SIDE* side = GetCurrentSide();
    VECTOR3D* corners = GetCurrentSideCorners();
    if (!side || !corners)
        return;
    VECTOR3D c[4] = {corners[0], corners[1], corners[2], corners[3]};
    TexCoordsFromCorners(side->TexCoords, c, 4, RESTORE_SCALE);
    Changed();
}

void ORVLEVEL::TexCoordsFromCorners(TEXPAIR* pairs, const VECTOR3D* c, int n, float scale)
{
    if (!pairs || !c || n < 3)
        return;
    float d = Length(c[0] - c[1]);
    if (d == 0.0f)
        d = 0.000001f;
    pairs[0] = {0, 0};
    pairs[1] = {d, 0};
    for (int k = 2; k < n; ++k)
    {
        float a = Length(c[0] - c[k]);
        float b = Length(c[1] - c[k]);
        float s = (d * d + a * a - b * b) / (2 * d);
        float t = float(SafeSqrt(double(a) * a - double(s) * s));
        pairs[k] = {s, t};
    }
    for (int k = 0; k < n; ++k)
    {
        pairs[k].s /= scale;
        pairs[k].t /= scale;
    }
}

void ORVLEVEL::CalcTexCoordsFromEdge(TEXPAIR* pairs, const VECTOR3D* points, int n, int a, int b)
{
    if (!pairs || !points || a < 0 || a >= n || b < 0 || b >= n)
        return;
    float l3 = Length(points[b] - points[a]);
    if (l3 == 0.0f)
        return;
    float ds = pairs[b].s - pairs[a].s;
    float dt = pairs[b].t - pairs[a].t;
    float l2 = std::sqrt(ds * ds + dt * dt);
    if (l2 == 0.0f)
        return;
    float us = ds / l2, ut = dt / l2;
    float k = l2 / l3;
    float ns = ut, nt = -us; // U turned a quarter turn clockwise
    for (int i = 0; i < n; ++i)
    {
        if (i == a || i == b)
            continue;
        float da = Length(points[i] - points[a]);
        float db = Length(points[i] - points[b]);
        float x = (da * da + l3 * l3 - db * db) / (2 * l3);
        float y = float(SafeSqrt(double(da) * da - double(x) * x));
        pairs[i].s = pairs[a].s + k * x * us + k * y * ns;
        pairs[i].t = pairs[a].t + k * x * ut + k * y * nt;
    }
}
