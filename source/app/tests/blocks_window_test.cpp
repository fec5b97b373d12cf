// The block commands in the window: Shift + click marks without selecting,
// the accelerators copy and paste as one undo step each, and the menu's file
// dialogs save and load block files.
#include "app/tests/windowtesting.h"

class BlockWindowTest : public WindowFixture
{
};

TEST_F(BlockWindowTest, ShiftClickAcceleratorsAndBlockFiles)
{
    Open();
    ORVEWINDOW& w = *W;
    ORVLEVEL& L = w.Document()->Level();
    const ORVEMARKS& marks = w.Document()->Marks;
    const QPoint centre = Centre();

    QTest::mouseClick(w.View(), Qt::LeftButton, Qt::ShiftModifier, centre);
    EXPECT_TRUE(marks.Has(0) && L.CurrentSegment == -1);
    QTest::mouseClick(w.View(), Qt::LeftButton, {}, centre); // selects side 2 of the cube
    ASSERT_EQ(L.CurrentSegment, 0);
    QTest::keyClick(w.View(), Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
    L.CurrentSide = 0;
    QTest::keyClick(w.View(), Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(L.Segments[1] && marks.Has(1) && !marks.Has(0));
    QTest::keyClick(w.View(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(!L.Segments[1] && marks.Count() == 0);

    const std::string file = (Dir / "cube.ORVLevel").string();
    FileDialogAnswer = [&](bool, const std::string&, const std::string&) { return file; };
    QTest::mouseClick(w.View(), Qt::LeftButton, Qt::ShiftModifier, centre);
    L.CurrentSide = 2;
    EXPECT_TRUE(w.Command(CM_SAVEBLOCK) && std::filesystem::exists(file));
    w.Editor()->Clipboard = {};
    EXPECT_TRUE(w.Command(CM_LOADBLOCK) && w.Editor()->Clipboard.Segments.size() == 1 && P().Beeps == 0);
}
