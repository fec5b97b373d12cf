// The editor's only top-level window: the menu and its accelerators, the 3D
// view filling the client area, clicks that pick, join and fit, the camera
// keys, the file flow, and the frame loop that redraws the view and moves the
// camera at most every 40 ms (and not at all while nothing could change).
#pragma once

#include "app/dialogs.h"
#include "app/menuresource.h"
#include "editor/controller.h"
#include "editor/kernel.h"
#include "editor/recovery.h"
#include "play/playsession.h"

#include <QMainWindow>
#include <QOpenGLWidget>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>

class CAMERAMEMORY;
class CHECKPANEL;
class OBJECTPANEL;
class ORVERENDER;
class ORVEWINDOW;
class QDockWidget;
class TEXTURE;

// The OpenGL view: hosts ORVERENDER in the widget's own context.
class ORVEVIEW : public QOpenGLWidget
{
    Q_OBJECT
public:
    explicit ORVEVIEW(ORVEWINDOW& window);
    ~ORVEVIEW() override;
    ORVERENDER* Render() { return RenderPtr.get(); }
    // Client size in the view's pixels.
    int PixelWidth() const;
    int PixelHeight() const;

protected:
    bool event(QEvent* e) override;
    void initializeGL() override;
    void resizeGL(int w, int h) override;
    void paintGL() override;
    void keyPressEvent(QKeyEvent* e) override;
    void keyReleaseEvent(QKeyEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;

private:
    ORVEWINDOW& Window;
    std::unique_ptr<ORVERENDER> RenderPtr;
    // The framebuffer lost its picture (first frame, resize): draw in paintGL.
    bool NeedsFullDraw = true;
};

class ORVEWINDOW : public QMainWindow, private KERNELHOST
{
    Q_OBJECT
public:
    // `startLevel`: a level file to open once the view exists, or "".
    explicit ORVEWINDOW(std::string startLevel = "");
    ~ORVEWINDOW() override;

    // Null until the view's OpenGL context exists (the first show).
    ORVEDOCUMENT* Document() { return Doc.get(); }
    ORVEDITOR* Editor() { return EditorPtr.get(); }
    KERNEL* Kernel() { return KernelPtr.get(); }
    ORVEVIEW* View() { return ViewWidget; }
    CAMERA* Camera();
    // The menu item of a command id, or null.
    QAction* Action(int id) const;
    // The enabled menu item whose accelerator the key event is, or null.
    QAction* AcceleratorOf(const QKeyEvent* e) const;

    // Runs a command of the menu (or an accelerator); false when the id is
    // not one this window handles (disabled items).
    bool Command(int id);
    void LeftClick(int x, int y);
    // Shift + left click: marks or unmarks the segment under the cursor.
    void MarkClick(int x, int y);
    void KeyEvent(QKeyEvent* e, bool down);
    void SetMouseLook(bool on);
    // One pass of the frame loop: the view's Update, then the frame driver's.
    void Step();
    // Something may have changed: run a pass soon.
    void Wake();
    ORVERECOVERY* Recovery() { return RecoveryPtr.get(); }
    // Offers a recovery copy left by an editor that did not close cleanly;
    // true when the designer took it.
    bool OfferRecovery();
    // The play-test (playmode.cpp): started by its two commands, false when
    // refused (with a beep); Escape or the end of the ship ends it.
    bool StartPlay(int id);
    void EndPlay();
    PLAYSESSION* Play() { return PlayPtr.get(); }

protected:
    void closeEvent(QCloseEvent* e) override;

public:

    // Whether the window runs the command (the menu enables by this).
    static bool Handles(int id);
    // The side panels (panels.cpp); null until the view exists.
    CHECKPANEL* CheckPanel() { return CheckDock; }
    OBJECTPANEL* ObjectPanel() { return ObjectDock; }
    CAMERAMEMORY* CameraMemory() { return Cameras; }
    // An edit from a panel, as one step of the history.
    void RunEdit(const std::function<void()>& edit);
    // The title as the file flow sets it.
    void UpdateTitle(const std::string& path);

private:
    friend class ORVEVIEW;
    void ViewReady();
    void BuildMenu(const MENURESOURCE& resource);
    void AddItems(QMenu* menu, const std::vector<MENUITEM>& items);
    void SyncModes();
    // Menu states that follow the document: the mode check marks, undo, redo.
    void SyncMenu();
    void Open();
    void OpenFile(const std::string& path);
    void Save();
    void SaveAs();
    // Dialog commands; the dialogs act on the level themselves.
    void RunDialog(int id);
    DIALOGHOST Host();
    // Whether the next frame could differ from the last one drawn.
    bool FrameStale();
    void ScheduleNextStep();

    // KERNELHOST
    void ClientSize(int& width, int& height) override;
    void CursorPos(int& x, int& y) override;
    void SetCursorPos(int x, int y) override;
    CAMERA* ViewCamera() override { return Camera(); }

    // panels.cpp
    void CreatePanels();
    void SavePanels();
    void ShowPanel(QDockWidget* panel);
    CHECKPANEL* CheckDock = nullptr;
    OBJECTPANEL* ObjectDock = nullptr;
    CAMERAMEMORY* Cameras = nullptr;

    ORVEVIEW* ViewWidget = nullptr;
    std::unique_ptr<ORVEDOCUMENT> Doc;
    std::unique_ptr<ORVEDITOR> EditorPtr;
    std::unique_ptr<KERNEL> KernelPtr;
    std::unique_ptr<TEXTURE> ExplosionTexture;
    std::unique_ptr<ORVERECOVERY> RecoveryPtr;
    std::string StartLevel;
    QTimer RecoveryTimer;
    std::map<int, QAction*> Actions;
    QTimer StepTimer;

    // What the last drawn frame showed, to tell whether another could differ.
    struct FRAMEKEY
    {
        uint64_t Revision = 0, Marks = 0;
        int32_t Segment = 0, Side = 0, Point = 0;
        VECTOR3D Position, ViewDir, Up;
        int Width = 0, Height = 0;
        bool operator==(const FRAMEKEY&) const = default;
    };
    FRAMEKEY DrawnKey;
    bool AnyFrameDrawn = false;
    FRAMEKEY CurrentKey();

    // While playing: every key goes here, and each pass of the frame loop
    // runs PlayStep instead of the editor's.
    void PlayKey(QKeyEvent* e, bool down);
    void PlayStep();
    std::unique_ptr<PLAYSESSION> PlayPtr;
    QString TitleBeforePlay;
};
