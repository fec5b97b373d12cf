// Object records in level files, read through the game's own class list.
#include "graphics/drawing.h"
#include "orvlevel/level.h"
#include "platform/tests/testplatform.h"
#include "sound/buffer.h"
#include "things/effects.h"
#include "things/pickup.h"
#include "things/spaceship.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

// Level-file bytes assembled by hand, independently of the writer.
struct BYTES
{
    std::vector<uint8_t> B;

    BYTES& U8(uint8_t v)
    {
        B.push_back(v);
        return *this;
    }
    BYTES& I32(int32_t v)
    {
        for (int i = 0; i < 4; ++i)
            B.push_back(uint8_t(uint32_t(v) >> 8 * i));
        return *this;
    }
    BYTES& F32(float f)
    {
        uint32_t u;
        std::memcpy(&u, &f, 4);
        return I32(int32_t(u));
    }
    BYTES& Vec(float x, float y, float z) { return F32(x).F32(y).F32(z); }
    BYTES& Zeros(size_t n)
    {
        B.resize(B.size() + n);
        return *this;
    }
    // The level sections before the things: no points, segments or textures.
    BYTES& Start()
    {
        const char header[39] = "ORVLEVEL\0UNNAMED";
        B.insert(B.end(), header, header + 39);
        return I32(-1).I32(-1).I32(-1);
    }
    // The things terminator, then empty light and special-point sections.
    BYTES& Finish() { return I32(-1).I32(-1).I32(-1); }
    // Index, 40-byte name field (with `junk` after the NUL) and size.
    BYTES& Head(int32_t index, const char* name, int32_t size, const char* junk = "")
    {
        I32(index);
        size_t n = std::strlen(name), j = std::strlen(junk);
        B.insert(B.end(), name, name + n);
        B.push_back(0);
        B.insert(B.end(), junk, junk + j);
        Zeros(40 - n - 1 - j);
        return I32(size);
    }
    // THING's 143 bytes; `seed` tells records apart. The frame is none a
    // constructor would choose.
    BYTES& Base(float seed)
    {
        Vec(seed, seed + 1, seed + 2).Vec(seed + 3, seed + 4, seed + 5);
        Vec(0, 0, 1).Vec(0, -1, 0).Vec(1, 0, 0); // axisY, axisZ, axisX
        Vec(0, 0, -1).Vec(0, 1, 0).Vec(-1, 0, 0);
        I32(7).I32(int32_t(seed));
        F32(30.5f).F32(4.25f);
        U8(1).U8(0).U8(0); // hit, ghost, dead
        F32(-1).F32(2).F32(-3).F32(4).F32(-5).F32(6);
        return F32(1.5f);
    }
    // A whole record with a zeroed tail after THING's members.
    BYTES& Plain(int32_t index, const char* name, int32_t size, float seed)
    {
        return Head(index, name, size).Base(seed).Zeros(size_t(size) - 147);
    }
};

void ExpectBase(const THING* t, float seed)
{
    ASSERT_NE(t, nullptr);
    EXPECT_EQ(t->position, VECTOR3D(seed, seed + 1, seed + 2));
    EXPECT_EQ(t->oldPosition, VECTOR3D(seed + 3, seed + 4, seed + 5));
    EXPECT_EQ(t->axisY, VECTOR3D(0, 0, 1));
    EXPECT_EQ(t->axisZ, VECTOR3D(0, -1, 0));
    EXPECT_EQ(t->axisX, VECTOR3D(1, 0, 0));
    EXPECT_EQ(t->oldAxisX, VECTOR3D(-1, 0, 0));
    EXPECT_EQ(t->segment, 7);
    EXPECT_EQ(t->lastSegment, int32_t(seed));
    EXPECT_EQ(t->outerRadius, 30.5f);
    EXPECT_EQ(t->innerRadius, 4.25f);
    EXPECT_TRUE(t->hit);
    EXPECT_FALSE(t->ghost); // every effect class constructs itself a ghost
    EXPECT_FALSE(t->dead);
    EXPECT_EQ(t->boxZLow, -1.0f);
    EXPECT_EQ(t->boxXHigh, 6.0f);
    EXPECT_EQ(t->pushDistance, 1.5f);
}

class RecordsTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L;

    void SetUp() override
    {
        PlatformTest::SetUp();
        LoadThingMeshes();
        RegisterThingClasses();
        L = std::make_unique<ORVLEVEL>();
        TheLevel = L.get();
    }
    void TearDown() override
    {
        L.reset();
        TheLevel = nullptr;
    }
    void Load(const std::vector<uint8_t>& bytes)
    {
        L->Clear();
        P().Reset();
        L->Deserialize(bytes.data(), bytes.size());
    }
};

// A shield item, a shot, a missile, a spark and an explosion. `saved`: the
// bytes the writer gives back for them, which drop the effects, store no
// pointers and zero the name field after its NUL.
std::vector<uint8_t> MixedFile(bool saved)
{
    BYTES f;
    f.Start();
    f.Head(3, "P_SHIELD", 151, saved ? "" : "junk").Base(10).I32(0);
    f.Head(7, "LASERSHOT", 180).Base(20);
    f.I32(4).I32(saved ? 0 : int32_t(0xDEADBEEF)).U8(1).I32(saved ? 0 : int32_t(0xCAFEBABE));
    f.Vec(7, 8, 9).F32(12.5f).F32(40);
    if (!saved)
    {
        f.Head(20, "SPARK", 155).Base(30).F32(7.5f).F32(0.25f);
        f.Head(21, "EXPLOSION", 179).Base(40).I32(0x11111111).F32(300).F32(10).F32(42).Vec(1, 2, 3).I32(0x22222222);
    }
    f.Plain(999, "TEMPEST", 180, 50);
    return f.Finish().B;
}

} // namespace

