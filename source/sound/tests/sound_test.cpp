// The sound system against the real OpenAL library, on its null output so
// that no sound card is needed.
#include <gtest/gtest.h>

#include "math/random.h"
#include "platform/tests/testplatform.h"
#include "platform/timer.h"
#include "sound/buffer.h"
#include "sound/objectal.h"
#include "sound/source.h"

#include <chrono>
#include <cstdlib>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace {

// Queries the sound code itself never needs, looked up in the loaded library.
template <typename F>
F Entry(const char* name)
{
    F f = reinterpret_cast<F>(OpenALEntry(name));
    EXPECT_NE(f, nullptr) << name;
    return f;
}

ALint SourceInt(ALuint source, ALenum what)
{
    ALint v = -12345;
    alGetSourcei(source, what, &v);
    return v;
}

// The binding alone, loaded for the null output.
class OpenALTest : public PlatformTest
{
protected:
    void SetUp() override
    {
        PlatformTest::SetUp();
        setenv("ALSOFT_DRIVERS", "null", 1);
        if (!OpenALLoaded())
            LoadOpenAL();
    }
};

// A sound system made for each test and closed after it.
class SoundTest : public OpenALTest
{
protected:
    std::unique_ptr<OBJECTAL> Sound;

    void SetUp() override
    {
        OpenALTest::SetUp();
        Sound = std::make_unique<OBJECTAL>();
    }
    void TearDown() override { Sound.reset(); }
};

} // namespace

TEST_F(OpenALTest, MissingLibraryOrEntryPointEndsTheProgram)
{
    // A library without the entry points fails on the first one.
    for (auto [library, says] : {std::pair{"liborv-no-such-audio.so.1", "AL_OpenAL32DLL!=NULL"},
                                 {"libm.so.6", "alGenBuffers!=NULL"}}) {
        P().Reset();
        EXPECT_THROW(LoadOpenAL(library), FATALEXIT);
        ASSERT_EQ(P().Messages.size(), 1u);
        EXPECT_NE(P().Messages[0].Text.find(says), std::string::npos) << P().Messages[0].Text;
        EXPECT_FALSE(OpenALLoaded());
    }
    LoadOpenAL();
    EXPECT_TRUE(OpenALLoaded());

    // Without a sound system sources are silent and invalid.
    ASSERT_EQ(SourceCount, 0);
    SOURCE s(nullptr, 1, 2, 3, 0, 0, 0);
    EXPECT_FALSE(s.valid);
    EXPECT_EQ(s.GetState(), -1);
    s.Play();
}

TEST_F(OpenALTest, NoDeviceFallsBackToTheNullOutput)
{
    // A driver list that names no usable driver: the default device fails.
    FreeOpenAL();
    setenv("ALSOFT_DRIVERS", "orv-none", 1);
    LoadOpenAL();
    testing::internal::CaptureStderr();
    {
        OBJECTAL sound;
        EXPECT_TRUE(sound.device && sound.context && sound.Silent());
        EXPECT_EQ(SourceCount, SOURCE_POOL_SIZE);
    }
    std::string said = testing::internal::GetCapturedStderr();
    EXPECT_NE(said.find("No sound device"), std::string::npos) << said;
    EXPECT_TRUE(P().Messages.empty());
}

