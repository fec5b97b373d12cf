// Sounds loaded from RIFF WAVE files (uncompressed 8- or 16-bit PCM) into
// OpenAL buffers.
#pragma once

#include "sound/openal.h"

#include <cstdint>

struct TIMER;

// Reads a wave file. The sample data are returned in a zero-filled block
// (memory, to be released with free) that data points into. Every failure
// shows its message and ends the program (status -1).
void LoadWave(const char* file, ALenum* format, void** data, uint32_t* size, uint32_t* frequency,
              void** memory);

// "AL_FORMAT_MONO16" and so on; "unknown" for any other value.
const char* WaveFormatName(ALenum format);

class BUFFER
{
public:
    ALenum format = AL_FORMAT_MONO8;
    void* data = nullptr;
    uint32_t size = 0;
    uint32_t frequency = 0;
    void* memory = nullptr; // owns the samples for the buffer's whole life
    ALuint buffer = 0;      // the OpenAL buffer holding a copy of them

    explicit BUFFER(const char* file);
    virtual ~BUFFER();
    BUFFER(const BUFFER&) = delete;
    BUFFER& operator=(const BUFFER&) = delete;
};

// A buffer that can tell whether enough time has passed to play it again.
class ADVBUFFER : public BUFFER
{
public:
    TIMER* timer;

    explicit ADVBUFFER(const char* file);
    ~ADVBUFFER() override;

    // True at once, then again only after a random 0 ... 49 ms.
    bool Ready();
};

// The four sounds of the game, created by the application after TheSound.
extern ADVBUFFER* LaserShotSound; // "LaserShot.wav"
extern ADVBUFFER* ExplosionSound; // "ExpGen.wav"
extern ADVBUFFER* MissileSound;   // "Missile.wav"
extern ADVBUFFER* PowerupSound;   // "Powerup.wav"
