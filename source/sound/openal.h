// The OpenAL entry points, resolved by name from the shared library when the
// program starts, so that the program builds and links without OpenAL. After
// LoadOpenAL the usual names (alGenBuffers, alcOpenDevice, ...) call through
// the resolved pointers.
#pragma once

#include <AL/al.h>
#include <AL/alc.h>
#include <AL/alext.h>

// OpenAL Soft's library on Linux.
constexpr const char* OPENAL_LIBRARY = "libopenal.so.1";

extern LPALGENBUFFERS OrvAlGenBuffers;
extern LPALBUFFERDATA OrvAlBufferData;
extern LPALGENSOURCES OrvAlGenSources;
extern LPALSOURCEI OrvAlSourcei;
extern LPALSOURCEPLAY OrvAlSourcePlay;
extern LPALGETERROR OrvAlGetError;
extern LPALSOURCE3F OrvAlSource3f;
extern LPALSOURCEF OrvAlSourcef;
extern LPALDELETEBUFFERS OrvAlDeleteBuffers;
extern LPALDELETESOURCES OrvAlDeleteSources;
extern LPALLISTENER3F OrvAlListener3f;
extern LPALLISTENERFV OrvAlListenerfv;
extern LPALSPEEDOFSOUND OrvAlSpeedOfSound;
extern LPALDOPPLERFACTOR OrvAlDopplerFactor;
extern LPALGETSOURCEI OrvAlGetSourcei;
extern LPALSOURCEREWIND OrvAlSourceRewind;
extern LPALCOPENDEVICE OrvAlcOpenDevice;
extern LPALCCLOSEDEVICE OrvAlcCloseDevice;
extern LPALCCREATECONTEXT OrvAlcCreateContext;
extern LPALCMAKECONTEXTCURRENT OrvAlcMakeContextCurrent;
extern LPALCDESTROYCONTEXT OrvAlcDestroyContext;
// Beyond the classic set: the device's own error query, needed because the
// context error query reports an error whenever no context is current.
extern LPALCGETERROR OrvAlcGetError;

// The pointers carry their own names so that they never clash with the
// library's exported functions of the same name.
#define alGenBuffers OrvAlGenBuffers
#define alBufferData OrvAlBufferData
#define alGenSources OrvAlGenSources
#define alSourcei OrvAlSourcei
#define alSourcePlay OrvAlSourcePlay
#define alGetError OrvAlGetError
#define alSource3f OrvAlSource3f
#define alSourcef OrvAlSourcef
#define alDeleteBuffers OrvAlDeleteBuffers
#define alDeleteSources OrvAlDeleteSources
#define alListener3f OrvAlListener3f
#define alListenerfv OrvAlListenerfv
#define alSpeedOfSound OrvAlSpeedOfSound
#define alDopplerFactor OrvAlDopplerFactor
#define alGetSourcei OrvAlGetSourcei
#define alSourceRewind OrvAlSourceRewind
#define alcOpenDevice OrvAlcOpenDevice
#define alcCloseDevice OrvAlcCloseDevice
#define alcCreateContext OrvAlcCreateContext
#define alcMakeContextCurrent OrvAlcMakeContextCurrent
#define alcDestroyContext OrvAlcDestroyContext
#define alcGetError OrvAlcGetError

// Devices opened through OBJECTAL and not yet closed; the library is not
// unloaded while one is open (its mixing thread runs in the library's code).
extern int OpenALDevicesOpen;

// Loads the library and resolves every entry point. A missing library or
// entry point fails an assertion, which ends the program. Loading again
// first frees what was loaded.
void LoadOpenAL(const char* library = OPENAL_LIBRARY);
// Frees the library (also done at program exit) and clears the pointers.
void FreeOpenAL();
bool OpenALLoaded();
// The library name of the last LoadOpenAL.
const char* OpenALLibrary();
// Any other entry point of the loaded library by name, or null.
void* OpenALEntry(const char* name);
