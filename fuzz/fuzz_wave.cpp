// LoadWave on any bytes.
#include "fuzzing.h"
#include "sound/buffer.h"

#include <cstdlib>

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
        // Every sample byte the loader promises must be there to read.
        volatile uint8_t sum = 0;
        for (uint32_t i = 0; i < bytes; ++i)
            sum += static_cast<const uint8_t*>(samples)[i];
    }
    catch (const FUZZEXIT&)
    {
    }
    std::free(memory);
    return 0;
}
