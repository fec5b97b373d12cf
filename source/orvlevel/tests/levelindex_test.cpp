// Picking, FindSegment and collision look only at the segments the index
// names; they must answer exactly as a scan over every segment in index
// order does, on awkward cells and right after every kind of edit.
#include "orvlevel/level.h"
#include "orvlevel/levelindex.h"

#include "math/camera.h"
#include "math/geometry.h"
#include "orvlevel/tests/leveltesting.h"
#include "platform/tests/testplatform.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <vector>

namespace {

// ---------------------------------------------------------------------------
// The scans, as plainly as the operations are described

bool Corners(const ORVLEVEL& L, const SEGMENT& s, int side, VECTOR3D c[4])
{
    for (int k = 0; k < 4; ++k)
    {
        const VECTOR3D* p = L.PointAt(s.Corners[SideCorners[side][k]]);
        if (!p)
            return false;
        c[k] = *p;
    }
    return true;
}

std::pair<int32_t, int32_t> ScanPick(const ORVLEVEL& L, VECTOR3D o, VECTOR3D d)
{
    std::pair<int32_t, int32_t> picked(-1, 0);
    float best = 1.0e20f;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        for (int i = 0; L.Segments[s] && i < 6; ++i)
        {
            VECTOR3D c[4];
            float t, u, v;
            if (Corners(L, *L.Segments[s], i, c) &&
                (IntersectRayTriangle(c[0], c[1], c[2], o, d, &t, &u, &v, true) ||
                 IntersectRayTriangle(c[0], c[2], c[3], o, d, &t, &u, &v, true)) &&
                best > t)
            {
                best = t;
                picked = {s, i};
            }
        }
    return picked;
}

int32_t ScanFind(const ORVLEVEL& L, VECTOR3D p)
{
    for (int s = 0; s < MAX_SEGMENTS; ++s)
    {
        bool inside = L.Segments[s] != nullptr;
        for (int i = 0; inside && i < 6; ++i)
        {
            VECTOR3D c[4];
            inside = Corners(L, *L.Segments[s], i, c) && !(CosAngle(p - c[0], TriangleNormal(c[0], c[1], c[2])) < 0);
        }
        if (inside)
            return s;
    }
    return -1;
}

bool ScanCollide(ORVLEVEL& L, VECTOR3D* from, float distance, bool swept, VECTOR3D* to, bool correct)
{
    bool any = false;
    for (int s = 0; s < MAX_SEGMENTS; ++s)
        for (int i = 0; L.Segments[s] && i < 6; ++i)
        {
            int32_t wall = L.Segments[s]->Sides[i].WallType;
            VECTOR3D c[4];
            if (wall == WALL_PASSABLE || !Corners(L, *L.Segments[s], i, c))
                continue;
            int32_t e = L.DoorSlideEdge(s, i);
            VECTOR3D offset = L.DoorOffset(s, i);
            c[(e + 1) % 4] += offset;
            c[(e + 2) % 4] += offset;
            bool hit = ORVLEVEL::CollideTriangle(from, c[0], c[1], c[3], distance, swept, to, correct);
            if (!hit)
                hit = ORVLEVEL::CollideTriangle(from, c[1], c[2], c[3], distance, swept, to, correct);
            if (hit && wall == WALL_DOOR && correct)
                L.OpenDoor(s, i);
            any |= hit;
        }
    return any;
}

// Equal to the bit, undefined values included.
bool Bitwise(VECTOR3D a, VECTOR3D b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// ---------------------------------------------------------------------------

// Two copies of one level: A answers through the index, B by the scans (so
// that doors opened by collisions stay in step), and every edit goes to both.
class LevelIndexTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> A = std::make_unique<ORVLEVEL>();
    std::unique_ptr<ORVLEVEL> B = std::make_unique<ORVLEVEL>();
    std::mt19937 Rng{1};

    float Uniform(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(Rng); }
    int Below(int n) { return int(Rng() % uint32_t(n)); }
    VECTOR3D Jitter(float r) { return VECTOR3D(Uniform(-r, r), Uniform(-r, r), Uniform(-r, r)); }

    void Edit(const std::function<void(ORVLEVEL&)>& edit)
    {
        edit(*A);
        edit(*B);
    }

    std::vector<int32_t> Existing() const
    {
        std::vector<int32_t> s;
        for (int i = 0; i < MAX_SEGMENTS; ++i)
            if (A->Segments[i])
                s.push_back(i);
        return s;
    }

    // A random open side, selected on both copies; false if there is none.
    bool SelectOpenSide()
    {
        std::vector<int32_t> segs = Existing();
        for (int tries = 0; tries < 100; ++tries)
        {
            int32_t s = segs[size_t(Below(int(segs.size())))];
            int side = Below(6);
            int point = Below(4);
            if (A->Segments[s]->Neighbours[side] == -1 && A->GetSideCorners(s, side))
            {
                Edit([&](ORVLEVEL& L) { L.CurrentSegment = s, L.CurrentSide = side, L.CurrentPoint = point; });
                return true;
            }
        }
        return false;
    }

    // Somewhere worth asking about: near a corner of a segment (the focus
    // ones more often), at a corner exactly, or anywhere around the level.
    VECTOR3D Somewhere(const std::vector<int32_t>& focus)
    {
        std::vector<int32_t> segs = focus.empty() || Below(2) ? Existing() : focus;
        int32_t s = segs[size_t(Below(int(segs.size())))];
        const VECTOR3D* c = A->PointAt(A->Segments[s]->Corners[Below(8)]);
        VECTOR3D p = c ? *c : VECTOR3D();
        switch (Below(4))
        {
        case 0:
            return p;
        case 1:
            return p + Jitter(1);
        case 2:
            return p + Jitter(150);
        default:
            return Jitter(1500);
        }
    }

    // Rays, points and motions, each answered by A through the index and by
    // the scans on B.
    void ExpectSameAnswers(const char* after, std::vector<int32_t> focus = {})
    {
        SCOPED_TRACE(after);
        ASSERT_EQ(A->Serialize(), B->Serialize());
        // Picking moves A's selection; the edits need it as it was.
        const int32_t selection[3] = {A->CurrentSegment, A->CurrentSide, A->CurrentPoint};
        std::erase_if(focus, [&](int32_t s) { return s < 0 || !A->Segments[s]; });
        // Undefined and huge coordinates first: they pass plane tests the
        // grid cannot answer for.
        const VECTOR3D odd[2] = {VECTOR3D(NAN, 0, 0), VECTOR3D(0, 3.0e30f, 0)};
        for (int n = 0; n < 80; ++n)
        {
            CAMERA cam;
            cam.Position = n < 2 ? odd[n] : Somewhere(focus);
            cam.ViewDir = Somewhere(focus) - cam.Position;
            if (Below(4) == 0)
                cam.ViewDir = Jitter(1); // any way at all, often along no wall
            // A 2 x 2 view clicked in its middle: the ray is the view direction.
            A->CurrentSegment = -1;
            A->PickSide(1, 1, cam, 2, 2);
            auto want = ScanPick(*B, cam.Position, cam.ViewDir);
            ASSERT_EQ(std::make_pair(A->CurrentSegment, A->CurrentSide), want) << "ray " << n;

            VECTOR3D p = n < 2 ? odd[n] : Somewhere(focus);
            ASSERT_EQ(A->FindSegment(p), ScanFind(*B, p)) << "point " << n;

            VECTOR3D from = n < 2 ? odd[n] : Somewhere(focus), to = from + Jitter(Below(2) ? 20.0f : 300.0f), from2 = from, to2 = to;
            float distance = Uniform(0, 20);
            bool swept = Below(2), correct = Below(4) != 0;
            bool hit = A->CollidePoint(&from, 0, nullptr, distance, swept, &to, correct);
            ASSERT_EQ(hit, ScanCollide(*B, &from2, distance, swept, &to2, correct)) << "motion " << n;
            ASSERT_TRUE(Bitwise(from, from2) && Bitwise(to, to2)) << "motion " << n;
        }
        EXPECT_EQ(A->Serialize(), B->Serialize()); // the doors the motions touched too
        A->CurrentSegment = selection[0], A->CurrentSide = selection[1], A->CurrentPoint = selection[2];
    }
};

} // namespace

