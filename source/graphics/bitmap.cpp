#include "graphics/bitmap.h"
#include "platform/cp1250.h"
#include "platform/datafile.h"
#include "platform/platform.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

uint8_t PixelBuffer[PIXEL_BUFFER_SIZE];

namespace {

constexpr size_t HEADER_SIZE = 54;
constexpr size_t PALETTE_SIZE = 1024;

[[noreturn]] void NotFound(const char* file)
{
    FatalMessage(Cp1250ToUtf8(file ? file : "") + " nem található!\n", "", MSGICON_NONE, 0);
}

// Reads up to n bytes; whatever the file does not have is left as zeros.
void ReadOrZero(int fd, uint8_t* out, size_t n)
{
    size_t got = 0;
    while (got < n) {
        ssize_t r = read(fd, out + got, n - got);
        if (r < 0 && errno == EINTR)
            continue;
        if (r <= 0)
            break;
        got += static_cast<size_t>(r);
    }
    std::memset(out + got, 0, n - got);
}

int32_t I32At(const uint8_t* p)
{
    return static_cast<int32_t>(uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24);
}

} // namespace

uint32_t LoadBMP(uint8_t* out, size_t capacity, const char* file, int32_t size[2],
                 float keyR, float keyG, float keyB)
{
    int fd = OpenBitmapFile(file);
    if (fd < 0)
        NotFound(file);

    uint8_t head[HEADER_SIZE + PALETTE_SIZE];
    ReadOrZero(fd, head, HEADER_SIZE);
    int32_t width = I32At(head + 18);
    int32_t height = I32At(head + 22);
    uint16_t bpp = static_cast<uint16_t>(head[28] | head[29] << 8);
    uint32_t imageSize = static_cast<uint32_t>(I32At(head + 34));

    int64_t pixels = int64_t(width) * int64_t(height);
    if ((bpp != 8 && bpp != 24) || (pixels > 0 && uint64_t(pixels) > capacity / 4)) {
        close(fd);
        return 0;
    }
    const uint8_t* palette = head + HEADER_SIZE;
    if (bpp == 8)
        ReadOrZero(fd, head + HEADER_SIZE, PALETTE_SIZE);
    size[0] = width;
    size[1] = height;

    if (pixels > 0) {
        // The file's pixels are read in one go into the tail of the output
        // range and expanded forwards in place: pixel i is written to bytes
        // 4i ... 4i+3, which lie before every source byte not yet read.
        size_t n = static_cast<size_t>(pixels);
        size_t in = bpp / 8;
        uint8_t* raw = out + n * (4 - in);
        ReadOrZero(fd, raw, n * in);
        for (size_t i = 0; i < n; ++i) {
            uint8_t r, g, b;
            if (bpp == 8) {
                const uint8_t* entry = palette + 4 * raw[i];
                b = entry[0];
                g = entry[1];
                r = entry[2];
            } else {
                b = raw[3 * i];
                g = raw[3 * i + 1];
                r = raw[3 * i + 2];
            }
            uint8_t* px = out + 4 * i;
            px[0] = r;
            px[1] = g;
            px[2] = b;
            px[3] = (float(r) == keyR && float(g) == keyG && float(b) == keyB) ? 0 : 255;
        }
    }
    close(fd);
    return imageSize;
}

void CheckBitmapFile(const char* file)
{
    int fd = OpenBitmapFile(file);
    if (fd < 0)
        NotFound(file);
    close(fd);
}
