#include "app/mainwindow.h"

#include "app/dialogs.h"
#include "app/filedialogs.h"
#include "editor/blocks.h"
#include "app/playmode.h"
#include "app/panels.h"
#include "graphics/drawing.h"
#include "graphics/texture.h"
#include "platform/platform.h"
#include "render/drawlevel.h"
#include "render/glthings.h"
#include "render/view.h"
#include "sound/objectal.h"

#include <QCloseEvent>
#include <QCursor>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMouseEvent>

#include <algorithm>

namespace {

const char* const LEVEL_EXT = "ORVLevel";
const char* const LEVEL_FILTER = "Orvane Battle pályák";
const char* const TITLE = "Orvane Builder";
const char* const BLOCK_FILTER = "Orvane Battle blokkok";

// The set-1 scan code of a key event: X11 and Wayland report the evdev code
// plus 8; elsewhere the Qt key stands in, the grey keys as their keypad twins.
uint32_t ScanCodeOf(const QKeyEvent* e)
{
    if (e->nativeScanCode() > 8)
        return ScanCodeOfEvdev(e->nativeScanCode() - 8);
    switch (e->key())
    {
    case Qt::Key_Up: case Qt::Key_8: return 0x48;
    case Qt::Key_5: case Qt::Key_Clear: return 0x4C;
    case Qt::Key_Left: case Qt::Key_4: return 0x4B;
    case Qt::Key_Right: case Qt::Key_6: return 0x4D;
    case Qt::Key_Plus: return 0x4E;
    case Qt::Key_Enter: case Qt::Key_Return: return 0x1C;
    case Qt::Key_End: case Qt::Key_1: return 0x4F;
    case Qt::Key_PageDown: case Qt::Key_3: return 0x51;
    case Qt::Key_Home: case Qt::Key_7: return 0x47;
    case Qt::Key_PageUp: case Qt::Key_9: return 0x49;
    case Qt::Key_Insert: case Qt::Key_0: return 0x52;
    case Qt::Key_Delete: case Qt::Key_Period: return 0x53;
    default: return 0;
    }
}

} // namespace

// ---------------------------------------------------------------------------
// The view

ORVEVIEW::ORVEVIEW(ORVEWINDOW& window) : QOpenGLWidget(&window), Window(window)
{
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setRedBufferSize(8);
    format.setGreenBufferSize(8);
    format.setBlueBufferSize(8);
    format.setDepthBufferSize(24);
    format.setSwapBehavior(QSurfaceFormat::DoubleBuffer);
    setFormat(format);
    // Frames are drawn when the frame loop says so; the picture must survive
    // until the next one.
    setUpdateBehavior(QOpenGLWidget::PartialUpdate);
    setFocusPolicy(Qt::StrongFocus);
}

ORVEVIEW::~ORVEVIEW()
{
    makeCurrent();
    SetExplosionTexture(nullptr);
    Window.ExplosionTexture.reset();
    Window.Doc.reset();
    RenderPtr.reset();
    doneCurrent();
}

int ORVEVIEW::PixelWidth() const
{
    return int(width() * devicePixelRatioF());
}

int ORVEVIEW::PixelHeight() const
{
    return int(height() * devicePixelRatioF());
}

void ORVEVIEW::initializeGL()
{
    InstallGLDrawing();
    RenderPtr = std::make_unique<ORVERENDER>([this] { makeCurrent(); }, [this] { update(); });
    RenderPtr->SetClientSize(PixelWidth(), PixelHeight());
    Window.ViewReady();
}

void ORVEVIEW::resizeGL(int, int)
{
    if (RenderPtr)
        RenderPtr->SetClientSize(PixelWidth(), PixelHeight());
    NeedsFullDraw = true;
    Window.Wake();
}

void ORVEVIEW::paintGL()
{
    if (!RenderPtr || !NeedsFullDraw)
        return;
    NeedsFullDraw = false;
    RenderPtr->Draw();
}

// Accelerators come before the menu bar's mnemonics ("&Súgó" is Alt+S too,
// as is "Új szegmens"): the view claims the key, then runs the command.
bool ORVEVIEW::event(QEvent* e)
{
    // While playing every key is the game's: no accelerator, no focus move.
    if (Window.Play())
        switch (e->type())
        {
        case QEvent::ShortcutOverride: e->accept(); return true;
        case QEvent::KeyPress: Window.PlayKey(static_cast<QKeyEvent*>(e), true); return true;
        case QEvent::KeyRelease: Window.PlayKey(static_cast<QKeyEvent*>(e), false); return true;
        default: break;
        }
    if (e->type() == QEvent::ShortcutOverride && Window.AcceleratorOf(static_cast<QKeyEvent*>(e)))
    {
        e->accept();
        return true;
    }
    return QOpenGLWidget::event(e);
}

