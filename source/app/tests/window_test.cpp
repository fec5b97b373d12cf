// The main window under a real X server (Xvfb) with an OpenGL view: the menu
// against its table, accelerators, keys by scan code, mouse look,
// clicks, the file flow, the frame loop, undo and recovery.
#include "app/tests/dialogtesting.h"
#include "app/tests/windowtesting.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenuBar>
#include <QTest>

#include <unistd.h>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

// Every item of a menu and its submenus.
void Items(const QList<QAction*>& actions, std::vector<QAction*>& out)
{
    for (QAction* a : actions)
        if (a->menu())
            Items(a->menu()->actions(), out);
        else if (!a->isSeparator())
            out.push_back(a);
}

class WindowTest : public WindowFixture
{
};

} // namespace

// The accelerator each item shows is the one that works; the two modes are
// the checkable items.
TEST_F(WindowTest, MenuItemsHaveTheAcceleratorsTheyShow)
{
    Open();
    EXPECT_EQ(W->pos(), QPoint(0, 0));
    std::vector<QAction*> items;
    Items(W->menuBar()->actions(), items);
    int shown = 0, checkable = 0;
    for (QAction* a : items)
    {
        QString key = a->text().section('\t', 1);
        shown += !key.isEmpty();
        checkable += a->isCheckable();
        EXPECT_EQ(a->shortcut(), QKeySequence(key, QKeySequence::PortableText)) << a->text().toStdString();
    }
    // 25, plus undo, redo, 15 of the block menu and the two play-tests; the
    // two checkable ones are the modes.
    EXPECT_TRUE(shown == 44 && checkable == 2);
    EXPECT_FALSE(W->Action(11842)->isEnabled() || W->Action(11846)->isEnabled() || W->Action(11883)->isEnabled());
}

TEST_F(WindowTest, ClicksAcceleratorsAndMouseLookReachTheLevelAndCamera)
{
    Open();
    // A click at the centre picks what the picking ray hits: side 2.
    QTest::mouseClick(W->View(), Qt::LeftButton, {}, Centre());
    EXPECT_TRUE(L().CurrentSegment == 0 && L().CurrentSide == 2);
    // Alt+S extrudes, and there is something to undo.
    QTest::keyClick(W->View(), Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(L().Segments[1] && W->Action(11883)->isEnabled());

    // Mouse look: 100 px right of the centre turns right by 0.1 and re-centres.
    CAMERA expected = Cam();
    expected.Move(CAM_TURNRIGHT, 0.1f);
    QTest::mousePress(W->View(), Qt::RightButton, {}, Centre());
    QCursor::setPos(W->View()->mapToGlobal(Centre() + QPoint(100, 0)));
    Step();
    QTest::mouseRelease(W->View(), Qt::RightButton, {}, Centre());
    EXPECT_EQ(Cam().ViewDir, expected.ViewDir);
    EXPECT_EQ(W->View()->mapFromGlobal(QCursor::pos()), Centre());
}

TEST_F(WindowTest, ModesFollowTheControllerAndRefuseWithABeep)
{
    Open();
    L().CurrentSegment = 0;
    W->Action(11882)->trigger();
    EXPECT_TRUE(W->Action(11882)->isChecked() && W->Editor()->FitMode);
    WhenModal<QDialog>([](QDialog* d) { d->accept(); }); // the join dialog's "3": shift 0
    W->Action(11858)->trigger();
    EXPECT_TRUE(W->Action(11858)->isChecked() && W->Editor()->JoinShift == 0);
    // A click into empty space fails to join: the mode stays, with a beep.
    Cam().Position = {0, 5000, 0};
    QTest::mouseClick(W->View(), Qt::LeftButton, {}, QPoint(1, 1));
    EXPECT_TRUE(W->Action(11858)->isChecked() && P().Beeps == 2); // the join and the fit
}

TEST_F(WindowTest, FileFlowAndTitle)
{
    Open();
    int asked = 0;
    std::string answer = (Dir / "first.ORVLevel").string();
    auto title = [&] { return W->windowTitle().toStdString(); };
    FileDialogAnswer = [&](bool, const std::string& ext, const std::string& description) {
        ++asked;
        EXPECT_EQ(ext + " " + description, "ORVLevel Orvane Battle pályák");
        return answer;
    };
    // F2 at first asks for a name; F3 opens and titles.
    L().CurrentSegment = 0;
    W->Command(11847);
    QTest::keyClick(W->View(), Qt::Key_F2);
    EXPECT_TRUE(asked == 1 && title() == answer + " - Orvane Builder");
    fs::copy_file(Dir / "first.ORVLevel", Dir / "second.ORVLevel");
    answer = (Dir / "second.ORVLevel").string();
    QTest::keyClick(W->View(), Qt::Key_F3);
    EXPECT_EQ(title(), answer + " - Orvane Builder");
    EXPECT_TRUE(L().Segments[1] && !W->Action(11883)->isEnabled()); // opening starts a fresh history
}

TEST_F(WindowTest, FramesAreDrawnOnlyWhenTheyCouldDiffer)
{
    Open();
    ORVERENDER& view = *W->View()->Render();
    // Whether the pass just run drew a frame.
    auto drew = [&](uint32_t ms) {
        Step(ms);
        return view.FrameTimer->Start == P().Now;
    };
    drew(41);
    EXPECT_FALSE(drew(41)); // nothing changed, nothing drawn
    W->Command(11874); // a change to the level
    EXPECT_TRUE(drew(41));

    QImage frame = W->View()->grabFramebuffer();
    const QColor centre = frame.pixelColor(frame.width() / 2, frame.height() / 2 + 40);
    EXPECT_GT(centre.red() + centre.green() + centre.blue(), 60); // a lit wall, not the black clear colour
}

TEST_F(WindowTest, RecoveryCopyIsOfferedAtStart)
{
    {
        ORVEDOCUMENT doc;
        ASSERT_TRUE(doc.SaveAs((Dir / "mine.ORVLevel").string()));
        doc.Level().CurrentSegment = 0;
        doc.Level().CurrentSide = 2;
        doc.Level().NewSegment();
        ORVERECOVERY(doc).Close();
    }
    P().Answer = true;
    Open();
    ASSERT_FALSE(P().Messages.empty());
    EXPECT_TRUE(P().Messages[0].Icon == MSGICON_QUESTION && L().Segments[1] && W->Document()->Modified());

    // While it runs, unsaved work is copied within the second (the first
    // copy at once, later ones at the interval).
    W->Recovery()->Remove();
    L().CurrentSegment = 0;
    W->Command(11847);
    for (int i = 0; i < 30 && !fs::exists(W->Recovery()->Path()); ++i)
        QTest::qWait(100);
    RECOVERYCOPY copy;
    ASSERT_EQ(W->Recovery()->Find(copy), ORVERECOVERY::INTACT);
    EXPECT_EQ(copy.Image, L().Serialize());
}