TEST_F(LevelIndexTest, AnswersAsTheScansOnAwkwardCellsAndAfterEveryEdit)
{
    for (uint32_t seed : {1u, 2u})
    {
        A = std::make_unique<ORVLEVEL>();
        B = std::make_unique<ORVLEVEL>();
        Rng.seed(seed);

        // Cells grown side by side, some bent out of shape.
        for (int n = 0; n < 60; ++n)
            if (SelectOpenSide())
            {
                Edit([](ORVLEVEL& L) { L.NewSegment(); });
                if (Below(3) == 0)
                {
                    VECTOR3D step = Jitter(40);
                    Edit([&](ORVLEVEL& L) { L.MovePoint(step.x, step.y, step.z); });
                }
            }
        // Cells no editing makes: flat, collapsed to a point, inside out,
        // turned, far away, vast, and with a corner naming no point.
        auto cube = [&](VECTOR3D offset, auto shape) {
            Edit([&](ORVLEVEL& L) {
                SEGMENT s = *L.Segments[0];
                for (int k = 0; k < 8; ++k)
                    s.Corners[k] = L.Add(shape(DefaultCubeCorners[k]) + offset);
                L.Add(&s);
            });
        };
        cube(VECTOR3D(0, -600, 0), [](VECTOR3D c) { return VECTOR3D(c.x, 0, c.z); });
        cube(VECTOR3D(300, -600, 0), [](VECTOR3D) { return VECTOR3D(); });
        cube(VECTOR3D(-600, 0, 0), [](VECTOR3D c) { return VECTOR3D(-c.x, c.y, c.z); });
        cube(VECTOR3D(600, 0, 600), [](VECTOR3D c) { return VECTOR3D(c.x * 0.7071f - c.z * 0.7071f, c.y, c.x * 0.7071f + c.z * 0.7071f); });
        if (seed == 2) // stretches the grid thin
            cube(VECTOR3D(1.0e6f, 0, 0), [](VECTOR3D c) { return c; });
        cube(VECTOR3D(), [](VECTOR3D c) { return c * 40.0f; });
        Edit([](ORVLEVEL& L) {
            SEGMENT s = *L.Segments[0];
            s.Corners[3] = -1;
            L.Add(&s);
        });
        // Doors, one slid far past its edge.
        for (int n = 0; n < 12; ++n)
        {
            std::vector<int32_t> segs = Existing();
            int32_t s = segs[size_t(Below(int(segs.size())))];
            int side = Below(6), state = Below(4), edge = Below(4);
            float opening = n == 0 ? 3.0f : Uniform(0, 1);
            Edit([&](ORVLEVEL& L) {
                DOOR& d = L.Segments[s]->Sides[side].Door;
                L.Segments[s]->Sides[side].WallType = WALL_DOOR;
                d.State = state, d.Opening = opening, d.SlideEdge = edge;
                L.Changed();
            });
        }
        ExpectSameAnswers("building");

        // Each kind of edit, then questions aimed at what it changed.
        for (int round = 0; round < 6; ++round)
        {
            if (SelectOpenSide())
            {
                Edit([](ORVLEVEL& L) { L.NewSegment(); });
                int32_t cur = A->CurrentSegment;
                ExpectSameAnswers("extrude", {cur, A->Segments[cur]->Neighbours[A->CurrentSide]});

                VECTOR3D step = Jitter(round == 5 ? 3000.0f : 60.0f); // once out of the grid
                Edit([&](ORVLEVEL& L) { L.MovePoint(step.x, step.y, step.z); });
                ExpectSameAnswers("move point", {cur});
            }
            std::vector<int32_t> segs = Existing();
            int32_t a = segs[size_t(Below(int(segs.size())))], b = segs[size_t(Below(int(segs.size())))];
            int sa = Below(6), sb = Below(6), shift = Below(4);
            Edit([&](ORVLEVEL& L) { L.JoinSides(a, sa, b, sb, shift); });
            ExpectSameAnswers("join", {a, b});

            int32_t gone = segs[size_t(Below(int(segs.size())))];
            const int32_t* n = A->Segments[gone]->Neighbours;
            std::vector<int32_t> around(n, n + 6);
            Edit([&](ORVLEVEL& L) { L.DeleteSegment(gone); });
            ExpectSameAnswers("delete", around);

            // A dialog's direct write, announced with Changed().
            segs = Existing();
            int32_t s = segs[size_t(Below(int(segs.size())))];
            int32_t corner = A->Segments[s]->Corners[Below(8)];
            VECTOR3D to = Jitter(300);
            if (A->PointAt(corner))
                Edit([&](ORVLEVEL& L) {
                    *L.Points[corner] = to;
                    L.Changed();
                });
            ExpectSameAnswers("direct write", {s});
        }
        // Enough edits at once that the grid is built again.
        for (int n = 0; n < 40; ++n)
            if (SelectOpenSide())
            {
                VECTOR3D step = Jitter(30);
                Edit([&](ORVLEVEL& L) {
                    L.NewSegment();
                    L.MovePoint(step.x, step.y, step.z);
                });
            }
        ExpectSameAnswers("many edits");
    }
}

