// A short-lived handle on one voice of the source pool, with which a game
// object plays a sound buffer at a position and velocity.
#pragma once

#include "math/vector3d.h"

#include <cstdint>

class BUFFER;

class SOURCE
{
public:
    int32_t index; // position in SourcePool
    bool valid;    // false: every operation but SetLooping does nothing

    SOURCE(BUFFER* b, float x, float y, float z, float vx, float vy, float vz);
    ~SOURCE();
    SOURCE(const SOURCE&) = delete;
    SOURCE& operator=(const SOURCE&) = delete;

    void Play();
    void SetPosition(float x, float y, float z);
    void SetVelocity(float vx, float vy, float vz);
    void SetLooping(bool loop);
    // -1 when not valid, otherwise the source's AL_SOURCE_STATE.
    int GetState();
};

// A free pool entry (one with no buffer attached); when every entry holds a
// buffer, a random one is taken over and its sound stops.
int AcquireSource();

// Places the listener at the camera: position, then the orientation as the
// view direction followed by the up vector.
void SetListener(VECTOR3D position, VECTOR3D viewDir, VECTOR3D up);
