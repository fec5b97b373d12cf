#include <gtest/gtest.h>

#include "platform/tests/testplatform.h"
#include "sound/buffer.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

using Bytes = std::vector<uint8_t>;

namespace {

void Le(Bytes& b, uint32_t v, int bytes = 4)
{
    for (int i = 0; i < bytes; ++i)
        b.push_back(uint8_t(v >> 8 * i));
}

// A chunk, padded to even length; statedSize overrides the size field.
Bytes Chunk(const char* id, const Bytes& body, uint32_t statedSize = UINT32_MAX)
{
    Bytes b(id, id + 4);
    Le(b, statedSize == UINT32_MAX ? uint32_t(body.size()) : statedSize);
    b.insert(b.end(), body.begin(), body.end());
    if (body.size() % 2)
        b.push_back(0);
    return b;
}

Bytes Fmt(uint16_t channels, uint32_t rate, uint16_t bits, Bytes extension = {})
{
    Bytes b;
    for (auto [v, n] : {std::pair{1u, 2}, {channels, 2}, {rate, 4}, {rate * channels * bits / 8, 4}, {channels * bits / 8u, 2}, {bits, 2}})
        Le(b, v, n);
    b.insert(b.end(), extension.begin(), extension.end());
    return Chunk("fmt ", b);
}

Bytes Riff(const std::vector<Bytes>& chunks, const char* form = "WAVE")
{
    Bytes body(form, form + 4);
    for (const Bytes& c : chunks)
        body.insert(body.end(), c.begin(), c.end());
    return Chunk("RIFF", body);
}

struct WAVE
{
    ALenum Format = 0;
    void *Data = nullptr, *Memory = nullptr;
    uint32_t Size = 0, Frequency = 0;

    explicit WAVE(const std::string& file) { LoadWave(file.c_str(), &Format, &Data, &Size, &Frequency, &Memory); }
    ~WAVE() { std::free(Memory); }
    Bytes Samples() const { return Bytes(static_cast<uint8_t*>(Data), static_cast<uint8_t*>(Data) + Size); }
};

class WaveTest : public PlatformTest
{
protected:
    TEMPDIR Dir;
    std::string Write(const Bytes& b) { return Dir.Write("t.wav", b); }

    // Loads a file that must be refused; returns the message shown.
    std::string Refusal(const std::string& file)
    {
        try {
            WAVE w(file);
        } catch (const FATALEXIT& e) {
            EXPECT_EQ(e.Status, -1);
            EXPECT_EQ(P().Messages.size(), 1u);
            return P().Messages.empty() ? "" : P().Messages.back().Text;
        }
        ADD_FAILURE() << "the file was accepted";
        return "";
    }
};

} // namespace

