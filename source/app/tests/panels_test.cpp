// The side panels in the window: the level check following the level, its
// repairs as undo steps, the object list, and the camera's bookmarks.
#include "app/panels.h"
#include "app/tests/windowtesting.h"

#include <QApplication>
#include <QListWidget>
#include <QTreeWidget>
#include <QPushButton>
#include <QSettings>
#include <QTest>

namespace {

class PanelsTest : public WindowFixture
{
protected:
    void SetUp() override
    {
        WindowFixture::SetUp();
        // Never the designer's own settings.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromStdString((Dir / "config").string()));
    }
    QTreeWidget& Lines() { return *W->CheckPanel()->Lines(); }
    int Count() { return Lines().topLevelItemCount(); }
    QPushButton* FixButton(int row) { return qobject_cast<QPushButton*>(Lines().itemWidget(Lines().topLevelItem(row), 1)); }
};

} // namespace

TEST_F(PanelsTest, CheckPanelFollowsTheLevelAndRepairsAsOneStep)
{
    Open();
    W->Command(CM_CHECKLEVEL);
    ASSERT_TRUE(W->CheckPanel()->isVisible());
    ASSERT_EQ(Count(), 1); // no start point

    // An edit shows up by itself: the panel watches the level's revision.
    W->RunEdit([&] {
        L().Segments[0]->Sides[4].Texture = 7;
        L().Changed();
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return Count() == 2; }, 2000));
    int row = Lines().topLevelItem(0)->text(0).contains("textúrahely") ? 0 : 1;
    ASSERT_NE(FixButton(row), nullptr);

    // Choosing the line selects the side; the repair is one step.
    L().CurrentSegment = -1;
    const size_t steps = W->Document()->History.Steps();
    Lines().setCurrentItem(Lines().topLevelItem(row));
    EXPECT_TRUE(L().CurrentSegment == 0 && L().CurrentSide == 4);
    FixButton(row)->click();
    EXPECT_TRUE(L().Segments[0]->Sides[4].Texture == -1 && Count() == 1);
    EXPECT_EQ(W->Document()->History.Steps(), steps + 1);
}

TEST_F(PanelsTest, ObjectListFliesToAndDeletesObjects)
{
    Open();
    W->Command(CM_STARTPOINT);
    W->Command(CM_OBJECTLIST);
    QListWidget& list = *W->ObjectPanel()->Lines();
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.count() == 1; }, 2000));
    EXPECT_TRUE(list.item(0)->text().startsWith("Kezdőpont 0 ("));
    const VECTOR3D at = L().SpecPoints[0]->Position;
    W->Camera()->Position = {-50, -50, -50};
    W->ObjectPanel()->Choose(0);
    EXPECT_NEAR(Dot(W->Camera()->ViewDir, (at - W->Camera()->Position) / Length(at - W->Camera()->Position)), 1.0f,
                1e-4f);

    const size_t steps = W->Document()->History.Steps();
    list.setFocus();
    list.setCurrentRow(0);
    QTest::keyClick(&list, Qt::Key_Delete);
    EXPECT_TRUE(!L().SpecPoints[0] && list.count() == 0 && W->Document()->History.Steps() == steps + 1);
}

TEST_F(PanelsTest, BookmarksAndTheLastViewAreKeptPerLevelFile)
{
    Open();
    const std::string file = (Dir / "b.ORVLevel").string();
    ASSERT_TRUE(W->Document()->SaveAs(file));
    CAMERA& cam = *W->Camera();
    const VECTOR3D marked(10, 20, 30);
    cam.Position = marked;
    QTest::keyClick(W->View(), Qt::Key_3, Qt::ControlModifier);
    cam.Position = {0, 0, 0};
    QTest::keyClick(W->View(), Qt::Key_3, Qt::AltModifier);
    EXPECT_EQ(cam.Position, marked);

    // Left at one place, the level opens there again, even in a new window.
    cam.Position = {-7, -8, -9};
    Reopen();
    EXPECT_NE(W->Camera()->Position, VECTOR3D(-7, -8, -9));
    FileDialogAnswer = [&](bool, const std::string&, const std::string&) { return file; };
    W->Command(CM_OPEN);
    FileDialogAnswer = nullptr;
    EXPECT_EQ(W->Camera()->Position, VECTOR3D(-7, -8, -9));
}
