// Marked segments on screen: tinted, the same in both drawings, and still
// showing the selection's blink.
#include "rendertesting.h"

#include "orvlevel/level.h"
#include "render/drawlevel.h"
#include "render/view.h"

#include <cstdlib>
#include <memory>

namespace {

// The summed colour of a 40 x 40 pixel patch: single texels may be mortar.
RGB Patch(const std::vector<uint8_t>& pixels, int x, int y)
{
    RGB sum{0, 0, 0};
    for (int dy = 0; dy < 40; ++dy)
        for (int dx = 0; dx < 40; ++dx)
        {
            const RGB p = PixelAt(pixels, x + dx, y + dy);
            sum.R += p.R, sum.G += p.G, sum.B += p.B;
        }
    return sum;
}

} // namespace

TEST_F(RenderTest, MarkedSegmentsAreTintedAlikeInBothDrawingsAndStillBlink)
{
    ORVLEVEL level;
    InvalidateDisplayList(level);
    level.CurrentSegment = 0;
    level.CurrentSide = 1;
    level.NewSegment(); // segment 1 beside the cube, x 100 ... 300
    // Its far wall, z = -100, seen from the front through the culled near walls.
    int far = -1;
    for (int i = 0; i < 6; ++i)
        if (VECTOR3D* c = level.GetSideCorners(1, i); c && c[0].z == -100 && c[1].z == -100 && c[2].z == -100)
            far = i;
    ASSERT_GE(far, 0);
    ORVERENDER view(nullptr, nullptr);
    view.Level = &level;
    view.SetClientSize(TEST_WIDTH, TEST_HEIGHT);
    view.Camera.Position = {100, 0, 700};
    view.Camera.ViewDir = {0, 0, -1};
    view.Camera.Up = {0, 1, 0};
    view.Camera.Right = {1, 0, 0};
    std::vector<uint8_t> marks(MAX_SEGMENTS, 0);
    auto frame = [&](bool marked, bool batched) {
        marks[1] = marked;
        view.Marked = marks.data();
        view.Batched = batched;
        view.Draw();
        return Pixels();
    };
    level.CurrentSegment = -1;
    const std::vector<uint8_t> plain = frame(false, false), tinted = frame(true, false);
    EXPECT_EQ(frame(true, true), tinted);
    EXPECT_EQ(Patch(plain, 230, 215), Patch(tinted, 230, 215)); // segment 0
    const RGB a = Patch(plain, 335, 215), b = Patch(tinted, 335, 215);
    EXPECT_TRUE(b.R >= a.R && b.B < a.B) << a.R << " " << a.B << " " << b.R << " " << b.B;

    // The selected wall of the marked segment in both blink phases.
    level.CurrentSegment = 1;
    level.CurrentSide = far;
    const RGB on = Patch(frame(true, false), 335, 215);
    P().Now += 501;
    const std::vector<uint8_t> other = frame(true, false);
    if (const char* png = std::getenv("ORV_MARKS_PNG"))
        WritePng(png, TEST_WIDTH, TEST_HEIGHT, other, nullptr);
    EXPECT_NE(Patch(other, 335, 215), on);
    P().Now += 501;
    EXPECT_EQ(Patch(frame(true, true), 335, 215), on);
}
