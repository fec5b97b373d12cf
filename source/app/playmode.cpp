// The window while a play-test runs: the view shows the copy of the level
// from the player's ship, the frame driver's held keys and mouse look steer
// the ship, and every 40 ms step runs one tick and draws one frame. The
// edited level, its history and the editor's camera are left alone, so
// Escape brings the editor back exactly as it was.
#include "app/mainwindow.h"
#include "app/playmode.h"

#include "platform/platform.h"
#include "render/glthings.h"
#include "render/view.h"
#include "things/spaceship.h"

#include <QKeyEvent>
#include <QMenuBar>

#include <algorithm>

namespace {

const char* const PLAY_TITLE = "Próbarepülés - Orvane Builder";

} // namespace

bool ORVEWINDOW::StartPlay(int id)
{
    if (PlayPtr || !Doc || !ViewWidget->Render())
        return false;
    CAMERA start = *Camera();
    if (id == CM_PLAYSTART)
    {
        // The start's position with the camera's axes.
        CAMERA at;
        if (!PlayStartOf(Doc->Level(), at))
        {
            InfoBeep();
            return false;
        }
        start.Position = at.Position;
    }
    // The copy's textures are the view's.
    ViewWidget->makeCurrent();
    auto session = std::make_unique<PLAYSESSION>(Doc->Level(), start);
    if (!session->Started())
    {
        InfoBeep();
        return false;
    }
    PlayPtr = std::move(session);
    ORVERENDER& view = *ViewWidget->Render();
    view.Level = &PlayPtr->Level();
    view.Eye = &PlayPtr->Eye;
    view.Viewer = PlayPtr->Ship();
    std::fill(std::begin(KernelPtr->MoveKeys), std::end(KernelPtr->MoveKeys), false);
    KernelPtr->Steer = [this](const bool (&held)[CAMERA_MOVES], bool looking, float turnRight, float lookDown) {
        std::copy(std::begin(held), std::end(held), PlayPtr->Held);
        PlayPtr->Looking = looking;
        PlayPtr->LookRight = turnRight;
        PlayPtr->LookDown = lookDown;
    };
    TitleBeforePlay = windowTitle();
    setWindowTitle(PLAY_TITLE);
    menuBar()->setEnabled(false);
    // The first tick comes at once and every 40 ms after.
    KernelPtr->FrameTimer.Interval = 0;
    Wake();
    return true;
}

void ORVEWINDOW::EndPlay()
{
    if (!PlayPtr)
        return;
    ViewWidget->makeCurrent();
    ORVERENDER& view = *ViewWidget->Render();
    view.Level = nullptr;
    view.Eye = nullptr;
    view.Viewer = nullptr;
    if (DrawingView.Camera == &PlayPtr->Eye)
        DrawingView = FRAMEVIEW();
    KernelPtr->Steer = nullptr;
    std::fill(std::begin(KernelPtr->MoveKeys), std::end(KernelPtr->MoveKeys), false);
    PlayPtr.reset();
    setWindowTitle(TitleBeforePlay);
    menuBar()->setEnabled(true);
    // The editor's own picture comes back with the next pass.
    AnyFrameDrawn = false;
    Wake();
}

void ORVEWINDOW::PlayKey(QKeyEvent* e, bool down)
{
    if (e->isAutoRepeat())
        return;
    const bool keypad = e->modifiers() & Qt::KeypadModifier;
    PLAYSESSION& play = *PlayPtr;
    switch (e->key())
    {
    case Qt::Key_Escape:
        if (down)
            EndPlay();
        return;
    case Qt::Key_Space: play.Held[PLAY_LASER] = down; return;
    case Qt::Key_Tab: play.Held[PLAY_TEMPEST] = down; return;
    case Qt::Key_B:
        if (down)
            play.OpenShop();
        return;
    case Qt::Key_M:
        if (down)
            play.ToggleLaunchSide();
        return;
    case Qt::Key_Backspace:
        if (down)
            play.ShopSelect(-1);
        return;
    case Qt::Key_1: case Qt::Key_2: case Qt::Key_3:
        // The main row's digits choose; the keypad's steer.
        if (!keypad)
        {
            if (down)
                play.ShopSelect(e->key() - Qt::Key_1);
            return;
        }
        break;
    default: break;
    }
    KeyEvent(e, down);
}

void ORVEWINDOW::PlayStep()
{
    // The frame driver's 40 ms step hands the held keys and the mouse look
    // to the session; the tick and its frame follow.
    if (KernelPtr->Update())
    {
        ViewWidget->makeCurrent();
        PlayPtr->Tick();
        // The ship is gone: its last frame stays, without a cockpit.
        ViewWidget->Render()->Viewer = PlayPtr->Ship();
        ORVERENDER& view = *ViewWidget->Render();
        view.Draw();
        view.Swap();
    }
    if (PlayPtr->Ended())
    {
        EndPlay();
        return;
    }
    ScheduleNextStep();
}
