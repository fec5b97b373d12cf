// The main window under a real X server (Xvfb) with an OpenGL view: the menu
// against its table, accelerators, keys by scan code, mouse look,
// clicks, the file flow, the frame loop, undo and recovery.
#include "app/filedialogs.h"
#include "app/tests/dialogtesting.h"
#include "app/mainwindow.h"
#include "editor/recovery.h"
#include "platform/tests/testplatform.h"
#include "render/view.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QListWidget>
#include <QMenuBar>
#include <QTest>

#include <cstdlib>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <map>

namespace fs = std::filesystem;

namespace {

struct ITEM
{
    const char* Text;
    int Id; // 0: a separator; -1: a popup, whose items follow up to its END
    bool Enabled = true;
};
constexpr int POPUP = -1, END = -2, SEP = 0;

// The menu bar, with the added "Szerkesztés" and "Pálya ellenőrzése".
const ITEM Design[] = {
    {"&Fájl", POPUP}, {"Új", 11842, false}, {"Megnyitás\tF3", 11843}, {"Mentés\tF2", 11844},
    {"Mentés másként", 11845}, {"Kilép", 11846, false}, {"", END},
    {"Szerkesztés", POPUP}, {"Visszavonás\tCtrl+Z", 11883, false}, {"Újra\tCtrl+Y", 11884, false}, {"", END},
    {"&Objektumok", POPUP}, {"&Új szegmens\tAlt+S", 11847}, {"Szegmens egyesítő mód\tCtrl+Alt+M", 11858},
    {"Szegmenstípus beállítása\tS", 11872}, {"Szegmens törlése\tCtrl+Del", 11865}, {"", SEP},
    {"Pont Z+\tCtrl+W", 11851}, {"Pont Z-\tCtrl+S", 11852}, {"Pont X+\tCtrl+D", 11853}, {"Pont X-\tCtrl+A", 11854},
    {"Pont Y+\tCtrl+E", 11855}, {"Pont Y-\tCtrl+C", 11856}, {"&Köv pont az oldalon\tP", 11850},
    {"Pont beállítások\tAlt+P", 11864}, {"", SEP}, {"Textúra helyreállítása\tCtrl+Alt+T", 11857},
    {"Textúrák\tCtrl+T", 11859}, {"Textúra alkalmazása\tT", 11860}, {"Textúra beállítás\tAlt+T", 11862},
    {"Textúrakoordináták számolása\tShift+T", 11863}, {"Textúra törlése az oldalról\tShift+Del", 11866},
    {"Oldal színének beállítása\tC", 11867}, {"Textúraillesztő mód\tCtrl+Shift+T", 11882}, {"", SEP},
    {"Faltípus beállítása\tW", 11861}, {"Pálya ellenőrzése", 11885}, {"Objektumok listája", 12100}, {"", END},
    {"Világítás", POPUP}, {"Fényforrás elhelyezése\tCtrl+L", 11868}, {"Világítás kiszámítása\tCtrl+Alt+L", 11869},
    {"Legközelebbi fényforrás törlése", 11870}, {"Teljes kivilágítás", 11871}, {"", END},
    {"Cuccok", POPUP}, {"Hajók, robotok", POPUP}, {"Ellenséges hajó", 11873}, {"", END},
    {"Pontok", POPUP}, {"Legközelebbi pont törlése", 11875}, {"Egyfős játékos kezdőpont", 11874}, {"", END},
    {"Felvehető cuccok", POPUP}, {"+15 Energiabónusz", 11878}, {"1 db Tempest rakéta", 11879},
    {"+15 Pajzsbónusz", 11877}, {"Lézer", 11880}, {"Hajószint emelő", 11881}, {"", END}, {"", SEP},
    {"Legközelebbi cucc törlése", 11876}, {"", END},
    {"&Súgó", POPUP}, {"&Help Topics", 11848, false}, {"", SEP}, {"&About", 11849, false}, {"", END},
};

// The menu flattened the same way: popups with their items up to an END.
void Flatten(const QList<QAction*>& actions, std::vector<std::string>& out)
{
    for (QAction* a : actions)
    {
        if (a->isSeparator())
            out.push_back("SEP");
        else if (a->menu())
        {
            out.push_back("POPUP " + a->text().toStdString());
            Flatten(a->menu()->actions(), out);
            out.push_back("END");
        }
        else
            out.push_back(a->text().toStdString() + (a->isEnabled() ? "" : " (disabled)"));
    }
}

class WindowTest : public PlatformTest
{
protected:
    fs::path Dir = fs::temp_directory_path() / ("orvwindow-" + std::to_string(getpid()));
    std::unique_ptr<ORVEWINDOW> W;