void ORVEVIEW::keyPressEvent(QKeyEvent* e)
{
    if (QAction* a = Window.AcceleratorOf(e))
    {
        a->trigger();
        return;
    }
    Window.KeyEvent(e, true);
}

void ORVEVIEW::keyReleaseEvent(QKeyEvent* e)
{
    Window.KeyEvent(e, false);
}

void ORVEVIEW::mousePressEvent(QMouseEvent* e)
{
    const QPointF p = e->position() * devicePixelRatioF();
    if (e->button() == Qt::LeftButton && (e->modifiers() & Qt::ShiftModifier))
        Window.MarkClick(int(p.x()), int(p.y()));
    else if (e->button() == Qt::LeftButton)
        Window.LeftClick(int(p.x()), int(p.y()));
    else if (e->button() == Qt::RightButton)
        Window.SetMouseLook(true);
}

void ORVEVIEW::mouseReleaseEvent(QMouseEvent* e)
{
    if (e->button() == Qt::RightButton)
        Window.SetMouseLook(false);
}

void ORVEVIEW::focusOutEvent(QFocusEvent* e)
{
    // Keys released while another window has the focus never reach us.
    if (KERNEL* k = Window.Kernel())
        std::fill(std::begin(k->MoveKeys), std::end(k->MoveKeys), false);
    if (PLAYSESSION* play = Window.Play())
        std::fill(std::begin(play->Held), std::end(play->Held), false);
    QOpenGLWidget::focusOutEvent(e);
}

// ---------------------------------------------------------------------------
// The window

ORVEWINDOW::ORVEWINDOW(std::string startLevel) : StartLevel(std::move(startLevel))
{
    setWindowTitle(TITLE);
    move(0, 0);
    resize(640, 480);
    // Converted here, where the private base is reachable.
    KernelPtr = std::make_unique<KERNEL>(static_cast<KERNELHOST&>(*this));
    ViewWidget = new ORVEVIEW(*this);
    setCentralWidget(ViewWidget);
    StepTimer.setSingleShot(true);
    StepTimer.setTimerType(Qt::PreciseTimer);
    connect(&StepTimer, &QTimer::timeout, this, [this] { Step(); });
}

ORVEWINDOW::~ORVEWINDOW()
{
    EndPlay();
    StepTimer.stop();
    // The view deletes the level and the textures while its context is current.
    delete ViewWidget;
    ViewWidget = nullptr;
}

CAMERA* ORVEWINDOW::Camera()
{
    return ViewWidget && ViewWidget->Render() ? &ViewWidget->Render()->Camera : nullptr;
}

QAction* ORVEWINDOW::AcceleratorOf(const QKeyEvent* e) const
{
    // The keypad's keys count as the keys they stand for.
    const QKeySequence pressed(QKeyCombination(e->modifiers() & ~Qt::KeypadModifier, Qt::Key(e->key())));
    for (const auto& [id, action] : Actions)
        if (!action->shortcut().isEmpty() && action->shortcut() == pressed)
            return action->isEnabled() ? action : nullptr;
    return nullptr;
}

QAction* ORVEWINDOW::Action(int id) const
{
    auto it = Actions.find(id);
    return it == Actions.end() ? nullptr : it->second;
}

