#include "sound/buffer.h"
#include "math/random.h"
#include "platform/datafile.h"
#include "platform/platform.h"
#include "platform/timer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

ADVBUFFER* LaserShotSound = nullptr;
ADVBUFFER* ExplosionSound = nullptr;
ADVBUFFER* MissileSound = nullptr;
ADVBUFFER* PowerupSound = nullptr;

namespace {

[[noreturn]] void WaveFailure(const char* pattern, const char* file)
{
    std::string text = pattern;
    text.replace(text.find("%s"), 2, file);
    // The message box has no caption of its own: the system shows "Error".
    FatalMessage(text, "Error", MSGICON_NONE, -1);
}

struct WAVEFILE
{
    FILE* Fp = nullptr;
    uint64_t Size = 0;

    ~WAVEFILE()
    {
        if (Fp)
            std::fclose(Fp);
    }

    bool ReadAt(uint64_t at, void* out, size_t n)
    {
        if (at > Size || Size - at < n)
            return false;
        return std::fseek(Fp, long(at), SEEK_SET) == 0 && std::fread(out, 1, n, Fp) == n;
    }
};

uint32_t LE32(const uint8_t* p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

uint16_t LE16(const uint8_t* p)
{
    return uint16_t(p[0] | p[1] << 8);
}

// Finds the chunk `id` among the chunks between from and end (odd sizes are
// padded to even, as RIFF writers do). On success gives the position and
// size of its data, the size cut to what lies before end.
bool FindChunk(WAVEFILE& f, uint64_t from, uint64_t end, const char* id, uint64_t* at, uint32_t* size)
{
    uint64_t p = from;
    while (p + 8 <= end) {
        uint8_t head[8];
        if (!f.ReadAt(p, head, 8))
            return false;
        uint32_t n = LE32(head + 4);
        if (std::memcmp(head, id, 4) == 0) {
            *at = p + 8;
            *size = uint32_t(n < end - *at ? n : end - *at);
            return true;
        }
        p += 8 + uint64_t(n) + (n & 1);
    }
    return false;
}

// The outer RIFF chunk whose form type is WAVE; at and end bound its chunks.
bool FindWaveForm(WAVEFILE& f, uint64_t* at, uint64_t* end)
{
    uint64_t p = 0;
    while (p + 12 <= f.Size) {
        uint8_t head[12];
        if (!f.ReadAt(p, head, 12))
            return false;
        uint32_t n = LE32(head + 4);
        if (std::memcmp(head, "RIFF", 4) == 0 && std::memcmp(head + 8, "WAVE", 4) == 0) {
            *at = p + 12;
            *end = p + 8 + uint64_t(n);
            if (*end > f.Size)
                *end = f.Size; // a cut-off file: what is there is read
            return true;
        }
        p += 8 + uint64_t(n) + (n & 1);
    }
    return false;
}

} // namespace

void LoadWave(const char* file, ALenum* format, void** data, uint32_t* size, uint32_t* frequency,
              void** memory)
{
    WAVEFILE f;
    f.Fp = std::fopen(FindDataFile(file).c_str(), "rb");
    if (!f.Fp)
        WaveFailure("File not found: %s", file);
    if (std::fseek(f.Fp, 0, SEEK_END) == 0) {
        long length = std::ftell(f.Fp);
        f.Size = length > 0 ? uint64_t(length) : 0;
    }

    uint64_t riff, riffEnd;
    if (!FindWaveForm(f, &riff, &riffEnd))
        WaveFailure("Not a waveform file: %s", file);

    uint64_t fmtAt;
    uint32_t fmtSize;
    if (!FindChunk(f, riff, riffEnd, "fmt ", &fmtAt, &fmtSize))
        WaveFailure("Waveform file %s is corrupted! 'fmt ' chunk not found!", file);
    // The PCM record is the first 16 bytes; an extended record's tail is
    // skipped with the rest of the chunk.
    uint8_t pcm[16] = {};
    bool readable = fmtSize >= 16 && f.ReadAt(fmtAt, pcm, 16);
    uint16_t channels = LE16(pcm + 2);
    uint32_t samplesPerSecond = LE32(pcm + 4);
    uint16_t bitsPerSample = LE16(pcm + 14);
    if (!readable || samplesPerSecond == 0 || samplesPerSecond > 0x7FFFFFFF)
        WaveFailure("Waveform file %s is corrupted! Bad 'fmt ' chunk!", file);

    uint64_t dataAt;
    uint32_t dataSize;
    if (!FindChunk(f, fmtAt + fmtSize + (fmtSize & 1), riffEnd, "data", &dataAt, &dataSize))
        WaveFailure("Waveform file %s is corrupted! 'data' chunk not found!", file);

    ALenum fmt;
    uint32_t frameBytes;
    if (channels == 2 && bitsPerSample == 16) {
        fmt = AL_FORMAT_STEREO16;
        frameBytes = 4;
    } else if (channels == 2) {
        fmt = AL_FORMAT_STEREO8;
        frameBytes = 2;
    } else if (bitsPerSample == 16) {
        fmt = AL_FORMAT_MONO16;
        frameBytes = 2;
    } else {
        fmt = AL_FORMAT_MONO8;
        frameBytes = 1;
    }
    // Whole frames only: a cut-off file keeps the samples it has, and OpenAL
    // refuses a size that ends inside a frame.
    dataSize -= dataSize % frameBytes;

    void* block = std::calloc(dataSize ? dataSize : 1, 1);
    if (!block)
        FatalMessage("LoadWave: not enough mem.", "FATAL!", MSGICON_STOP);
    if (!f.ReadAt(dataAt, block, dataSize)) {
        std::free(block);
        WaveFailure("Waveform file %s is corrupted! 'data' chunk not found!", file);
    }

    *format = fmt;
    *data = block;
    *size = dataSize;
    *frequency = samplesPerSecond;
    *memory = block;
}

const char* WaveFormatName(ALenum format)
{
    switch (format) {
    case AL_FORMAT_MONO8: return "AL_FORMAT_MONO8";
    case AL_FORMAT_MONO16: return "AL_FORMAT_MONO16";
    case AL_FORMAT_STEREO8: return "AL_FORMAT_STEREO8";
    case AL_FORMAT_STEREO16: return "AL_FORMAT_STEREO16";
    default: return "unknown";
    }
}

BUFFER::BUFFER(const char* file)
{
    LoadWave(file, &format, &data, &size, &frequency, &memory);
    if (!OpenALLoaded())
        return; // tools that run without the sound system keep the samples only
    alGenBuffers(1, &buffer);
    ORV_ASSERT(!alGetError(), "source/buffer");
    alBufferData(buffer, format, data, ALsizei(size), ALsizei(frequency));
    ORV_ASSERT(!alGetError(), "source/buffer");
}

BUFFER::~BUFFER()
{
    std::free(memory);
    if (!OpenALLoaded())
        return;
    alDeleteBuffers(1, &buffer);
    ORV_ASSERT(!alGetError(), "source/buffer");
}

ADVBUFFER::ADVBUFFER(const char* file) : BUFFER(file)
{
    timer = new (std::nothrow) TIMER;
    if (!timer)
        std::abort();
}

ADVBUFFER::~ADVBUFFER()
{
    delete timer;
}

bool ADVBUFFER::Ready()
{
    if (!timer->Elapsed())
        return false;
    timer->Set(uint32_t(Rand() % 50));
    return true;
}