TEST_F(WaveTest, FormatFollowsChannelsAndBits)
{
    struct CASE { uint16_t Channels; uint32_t Rate; uint16_t Bits; ALenum Format; };
    const CASE cases[] = {
        {1, 22050, 8, AL_FORMAT_MONO8},    {2, 44100, 16, AL_FORMAT_STEREO16},
        {1, 11025, 16, AL_FORMAT_MONO16},  {2, 8000, 8, AL_FORMAT_STEREO8},
        {4, 44100, 16, AL_FORMAT_MONO16},  {2, 48000, 24, AL_FORMAT_STEREO8},
        {6, 32000, 8, AL_FORMAT_MONO8},
    };
    Bytes samples{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    for (const CASE& c : cases) {
        WAVE w(Write(Riff({Fmt(c.Channels, c.Rate, c.Bits), Chunk("data", samples)})));
        EXPECT_TRUE(w.Format == c.Format && w.Frequency == c.Rate && w.Data == w.Memory) << c.Channels << " " << c.Bits;
        EXPECT_EQ(w.Samples(), samples);
    }
    EXPECT_TRUE(P().Messages.empty());
}

TEST_F(WaveTest, OtherChunksAreSkippedAndShortDataCut)
{
    Bytes samples{10, 0, 20, 0, 30, 0};
    // An extended format record (cbSize and more), a JUNK chunk before it,
    // and an odd-sized LIST chunk with its pad byte between "fmt " and "data".
    Bytes extension{4, 0, 0xAA, 0xBB, 0xCC, 0xDD};
    WAVE w(Write(Riff({Chunk("JUNK", Bytes(7, 0x55)), Fmt(1, 22050, 16, extension),
                       Chunk("LIST", Bytes{'I', 'N', 'F', 'O', 'x'}), Chunk("data", samples)})));
    EXPECT_TRUE(w.Format == AL_FORMAT_MONO16 && w.Samples() == samples);

    // A RIFF of another form type before the wave is passed over.
    Bytes two = Riff({Chunk("data", Bytes(4, 1))}, "AVI ");
    Bytes wave = Riff({Fmt(1, 8000, 8), Chunk("data", Bytes{9})});
    two.insert(two.end(), wave.begin(), wave.end());
    WAVE w2(Write(two));
    EXPECT_TRUE(w2.Frequency == 8000u && w2.Samples() == Bytes{9});

    // Truncated data keeps whole frames only.
    Bytes file = Riff({Fmt(1, 22050, 16), Chunk("data", Bytes(101, 7), 4000)});
    file.resize(file.size() - 1); // drop the pad byte: the file ends in the data
    EXPECT_EQ(WAVE(Write(file)).Samples(), Bytes(100, 7));

    // A RIFF size beyond the file and a data size beyond the RIFF are cut too.
    Bytes stereo = Riff({Fmt(2, 22050, 16), Chunk("data", Bytes(10, 3), 1u << 31)});
    std::memset(&stereo[4], 0x7F, 4);
    EXPECT_EQ(WAVE(Write(stereo)).Size, 8u);
    // An empty data chunk that ends the file is still found.
    EXPECT_EQ(WAVE(Write(Riff({Fmt(1, 8000, 8), Chunk("data", {})}))).Size, 0u);
    EXPECT_TRUE(P().Messages.empty());
}

TEST_F(WaveTest, BrokenFilesEndTheProgramWithTheirMessage)
{
    std::string missing = (Dir / "none.wav").string();
    EXPECT_EQ(Refusal(missing), "File not found: " + missing);
    EXPECT_EQ(P().Messages.back().Caption, "Error");

    struct CASE { Bytes File; const char* Message; };
    Bytes data = Chunk("data", Bytes(4, 0)), fmt = Fmt(1, 22050, 8);
    const CASE cases[] = {
        {Bytes{'R', 'I', 'F'}, "Not a waveform file: %s"},
        {Riff({fmt, data}, "AVI "), "Not a waveform file: %s"},
        {Chunk("RIFX", Bytes{'W', 'A', 'V', 'E'}), "Not a waveform file: %s"},
        {Riff({data}), "Waveform file %s is corrupted! 'fmt ' chunk not found!"},
        {Riff({Chunk("fmt", Bytes(16, 0))}), "Waveform file %s is corrupted! 'fmt ' chunk not found!"},
        {Riff({fmt}), "Waveform file %s is corrupted! 'data' chunk not found!"},
        // The data search starts after "fmt ".
        {Riff({data, fmt}), "Waveform file %s is corrupted! 'data' chunk not found!"},
        {Riff({Chunk("fmt ", Bytes(12, 1)), data}), "Waveform file %s is corrupted! Bad 'fmt ' chunk!"},
        {Riff({Fmt(1, 0, 8), data}), "Waveform file %s is corrupted! Bad 'fmt ' chunk!"},
    };
    for (const CASE& c : cases) {
        P().Reset();
        std::string file = Write(c.File), expected = c.Message;
        EXPECT_EQ(Refusal(file), expected.replace(expected.find("%s"), 2, file));
    }
}
