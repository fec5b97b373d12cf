// The information beep on a sound device: OpenAL Soft's wave writer stands
// in for a sound card, so what the program played can be read back.
#include <gtest/gtest.h>

#include "platform/tests/testplatform.h"
#include "sound/beep.h"
#include "sound/buffer.h"
#include "sound/objectal.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <thread>

TEST_F(PlatformTest, TheBeepIsOurToneOnTheSoundDevice)
{
    TEMPDIR dir;
    const std::string played = (dir / "played.wav").string();
    std::ofstream(dir / "alsoft.conf") << "[wave]\nfile = " << played << "\n";
    setenv("ALSOFT_CONF", (dir / "alsoft.conf").c_str(), 1);
    setenv("ALSOFT_DRIVERS", "wave", 1);
    LoadOpenAL(); // the library reads its drivers when it loads

    EXPECT_FALSE(PlayBeep()); // no sound system: the caller beeps its own way
    auto sound = std::make_unique<OBJECTAL>();
    TheSound = sound.get();
    ASSERT_FALSE(sound->Silent());
    auto tone = std::make_unique<BUFFER>("Beep.wav");
    BeepSound = tone.get();
    EXPECT_TRUE(PlayBeep());
    EXPECT_TRUE(PlayBeep()); // again, on the same voice
    std::this_thread::sleep_for(std::chrono::milliseconds(400));
    TheSound = nullptr;
    BeepSound = nullptr;
    for (int i = 0; i < SourceCount; ++i) // the voice keeps the tone; a buffer in use cannot go
        alSourcei(SourcePool[i], AL_BUFFER, 0);
    tone.reset();
    sound.reset();

    // Past the header, the tone: samples far from silence.
    const std::vector<uint8_t> out = ReadFile(played);
    int loudest = 0;
    for (size_t i = 44; i + 1 < out.size(); i += 2)
        loudest = std::max(loudest, std::abs(int(int16_t(out[i] | out[i + 1] << 8))));
    EXPECT_GT(loudest, 5000) << out.size() << " bytes";
    EXPECT_TRUE(P().Messages.empty());
}
