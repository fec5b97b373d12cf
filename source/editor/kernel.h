// The frame driver: turns the held camera keys and the mouse look into camera
// moves, at most once per 40 ms step. The window feeds it key and button
// state and answers its questions about the client area and the cursor.
#pragma once

#include "math/camera.h"
#include "platform/timer.h"

#include <cstdint>
#include <functional>

// What the frame driver needs from the window it drives.
class KERNELHOST
{
public:
    virtual ~KERNELHOST() = default;
    virtual void ClientSize(int& width, int& height) = 0;
    // The cursor in client coordinates; setting it moves the real cursor.
    virtual void CursorPos(int& x, int& y) = 0;
    virtual void SetCursorPos(int x, int y) = 0;
    // The view's camera; null until the view exists.
    virtual CAMERA* ViewCamera() = 0;
};

// The camera operation of a hardware scan code (the PC keyboard's set-1
// codes, extended bit ignored), or -1 for any other key.
int CameraOpOfScanCode(uint32_t scan);

// The set-1 scan code of a Linux input event code (evdev), with the grey
// navigation keys mapped onto their keypad twins; 0 for keys that have none.
uint32_t ScanCodeOfEvdev(uint32_t code);

class KERNEL
{
public:
    TIMER FrameTimer;  // 40 ms input step
    TIMER SecondTimer; // one-second marks
    uint32_t FrameCount = 0;
    uint32_t FramesLastSecond = 0;

    // MoveKeys[op] while the key of camera operation op is held.
    bool MoveKeys[CAMERA_MOVES] = {};
    // While the right mouse button is held.
    bool MouseLook = false;
    // While set, each step hands the held operations and the mouse look (on
    // or off, then its turn right and look down in radians) here instead of
    // moving the view's camera: a play-test steers the player's ship so.
    std::function<void(const bool (&held)[CAMERA_MOVES], bool looking, float turnRight, float lookDown)> Steer;

    explicit KERNEL(KERNELHOST& owner) : Owner(owner) {}

    // One call per pass of the frame loop; false when the step was not due.
    bool Update();
    void HandleInput();
    void SetMoveKey(uint32_t scan, bool down);
    // Whether the next due step would move the camera.
    bool Moving() const;

private:
    KERNELHOST& Owner;
};
