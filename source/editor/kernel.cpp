#include "editor/kernel.h"

namespace {

// Scan codes of the twelve camera operations, in operation order.
constexpr uint32_t CameraScanCodes[CAMERA_MOVES] = {
    0x48, // keypad 8 / Up: forward
    0x4C, // keypad 5: back
    0x4B, // keypad 4 / Left
    0x4D, // keypad 6 / Right
    0x4E, // keypad +: up
    0x1C, // Enter: down
    0x4F, // keypad 1 / End: turn left
    0x51, // keypad 3 / Page Down: turn right
    0x47, // keypad 7 / Home: look down
    0x49, // keypad 9 / Page Up: look up
    0x52, // keypad 0 / Insert: roll
    0x53, // keypad . / Delete: roll back
};

constexpr float STEP_DISTANCE = 10.0f;
constexpr float STEP_ANGLE = 0.1f;
constexpr double MOUSE_RADIANS_PER_PIXEL = 0.001;

} // namespace

int CameraOpOfScanCode(uint32_t scan)
{
    scan &= 0xFF; // the extended-key bit does not count
    for (int op = 0; op < CAMERA_MOVES; ++op)
        if (CameraScanCodes[op] == scan)
            return op;
    return -1;
}

uint32_t ScanCodeOfEvdev(uint32_t code)
{
    // The keypad and the main block send the PC codes themselves.
    if (code >= 1 && code <= 0x58)
        return code;
    switch (code)
    {
    case 96: return 0x1C;  // keypad Enter
    case 102: return 0x47; // Home
    case 103: return 0x48; // Up
    case 104: return 0x49; // Page Up
    case 105: return 0x4B; // Left
    case 106: return 0x4D; // Right
    case 107: return 0x4F; // End
    case 108: return 0x50; // Down
    case 109: return 0x51; // Page Down
    case 110: return 0x52; // Insert
    case 111: return 0x53; // Delete
    default: return 0;
    }
}

void KERNEL::SetMoveKey(uint32_t scan, bool down)
{
    int op = CameraOpOfScanCode(scan);
    if (op >= 0)
        MoveKeys[op] = down;
}

bool KERNEL::Moving() const
{
    if (MouseLook)
        return true;
    for (bool held : MoveKeys)
        if (held)
            return true;
    return false;
}

bool KERNEL::Update()
{
    if (SecondTimer.Elapsed())
    {
        FramesLastSecond = FrameCount;
        FrameCount = 0;
        SecondTimer.Set(1000);
    }
    if (!FrameTimer.Elapsed())
        return false;
    FrameCount += 1;
    HandleInput();
    FrameTimer.Set(40);
    return true;
}

void KERNEL::HandleInput()
{
    CAMERA* camera = Owner.ViewCamera();
    if (!camera)
        return;
    int width = 0, height = 0;
    Owner.ClientSize(width, height);
    const int cx = width / 2, cy = height / 2;
    float turn = 0.0f, down = 0.0f;
    if (MouseLook)
    {
        int x = 0, y = 0;
        Owner.CursorPos(x, y);
        // The offset is a float and the factor a double, as in the C expression.
        turn = float(double(float(x) - float(cx)) * MOUSE_RADIANS_PER_PIXEL);
        down = float(double(float(y) - float(cy)) * MOUSE_RADIANS_PER_PIXEL);
        Owner.SetCursorPos(cx, cy);
    }
    if (Steer)
    {
        Steer(MoveKeys, MouseLook, turn, down);
        return;
    }
    for (int op = 0; op < CAMERA_MOVES; ++op)
        if (MoveKeys[op])
            camera->Move(op, op < 6 ? STEP_DISTANCE : STEP_ANGLE);
    if (!MouseLook)
        return;
    camera->Move(CAM_TURNRIGHT, turn);
    camera->Move(CAM_LOOKDOWN, down);
}