// The grid takes every well-formed cell, and an edit sends only the cells it
// touched to the list every query tests.
TEST_F(LevelIndexTest, OnlyOddAndEditedCellsAreTestedByEveryQuery)
{
    A->CurrentSegment = 0;
    for (int n = 0; n < 150; ++n)
    {
        A->CurrentSide = n % 5 == 4 ? 1 : 0;
        A->NewSegment();
        A->CurrentSegment = A->Segments[A->CurrentSegment]->Neighbours[A->CurrentSide];
    }
    int turned = AddCubeCopy(*A, VECTOR3D(-900, 0, 0));
    for (int k = 0; k < 8; ++k)
    {
        VECTOR3D& c = *A->Points[A->Segments[turned]->Corners[k]];
        c = VECTOR3D(-900 + c.z * 0.6f + (c.x + 900) * 0.8f, c.y, c.z * 0.8f - (c.x + 900) * 0.6f);
    }
    LEVELINDEX index;
    index.Build(*A);
    EXPECT_TRUE(index.Loose.empty() && index.LooseFind.empty());

    int flat = AddCubeCopy(*A, VECTOR3D(0, -300, 0));
    for (int k = 0; k < 8; ++k)
        A->Points[A->Segments[flat]->Corners[k]]->y = -300;
    int insideOut = AddCubeCopy(*A, VECTOR3D(-450, 0, 0));
    for (int k = 0; k < 8; k += 2)
        std::swap(A->Segments[insideOut]->Corners[k], A->Segments[insideOut]->Corners[k + 1]);
    A->Changed();
    index.Build(*A);
    EXPECT_TRUE(index.Loose.empty());
    EXPECT_EQ(index.LooseFind, (std::vector<int32_t>{flat, insideOut}));

    // A corner of the cube shared by the first two cells.
    A->CurrentSegment = 0, A->CurrentSide = 0, A->CurrentPoint = 0;
    A->MovePoint(0, 5, 0);
    index.Update(*A);
    EXPECT_EQ(index.Loose, (std::vector<int32_t>{0, 1}));
    EXPECT_EQ(index.Left, 2);
}