    void SetUp() override
    {
        PlatformTest::SetUp();
        fs::create_directories(Dir);
        setenv("ORV_RECOVERY_DIR", (Dir / "recovery").c_str(), 1);
    }
    void TearDown() override
    {
        FileDialogAnswer = nullptr;
        if (W)
            W->Recovery()->Remove();
        W.reset();
        fs::remove_all(Dir);
    }
    void Open()
    {
        W = std::make_unique<ORVEWINDOW>();
        W->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(W.get()));
        for (int i = 0; i < 200 && !W->Document(); ++i)
            QTest::qWait(10);
        ASSERT_NE(W->Document(), nullptr);
        QApplication::setActiveWindow(W.get());
        W->View()->setFocus();
        QApplication::processEvents();
    }
    ORVLEVEL& L() { return W->Document()->Level(); }
    CAMERA& Cam() { return *W->Camera(); }
    // One pass of the frame loop with the clock moved on by `ms`.
    void Step(uint32_t ms = 41)
    {
        P().Now += ms;
        W->Step();
    }
    void Key(uint32_t evdev, bool down)
    {
        QKeyEvent e(down ? QEvent::KeyPress : QEvent::KeyRelease, 0, Qt::NoModifier, evdev + 8, 0, 0);
        QApplication::sendEvent(W->View(), &e);
    }
    QPoint Centre() const { return QPoint(W->View()->width() / 2, W->View()->height() / 2); }
};

} // namespace

TEST_F(WindowTest, MenuAndAcceleratorsAreTheDesignedOnes)
{
    Open();
    EXPECT_EQ(W->windowTitle(), "Orvane Builder");
    EXPECT_EQ(W->pos(), QPoint(0, 0));
    std::vector<std::string> want, have;
    for (const ITEM& i : Design)
    {
        if (i.Id == POPUP)
            want.push_back(std::string("POPUP ") + i.Text);
        else if (i.Id == END)
            want.push_back("END");
        else if (i.Id == SEP)
            want.push_back("SEP");
        else
            want.push_back(std::string(i.Text) + (i.Enabled ? "" : " (disabled)"));
    }
    Flatten(W->menuBar()->actions(), have);
    EXPECT_EQ(have, want);

    // Every accelerator reaches its item, checkable ones are the two modes.
    std::map<int, QString> keys;
    for (const ITEM& i : Design)
        if (i.Id > 0 && QString(i.Text).contains('\t'))
            keys[i.Id] = QString(i.Text).section('\t', 1);
    EXPECT_EQ(keys.size(), 27u); // 25, plus undo and redo
    for (auto [id, key] : keys)
        EXPECT_EQ(W->Action(id)->shortcut(), QKeySequence(key, QKeySequence::PortableText)) << id;
    for (const ITEM& i : Design)
        EXPECT_TRUE(i.Id <= 0 || W->Action(i.Id)->isCheckable() == (i.Id == 11858 || i.Id == 11882)) << i.Id;
}

