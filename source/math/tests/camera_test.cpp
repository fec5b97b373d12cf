#include "math/camera.h"

#include <gtest/gtest.h>

namespace {

void ExpectNear(VECTOR3D a, VECTOR3D b, float eps = 2e-3f)
{
    EXPECT_NEAR(a.x, b.x, eps);
    EXPECT_NEAR(a.y, b.y, eps);
    EXPECT_NEAR(a.z, b.z, eps);
}

} // namespace

TEST(Camera, StartUpViewMovesAndAspect)
{
    CAMERA c;
    EXPECT_EQ(c.Position, VECTOR3D(100, 100, 100));
    ExpectNear(c.ViewDir, {-0.5f, -0.7071f, -0.5f});
    ExpectNear(c.Right, {0.7071f, 0, -0.7071f});
    ExpectNear(c.Up, {-0.5f, 0.7071f, -0.5f});

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
