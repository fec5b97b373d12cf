#include "things/thing.h"

#include "math/geometry.h"
#include "math/random.h"
#include "platform/binio.h"
#include "orvlevel/level.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr float RAND_SCALE = 1.0f / 32767.0f;
}

THING::~THING() = default;

bool THING::LeavesEffects() const
{
    return !Level || !Level->Restoring;
}

void THING::Draw() {}

void THING::Update() {}

void THING::Control(int32_t how, float amount, int32_t, int32_t, int32_t, int32_t)
{
    MoveFrame(how, amount, &position, &axisX, &axisY, &axisZ);
}

void THING::DrawCockpit() {}

void THING::AfterLoad() {}

void THING::WriteRecord(BINWRITER&, int32_t) const {}

bool THING::CollideBodyPoint(float z, float y, float x, SEGMENT* seg)
{
    if (!Level)
        return false;
    // The point's path from where it sat at the end of the last tick to where
    // the new frame puts it.
    VECTOR3D from = oldPosition + oldAxisZ * z + oldAxisY * y + oldAxisX * x;
    VECTOR3D d = axisZ * z + axisY * y + axisX * x;
    VECTOR3D to = position + d;
    if (!Level->CollidePoint(&from, 1, seg, 5.0f, true, &to, true))
        return false;
    position = to - d;
    hit = true;
    return true;
}

void THING::Members(THINGMEMBERS& m)
{
    m.Vec("position", position);
    m.Vec("oldPosition", oldPosition);
    m.Vec("axisY", axisY);
    m.Vec("axisZ", axisZ);
    m.Vec("axisX", axisX);
    m.Vec("oldAxisY", oldAxisY);
    m.Vec("oldAxisZ", oldAxisZ);
    m.Vec("oldAxisX", oldAxisX);
    m.I32("segment", segment);
    m.I32("lastSegment", lastSegment);
    m.F32("outerRadius", outerRadius);
    m.F32("innerRadius", innerRadius);
    m.Flag("hit", hit);
    m.Flag("ghost", ghost);
    m.Flag("dead", dead);
    m.F32("boxZLow", boxZLow);
    m.F32("boxZHigh", boxZHigh);
    m.F32("boxYLow", boxYLow);
    m.F32("boxYHigh", boxYHigh);
    m.F32("boxXLow", boxXLow);
    m.F32("boxXHigh", boxXHigh);
    m.F32("pushDistance", pushDistance);
}

namespace {

class MEMBERWRITER : public THINGMEMBERS
{
public:
    explicit MEMBERWRITER(BINWRITER& out) : Out(out) {}
    void Vec(const char*, VECTOR3D& v) override { Out.Vec(v); }
    void I32(const char*, int32_t& v) override { Out.I32(v); }
    void F32(const char*, float& v) override { Out.F32(v); }
    void Flag(const char*, bool& v) override { Out.Bool(v); }
    void Pointer(const char*, uint32_t stored) override { Out.U32(stored); }
    void Texts(const char*, char* fields, int count, int size) override { Out.Raw(fields, size_t(count) * size_t(size)); }

private:
    BINWRITER& Out;
};

class MEMBERREADER : public THINGMEMBERS
{
public:
    explicit MEMBERREADER(BINREADER& in) : In(in) {}
    bool Ok = true;
    void Vec(const char*, VECTOR3D& v) override { Ok = Ok && In.Vec(v); }
    void I32(const char*, int32_t& v) override { Ok = Ok && In.I32(v); }
    void F32(const char*, float& v) override { Ok = Ok && In.F32(v); }
    void Flag(const char*, bool& v) override { Ok = Ok && In.Bool(v); }
    void Pointer(const char*, uint32_t) override
    {
        uint32_t ignored;
        Ok = Ok && In.U32(ignored);
    }
    void Texts(const char*, char* fields, int count, int size) override
    {
        // Kept byte for byte: a field may lack its NUL, so every user of
        // such texts stops at the field's end.
        Ok = Ok && In.Raw(fields, size_t(count) * size_t(size));
    }

private:
    BINREADER& In;
};

} // namespace

void THING::WriteMembers(BINWRITER& out) const
{
    MEMBERWRITER w(out);
    // Visiting never changes a member; the writer only reads them.
    const_cast<THING*>(this)->Members(w);
}

bool THING::ReadMembers(BINREADER& in)
{
    MEMBERREADER r(in);
    Members(r);
    return r.Ok;
}

