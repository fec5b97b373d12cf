#include <gtest/gtest.h>

#include "graphics/bitmap.h"
#include "platform/tests/testplatform.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

namespace {

// A 54-byte header with the fields the reader uses, then the given bytes.
Bytes Bmp(int32_t width, int32_t height, uint16_t bpp, uint32_t imageSize, Bytes rest = {})
{
    Bytes b(54 + rest.size(), 0);
    std::copy(rest.begin(), rest.end(), b.begin() + 54);
    auto put = [&](size_t at, uint32_t v) { for (int i = 0; i < 4; ++i) b[at + i] = uint8_t(v >> (8 * i)); };
    b[0] = 'B', b[1] = 'M';
    put(18, uint32_t(width));
    put(22, uint32_t(height));
    put(28, bpp);
    put(34, imageSize);
    return b;
}

// An output range of `capacity` bytes followed by a guard region.
struct OUTBUF
{
    static constexpr uint8_t GUARD = 0xAB;
    Bytes Data;
    size_t Capacity;
    explicit OUTBUF(size_t capacity = 64) : Data(capacity + 64, GUARD), Capacity(capacity) {}
    uint32_t Load(const std::string& file, int32_t size[2], float r = 0, float g = 0, float b = 0)
    {
        return LoadBMP(Data.data(), Capacity, file.c_str(), size, r, g, b);
    }
    Bytes Pixel(int i) const { return {Data.begin() + 4 * i, Data.begin() + 4 * i + 4}; }
    Bytes Pixels(int n) const { return {Data.begin(), Data.begin() + 4 * n}; }
    bool UntouchedFrom(size_t from) const
    {
        for (size_t i = from; i < Data.size(); ++i)
            if (Data[i] != GUARD)
                return false;
        return true;
    }
};

// The lowest free descriptor: it grows when a load leaves its file open.
int NextFreeFd()
{
    int fd = open("/dev/null", O_RDONLY);
    close(fd);
    return fd;
}

} // namespace

TEST(BitmapTest, DecodesBothDepthsWithColourKey)
{
    TEMPDIR dir;
    OUTBUF out;
    int32_t size[2] = {};
    // Blue, green, red per pixel: (0,0,0), (255,0,0), (0,0,1), (10,20,30) as RGB.
    std::string rgb = dir.Write("rgb.bmp", Bmp(2, 2, 24, 12, {0, 0, 0, 0, 0, 255, 1, 0, 0, 30, 20, 10}));
    EXPECT_EQ(out.Load(rgb, size), 12u);
    EXPECT_TRUE(size[0] == 2 && size[1] == 2);
    EXPECT_EQ(out.Pixels(4), (Bytes{0, 0, 0, 0, 255, 0, 0, 255, 0, 0, 1, 255, 10, 20, 30, 255}));
    EXPECT_TRUE(out.UntouchedFrom(16));
    out.Load(rgb, size, 10, 20, 30); // any colour can be the key
    EXPECT_TRUE(out.Pixel(0)[3] == 255 && out.Pixel(3)[3] == 0);

    // Palette entries are blue, green, red, reserved; entry 5 is black.
    Bytes pal;
    for (int i = 0; i < 256; ++i)
        pal.insert(pal.end(), {uint8_t(i == 5 ? 0 : 200), uint8_t(i == 5 ? 0 : i), 7, 99});
    pal[4 * 5 + 2] = 0;
    pal.insert(pal.end(), {5, 9, 5, 255});
    OUTBUF out8;
    EXPECT_EQ(out8.Load(dir.Write("pal.bmp", Bmp(4, 1, 8, 4, pal)), size), 4u);
    EXPECT_EQ(out8.Pixels(4), (Bytes{0, 0, 0, 0, 7, 9, 200, 255, 0, 0, 0, 0, 7, 255, 200, 255}));
    EXPECT_TRUE(out8.UntouchedFrom(16));

    // A truncated file decodes its missing bytes as zero; in the palette
    // (which ends inside entry 1 here) missing index bytes are index 0.
    EXPECT_EQ(out.Load(dir.Write("a.bmp", Bmp(2, 2, 24, 12, {5, 6, 7, 8, 9})), size), 12u);
    EXPECT_EQ(out.Pixels(4), (Bytes{7, 6, 5, 255, 0, 9, 8, 255, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(out.UntouchedFrom(16));
    EXPECT_EQ(out8.Load(dir.Write("b.bmp", Bmp(3, 1, 8, 3, {10, 20, 30, 0, 40})), size), 3u);
    EXPECT_EQ(out8.Pixel(2), (Bytes{30, 20, 10, 255}));
}

TEST(BitmapTest, RefusesWithoutWritingAnything)
{
    TEMPDIR dir;
    int before = NextFreeFd();
    Bytes pixels(1024 + 64, 50);
    // Other depths, and images larger than a 16-byte buffer (the last one's
    // pixel count overflows even 64 bits once multiplied by 4).
    for (Bytes file : {Bmp(2, 2, 16, 8, pixels), Bmp(2, 2, 32, 16, pixels), Bmp(1, 1, 1, 1, pixels),
                       Bmp(3, 2, 24, 18, pixels), Bmp(5, 1, 8, 5, pixels), Bmp(0x7FFFFFFF, 0x7FFFFFFF, 24, 12, pixels)}) {
        OUTBUF out(16);
        int32_t size[2] = {-7, -7};
        EXPECT_EQ(out.Load(dir.Write("x.bmp", file), size), 0u);
        EXPECT_TRUE(size[0] == -7 && out.UntouchedFrom(0));
    }

    OUTBUF out(16);
    int32_t size[2] = {};
    EXPECT_EQ(out.Load(dir.Write("fits.bmp", Bmp(2, 2, 24, 12, pixels)), size), 12u);
    EXPECT_TRUE(out.Pixel(3) == (Bytes{50, 50, 50, 255}) && out.UntouchedFrom(16));

    // A zero image-size field yields 0 although the pixels are decoded.
    EXPECT_EQ(out.Load(dir.Write("nosize.bmp", Bmp(1, 1, 24, 0, {3, 2, 1})), size), 0u);
    EXPECT_EQ(out.Pixel(0), (Bytes{1, 2, 3, 255}));

    // A top-down image (negative height) has no pixels to decode.
    OUTBUF down;
    EXPECT_EQ(down.Load(dir.Write("down.bmp", Bmp(2, -2, 24, 12, pixels)), size), 12u);
    EXPECT_TRUE(size[1] == -2 && down.UntouchedFrom(0));

    Bytes cut = Bmp(2, 2, 24, 12);
    cut.resize(20); // no depth field
    EXPECT_EQ(out.Load(dir.Write("c.bmp", cut), size), 0u);
    EXPECT_EQ(NextFreeFd(), before) << "a file was left open";
}
