#include "math/camera.h"

#include "math/geometry.h"

CAMERA::CAMERA()
{
    Position = {0, 0, 0};
    ViewDir = {0, 0, -1};
    Up = {0, 1, 0};
    Right = {1, 0, 0};
    Position = {100, 100, 100};
    Move(CAM_TURNLEFT, CAMERA_START_ANGLE);
    Move(CAM_LOOKDOWN, CAMERA_START_ANGLE);
}

void CAMERA::Move(int op, float amount)
{
    MoveFrame(op, amount, &Position, &ViewDir, &Up, &Right);
}

void CAMERA::SetClientSize(int width, int height)
{
    if (width != 0)
        Aspect = float(height) / float(width);
}
