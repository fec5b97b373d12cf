#include "sound/beep.h"

#include "sound/buffer.h"
#include "sound/objectal.h"
#include "sound/source.h"

BUFFER* BeepSound = nullptr;

bool PlayBeep()
{
    if (!BeepSound || !TheSound || !TheSound->device || TheSound->Silent() || !OpenALLoaded() || SourceCount == 0)
        return false;
    // The voice is taken again when a game sound took it over (which leaves
    // it without our buffer) or a new sound system made a new pool.
    static int voice = -1;
    ALint attached = 0;
    if (voice >= 0 && voice < SourceCount)
        alGetSourcei(SourcePool[voice], AL_BUFFER, &attached);
    if (voice < 0 || voice >= SourceCount || ALuint(attached) != BeepSound->buffer)
    {
        voice = AcquireSource();
        ALuint source = SourcePool[voice];
        alSourcei(source, AL_BUFFER, ALint(BeepSound->buffer));
        alSourcei(source, AL_SOURCE_RELATIVE, AL_TRUE);
        alSource3f(source, AL_POSITION, 0.0f, 0.0f, 0.0f);
    }
    TheSound->Wake();
    alSourcePlay(SourcePool[voice]);
    return alGetError() == AL_NO_ERROR;
}
