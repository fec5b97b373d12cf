#include "orvlevel/levelindex.h"

#include "math/geometry.h"

#include <algorithm>
#include <cstring>

namespace {

// More segments out of the grid than this, and building it again is cheaper
// than testing them all at every query.
constexpr int MAX_LEFT = 128;
// A segment whose box spans more cells than this is tested by every query
// instead of filling the grid.
constexpr int MAX_CELLS_PER_SEGMENT = 256;
// Cells per gridded segment at most, whatever the level's shape.
constexpr int CELLS_PER_SEGMENT = 4;

// FindSegment's float test may be trusted to say "outside" where the exact
// cosine is below -TRUST: its rounding stays far under that.
constexpr double TRUST = 1.0e-3;

double Plane(const double n[3], const double c[3], const double q[3])
{
    return (q[0] - c[0]) * n[0] + (q[1] - c[1]) * n[1] + (q[2] - c[2]) * n[2];
}

// Whether FindSegment can find a point in this segment only inside the box
// lo ... hi. It can, when the corners' centre lies inside all six side planes
// and every point of the box's surface lies at least `margin` outside one of
// them: the region inside all six is convex, so it cannot reach past the
// surface, and every point beyond the surface is then outside by a cosine
// of at least TRUST (margin grows with the box for that).
bool RegionInsideBox(const VECTOR3D at[8], const double lo[3], const double hi[3])
{
    double n[6][3], c[6][3];
    double centre[3] = {};
    for (int k = 0; k < 8; ++k)
    {
        centre[0] += at[k].x / 8;
        centre[1] += at[k].y / 8;
        centre[2] += at[k].z / 8;
    }
    double size = 0;
    for (int k = 0; k < 3; ++k)
        size += (hi[k] - lo[k]) * (hi[k] - lo[k]);
    size = std::sqrt(size);
    for (int i = 0; i < 6; ++i)
    {
        // The very normal FindSegment uses, float for float.
        VECTOR3D a = at[SideCorners[i][0]];
        VECTOR3D f = TriangleNormal(a, at[SideCorners[i][1]], at[SideCorners[i][2]]);
        n[i][0] = f.x, n[i][1] = f.y, n[i][2] = f.z;
        c[i][0] = a.x, c[i][1] = a.y, c[i][2] = a.z;
        if (!(Plane(n[i], c[i], centre) > 1.0e-9 * size))
            return false; // flat, inside out or badly bent
    }
    const double margin = 2 * TRUST * size;

    for (int face = 0; face < 6; ++face)
    {
        int axis = face / 2;
        int u = (axis + 1) % 3, v = (axis + 2) % 3;
        double poly[16][3];
        int count = 4;
        for (int j = 0; j < 4; ++j)
        {
            poly[j][axis] = face % 2 ? hi[axis] : lo[axis];
            poly[j][u] = (j == 1 || j == 2) ? hi[u] : lo[u];
            poly[j][v] = j >= 2 ? hi[v] : lo[v];
        }
        // Usually one plane keeps the whole face out.
        bool out = false;
        for (int i = 0; i < 6 && !out; ++i)
        {
            out = true;
            for (int j = 0; j < 4 && out; ++j)
                out = Plane(n[i], c[i], poly[j]) <= -margin;
        }
        if (out)
            continue;
        // Otherwise: what is left of the face after cutting away each
        // plane's far side must be nothing.
        for (int i = 0; i < 6 && count > 0; ++i)
        {
            double kept[16][3];
            int k = 0;
            for (int j = 0; j < count; ++j)
            {
                const double* p = poly[j];
                const double* q = poly[(j + 1) % count];
                double fp = Plane(n[i], c[i], p) + margin;
                double fq = Plane(n[i], c[i], q) + margin;
                if (fp >= 0)
                    std::memcpy(kept[k++], p, sizeof kept[0]);
                if ((fp >= 0) != (fq >= 0))
                {
                    double t = fp / (fp - fq);
                    for (int a = 0; a < 3; ++a)
                        kept[k][a] = p[a] + (q[a] - p[a]) * t;
                    ++k;
                }
            }
            count = k;
            std::memcpy(poly, kept, sizeof(double) * 3 * size_t(k));
        }
        if (count > 0)
            return false;
    }
    return true;
}

} // namespace

