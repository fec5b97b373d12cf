#include "editor/panels.h"

#include "orvlevel/level.h"
#include "platform/tests/testplatform.h"

TEST(Panels, TheCameraFacesWhatWasChosen)
{
    ORVLEVEL level;
    CAMERA camera;
    // Facing a side puts it under the middle of the view, whatever the start.
    for (int side = 0; side < 6; ++side)
    {
        camera.Move(CAM_ROLLRIGHTUP, 0.3f);
        ASSERT_TRUE(LookAtSide(camera, level, 0, side));
        level.PickSide(320, 240, camera, 640, 480);
        EXPECT_EQ(level.CurrentSide, side);
        EXPECT_NEAR(Dot(camera.Up, camera.ViewDir), 0.0f, 1e-5f);
        EXPECT_NEAR(Length(Cross(camera.ViewDir, camera.Up) - camera.Right), 0.0f, 1e-5f);
    }
    EXPECT_FALSE(LookAtSide(camera, level, 3, 0));

    // Flying to an object stays inside the level and looks at it.
    const VECTOR3D target(50, -20, 30);
    camera.Position = {-90, 90, -90};
    FlyTo(camera, level, target);
    EXPECT_GE(level.FindSegment(camera.Position), 0);
    EXPECT_NEAR(Dot(camera.ViewDir, (target - camera.Position) / Length(target - camera.Position)), 1.0f, 1e-5f);

    // Stored views come back exactly; other texts change nothing.
    CAMERA back;
    ASSERT_TRUE(CameraFromText(CameraText(camera), back));
    EXPECT_EQ(back.Position, camera.Position);
    EXPECT_EQ(back.Right, camera.Right);
    for (const char* bad : {"", "1 2 3", "1 2 3 4 5 6 7 8 9 10 11 12 13", "1 2 3 4 5 6 7 8 9 10 11 nan"})
        EXPECT_FALSE(CameraFromText(bad, back)) << bad;
    EXPECT_EQ(back.Position, camera.Position);
}
