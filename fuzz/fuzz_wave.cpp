// LoadWave on any bytes.
#include "fuzzing.h"
#include "sound/buffer.h"

#include <cstdlib>
#include <cstring>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int*, char*** argv)
{
    FuzzSetUp((*argv)[0]);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const char* file = FuzzFile(data, size);
    ALenum format = 0;
    void* samples = nullptr;
    void* memory = nullptr;
    uint32_t bytes = 0, frequency = 0;
    try
    {
        LoadWave(file, &format, &samples, &bytes, &frequency, &memory);
        // Every sample byte the loader promises must be there to read (the
        // sanitizer checks the whole copied range).
        std::vector<uint8_t> copy(bytes);
        if (bytes)
            std::memcpy(copy.data(), samples, bytes);
    }
    catch (const FUZZEXIT&)
    {
    }
    std::free(memory);
    return 0;
}
