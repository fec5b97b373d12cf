#include "graphics/bitmapinfo.h"
#include "graphics/bitmap.h"
#include "platform/datafile.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

BITMAPHEADER ReadBitmapHeader(const char* storedName)
{
    BITMAPHEADER h;
    int fd = OpenBitmapFile(storedName);
    if (fd < 0)
        return h;
    h.Opened = true;
    uint8_t head[54] = {};
    size_t got = 0;
    while (got < sizeof head)
    {
        ssize_t r = read(fd, head + got, sizeof head - got);
        if (r < 0 && errno == EINTR)
            continue;
        if (r <= 0)
            break;
        got += size_t(r);
    }
    close(fd);
    auto i32 = [&](int at) {
        return int32_t(uint32_t(head[at]) | uint32_t(head[at + 1]) << 8 | uint32_t(head[at + 2]) << 16 |
                       uint32_t(head[at + 3]) << 24);
    };
    h.Signature = head[0] == 'B' && head[1] == 'M';
    h.Width = i32(18);
    h.Height = i32(22);
    h.BitsPerPixel = uint16_t(head[28] | head[29] << 8);
    return h;
}

BITMAPVERDICT JudgeBitmap(const BITMAPHEADER& h)
{
    if (!h.Opened)
        return BITMAP_MISSING;
    if (!h.Signature)
        return BITMAP_NOTBITMAP;
    if (h.BitsPerPixel != 8 && h.BitsPerPixel != 24)
        return BITMAP_DEPTH;
    if (h.Width <= 0 || h.Height <= 0)
        return BITMAP_EMPTY;
    if (uint64_t(h.Width) * uint64_t(h.Height) > PIXEL_BUFFER_SIZE / 4)
        return BITMAP_TOOLARGE;
    return BITMAP_USABLE;
}