// The view's context exists: the level, the controller, the frame driver and
// the explosion texture, in the order the window is built.
void ORVEWINDOW::ViewReady()
{
    Doc = std::make_unique<ORVEDOCUMENT>();
    InvalidateDisplayList(Doc->Level());
    BuildMenu(LoadMenuResource());
    ViewWidget->Render()->Marked = Doc->Marks.Flags();
    CreatePanels();
    EditorPtr = std::make_unique<ORVEDITOR>(*Doc, ViewWidget->Render()->Camera);
    EditorPtr->JoinDialog = [this] {
        DIALOGHOST host = Host();
        return RunJoinDialog(host, EditorPtr->JoinShift);
    };
    ExplosionTexture = std::make_unique<TEXTURE>("SmallExplosion.bmp");
    SetExplosionTexture(ExplosionTexture.get());
    RecoveryPtr = std::make_unique<ORVERECOVERY>(*Doc);
    // A copy is due at most every 30 s; checking once a second costs nothing.
    // The sound mixer rests while nothing sounds (the editor seldom plays any).
    connect(&RecoveryTimer, &QTimer::timeout, this, [this] {
        RecoveryPtr->Tick(GetTickCount32());
        if (TheSound)
            TheSound->Rest();
    });
    RecoveryTimer.start(1000);
    SyncMenu();
    Wake();
    // After the first frame, so the question has the editor behind it.
    QTimer::singleShot(0, this, [this] {
        // A copy of lost work comes first; a level named on the command line
        // is opened unless that work was restored.
        if (!OfferRecovery() && !StartLevel.empty())
        {
            ViewWidget->makeCurrent();
            OpenFile(StartLevel);
            SyncMenu();
            Wake();
        }
    });
}

bool ORVEWINDOW::OfferRecovery()
{
    RECOVERYCOPY copy;
    switch (RecoveryPtr->Find(copy))
    {
    case ORVERECOVERY::NONE:
        return false;
    case ORVERECOVERY::DAMAGED:
    {
        std::string aside = RecoveryPtr->SetAside();
        ShowMessage("Egy korábbi futás helyreállítási másolata sérült, ezért nem töltöttem be." +
                        (aside.empty() ? std::string() : "\nFélretettem ide:\n" + aside),
                    TITLE, MSGICON_WARNING);
        return false;
    }
    case ORVERECOVERY::INTACT:
        break;
    }
    std::string what = copy.FileName ? "(" + *copy.FileName + ")" : "(névtelen pálya)";
    if (!AskYesNo("Egy korábbi futás mentetlen munkája megmaradt " + what + ".\nVisszaállítsam?", TITLE))
    {
        RecoveryPtr->Remove();
        return false;
    }
    ViewWidget->makeCurrent();
    RecoveryPtr->Restore(copy);
    InvalidateDisplayList(Doc->Level());
    if (Doc->FileName())
        UpdateTitle(*Doc->FileName());
    SyncMenu();
    Wake();
    return true;
}

void ORVEWINDOW::closeEvent(QCloseEvent* e)
{
    if (RecoveryPtr)
        RecoveryPtr->Close();
    if (Cameras)
        Cameras->Leaving();
    SavePanels();
    QMainWindow::closeEvent(e);
}

void ORVEWINDOW::BuildMenu(const MENURESOURCE& resource)
{
    for (const MENUITEM& popup : resource.Popups)
        AddItems(menuBar()->addMenu(popup.Label), popup.Items);
    std::vector<ACCELERATOR> accelerators = resource.Accelerators;
    accelerators.insert(accelerators.end(), resource.ExtraAccelerators.begin(), resource.ExtraAccelerators.end());
    for (const ACCELERATOR& a : accelerators)
        if (QAction* action = Action(a.Id))
        {
            action->setShortcut(QKeySequence(a.Key, QKeySequence::PortableText));
            action->setShortcutContext(Qt::WindowShortcut);
        }
}

void ORVEWINDOW::AddItems(QMenu* menu, const std::vector<MENUITEM>& items)
{
    for (const MENUITEM& item : items)
    {
        if (item.Separator)
            menu->addSeparator();
        else if (item.IsPopup())
            AddItems(menu->addMenu(item.Label), item.Items);
        else
        {
            QAction* action = menu->addAction(item.Text());
            action->setCheckable(item.Checkable);
            // An item is enabled exactly when the window has its command.
            action->setEnabled(Handles(item.Id));
            const int id = item.Id;
            connect(action, &QAction::triggered, this, [this, id] { Command(id); });
            Actions[id] = action;
        }
    }
}

bool ORVEWINDOW::Handles(int id)
{
    return id == CM_OPEN || id == CM_SAVE || id == CM_SAVEAS || id == CM_UNDO || id == CM_REDO ||
           id == CM_CHECKLEVEL || id == CM_OBJECTLIST || id == CM_SAVEBLOCK || id == CM_LOADBLOCK ||
           IsDialogCommand(id) || ORVEDITOR::HasCommand(id) || IsPlayCommand(id);
}

