#include "sound/objectal.h"
#include "platform/platform.h"

#include <cstdio>
#include <cstdlib>
#include <string>

ALuint SourcePool[SOURCE_POOL_SIZE];
int SourceCount = 0;
OBJECTAL* TheSound = nullptr;

namespace {

// The device's own error query: the context's one reports an error whenever
// no context is current, which is the case right after opening the device.
void CheckDevice(ALCdevice* device, int line)
{
    if (alcGetError(device) != ALC_NO_ERROR)
        AssertionFailed("!alGetError()", "source/objectal", line);
}

// Without a sound card the program still runs: OpenAL Soft's null backend
// mixes in real time and throws the result away, so sounds start, play for
// their length and stop as they would on a speaker. The library reads its
// driver list once, when it starts, so it is loaded anew to take the null one.
ALCdevice* OpenSilentDevice()
{
    static bool told = false;
    if (!told) {
        std::fputs("No sound device could be opened; the program goes on without sound.\n", stderr);
        std::fflush(stderr);
        told = true;
    }
    if (OpenALDevicesOpen > 0)
        return nullptr; // a device of the loaded library is in use: it cannot be reloaded
    std::string library = OpenALLibrary();
    setenv("ALSOFT_DRIVERS", "null", 1);
    LoadOpenAL(library.c_str());
    return alcOpenDevice(nullptr);
}

} // namespace

OBJECTAL::OBJECTAL()
{
    if (!OpenALLoaded())
        LoadOpenAL();
    device = alcOpenDevice(nullptr);
    if (!device) {
        device = OpenSilentDevice();
        silent = device != nullptr;
    }
    if (!device)
        return;
    ++OpenALDevicesOpen;
    CheckDevice(device, __LINE__);
    context = alcCreateContext(device, nullptr);
    CheckDevice(device, __LINE__);
    alcMakeContextCurrent(context);
    CheckDevice(device, __LINE__);
    ORV_ASSERT(!alGetError(), "source/objectal");
    InitSourcePool();
}

OBJECTAL::~OBJECTAL()
{
    SourceCount = 0;
    if (!device)
        return;
    alcMakeContextCurrent(nullptr);
    alcDestroyContext(context);
    ALCboolean closed = alcCloseDevice(device);
    --OpenALDevicesOpen;
    if (!closed)
        AssertionFailed("!alGetError()", "source/objectal", __LINE__);
}

void OBJECTAL::Rest()
{
    auto pause = reinterpret_cast<LPALCDEVICEPAUSESOFT>(OpenALEntry("alcDevicePauseSOFT"));
    if (!device || resting || !pause)
        return;
    for (int i = 0; i < SourceCount; ++i)
    {
        ALint state = AL_STOPPED;
        alGetSourcei(SourcePool[i], AL_SOURCE_STATE, &state);
        if (state == AL_PLAYING)
            return;
    }
    pause(device);
    resting = true;
}

void OBJECTAL::Wake()
{
    auto resume = reinterpret_cast<LPALCDEVICERESUMESOFT>(OpenALEntry("alcDeviceResumeSOFT"));
    if (!device || !resting || !resume)
        return;
    resume(device);
    resting = false;
}

void InitSourcePool()
{
    for (int n = SOURCE_POOL_SIZE; n >= 0; --n) {
        alGenSources(n, SourcePool);
        if (!alGetError()) {
            SourceCount = n;
            return;
        }
    }
    FatalMessage("InitSourcePool: not enough mem.", "FATAL!", MSGICON_STOP);
}
