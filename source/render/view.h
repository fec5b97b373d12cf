// The editor's 3D view: one perspective camera over the level, drawn into
// an OpenGL context that the host owns.
//
// Hosting it (a window toolkit's OpenGL widget, or the headless renderer):
//
//   1. Create an OpenGL context with a depth buffer (compatibility profile,
//      OpenGL 1.1 calls) and make it current.
//   2. InstallGLDrawing() (render/glthings.h), so that textures and meshes
//      made from now on are OpenGL objects; then create the level (or the
//      editor's document) and the explosion texture (SetExplosionTexture).
//   3. Construct ORVERENDER with the host's two steps: make the context
//      current, and show the finished frame. Pass empty functions for a
//      step the host does itself (a widget that paints with its context
//      current and swaps on its own passes both empty). The constructor
//      sets the view's OpenGL state, the start-up camera and the font.
//   4. SetClientSize(width, height) whenever the drawable's size in pixels
//      changes (and once before the first frame).
//   5. Call Update() on every paint request: it draws at most once per
//      40 ms (the first call draws at once) and then calls the swap step.
//      Draw() draws one frame unconditionally, for a host that paces itself.
//   6. Destroy it with the context current; the context is the host's to
//      delete afterwards.
//
// The camera (Camera) is the view's: the frame driver moves it, placement
// and picking read it. Level selects the level drawn; null draws TheLevel.
#pragma once

#include "math/camera.h"
#include "render/glcontext.h"

class ORVLEVEL;
class THING;

class ORVERENDER : public GLRENDERINGCONTEXT
{
public:
    CAMERA Camera;            // start-up view; Camera.Aspect follows the client size
    ORVLEVEL* Level = nullptr; // null: TheLevel
    int Width = 0;            // client size in pixels
    int Height = 0;
    bool Batched = true;      // false draws the level with the plain DrawLevel
    // Null, or one byte per segment slot: nonzero draws the segment tinted
    // (the editor's marked segments).
    const uint8_t* Marked = nullptr;
    // When only the selected side's blink can have changed since the last
    // frame, the host may have Draw redraw just this rectangle (pixels from
    // the lower left; a width of 0: the whole view). Everything outside it is
    // the same in both blink phases.
    int ClipX = 0, ClipY = 0, ClipWidth = 0, ClipHeight = 0;
    // Play: while Eye is set the frame is drawn from it instead of Camera, as
    // the game shows it (no axes, markers or untextured sides), and Viewer,
    // an object of the level, is left out and draws its cockpit instead.
    CAMERA* Eye = nullptr;
    THING* Viewer = nullptr;

    ORVERENDER(std::function<void()> makeCurrent, std::function<void()> swap);
    ~ORVERENDER() override;

    void SetClientSize(int width, int height);
    // Viewport and Aspect, clear, projection, camera, the three axes, then
    // the level with every side, markers and no viewer.
    void Draw() override;
    // One camera operation (CAMERAMOVE codes 0 ... 11).
    void Move(int op, float amount) { Camera.Move(op, amount); }
    // The on-screen bounds of the level's selected side (door panels and the
    // corner cross included, with a margin), for the clip rectangle; false
    // when there is no selected side or it reaches behind the near plane.
    bool SelectedSideBounds(const ORVLEVEL& level, int& x, int& y, int& width, int& height) const;

private:
    void DrawAxes();
};
