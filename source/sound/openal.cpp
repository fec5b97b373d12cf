#include "sound/openal.h"
#include "platform/platform.h"

#include <dlfcn.h>

#include <cstdlib>
#include <string>

LPALGENBUFFERS OrvAlGenBuffers;
LPALBUFFERDATA OrvAlBufferData;
LPALGENSOURCES OrvAlGenSources;
LPALSOURCEI OrvAlSourcei;
LPALSOURCEPLAY OrvAlSourcePlay;
LPALGETERROR OrvAlGetError;
LPALSOURCE3F OrvAlSource3f;
LPALSOURCEF OrvAlSourcef;
LPALDELETEBUFFERS OrvAlDeleteBuffers;
LPALDELETESOURCES OrvAlDeleteSources;
LPALLISTENER3F OrvAlListener3f;
LPALLISTENERFV OrvAlListenerfv;
LPALSPEEDOFSOUND OrvAlSpeedOfSound;
LPALDOPPLERFACTOR OrvAlDopplerFactor;
LPALGETSOURCEI OrvAlGetSourcei;
LPALSOURCEREWIND OrvAlSourceRewind;
LPALCOPENDEVICE OrvAlcOpenDevice;
LPALCCLOSEDEVICE OrvAlcCloseDevice;
LPALCCREATECONTEXT OrvAlcCreateContext;
LPALCMAKECONTEXTCURRENT OrvAlcMakeContextCurrent;
LPALCDESTROYCONTEXT OrvAlcDestroyContext;
LPALCGETERROR OrvAlcGetError;

int OpenALDevicesOpen = 0;

namespace {

void* AL_OpenAL32DLL = nullptr;
void* ALC_OpenAL32DLL = nullptr;
std::string Library = OPENAL_LIBRARY;
bool ExitHandlerSet = false;

struct ENTRY
{
    const char* Name;
    void** Pointer;
};

// In the order they are resolved.
const ENTRY AlEntries[] = {
    {"alGenBuffers", reinterpret_cast<void**>(&OrvAlGenBuffers)},
    {"alBufferData", reinterpret_cast<void**>(&OrvAlBufferData)},
    {"alGenSources", reinterpret_cast<void**>(&OrvAlGenSources)},
    {"alSourcei", reinterpret_cast<void**>(&OrvAlSourcei)},
    {"alSourcePlay", reinterpret_cast<void**>(&OrvAlSourcePlay)},
    {"alGetError", reinterpret_cast<void**>(&OrvAlGetError)},
    {"alSource3f", reinterpret_cast<void**>(&OrvAlSource3f)},
    {"alSourcef", reinterpret_cast<void**>(&OrvAlSourcef)},
    {"alDeleteBuffers", reinterpret_cast<void**>(&OrvAlDeleteBuffers)},
    {"alDeleteSources", reinterpret_cast<void**>(&OrvAlDeleteSources)},
    {"alListener3f", reinterpret_cast<void**>(&OrvAlListener3f)},
    {"alListenerfv", reinterpret_cast<void**>(&OrvAlListenerfv)},
    {"alSpeedOfSound", reinterpret_cast<void**>(&OrvAlSpeedOfSound)},
    {"alDopplerFactor", reinterpret_cast<void**>(&OrvAlDopplerFactor)},
    {"alGetSourcei", reinterpret_cast<void**>(&OrvAlGetSourcei)},
    {"alSourceRewind", reinterpret_cast<void**>(&OrvAlSourceRewind)},
};

const ENTRY AlcEntries[] = {
    {"alcOpenDevice", reinterpret_cast<void**>(&OrvAlcOpenDevice)},
    {"alcCloseDevice", reinterpret_cast<void**>(&OrvAlcCloseDevice)},
    {"alcCreateContext", reinterpret_cast<void**>(&OrvAlcCreateContext)},
    {"alcMakeContextCurrent", reinterpret_cast<void**>(&OrvAlcMakeContextCurrent)},
    {"alcDestroyContext", reinterpret_cast<void**>(&OrvAlcDestroyContext)},
    {"alcGetError", reinterpret_cast<void**>(&OrvAlcGetError)},
};

void ClearEntries()
{
    for (const ENTRY& e : AlEntries)
        *e.Pointer = nullptr;
    for (const ENTRY& e : AlcEntries)
        *e.Pointer = nullptr;
}

void* OpenLibrary(const char* expression, const char* module)
{
    void* handle = dlopen(Library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        AssertionFailed(expression, module, __LINE__);
    return handle;
}

void Resolve(void* handle, const ENTRY* entries, int count, const char* module)
{
    for (int i = 0; i < count; ++i) {
        *entries[i].Pointer = dlsym(handle, entries[i].Name);
        if (!*entries[i].Pointer) {
            std::string expression = std::string(entries[i].Name) + "!=NULL";
            AssertionFailed(expression.c_str(), module, __LINE__);
        }
    }
}

void FreeAtExit()
{
    FreeOpenAL();
}

} // namespace

void LoadOpenAL(const char* library)
{
    FreeOpenAL();
    Library = library;
    if (!ExitHandlerSet) {
        std::atexit(FreeAtExit);
        ExitHandlerSet = true;
    }
    AL_OpenAL32DLL = OpenLibrary("AL_OpenAL32DLL!=NULL", "al/al");
    Resolve(AL_OpenAL32DLL, AlEntries, int(std::size(AlEntries)), "al/al");
    ALC_OpenAL32DLL = OpenLibrary("ALC_OpenAL32DLL!=NULL", "al/alc");
    Resolve(ALC_OpenAL32DLL, AlcEntries, int(std::size(AlcEntries)), "al/alc");
}

void FreeOpenAL()
{
    if (OpenALDevicesOpen > 0)
        return;
    ClearEntries();
    if (AL_OpenAL32DLL)
        dlclose(AL_OpenAL32DLL);
    if (ALC_OpenAL32DLL)
        dlclose(ALC_OpenAL32DLL);
    AL_OpenAL32DLL = nullptr;
    ALC_OpenAL32DLL = nullptr;
}

bool OpenALLoaded()
{
    return AL_OpenAL32DLL && ALC_OpenAL32DLL && OrvAlcGetError;
}

const char* OpenALLibrary()
{
    return Library.c_str();
}

void* OpenALEntry(const char* name)
{
    return ALC_OpenAL32DLL ? dlsym(ALC_OpenAL32DLL, name) : nullptr;
}