void THING::WriteClassRecord(BINWRITER& out, int32_t index) const
{
    out.I32(index);
    out.Text(ClassName(), THING_CLASS_NAME_SIZE);
    out.I32(RecordSize());
    WriteMembers(out);
}

THINGBOX THING::GetBox() const
{
    THINGBOX b;
    b.Centre = position + axisX * ((boxXHigh + boxXLow) * 0.5f) + axisY * ((boxYHigh + boxYLow) * 0.5f) +
               axisZ * ((boxZHigh + boxZLow) * 0.5f);
    b.HalfZ = axisZ * ((std::fabs(boxZLow) + std::fabs(boxZHigh)) * 0.5f);
    b.HalfY = axisY * ((std::fabs(boxYLow) + std::fabs(boxYHigh)) * 0.5f);
    b.HalfX = axisX * ((std::fabs(boxXLow) + std::fabs(boxXHigh)) * 0.5f);
    return b;
}

VECTOR3D THING::RandomBoxOffset() const
{
    THINGBOX b = GetBox();
    float r1 = Rand() * RAND_SCALE;
    float r2 = Rand() * RAND_SCALE;
    float r3 = Rand() * RAND_SCALE;
    return (b.HalfX * (2.0f * r3) - b.HalfX) + (b.HalfY * (2.0f * r2) - b.HalfY) + (b.HalfZ * (2.0f * r1) - b.HalfZ);
}

VECTOR3D THING::RandomOffset(float r, bool)
{
    // Rejection sampling in the cube around the ball; Rand never exceeds
    // 32767, so each try lands in the ball with probability pi/6. A negative
    // radius has no ball, and beyond 1e18 the squared length would overflow
    // to infinity and reject every try, so that test is made on the unit ball.
    if (r < 0.0f)
        return VECTOR3D(0.0f, 0.0f, 0.0f);
    for (;;) {
        float x = Rand() * RAND_SCALE * 2.0f * r - r;
        float y = Rand() * RAND_SCALE * 2.0f * r - r;
        float z = Rand() * RAND_SCALE * 2.0f * r - r;
        VECTOR3D v(x, y, z);
        if (r < 1.0e18f ? !(Length(v) > r) : !(Length(v * (1.0f / r)) > 1.0f))
            return v;
    }
}

bool PointInBox(VECTOR3D p, VECTOR3D centre, VECTOR3D h1, VECTOR3D h2, VECTOR3D h3)
{
    float a, b, c;
    if (!Decompose3(h1, h2, h3, &a, &b, &c, p - centre))
        return false;
    return std::fabs(a) <= 1.0f && std::fabs(b) <= 1.0f && std::fabs(c) <= 1.0f;
}

bool SegmentCrossesBox(VECTOR3D p0, VECTOR3D p1, VECTOR3D centre, VECTOR3D h1, VECTOR3D h2, VECTOR3D h3)
{
    if (p0 == p1)
        return PointInBox(p0, centre, h1, h2, h3);
    VECTOR3D d = p1 - p0;
    auto corner = [&](float s1, float s2, float s3) { return centre + h1 * s1 + h2 * s2 + h3 * s3; };
    static const float starts[4][3] = {{-1, 1, 1}, {1, 1, -1}, {-1, -1, -1}, {1, -1, 1}};
    for (const auto& s : starts) {
        VECTOR3D c = corner(s[0], s[1], s[2]);
        // The three corners adjacent to c, each differing in one sign.
        VECTOR3D n[3] = {corner(-s[0], s[1], s[2]), corner(s[0], -s[1], s[2]), corner(s[0], s[1], -s[2])};
        for (int i = 0; i < 3; ++i) {
            float t, u, v;
            if (IntersectRayTriangle(c, n[i], n[(i + 1) % 3], p0, d, &t, &u, &v, false) && t > 0.0f && t < 1.0f)
                return true;
        }
    }
    return false;
}

