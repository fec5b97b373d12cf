// The sound system: one OpenAL device and one context, current for the
// program's life, and the fixed pool of sources that SOUNDs play on.
#pragma once

#include "sound/openal.h"

#include <cstdint>

constexpr int SOURCE_POOL_SIZE = 50;

// The pool: OpenAL source names, of which the first SourceCount exist.
extern ALuint SourcePool[SOURCE_POOL_SIZE];
extern int SourceCount;

class OBJECTAL
{
public:
    ALCdevice* device = nullptr;   // null when no device could be opened
    ALCcontext* context = nullptr;

    OBJECTAL();
    virtual ~OBJECTAL();
    OBJECTAL(const OBJECTAL&) = delete;
    OBJECTAL& operator=(const OBJECTAL&) = delete;

    // True when the device plays to nowhere because no real one could be opened.
    bool Silent() const { return silent; }

    // The device's mixer costs processor time even when nothing sounds: Rest
    // pauses it while no source plays, Wake resumes it before one starts.
    // Both do nothing where the library cannot pause a device.
    void Rest();
    void Wake();
    bool Resting() const { return resting; }

private:
    bool silent = false;
    bool resting = false;
};

// Generates as many pool sources as OpenAL grants, 50 at most.
void InitSourcePool();

// The sound system the application creates at start.
extern OBJECTAL* TheSound;
