// The play-test in the real window (Xvfb): F5 flies the ship from the
// camera, keys and Space reach it, accelerators rest, Escape brings the
// editor back as it was; Shift+F5 needs a start point.
#include "app/tests/windowtesting.h"
#include "things/spaceship.h"

#include <QMenuBar>
#include <QTest>

namespace {

class PlayWindowTest : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        Open();
    }
};

} // namespace

TEST_F(PlayWindowTest, F5FliesTheShipAndEscapeBringsTheEditorBack)
{
    ORVLEVEL& edited = W->Document()->Level();
    const uint64_t revision = edited.Revision;
    const CAMERA camera = *W->Camera();
    const QString title = W->windowTitle();
    Step();

    QTest::keyClick(W->View(), Qt::Key_F5);
    ASSERT_NE(W->Play(), nullptr);
    EXPECT_TRUE(W->windowTitle() == "Próbarepülés - Orvane Builder" && !W->menuBar()->isEnabled());
    SPACESHIP& ship = *W->Play()->Ship();
    EXPECT_EQ(ship.position, camera.Position);
    Step();

    Key(103, true); // Up: forward
    Key(57, true, Qt::Key_Space);
    Step();
    Key(103, false);
    Key(57, false, Qt::Key_Space);
    // Up moved it, Space fired.
    EXPECT_TRUE(ship.position == camera.Position + camera.ViewDir * 10.0f && ship.energy < 100.0f);
    QTest::keyClick(W->View(), Qt::Key_S, Qt::AltModifier); // an accelerator: resting
    EXPECT_EQ(edited.Segments[1], nullptr);

    // The cockpit's shield bar, left of the centre and below it.
    const QImage frame = W->View()->grabFramebuffer();
    const QColor bar = frame.pixelColor(frame.width() / 2 - 90, frame.height() / 2 + 50);
    EXPECT_GT(bar.green(), bar.red() + 40);

    QTest::keyClick(W->View(), Qt::Key_Escape);
    EXPECT_TRUE(!W->Play() && W->windowTitle() == title && W->menuBar()->isEnabled());
    EXPECT_EQ(edited.Revision, revision);
    EXPECT_TRUE(W->Camera()->Position == camera.Position && W->Camera()->ViewDir == camera.ViewDir);
    // One frame of the editor again, then the loop rests.
    ORVERENDER& view = *W->View()->Render();
    Step();
    EXPECT_EQ(view.FrameTimer->Start, P().Now);
    Step();
    EXPECT_NE(view.FrameTimer->Start, P().Now);
}

TEST_F(PlayWindowTest, ShiftF5StartsAtTheStartPointOnly)
{
    QTest::keyClick(W->View(), Qt::Key_F5, Qt::ShiftModifier);
    EXPECT_TRUE(!W->Play() && P().Beeps == 1);

    W->Command(11874); // the start point at the camera
    const VECTOR3D start = W->Camera()->Position;
    W->Camera()->Move(CAM_BACK, 30.0f);
    QTest::keyClick(W->View(), Qt::Key_F5, Qt::ShiftModifier);
    ASSERT_NE(W->Play(), nullptr);
    EXPECT_TRUE(W->Play()->Ship()->position == start && W->Play()->Ship()->axisX == W->Camera()->ViewDir);
}
