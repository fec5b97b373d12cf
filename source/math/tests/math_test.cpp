#include <gtest/gtest.h>

#include "math/camera.h"
#include "math/geometry.h"
#include "math/random.h"
#include "math/trig.h"

#include <cmath>

namespace {
void ExpectNear(VECTOR3D a, VECTOR3D b, float eps = 1e-3f)
{
    EXPECT_NEAR(a.x, b.x, eps);
    EXPECT_NEAR(a.y, b.y, eps);
    EXPECT_NEAR(a.z, b.z, eps);
}
} // namespace

TEST(Trig, TableLookupsTruncateAndWrap)
{
    EXPECT_EQ(FastSin(0.0f), 0.0f);
    EXPECT_EQ(FastSin(-0.0001f), SinTable[0]); // truncation toward zero, not floor
    EXPECT_EQ(FastSin(6.2831853f), SinTable[0]); // index 3600 wraps to 0
    EXPECT_EQ(FastSin(-1.5707963f), SinTable[2700]);
    EXPECT_EQ(FastCos(0.0f), SinTable[900]);
    EXPECT_NEAR(SinTable[900], 1.0f, 1e-7f);
    // Just past the index boundary only if the quarter turn is subtracted in
    // double and rounded once; a float constant would still give 900.
    EXPECT_EQ(FastCos(3.3513e-5f), SinTable[899]);
    EXPECT_EQ(FastSin(0.00174f), SinTable[0]); // 0.997 of a step still index 0
    EXPECT_EQ(FastSin(0.0018f), SinTable[1]);
    // Far outside one turn and non-finite input stay inside the table.
    EXPECT_GE(FastSin(1.0e12f), -1.0f);
    EXPECT_LE(FastSin(NAN), 1.0f);

    EXPECT_EQ(FastAsin(1.5f), AsinTable[10000]);
    EXPECT_EQ(FastAsin(1.0f), AsinTable[10000]);
    EXPECT_EQ(FastAsin(-1.0f), AsinTable[-10000]);
    EXPECT_NEAR(AsinTable[-10000], -1.5707963f, 1e-6f);
    EXPECT_EQ(FastAsin(0.00009f), 0.0f);
    EXPECT_NEAR(FastAcos(0.0f), 1.570796326f, 1e-6f);
    // -0.9999f is a hair above -0.9999: truncation selects -9998.
    EXPECT_EQ(FastAcos(-0.9999f), static_cast<float>(1.570796326 - AsinTable[-9998]));

    EXPECT_EQ(FastAtan(0.0f), 0.0f);
    EXPECT_NEAR(FastAtan(1.0f), 0.785398f, 1e-3f);
    EXPECT_NEAR(FastAtan(-1.0f), -0.785398f, 1e-3f);
}

TEST(Trig, Atan2CasesAndAngleDifference)
{
    EXPECT_EQ(FastAtan2(0, 0), 0.0f);
    EXPECT_EQ(FastAtan2(0, 5), 0.0f);
    EXPECT_EQ(FastAtan2(0, -2), 3.1415927f);
    EXPECT_EQ(FastAtan2(3, 0), 1.5707964f);
    EXPECT_EQ(FastAtan2(-1, 0), -1.5707964f);
    EXPECT_NEAR(FastAtan2(1, 1), 0.785398f, 2e-3f);
    EXPECT_NEAR(FastAtan2(1, -1), 2.356194f, 2e-3f);
    EXPECT_NEAR(FastAtan2(-1, -1), -2.356194f, 2e-3f);
    EXPECT_NEAR(FastAtan2(-1, 1), -0.785398f, 2e-3f);
    EXPECT_EQ(FastAtan2(NAN, 1), 0.0f);

    EXPECT_NEAR(AngleDifference(3.0f, -3.0f), 6.0f - 6.2831853f, 1e-6f);
    EXPECT_NEAR(AngleDifference(-3.0f, 3.0f), -6.0f + 6.2831853f, 1e-6f);
    EXPECT_EQ(AngleDifference(1.0f, 0.5f), 0.5f);
    // A single wrap, not a loop.
    EXPECT_NEAR(AngleDifference(20.0f, 0.0f), 20.0f - 6.2831853f, 1e-5f);
}

TEST(Geometry, RotationSense)
{
    VECTOR3D v(1, 0, 0);
    RotateAroundAxis({0, 0, 1}, &v, 1.5707963267948966L);
    ExpectNear(v, {0, -1, 0});
    // An axis of any length gives the unit axis' result.
    VECTOR3D a(1, 0, 0), b(1, 0, 0);
    RotateAroundAxis({0, 0, 1}, &a, 0.7L);
    RotateAroundAxis({0, 0, 25}, &b, 0.7L);
    ExpectNear(a, b, 1e-6f);

    float x, y;
    Rotate2D(&x, &y, 1, 0, 1.5707963f);
    EXPECT_NEAR(x, 0.0f, 1e-3f);
    EXPECT_NEAR(y, 1.0f, 1e-3f);
}