void LEVELINDEX::Shape(const ORVLEVEL& level, int32_t s, SEGMENTSHAPE& out) const
{
    out = SEGMENTSHAPE();
    const SEGMENT* seg = level.Segments ? level.Segments[s] : nullptr;
    if (!seg)
        return;
    out.Exists = true;
    for (const SIDE& side : seg->Sides)
        out.HasDoor |= side.WallType == WALL_DOOR;
    std::memcpy(out.Corners, seg->Corners, sizeof out.Corners);
    bool tame = true;
    for (int k = 0; k < 8; ++k)
    {
        const VECTOR3D* p = level.PointAt(seg->Corners[k]);
        if (!p)
        {
            out.Missing |= uint8_t(1 << k);
            continue;
        }
        out.At[k] = *p;
        tame = tame && Tame(*p);
    }
    if (out.Missing || !tame)
        return; // tested by every query

    double lo[3] = {INFINITY, INFINITY, INFINITY}, hi[3] = {-INFINITY, -INFINITY, -INFINITY};
    double magnitude = 0;
    for (const VECTOR3D& p : out.At)
    {
        const double q[3] = {p.x, p.y, p.z};
        for (int k = 0; k < 3; ++k)
        {
            lo[k] = std::min(lo[k], q[k]);
            hi[k] = std::max(hi[k], q[k]);
            magnitude = std::max(magnitude, std::fabs(q[k]));
        }
    }
    double size = std::max(hi[0] - lo[0], std::max(hi[1] - lo[1], hi[2] - lo[2]));
    // Far beyond the rounding of every test, relative to the coordinates.
    double pad = 0.01 * size + 1.0e-3 * magnitude + 1.0e-3;
    for (int k = 0; k < 3; ++k)
    {
        out.Lo[k] = lo[k] - pad;
        out.Hi[k] = hi[k] + pad;
    }
    out.Boxed = true;
    out.Bounded = RegionInsideBox(out.At, out.Lo, out.Hi);
}

bool LEVELINDEX::Same(const ORVLEVEL& level, int32_t s) const
{
    const SEGMENTSHAPE& sh = Shapes[s];
    const SEGMENT* seg = level.Segments ? level.Segments[s] : nullptr;
    if (!seg)
        return !sh.Exists;
    if (!sh.Exists || std::memcmp(seg->Corners, sh.Corners, sizeof sh.Corners) != 0)
        return false;
    bool door = false;
    for (const SIDE& side : seg->Sides)
        door |= side.WallType == WALL_DOOR;
    if (door != sh.HasDoor)
        return false;
    for (int k = 0; k < 8; ++k)
    {
        const VECTOR3D* p = level.PointAt(sh.Corners[k]);
        bool missing = (sh.Missing >> k) & 1;
        if (!p != missing || (p && std::memcmp(p, &sh.At[k], sizeof(VECTOR3D)) != 0))
            return false;
    }
    return true;
}

void LEVELINDEX::Update(const ORVLEVEL& level)
{
    if (!Built)
        return Build(level);
    if (Revision == level.Revision)
        return;
    // Slots past both the shapes and the level's used end are empty on both sides.
    if (size_t(level.SegmentsEnd()) > Shapes.size())
    {
        Shapes.resize(size_t(level.SegmentsEnd()));
        Stamp.resize(Shapes.size(), 0);
    }
    bool changed = false;
    for (int32_t s = 0; s < int32_t(Shapes.size()); ++s)
        if (!Same(level, s))
        {
            Shape(level, s, Shapes[s]); // out of the grid until it is built again
            ++Left;
            changed = true;
        }
    if (Left > MAX_LEFT)
        return Build(level);
    if (changed)
        MakeLists();
    Revision = level.Revision;
}

