// LoadBMP on any bytes.
#include "fuzzing.h"
#include "graphics/bitmap.h"

extern "C" int LLVMFuzzerInitialize(int*, char*** argv)
{
    FuzzSetUp((*argv)[0]);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const char* file = FuzzFile(data, size);
    int32_t dims[2] = {0, 0};
    try
    {
        LoadBMP(PixelBuffer, sizeof PixelBuffer, file, dims, 0.0f, 0.0f, 0.0f);
    }
    catch (const FUZZEXIT&)
    {
    }
    return 0;
}