bool ORVEWINDOW::Command(int id)
{
    if (!Handles(id) || !EditorPtr || PlayPtr)
        return false;
    if (IsPlayCommand(id))
        return StartPlay(id);
    // Commands may create or delete textures: the view's context is needed.
    ViewWidget->makeCurrent();
    ORVEHISTORY& history = Doc->History;
    history.Begin();
    switch (id)
    {
    case CM_OPEN: Open(); break;
    case CM_SAVE: Save(); break;
    case CM_SAVEAS: SaveAs(); break;
    case CM_UNDO:
        if (!history.Undo())
            InfoBeep();
        break;
    case CM_REDO:
        if (!history.Redo())
            InfoBeep();
        break;
    case CM_CHECKLEVEL: ShowPanel(CheckDock); break;
    case CM_OBJECTLIST: ShowPanel(ObjectDock); break;
    case CM_SAVEBLOCK:
        if (std::string path = SaveFileDialog(LEVEL_EXT, BLOCK_FILTER); !path.empty())
            BlockSave(*EditorPtr, path);
        break;
    case CM_LOADBLOCK:
        if (std::string path = OpenFileDialog(LEVEL_EXT, BLOCK_FILTER); !path.empty())
            BlockLoad(*EditorPtr, path);
        break;
    default:
        if (IsDialogCommand(id))
            RunDialog(id);
        else
            EditorPtr->Command(id);
    }
    // Whatever the command changed is one step.
    history.Checkpoint();
    SyncMenu();
    Wake();
    return true;
}

void ORVEWINDOW::RunDialog(int id)
{
    DIALOGHOST host = Host();
    RunEditorDialog(id, host);
}

DIALOGHOST ORVEWINDOW::Host()
{
    return DIALOGHOST{*Doc, ViewWidget->Render()->Camera, this, [this] { ViewWidget->makeCurrent(); },
                      [this] {
                          Doc->History.Checkpoint();
                          SyncMenu();
                          Wake();
                      }};
}

void ORVEWINDOW::SyncMenu()
{
    SyncModes();
    if (QAction* a = Action(CM_UNDO))
        a->setEnabled(Doc && Doc->History.CanUndo());
    if (QAction* a = Action(CM_REDO))
        a->setEnabled(Doc && Doc->History.CanRedo());
}

void ORVEWINDOW::SyncModes()
{
    if (!EditorPtr)
        return;
    if (QAction* a = Action(CM_JOINMODE))
        a->setChecked(EditorPtr->JoinMode);
    if (QAction* a = Action(CM_FITMODE))
        a->setChecked(EditorPtr->FitMode);
}

void ORVEWINDOW::LeftClick(int x, int y)
{
    if (!EditorPtr || PlayPtr)
        return;
    EditorPtr->ClientWidth = ViewWidget->PixelWidth();
    EditorPtr->ClientHeight = ViewWidget->PixelHeight();
    ViewWidget->makeCurrent();
    Doc->History.Begin();
    EditorPtr->LeftClick(x, y);
    Doc->History.Checkpoint(); // a join or a fit is a step; a pick is not
    SyncMenu();
    Wake();
}

void ORVEWINDOW::MarkClick(int x, int y)
{
    if (!EditorPtr)
        return;
    EditorPtr->ClientWidth = ViewWidget->PixelWidth();
    EditorPtr->ClientHeight = ViewWidget->PixelHeight();
    BlockMarkClicked(*EditorPtr, x, y);
    Wake();
}

void ORVEWINDOW::KeyEvent(QKeyEvent* e, bool down)
{
    // Auto-repeat would only confirm a key that is already held.
    if (e->isAutoRepeat())
        return;
    KernelPtr->SetMoveKey(ScanCodeOf(e), down);
    Wake();
}

void ORVEWINDOW::SetMouseLook(bool on)
{
    KernelPtr->MouseLook = on;
    Wake();
}

void ORVEWINDOW::UpdateTitle(const std::string& path)
{
    setWindowTitle(QString::fromStdString(path) + " - " + TITLE);
}

void ORVEWINDOW::Open()
{
    OpenFile(OpenFileDialog(LEVEL_EXT, LEVEL_FILTER));
}

void ORVEWINDOW::OpenFile(const std::string& path)
{
    if (path.empty())
        return;
    Cameras->Leaving();
    if (!Doc->Open(path))
        return; // the level said why; nothing changed
    Cameras->Arrived();
    RecoveryPtr->Remove();
    InvalidateDisplayList(Doc->Level());
    UpdateTitle(path);
}

void ORVEWINDOW::Save()
{
    if (!Doc->FileName())
        SaveAs();
    else if (Doc->Save())
        RecoveryPtr->Remove();
}