TEST_F(WindowTest, AcceleratorsKeysMouseAndClicksReachTheLevelAndCamera)
{
    Open();
    // A click at the centre picks what the picking ray hits: side 2.
    QTest::mouseClick(W->View(), Qt::LeftButton, {}, Centre());
    EXPECT_EQ(L().CurrentSegment, 0);
    EXPECT_EQ(L().CurrentSide, 2);
    // Alt+S extrudes, Ctrl+W moves the point, P is a plain-letter accelerator.
    QTest::keyClick(W->View(), Qt::Key_S, Qt::AltModifier);
    ASSERT_NE(L().Segments[1], nullptr);
    const VECTOR3D before = *L().GetCurrentPointPtr();
    QTest::keyClick(W->View(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(*L().GetCurrentPointPtr(), before + VECTOR3D(0, 0, 1));
    QTest::keyClick(W->View(), Qt::Key_P);
    EXPECT_EQ(L().CurrentPoint, 1);
    EXPECT_TRUE(W->Action(11883)->isEnabled()); // there is something to undo

    // Camera keys by scan code (the key table itself is the kernel's test).
    Step(); // the first step draws and steps at once
    const CAMERA start = Cam();
    Key(103, true);
    Step();
    Key(103, false);
    EXPECT_EQ(Cam().Position, start.Position + start.ViewDir * 10.0f);

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
    L().CurrentSegment = -1;
    W->Action(11858)->trigger();
    EXPECT_FALSE(W->Action(11858)->isChecked());
    EXPECT_EQ(P().Beeps, 1);
    L().CurrentSegment = 0;
    W->Action(11882)->trigger();
    EXPECT_TRUE(W->Action(11882)->isChecked());
    EXPECT_TRUE(W->Editor()->FitMode);
    WhenModal<QDialog>([](QDialog* d) { d->accept(); }); // the join dialog's "3": shift 0
    W->Action(11858)->trigger();
    EXPECT_TRUE(W->Action(11858)->isChecked());
    EXPECT_EQ(W->Editor()->JoinShift, 0);
    // A click into empty space fails to join: the mode stays, with a beep.
    Cam().Position = {0, 5000, 0};
    QTest::mouseClick(W->View(), Qt::LeftButton, {}, QPoint(1, 1));
    EXPECT_TRUE(W->Action(11858)->isChecked());
    EXPECT_EQ(P().Beeps, 3); // the join and the fit
}

TEST_F(WindowTest, FileFlowAndTitle)
{
    Open();
    int asked = 0;
    std::string answer = (Dir / "first.ORVLevel").string();
    FileDialogAnswer = [&](bool, const std::string& ext, const std::string& description) {
        ++asked;
        EXPECT_EQ(ext + " " + description, "ORVLevel Orvane Battle pályák");
        return answer;
    };
    // F2 at first asks for a name; afterwards it writes silently.
    QTest::keyClick(W->View(), Qt::Key_F2);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(W->windowTitle().toStdString(), answer + " - Orvane Builder");
    L().CurrentSegment = 0;
    W->Command(11847);
    QTest::keyClick(W->View(), Qt::Key_F2);
    EXPECT_EQ(asked, 1);
    EXPECT_FALSE(W->Document()->Modified());

    // A cancelled dialog changes nothing; F3 opens and titles.
    answer = "";
    W->Command(11845);
    W->Command(11843);
    EXPECT_EQ(asked, 3);
    EXPECT_EQ(W->windowTitle().toStdString(), (Dir / "first.ORVLevel").string() + " - Orvane Builder");
    fs::copy_file(Dir / "first.ORVLevel", Dir / "second.ORVLevel");
    answer = (Dir / "second.ORVLevel").string();
    QTest::keyClick(W->View(), Qt::Key_F3);
    EXPECT_EQ(W->windowTitle().toStdString(), answer + " - Orvane Builder");
    EXPECT_NE(L().Segments[1], nullptr);
    EXPECT_FALSE(W->Action(11883)->isEnabled()); // opening starts a fresh history
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
    EXPECT_FALSE(drew(1000));
    L().CurrentSegment = 0; // a new selection, which then blinks
    EXPECT_TRUE(drew(41));
    EXPECT_FALSE(drew(100));
    EXPECT_TRUE(drew(500));
    Cam().Move(CAM_FORWARD, 1);
    EXPECT_TRUE(drew(41));
    L().CurrentSegment = -1;
    drew(41);
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
    EXPECT_EQ(P().Messages[0].Icon, MSGICON_QUESTION);
    EXPECT_NE(L().Segments[1], nullptr);
    EXPECT_EQ(W->windowTitle().toStdString(), (Dir / "mine.ORVLevel").string() + " - Orvane Builder");
    EXPECT_TRUE(W->Document()->Modified());
}

// The real program, killed: the recovery copy holds the work up to the last
// interval (shortened here from 30 seconds to 1.5).
TEST(RecoveryProcess, KillingTheEditorLosesAtMostTheLastInterval)
{
    if (!std::getenv("DISPLAY") || std::system("command -v xdotool >/dev/null") != 0)
        GTEST_SKIP() << "needs an X server and xdotool";
    const fs::path dir = fs::temp_directory_path() / ("orvkill-" + std::to_string(getpid()));
    fs::create_directories(dir);
    const pid_t child = fork();
    if (child == 0)
    {
        setenv("ORV_RECOVERY_DIR", dir.c_str(), 1);
        setenv("ORV_RECOVERY_MS", "1500", 1);
        execl("./orvane-builder", "orvane-builder", static_cast<char*>(nullptr));
        _exit(127);
    }
    bool up = false;
    for (int i = 0; i < 100 && !up; ++i, QTest::qWait(100))
        up = std::system("xdotool search --onlyvisible --name '^Orvane Builder$' >/dev/null 2>&1") == 0;
    ASSERT_TRUE(up);
    // Generous waits: on a busy machine the first frames and the events
    // behind them take their time.
    QTest::qWait(1500);
    // The window sits at (0, 0): pick the side in the middle, extrude, and
    // wait past the interval and the once-a-second check for the copy; a
    // click that a busy machine loses is tried again.
    bool written = false;
    for (int attempt = 0; attempt < 4 && !written; ++attempt)
    {
        EXPECT_EQ(std::system("xdotool mousemove 320 300 click 1 sleep 0.8 key alt+s"), 0);
        for (int i = 0; i < 40 && !written; ++i, written = !fs::is_empty(dir))
            QTest::qWait(100);
    }
    if (written)
    {
        QTest::qWait(1000); // the copy is renamed into place
        EXPECT_EQ(std::system("xdotool key ctrl+w"), 0);
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    ASSERT_TRUE(written) << "no recovery copy was written";

    ORVEDOCUMENT doc;
    ORVERECOVERY recovery(doc, dir.string());
    RECOVERYCOPY copy;
    ASSERT_EQ(recovery.Find(copy), ORVERECOVERY::INTACT);
    recovery.Restore(copy);
    EXPECT_NE(doc.Level().Segments[1], nullptr); // the extrusion survived the kill
    EXPECT_FALSE(copy.FileName);
    fs::remove_all(dir);
}
