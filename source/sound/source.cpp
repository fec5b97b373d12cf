#include "sound/source.h"
#include "math/random.h"
#include "sound/buffer.h"
#include "sound/objectal.h"

int AcquireSource()
{
    for (int i = 0; i < SourceCount; ++i) {
        ALint type = 0;
        alGetSourcei(SourcePool[i], AL_SOURCE_TYPE, &type);
        if (type == AL_UNDETERMINED)
            return i;
    }
    int i = SourceCount > 0 ? Rand() % SourceCount : 0;
    // A fresh source in the same slot silences whatever the old one played.
    alDeleteSources(1, &SourcePool[i]);
    alGenSources(1, &SourcePool[i]);
    return i;
}

// There is no fault guard around the library calls: on this platform a fault
// inside OpenAL cannot be caught and gone on from.
SOURCE::SOURCE(BUFFER* b, float x, float y, float z, float vx, float vy, float vz)
{
    valid = false;
    index = 0;
    if (!OpenALLoaded())
        return; // tools that run without the sound system
    index = AcquireSource();
    valid = true;
    ALenum e = alGetError();
    // An empty pool means there is no working sound system: such a source
    // stays silent and reports state -1, so effects that wait for their sound
    // to end do not wait for ever.
    if (e == AL_INVALID_VALUE || e == AL_OUT_OF_MEMORY || SourceCount == 0) {
        valid = false;
        return;
    }
    ALuint source = SourcePool[index];
    alSourcei(source, AL_BUFFER, b ? ALint(b->buffer) : 0);
    alSource3f(source, AL_POSITION, x, y, z);
    alSource3f(source, AL_VELOCITY, vx, vy, vz);
    alSourcef(source, AL_REFERENCE_DISTANCE, 100.0f);
}

SOURCE::~SOURCE()
{
    if (!valid || !OpenALLoaded())
        return;
    // The fresh source has no buffer, which marks the slot free again.
    alDeleteSources(1, &SourcePool[index]);
    alGenSources(1, &SourcePool[index]);
}

void SOURCE::Play()
{
    if (!valid)
        return;
    if (TheSound)
        TheSound->Wake();
    alSourcePlay(SourcePool[index]);
}

void SOURCE::SetPosition(float x, float y, float z)
{
    if (valid)
        alSource3f(SourcePool[index], AL_POSITION, x, y, z);
}

void SOURCE::SetVelocity(float vx, float vy, float vz)
{
    if (valid)
        alSource3f(SourcePool[index], AL_VELOCITY, vx, vy, vz);
}

void SOURCE::SetLooping(bool loop)
{
    if (OpenALLoaded())
        alSourcei(SourcePool[index], AL_LOOPING, loop ? 1 : 0);
}

int SOURCE::GetState()
{
    if (!valid)
        return -1;
    ALint state = -1;
    alGetSourcei(SourcePool[index], AL_SOURCE_STATE, &state);
    return state;
}

void SetListener(VECTOR3D position, VECTOR3D viewDir, VECTOR3D up)
{
    if (!OpenALLoaded())
        return;
    alListener3f(AL_POSITION, position.x, position.y, position.z);
    ALfloat orientation[6] = {viewDir.x, viewDir.y, viewDir.z, up.x, up.y, up.z};
    alListenerfv(AL_ORIENTATION, orientation);
}