void LEVELINDEX::Build(const ORVLEVEL& level)
{
    // Shapes cover the slots the level has used; every slot above is empty.
    Shapes.resize(size_t(level.SegmentsEnd()));
    Stamp.assign(Shapes.size(), 0);
    StampNow = 0;
    for (int32_t s = 0; s < int32_t(Shapes.size()); ++s)
        Shape(level, s, Shapes[s]);
    MakeGrid();
    MakeLists();
    Built = true;
    Left = 0;
    Revision = level.Revision;
}

void LEVELINDEX::MakeLists()
{
    Loose.clear();
    LooseFind.clear();
    Doors.clear();
    for (int32_t s = 0; s < int32_t(Shapes.size()); ++s)
    {
        const SEGMENTSHAPE& sh = Shapes[s];
        if (!sh.Exists)
            continue;
        if (!sh.InGrid)
            Loose.push_back(s);
        if (!sh.InGrid || !sh.Bounded)
            LooseFind.push_back(s);
        if (sh.HasDoor)
            Doors.push_back(s);
    }
}

int LEVELINDEX::CellIndex(int axis, double v) const
{
    double c = std::floor((v - Origin[axis]) / Cell);
    if (!(c >= 0))
        return 0;
    return c >= Dims[axis] ? Dims[axis] - 1 : int(c);
}

void LEVELINDEX::MakeGrid()
{
    std::vector<double> sizes;
    Extent = 0;
    std::vector<double> centres[3];
    double all[2][3] = {{INFINITY, INFINITY, INFINITY}, {-INFINITY, -INFINITY, -INFINITY}};
    for (const SEGMENTSHAPE& sh : Shapes)
        if (sh.Boxed)
        {
            double size = 0;
            for (int k = 0; k < 3; ++k)
            {
                size = std::max(size, sh.Hi[k] - sh.Lo[k]);
                centres[k].push_back((sh.Lo[k] + sh.Hi[k]) / 2);
                all[0][k] = std::min(all[0][k], sh.Lo[k]);
                all[1][k] = std::max(all[1][k], sh.Hi[k]);
            }
            sizes.push_back(size);
        }
    Dims[0] = Dims[1] = Dims[2] = 0;
    CellStart.assign(1, 0);
    CellSegments.clear();
    const size_t count = sizes.size();
    if (count == 0)
        return;
    // The median segment's size: a few vast ones must not coarsen the grid.
    std::nth_element(sizes.begin(), sizes.begin() + long(count / 2), sizes.end());
    const double typical = sizes[count / 2];

    // The grid covers the bulk of the segments: a few far from the rest
    // would stretch every cell. Per axis, the 1st to 99th percentile of the
    // centres, widened by half that span and a few segments, bounds it; the
    // segments that reach outside are loose.
    double lo[3], hi[3];
    for (int k = 0; k < 3; ++k)
    {
        std::vector<double>& c = centres[k];
        size_t a = c.size() / 100, b = c.size() - 1 - c.size() / 100;
        std::nth_element(c.begin(), c.begin() + long(a), c.end());
        double qa = c[a];
        std::nth_element(c.begin(), c.begin() + long(b), c.end());
        double qb = c[b];
        double widen = (qb - qa) / 2 + 4 * typical;
        lo[k] = std::max(all[0][k], qa - widen);
        hi[k] = std::min(all[1][k], qb + widen);
    }

    // Cells about as large as the typical segment, within a budget of cells.
    Cell = std::max(typical, 1.0e-3);
    double budget = double(CELLS_PER_SEGMENT) * count + 64;
    for (;;)
    {
        double cells = 1;
        for (int k = 0; k < 3; ++k)
            cells *= std::max(1.0, std::ceil((hi[k] - lo[k]) / Cell));
        if (cells <= budget)
            break;
        Cell *= std::cbrt(cells / budget) * 1.01;
    }
    for (int k = 0; k < 3; ++k)
    {
        Origin[k] = lo[k];
        Dims[k] = int(std::max(1.0, std::ceil((hi[k] - lo[k]) / Cell)));
    }
    const int cells = Dims[0] * Dims[1] * Dims[2];

    // Two passes: count each cell's entries, then place them, segment by
    // segment in index order so that every cell's list is in index order.
    CellStart.assign(size_t(cells) + 1, 0);
    int range[6];
    auto rangeOf = [&](const SEGMENTSHAPE& sh, int* r) {
        long spanned = 1;
        for (int k = 0; k < 3; ++k)
        {
            r[2 * k] = CellIndex(k, sh.Lo[k]);
            r[2 * k + 1] = CellIndex(k, sh.Hi[k]);
            spanned *= r[2 * k + 1] - r[2 * k] + 1;
        }
        return spanned;
    };
    for (SEGMENTSHAPE& sh : Shapes)
    {
        sh.InGrid = sh.Boxed && rangeOf(sh, range) <= MAX_CELLS_PER_SEGMENT;
        for (int k = 0; k < 3 && sh.InGrid; ++k)
            sh.InGrid = sh.Lo[k] >= Origin[k] && sh.Hi[k] <= Origin[k] + Dims[k] * Cell;
        if (!sh.InGrid)
            continue;
        Extent = std::max(Extent, std::max(sh.Hi[0] - sh.Lo[0], std::max(sh.Hi[1] - sh.Lo[1], sh.Hi[2] - sh.Lo[2])));
        for (int z = range[4]; z <= range[5]; ++z)
            for (int y = range[2]; y <= range[3]; ++y)
                for (int x = range[0]; x <= range[1]; ++x)
                    ++CellStart[(z * Dims[1] + y) * Dims[0] + x + 1];
    }
    for (int c = 0; c < cells; ++c)
        CellStart[c + 1] += CellStart[c];
    CellSegments.resize(size_t(CellStart[cells]));
    std::vector<int32_t> fill(CellStart.begin(), CellStart.end() - 1);
    for (int32_t s = 0; s < int32_t(Shapes.size()); ++s)
    {
        const SEGMENTSHAPE& sh = Shapes[s];
        if (!sh.InGrid)
            continue;
        rangeOf(sh, range);
        for (int z = range[4]; z <= range[5]; ++z)
            for (int y = range[2]; y <= range[3]; ++y)
                for (int x = range[0]; x <= range[1]; ++x)
                    CellSegments[size_t(fill[(z * Dims[1] + y) * Dims[0] + x]++)] = s;
    }
}