TEST(Geometry, NormalsCosinesAndSolver)
{
    EXPECT_EQ(TriangleNormal({0, 0, 0}, {1, 0, 0}, {2, 0, 0}), VECTOR3D(1, 0, 0));
    EXPECT_EQ(TriangleNormal({0, 0, 0}, {0, 0, 0}, {0, 0, 0}), VECTOR3D(1, 0, 0));
    // Counter-clockwise seen from +z: the normal points at the viewer.
    ExpectNear(TriangleNormal({0, 0, 0}, {1, 0, 0}, {0, 1, 0}), {0, 0, 1}, 1e-6f);

    EXPECT_EQ(CosAngle({0, 0, 0}, {1, 0, 0}), 2.0f);
    EXPECT_EQ(CosAngle({2, 0, 0}, {0, 3, 0}), 0.0f);
    EXPECT_NEAR(CosAngle({1, 1, 0}, {-1, -1, 0}), -1.0f, 1e-6f);

    float a = 7, b = 7, c = 7;
    EXPECT_TRUE(Decompose3({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, &a, &b, &c, {3, -4, 5}));
    EXPECT_EQ(a, 3.0f);
    EXPECT_EQ(b, -4.0f);
    EXPECT_EQ(c, 5.0f);
    a = b = c = 7;
    EXPECT_FALSE(Decompose3({1, 2, 3}, {1, 2, 3}, {0, 0, 1}, &a, &b, &c, {1, 1, 1}));
    EXPECT_EQ(a, 7.0f); // outputs untouched when singular

    // x + 2y + 3z = 14, 2x - y + z = 3, 3x + y - z = 2  ->  (1, 2, 3)
    float r0, r1, r2;
    ASSERT_TRUE(SolveLinear3(1, 2, 3, -14, 2, -1, 1, -3, 3, 1, -1, -2, &r0, &r1, &r2));
    EXPECT_NEAR(r0, 1.0f, 1e-5f);
    EXPECT_NEAR(r1, 2.0f, 1e-5f);
    EXPECT_NEAR(r2, 3.0f, 1e-5f);
}

TEST(Geometry, RayTriangle)
{
    VECTOR3D p0(0, 0, 0), p1(1, 0, 0), p2(0, 1, 0);
    float t = 0, u = 0, v = 0;
    for (bool cull : {false, true}) {
        ASSERT_TRUE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, 1}, {0, 0, -1}, &t, &u, &v, cull));
        EXPECT_NEAR(t, 1.0f, 1e-6f);
        EXPECT_NEAR(u, 0.2f, 1e-6f);
        EXPECT_NEAR(v, 0.2f, 1e-6f);
    }
    // From behind: only without the front-face test.
    EXPECT_TRUE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, -1}, {0, 0, 1}, &t, &u, &v, false));
    EXPECT_FALSE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, -1}, {0, 0, 1}, &t, &u, &v, true));
    // t is in units of the direction's length.
    ASSERT_TRUE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, 4}, {0, 0, -2}, &t, &u, &v, false));
    EXPECT_NEAR(t, 2.0f, 1e-6f);
    // Starting on the plane, pointing away, missing, parallel, degenerate.
    EXPECT_FALSE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, 0}, {0, 0, -1}, &t, &u, &v, false));
    EXPECT_FALSE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, 1}, {0, 0, 1}, &t, &u, &v, false));
    EXPECT_FALSE(IntersectRayTriangle(p0, p1, p2, {0.8f, 0.8f, 1}, {0, 0, -1}, &t, &u, &v, false));
    EXPECT_FALSE(IntersectRayTriangle(p0, p1, p2, {0.2f, 0.2f, 1}, {1, 0, 0}, &t, &u, &v, false));
    EXPECT_FALSE(IntersectRayTriangle(p0, p0, p2, {0.0f, 0.2f, 1}, {0, 0, -1}, &t, &u, &v, false));
    // Edges count as inside.
    EXPECT_TRUE(IntersectRayTriangle(p0, p1, p2, {0.5f, 0.5f, 1}, {0, 0, -1}, &t, &u, &v, true));
}

