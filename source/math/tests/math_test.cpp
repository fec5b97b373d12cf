#include <gtest/gtest.h>

#include "math/camera.h"
#include "math/geometry.h"
#include "math/random.h"
#include "math/trig.h"

#include <cmath>

namespace {
void ExpectNear(VECTOR3D a, VECTOR3D b, float eps = 1e-3f)
{
    EXPECT_LT(Length(a - b), eps) << a.x << " " << a.y << " " << a.z;
}
} // namespace

TEST(Trig, TableLookupsTruncateAndWrap)
{
    struct { float got, want; } exact[] = {
        {FastSin(-0.0001f), SinTable[0]}, // truncation toward zero, not floor
        {FastSin(6.2831853f), SinTable[0]}, // index 3600 wraps to 0
        {FastSin(-1.5707963f), SinTable[2700]},
        {FastCos(0.0f), SinTable[900]},
        // Only if the quarter turn is subtracted in double and rounded once.
        {FastCos(3.3513e-5f), SinTable[899]},
        {FastSin(0.00174f), SinTable[0]},
        {FastSin(0.0018f), SinTable[1]},
        {FastAsin(1.5f), AsinTable[10000]},
        {FastAsin(-1.0f), AsinTable[-10000]},
        {FastAsin(0.00009f), 0.0f},
        // -0.9999f is a hair above -0.9999: truncation selects -9998.
        {FastAcos(-0.9999f), static_cast<float>(1.570796326 - AsinTable[-9998])},
        {FastAtan2(0, 0), 0.0f}, {FastAtan2(0, -2), 3.1415927f}, {FastAtan2(-1, 0), -1.5707964f},
        {FastAtan2(NAN, 1), 0.0f}, {AngleDifference(1.0f, 0.5f), 0.5f},
    };
    for (auto [got, want] : exact)
        EXPECT_EQ(got, want) << &got - &exact[0].got;
    struct { float got, want; } near[] = {
        {SinTable[900], 1.0f}, {AsinTable[-10000], -1.5707963f}, {FastAtan(-1.0f), -0.785398f},
        {FastAtan2(1, -1), 2.356194f}, {FastAtan2(-1, -1), -2.356194f}, {FastAtan2(-1, 1), -0.785398f},
        {AngleDifference(3.0f, -3.0f), 6.0f - 6.2831853f}, {AngleDifference(-3.0f, 3.0f), -6.0f + 6.2831853f},
        {AngleDifference(20.0f, 0.0f), 20.0f - 6.2831853f}, // a single wrap, not a loop
    };
    for (auto [got, want] : near)
        EXPECT_NEAR(got, want, 2e-3f);
    // Far outside one turn and non-finite input stay inside the table.
    EXPECT_GE(FastSin(1.0e12f), -1.0f);
    EXPECT_LE(FastSin(NAN), 1.0f);
}

TEST(Geometry, RayTriangle)
{
    VECTOR3D p0(0, 0, 0), p1(1, 0, 0), p2(0, 1, 0);
    struct { VECTOR3D from, dir; bool cull, hits; float t; } cases[] = {
        {{0.2f, 0.2f, 1}, {0, 0, -1}, false, true, 1}, {{0.2f, 0.2f, 1}, {0, 0, -1}, true, true, 1},
        {{0.2f, 0.2f, -1}, {0, 0, 1}, false, true, 1}, {{0.2f, 0.2f, -1}, {0, 0, 1}, true, false, 0},
        {{0.2f, 0.2f, 4}, {0, 0, -2}, false, true, 2}, // t in units of the direction's length
        {{0.2f, 0.2f, 0}, {0, 0, -1}, false, false, 0}, {{0.2f, 0.2f, 1}, {0, 0, 1}, false, false, 0},
        {{0.8f, 0.8f, 1}, {0, 0, -1}, false, false, 0}, {{0.2f, 0.2f, 1}, {1, 0, 0}, false, false, 0},
        {{0.5f, 0.5f, 1}, {0, 0, -1}, true, true, 1}, // edges count as inside
    };
    for (const auto& k : cases) {
        float t = 0, u = 0, v = 0;
        ASSERT_EQ(IntersectRayTriangle(p0, p1, p2, k.from, k.dir, &t, &u, &v, k.cull), k.hits) << k.from.x << k.dir.z;
        if (k.hits) {
            EXPECT_NEAR(t, k.t, 1e-6f);
            ExpectNear(p0 + u * (p1 - p0) + v * (p2 - p0), {k.from.x, k.from.y, 0}, 1e-6f);
        }
    }
    float t, u, v;
    EXPECT_FALSE(IntersectRayTriangle(p0, p0, p2, {0.0f, 0.2f, 1}, {0, 0, -1}, &t, &u, &v, false));
}

TEST(Geometry, MoveFrameAndTheCamera)
{
    VECTOR3D P(0, 0, 0), X(0, 0, 1), Y(0, 1, 0), Z(1, 0, 0);
    for (int how : {0, 3, 4, 12, -1})
        MoveFrame(how, how + 2, &P, &X, &Y, &Z);
    EXPECT_EQ(P, VECTOR3D(5, 6, 2));
    for (auto [how, by] : {std::pair{1, 2}, {2, 5}, {5, 6}})
        MoveFrame(how, by, &P, &X, &Y, &Z);
    EXPECT_EQ(P, VECTOR3D(0, 0, 0));

    // Each rotation turns the two other axes about the third; opposite
    // commands undo each other.
    for (int how = 6; how <= 11; how += 2) {
        VECTOR3D before[3] = {X, Y, Z};
        MoveFrame(how, 0.5f, &P, &X, &Y, &Z);
        VECTOR3D after[3] = {X, Y, Z};
        int fixed = how < 8 ? 1 : (how < 10 ? 2 : 0);
        for (int k = 0; k < 3; ++k)
            EXPECT_EQ(Length(after[k] - before[k]) > 0.4f, k != fixed) << how;
        MoveFrame(how + 1, 0.5f, &P, &X, &Y, &Z);
        ExpectNear(X, before[0]);
        ExpectNear(Y, before[1]);
        ExpectNear(Z, before[2]);
    }

    // The camera starts orthonormal and right-handed. Turning left swings
    // the view toward -Right, looking down toward -Up; the first roll tips
    // Right toward Up.
    const CAMERA start;
    VECTOR3D v = start.ViewDir, u = start.Up, r = start.Right;
    EXPECT_TRUE(std::fabs(Dot(v, u)) < 1e-3f && std::fabs(Length(u) - 1) < 2e-3f);
    ExpectNear(Cross(v, u), r, 2e-3f);
    for (auto [move, swung, toward] : {std::tuple{CAM_TURNLEFT, &CAMERA::ViewDir, -r},
                                       {CAM_LOOKDOWN, &CAMERA::ViewDir, -u}, {CAM_ROLLRIGHTUP, &CAMERA::Right, u}})
    {
        CAMERA c;
        c.Move(move, 0.1f);
        EXPECT_GT(Dot(c.*swung, toward), 0.05f) << move;
    }
    CAMERA c;
    c.SetClientSize(640, 400);
    c.SetClientSize(0, 300); // minimised: kept
    EXPECT_FLOAT_EQ(c.Aspect, 0.625f);
}

TEST(Random, LRandUsesAll31Bits)
{
    long high = 0;
    for (int i = 0; i < 1000; ++i)
        high = std::max(high, LRand());
    EXPECT_GT(high, 1L << 30);
}
