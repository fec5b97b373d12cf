// The camera frame the user flies through the level: a position and three
// unit axes (X = ViewDir, Y = Up, Z = Right), plus the window proportion the
// picking ray needs. The OpenGL view derives from it; core code that places
// objects or casts rays is handed a const CAMERA& and never sees the view.
#pragma once

#include "math/vector3d.h"

// Camera operations, the codes Move takes: six translations, six rotations.
enum CAMERAMOVE
{
    CAM_FORWARD = 0,
    CAM_BACK = 1,
    CAM_LEFT = 2,
    CAM_RIGHT = 3,
    CAM_UP = 4,
    CAM_DOWN = 5,
    CAM_TURNLEFT = 6,
    CAM_TURNRIGHT = 7,
    CAM_LOOKDOWN = 8,
    CAM_LOOKUP = 9,
    CAM_ROLLRIGHTUP = 10, // Right tips toward Up
    CAM_ROLLRIGHTDOWN = 11,
};

constexpr int CAMERA_MOVES = 12;

// A quarter of pi exactly as the start-up orientation uses it.
constexpr float CAMERA_START_ANGLE = 0.7853982f;

struct CAMERA
{
    VECTOR3D Position;
    VECTOR3D Up;
    VECTOR3D ViewDir;
    VECTOR3D Right;
    // Client height / width as of the last frame with a non-zero width.
    float Aspect = 0.75f;

    // The start-up view: at (100, 100, 100), turned left and tipped down by
    // 45 degrees, looking toward the origin. Needs the trig tables.
    CAMERA();

    // One camera operation (CAMERAMOVE); unknown codes change nothing.
    void Move(int op, float amount);
    // Takes the proportions of a client area; a zero width (minimised
    // window) keeps the previous value.
    void SetClientSize(int width, int height);
};