TEST_F(SoundTest, PoolHandsOutFreeSlotsThenStealsOne)
{
    ASSERT_NE(Sound->device, nullptr);
    ASSERT_EQ(SourceCount, SOURCE_POOL_SIZE);

    auto buffer = std::make_unique<BUFFER>("Missile.wav");
    std::vector<std::unique_ptr<SOURCE>> sources;
    for (int i = 0; i < SOURCE_POOL_SIZE; ++i) {
        sources.push_back(std::make_unique<SOURCE>(buffer.get(), float(i), 0, 0, 0, 0, 0));
        ASSERT_TRUE(sources.back()->valid && sources.back()->index == i);
        sources.back()->SetLooping(true);
        sources.back()->Play();
    }
    EXPECT_EQ(sources[17]->GetState(), AL_PLAYING);

    // The 51st takes over a random slot: the looping sound there stops, as
    // the slot now holds a new source that has not been played yet.
    SRand(5);
    SOURCE extra(buffer.get(), 0, 0, 0, 0, 0, 0);
    ASSERT_TRUE(extra.valid && extra.index >= 0 && extra.index < SOURCE_POOL_SIZE);
    for (int i = 0; i < SOURCE_POOL_SIZE; ++i)
        EXPECT_EQ(SourceInt(SourcePool[i], AL_SOURCE_STATE), i == extra.index ? AL_INITIAL : AL_PLAYING) << i;
    EXPECT_EQ(SourceInt(SourcePool[extra.index], AL_LOOPING), 0);

    // A destroyed source leaves a fresh, empty source that the next one gets.
    int freed = (extra.index + 3) % SOURCE_POOL_SIZE;
    sources[freed].reset();
    EXPECT_TRUE(Entry<LPALISSOURCE>("alIsSource")(SourcePool[freed]));
    EXPECT_TRUE(SourceInt(SourcePool[freed], AL_SOURCE_TYPE) == AL_UNDETERMINED &&
                SourceInt(SourcePool[freed], AL_SOURCE_STATE) == AL_INITIAL);
    SOURCE next(buffer.get(), 0, 0, 0, 0, 0, 0);
    EXPECT_EQ(next.index, freed);

    sources.clear();
    EXPECT_EQ(alGetError(), AL_NO_ERROR);
}

TEST_F(SoundTest, SourcePropertiesAndTheInvalidCase)
{
    BUFFER buffer("LaserShot.wav");
    SOURCE s(&buffer, 1, 2, 3, 4, 5, 6);
    ASSERT_TRUE(s.valid);
    ALuint name = SourcePool[s.index];
    auto get3f = Entry<LPALGETSOURCE3F>("alGetSource3f");
    ALfloat x, y, z;
    s.SetPosition(7, 8, 9);
    // An invalid source does nothing, but looping still reaches its slot.
    s.valid = false;
    s.SetPosition(0, 0, 0);
    s.Play();
    s.SetLooping(true);
    get3f(name, AL_POSITION, &x, &y, &z);
    EXPECT_EQ(VECTOR3D(x, y, z), VECTOR3D(7, 8, 9)); // the valid source's position alone
    EXPECT_TRUE(SourceInt(name, AL_SOURCE_STATE) == AL_INITIAL && s.GetState() == -1);
    EXPECT_EQ(SourceInt(name, AL_LOOPING), 1);
    s.valid = true;

    // The listener: position, then the view direction and the up vector.
    SetListener({10, 20, 30}, {0, 0, -1}, {0, 1, 0});
    ALfloat orientation[6];
    Entry<LPALGETLISTENERFV>("alGetListenerfv")(AL_ORIENTATION, orientation);
    EXPECT_EQ(std::vector<float>(orientation, orientation + 6), (std::vector<float>{0, 0, -1, 0, 1, 0}));
    Entry<LPALGETLISTENER3F>("alGetListener3f")(AL_POSITION, &x, &y, &z);
    EXPECT_EQ(VECTOR3D(x, y, z), VECTOR3D(10, 20, 30));
}

TEST_F(SoundTest, SoundsPlayToTheirEndOnTheNullOutputAndTheMixerRestsBetween)
{
    TheSound = Sound.get();
    Sound->Rest(); // nothing plays: the mixer stops
    EXPECT_TRUE(Sound->Resting());
    BUFFER buffer("LaserShot.wav");
    SOURCE s(&buffer, 0, 0, 0, 0, 0, 0);
    s.Play(); // wakes it
    EXPECT_TRUE(!Sound->Resting() && s.GetState() == AL_PLAYING);
    Sound->Rest(); // a sound plays: no rest
    EXPECT_FALSE(Sound->Resting());
    auto until = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (s.GetState() == AL_PLAYING && std::chrono::steady_clock::now() < until)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(s.GetState(), AL_STOPPED);
    TheSound = nullptr;
}

TEST_F(SoundTest, AdvancedBufferIsReadyAgainAfterItsRandomPause)
{
    ADVBUFFER sound("Powerup.wav");
    SRand(3);
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(sound.Ready());
        uint32_t pause = sound.timer->Interval;
        EXPECT_LT(pause, 50u);
        if (pause == 0)
            continue; // a pause of 0 leaves the timer unarmed: ready at once
        P().Now += pause;
        EXPECT_FALSE(sound.Ready());
        P().Now += 1;
    }
}