TEST(Geometry, MoveFrame)
{
    VECTOR3D P(0, 0, 0), X(0, 0, 1), Y(0, 1, 0), Z(1, 0, 0);
    MoveFrame(0, 2, &P, &X, &Y, &Z);
    MoveFrame(3, 5, &P, &X, &Y, &Z);
    MoveFrame(4, 7, &P, &X, &Y, &Z);
    EXPECT_EQ(P, VECTOR3D(5, 7, 2));
    MoveFrame(1, 2, &P, &X, &Y, &Z);
    MoveFrame(2, 5, &P, &X, &Y, &Z);
    MoveFrame(5, 7, &P, &X, &Y, &Z);
    EXPECT_EQ(P, VECTOR3D(0, 0, 0));

    for (int how : {12, -1, 100}) {
        MoveFrame(how, 1, &P, &X, &Y, &Z);
        EXPECT_EQ(P, VECTOR3D(0, 0, 0));
        EXPECT_EQ(X, VECTOR3D(0, 0, 1));
    }

    // Each rotation turns the two other axes about the third and leaves the
    // third alone; opposite commands undo each other.
    for (int how = 6; how <= 11; how += 2) {
        VECTOR3D x0 = X, y0 = Y, z0 = Z;
        MoveFrame(how, 0.5f, &P, &X, &Y, &Z);
        int fixed = how < 8 ? 1 : (how < 10 ? 2 : 0);
        VECTOR3D before[3] = {x0, y0, z0}, after[3] = {X, Y, Z};
        EXPECT_EQ(after[fixed], before[fixed]) << how;
        for (int k = 0; k < 3; ++k) {
            if (k != fixed) {
                EXPECT_GT(Length(after[k] - before[k]), 0.4f) << how;
            }
        }
        MoveFrame(how + 1, 0.5f, &P, &X, &Y, &Z);
        ExpectNear(X, x0, 1e-3f);
        ExpectNear(Y, y0, 1e-3f);
        ExpectNear(Z, z0, 1e-3f);
    }

    // Command 7 turns the direction of travel about Y: +z goes to -x.
    VECTOR3D Xr(0, 0, 1), Yr(0, 1, 0), Zr(1, 0, 0);
    MoveFrame(7, 1.5707963f, &P, &Xr, &Yr, &Zr);
    ExpectNear(Xr, {-1, 0, 0}, 2e-3f);
    ExpectNear(Zr, {0, 0, 1}, 2e-3f);
}

TEST(Random, RangeAndRepeatability)
{
    SRand(12345);
    int lo = 1 << 30, hi = -1;
    long lmax = 0;
    for (int i = 0; i < 200000; ++i) {
        int r = Rand();
        lo = std::min(lo, r);
        hi = std::max(hi, r);
        long l = LRand();
        ASSERT_GE(l, 0);
        lmax = std::max(lmax, l);
    }
    EXPECT_EQ(lo, 0);
    EXPECT_EQ(hi, RAND_LIMIT);
    EXPECT_GT(lmax, 1L << 30); // uses the full 31 bits

    SRand(77);
    int a[5];
    for (int& v : a)
        v = Rand();
    SRand(77);
    for (int v : a)
        EXPECT_EQ(Rand(), v);
    SRand(78);
    int same = 0;
    for (int v : a)
        same += Rand() == v;
    EXPECT_LT(same, 5);
}

TEST(Camera, StartUpViewMovesAndAspect)
{
    CAMERA c;
    EXPECT_EQ(c.Position, VECTOR3D(100, 100, 100));
    ExpectNear(c.ViewDir, {-0.5f, -0.7071f, -0.5f}, 2e-3f);
    ExpectNear(c.Right, {0.7071f, 0, -0.7071f}, 2e-3f);
    ExpectNear(c.Up, {-0.5f, 0.7071f, -0.5f}, 2e-3f);

    VECTOR3D p = c.Position, v = c.ViewDir, u = c.Up, r = c.Right;
    c.Move(CAM_FORWARD, 10);
    ExpectNear(c.Position, p + 10 * v, 1e-4f);
    c.Move(CAM_BACK, 10);
    c.Move(CAM_RIGHT, 3);
    c.Move(CAM_DOWN, 2);
    c.Move(CAMERA_MOVES, 5);
    ExpectNear(c.Position, p + 3 * r - 2 * u, 1e-4f);

    // The sense of the rotations: turning left swings the view toward
    // -Right, looking down toward -Up; the first roll tips Right toward Up.
    c.Move(CAM_TURNLEFT, 0.1f);
    EXPECT_LT(Dot(c.ViewDir, r), -0.05f);
    c = CAMERA();
    c.Move(CAM_LOOKDOWN, 0.1f);
    EXPECT_LT(Dot(c.ViewDir, u), -0.05f);
    c = CAMERA();
    c.Move(CAM_ROLLRIGHTUP, 0.1f);
    EXPECT_GT(Dot(c.Right, u), 0.05f);

    c.SetClientSize(640, 480);
    c.SetClientSize(0, 300); // minimised: kept
    EXPECT_FLOAT_EQ(c.Aspect, 0.75f);
}