uint32_t LEVELINDEX::NextStamp()
{
    if (++StampNow == 0)
    {
        std::fill(Stamp.begin(), Stamp.end(), 0);
        StampNow = 1;
    }
    return StampNow;
}

const std::vector<int32_t>& LEVELINDEX::SegmentsNear(const double lo[3], const double hi[3], int32_t first)
{
    uint32_t stamp = NextStamp();
    Found.clear();
    auto take = [&](int32_t s) {
        if (s >= first && Stamp[s] != stamp)
        {
            Stamp[s] = stamp;
            Found.push_back(s);
        }
    };
    for (int32_t s : Loose)
        take(s);
    for (int32_t s : Doors)
        take(s);
    bool meets = Dims[0] > 0;
    for (int k = 0; k < 3 && meets; ++k)
        meets = hi[k] >= Origin[k] && lo[k] <= Origin[k] + Dims[k] * Cell;
    if (meets)
    {
        int r[6];
        for (int k = 0; k < 3; ++k)
        {
            r[2 * k] = CellIndex(k, lo[k]);
            r[2 * k + 1] = CellIndex(k, hi[k]);
        }
        for (int z = r[4]; z <= r[5]; ++z)
            for (int y = r[2]; y <= r[3]; ++y)
                for (int x = r[0]; x <= r[1]; ++x)
                {
                    int c = (z * Dims[1] + y) * Dims[0] + x;
                    for (int e = CellStart[c]; e < CellStart[c + 1]; ++e)
                    {
                        int32_t s = CellSegments[size_t(e)];
                        const SEGMENTSHAPE& sh = Shapes[s];
                        if (sh.InGrid && sh.Lo[0] <= hi[0] && sh.Hi[0] >= lo[0] && sh.Lo[1] <= hi[1] &&
                            sh.Hi[1] >= lo[1] && sh.Lo[2] <= hi[2] && sh.Hi[2] >= lo[2])
                            take(s);
                    }
                }
    }
    std::sort(Found.begin(), Found.end());
    return Found;
}