bool BoxesOverlap(const THINGBOX& a, const THINGBOX& b)
{
    float reach = Length(a.HalfZ + a.HalfY + a.HalfX) + Length(b.HalfZ + b.HalfY + b.HalfX);
    if (Length(a.Centre - b.Centre) > reach)
        return false;
    if (PointInBox(a.Centre, b.Centre, b.HalfZ, b.HalfY, b.HalfX) ||
        PointInBox(b.Centre, a.Centre, a.HalfZ, a.HalfY, a.HalfX))
        return true;
    // The twelve edges of A: from each of four corners to its three neighbours.
    auto corner = [&](float s1, float s2, float s3) { return a.Centre + a.HalfZ * s1 + a.HalfY * s2 + a.HalfX * s3; };
    static const float starts[4][3] = {{-1, 1, 1}, {1, 1, -1}, {-1, -1, -1}, {1, -1, 1}};
    for (const auto& s : starts) {
        VECTOR3D c = corner(s[0], s[1], s[2]);
        VECTOR3D n[3] = {corner(-s[0], s[1], s[2]), corner(s[0], -s[1], s[2]), corner(s[0], s[1], -s[2])};
        for (const VECTOR3D& e : n)
            if (SegmentCrossesBox(c, e, b.Centre, b.HalfZ, b.HalfY, b.HalfX))
                return true;
    }
    return false;
}

namespace {

// An axis-aligned box around an object's box and the path of its centre since
// oldPosition, padded so that the exact tests' tolerances stay inside it.
using REACH = THINGREACH;

REACH ReachOf(const THINGBOX& box, VECTOR3D start)
{
    const VECTOR3D h[3] = {box.HalfZ, box.HalfY, box.HalfX};
    const float c[3] = {box.Centre.x, box.Centre.y, box.Centre.z};
    const float p[3] = {start.x, start.y, start.z};
    REACH r;
    for (int k = 0; k < 3; ++k)
    {
        float e = 0.0f;
        for (const VECTOR3D& v : h)
            e += std::fabs(k == 0 ? v.x : k == 1 ? v.y : v.z);
        const float pad = 1.0e-3f * (e + std::fabs(c[k])) + 1.0e-3f;
        r.Low[k] = std::min(c[k] - e, p[k]) - pad;
        r.High[k] = std::max(c[k] + e, p[k]) + pad;
    }
    return r;
}

// True when the two reaches are apart on some axis, or when either holds an
// undefined coordinate (an object read from a broken file): such an object
// touches nothing.
bool Apart(const REACH& a, const REACH& b)
{
    for (int k = 0; k < 3; ++k)
        if (!(a.High[k] >= b.Low[k] && b.High[k] >= a.Low[k]))
            return true;
    return false;
}

} // namespace

THINGREACH ThingReach(const THING& t, VECTOR3D old)
{
    const THINGBOX box = t.GetBox();
    return ReachOf(box, box.Centre - t.position + old);
}

bool ReachesApart(const THINGREACH& a, const THINGREACH& b)
{
    return Apart(a, b);
}

bool ThingsCollide(const THING* a, VECTOR3D oldA, const THING* b, VECTOR3D oldB)
{
    if (a == b)
        return false;
    THINGBOX boxA = a->GetBox();
    THINGBOX boxB = b->GetBox();
    // Every test below needs a point the two reaches share; most pairs in a
    // level are far apart, and a full thing table tests half a million pairs
    // a tick.
    if (Apart(ReachOf(boxA, boxA.Centre - a->position + oldA), ReachOf(boxB, boxB.Centre - b->position + oldB)))
        return false;
    if (SegmentCrossesBox(boxA.Centre - a->position + oldA, boxA.Centre, boxB.Centre, boxB.HalfZ, boxB.HalfY, boxB.HalfX))
        return true;
    if (SegmentCrossesBox(boxB.Centre - b->position + oldB, boxB.Centre, boxA.Centre, boxA.HalfZ, boxA.HalfY, boxA.HalfX))
        return true;
    return BoxesOverlap(boxA, boxB);
}

void THING::CollideWithWalls()
{
    if (!Level)
        return;
    // Without a known segment the queries search the whole level.
    SEGMENT* s = nullptr;
    if (Level->Segments && segment >= 0 && segment < MAX_SEGMENTS)
        s = Level->Segments[segment];
    bool outer = Level->CollidePoint(&oldPosition, 1, s, outerRadius, true, &position, false);
    hit = false;
    // The corners cost eight queries, so they wait for the cheap pass to hit.
    // Each correction moves the object before the next corner is tested, so
    // the order (high bounds first, z outermost) is kept.
    if (outer)
        for (float z : {boxZHigh, boxZLow})
            for (float y : {boxYHigh, boxYLow})
                for (float x : {boxXHigh, boxXLow})
                    if (CollideBodyPoint(z, y, x, s))
                        hit = true;
    Level->CollidePoint(&oldPosition, 1, s, innerRadius, true, &position, true);
}