void ORVEWINDOW::SaveAs()
{
    std::string path = SaveFileDialog(LEVEL_EXT, LEVEL_FILTER);
    if (path.empty())
        return;
    if (!Doc->SaveAs(path))
        return;
    RecoveryPtr->Remove();
    UpdateTitle(path);
}

// ---------------------------------------------------------------------------
// Frame loop

ORVEWINDOW::FRAMEKEY ORVEWINDOW::CurrentKey()
{
    FRAMEKEY k;
    const ORVLEVEL& level = Doc->Level();
    const CAMERA& cam = ViewWidget->Render()->Camera;
    k.Revision = level.Revision;
    k.Marks = Doc->Marks.Version();
    k.Segment = level.CurrentSegment;
    k.Side = level.CurrentSide;
    k.Point = level.CurrentPoint;
    k.Position = cam.Position;
    k.ViewDir = cam.ViewDir;
    k.Up = cam.Up;
    k.Width = ViewWidget->PixelWidth();
    k.Height = ViewWidget->PixelHeight();
    return k;
}

bool ORVEWINDOW::FrameStale()
{
    if (!AnyFrameDrawn || !(CurrentKey() == DrawnKey))
        return true;
    // The selected side blinks: its phase flips when the blink timer runs out.
    ORVLEVEL& level = Doc->Level();
    return level.GetCurrentSide() && level.BlinkTimer && level.BlinkTimer->Elapsed();
}

void ORVEWINDOW::Step()
{
    if (!Doc || !ViewWidget->Render())
        return;
    if (PlayPtr)
    {
        PlayStep();
        return;
    }
    ORVERENDER& view = *ViewWidget->Render();
    if (FrameStale())
    {
        // When only the blink can differ, the selected side's part of the
        // picture is all that needs drawing.
        if (AnyFrameDrawn && CurrentKey() == DrawnKey)
        {
            if (!view.SelectedSideBounds(Doc->Level(), view.ClipX, view.ClipY, view.ClipWidth, view.ClipHeight))
                view.ClipWidth = 0;
        }
        const uint32_t before = view.FrameTimer->Start;
        view.Update();
        view.ClipWidth = 0;
        if (view.FrameTimer->Start != before || !AnyFrameDrawn)
        {
            DrawnKey = CurrentKey();
            AnyFrameDrawn = true;
        }
    }
    KernelPtr->Update();
    ScheduleNextStep();
}

void ORVEWINDOW::Wake()
{
    if (!StepTimer.isActive() || StepTimer.remainingTime() > 0)
        StepTimer.start(0);
}

void ORVEWINDOW::ScheduleNextStep()
{
    const uint32_t now = GetTickCount32();
    // Milliseconds until a TIMER reports elapsed (strictly after its interval).
    auto until = [now](const TIMER& t) -> int {
        if (t.Interval == 0)
            return 0;
        int32_t left = int32_t(t.Start + t.Interval + 1 - now);
        return std::max(left, 0);
    };
    const ORVERENDER& view = *ViewWidget->Render();
    int delay = -1;
    if (PlayPtr)
        delay = until(KernelPtr->FrameTimer); // a tick every 40 ms
    else if (KernelPtr->Moving())
        delay = std::min(until(KernelPtr->FrameTimer), until(*view.FrameTimer));
    else if (!AnyFrameDrawn || !(CurrentKey() == DrawnKey))
        delay = until(*view.FrameTimer);
    else if (Doc->Level().GetCurrentSide() && Doc->Level().BlinkTimer)
        delay = std::max(until(*Doc->Level().BlinkTimer), until(*view.FrameTimer));
    if (delay >= 0)
        StepTimer.start(delay);
}

// ---------------------------------------------------------------------------
// The frame driver's questions

void ORVEWINDOW::ClientSize(int& width, int& height)
{
    width = ViewWidget->PixelWidth();
    height = ViewWidget->PixelHeight();
}

void ORVEWINDOW::CursorPos(int& x, int& y)
{
    const QPointF p = QPointF(ViewWidget->mapFromGlobal(QCursor::pos())) * ViewWidget->devicePixelRatioF();
    x = int(p.x());
    y = int(p.y());
}

void ORVEWINDOW::SetCursorPos(int x, int y)
{
    const qreal r = ViewWidget->devicePixelRatioF();
    QCursor::setPos(ViewWidget->mapToGlobal(QPoint(int(x / r), int(y / r))));
}