TEST_F(RecordsTest, HandBuiltRecordsLoadOverTheConstructedObjects)
{
    Load(MixedFile(false));
    EXPECT_TRUE(P().Messages.empty());

    auto* shield = dynamic_cast<P_SHIELD*>(L->Things[3]);
    ASSERT_NE(shield, nullptr);
    ExpectBase(shield, 10);
    EXPECT_EQ(shield->solidTicks, 0);

    ASSERT_NE(L->Things[7], nullptr);
    EXPECT_STREQ(L->Things[7]->ClassName(), "LASERSHOT");
    auto* shot = static_cast<LASERSHOT*>(L->Things[7]);
    ExpectBase(shot, 20);
    EXPECT_EQ(shot->level, 4);
    EXPECT_TRUE(shot->withSound);
    // Stored addresses mean nothing now: never read, and AfterLoad clears.
    EXPECT_EQ(shot->sound, nullptr);
    EXPECT_EQ(shot->owner, nullptr);
    EXPECT_EQ(shot->lastPoint, VECTOR3D(7, 8, 9));
    EXPECT_EQ(shot->damage, 12.5f);
    EXPECT_EQ(shot->speed, 40.0f);

    auto* spark = dynamic_cast<SPARK*>(L->Things[20]);
    ASSERT_NE(spark, nullptr);
    ExpectBase(spark, 30);
    EXPECT_EQ(spark->size, 7.5f);
    EXPECT_EQ(spark->decay, 0.25f);

    auto* explosion = dynamic_cast<EXPLOSION*>(L->Things[21]);
    ASSERT_NE(explosion, nullptr);
    ExpectBase(explosion, 40);
    EXPECT_EQ(explosion->maxSize, 300.0f);
    EXPECT_EQ(explosion->growth, 10.0f);
    EXPECT_EQ(explosion->radius, 42.0f);
    EXPECT_EQ(explosion->centre, VECTOR3D(1, 2, 3));
    EXPECT_EQ(explosion->source, nullptr);
    EXPECT_EQ(explosion->texture, Drawing().ExplosionTexture);

    // The missile's record replaces the box its constructor took from the mesh.
    auto* missile = dynamic_cast<TEMPEST*>(L->Things[999]);
    ASSERT_NE(missile, nullptr);
    ExpectBase(missile, 50);

    // Saving drops the effects (a sound effect added now as well) and keeps
    // every other object at its slot.
    BUFFER sound("Powerup.wav");
    ASSERT_EQ(L->AddThing(new SOUNDEFFECT(&sound, {0, 0, 0}, false)), 0);
    EXPECT_EQ(L->Serialize(), MixedFile(true));
    L->Clear(); // before the buffer goes
}

TEST_F(RecordsTest, OnlyTheListedNamesAreAccepted)
{
    const struct
    {
        const char* Name;
        int32_t Size;
    } accepted[] = {{"SPACESHIP", 1233}, {"LASERSHOT", 180}, {"EXPLOSION", 179}, {"TEMPEST", 180},
                    {"SPARK", 155},      {"P_SHIELD", 151},  {"P_ENERGY", 151},  {"P_TEMPEST", 151},
                    {"P_LASERBOOST", 151}, {"P_SHIPLEVEL", 151}};
    for (const auto& c : accepted)
    {
        SCOPED_TRACE(c.Name);
        BYTES f;
        Load(f.Start().Plain(12, c.Name, c.Size, 1).Finish().B);
        EXPECT_TRUE(P().Messages.empty());
        ASSERT_NE(L->Things[12], nullptr);
        EXPECT_STREQ(L->Things[12]->ClassName(), c.Name);
        EXPECT_EQ(L->Things[12]->RecordSize(), c.Size);
        ExpectBase(L->Things[12], 1);
    }

    // A plain item writes "PICKUP" but is not read back; names are compared
    // exactly.
    for (const char* name : {"PICKUP", "SOUNDEFFECT", "THING", "p_shield", "P_SHIELD "})
    {
        SCOPED_TRACE(name);
        BYTES f;
        f.Start().Plain(0, name, 151, 1).Finish();
        try
        {
            Load(f.B);
            ADD_FAILURE() << "the load went on";
        }
        catch (const FATALEXIT&)
        {
        }
        ASSERT_EQ(P().Messages.size(), 1u);
        EXPECT_EQ(P().Messages[0].Text, "Undefined Thing:");
        EXPECT_EQ(P().Messages[0].Caption, name);
        EXPECT_EQ(P().Messages[0].Icon, MSGICON_STOP);
    }
}

TEST_F(RecordsTest, WrongSizeStopsTheLoadBeforeTheObject)
{
    // A missile record one byte short, as long as an explosion's; a light
    // follows.
    BYTES f;
    f.Start().Plain(0, "P_ENERGY", 151, 1).Plain(1, "TEMPEST", 179, 2).I32(-1);
    f.I32(0).Vec(1, 2, 3).Vec(1, 1, 1).F32(100).I32(-1).I32(-1);
    Load(f.B);
    ASSERT_EQ(P().Messages.size(), 1u);
    EXPECT_EQ(P().Messages[0].Text.rfind("A(z) TEMPEST cucc mérete a pályafájlban 179 bájt, 180 helyett.", 0), 0u);
    EXPECT_NE(dynamic_cast<P_ENERGY*>(L->Things[0]), nullptr);
    EXPECT_EQ(L->Things[1], nullptr);
    EXPECT_EQ(L->Lights[0], nullptr);
}
