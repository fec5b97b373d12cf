#include "orvlevel/level.h"

#include "graphics/texture.h"
#include "orvlevel/tests/leveltesting.h"
#include "platform/binio.h"
#include "things/thingclasses.h"

#include <algorithm>
#include <functional>
#include <memory>

#include <csignal>
#include <sys/resource.h>

namespace fs = std::filesystem;

namespace {

void ExpectSegment(const SEGMENT* s, int seed, uint32_t size, int32_t type)
{
    ASSERT_NE(s, nullptr);
    EXPECT_TRUE(s->RecordSize == size && s->Type == type && s->Neighbours[5] == seed + 5 && s->Corners[7] == seed * 10 + 7);
    for (int k = 0; k < 6; ++k)
    {
        const SIDE& d = s->Sides[k];
        int v = seed * 100 + k * 10;
        EXPECT_EQ((std::vector<float>{float(d.Texture), float(d.WallType), d.TexCoords[3].s, d.TexCoords[3].t, d.Colours[1].y,
                                      d.Colours[3].z, float(d.Door.State), d.Door.Opening, float(d.Door.Reserved), float(d.Door.SlideEdge)}),
                  (std::vector<float>{float(v), float(k % 5), v + 3.0f, v + 3.5f, 4 / 16.0f, 11 / 16.0f, float(k % 4), k * 0.25f, float(v + 7), float((k + 1) % 4)}))
            << k;
    }
}

int Constructed = 0;
int AfterLoads = 0;

class TESTTHING : public THING
{
public:
    TESTTHING() { ++Constructed; }
    const char* ClassName() const override { return "TESTTHING"; }
    void WriteRecord(BINWRITER& out, int32_t index) const override { WriteClassRecord(out, index); }
    void AfterLoad() override { ++AfterLoads; }
};

const THINGCLASS TestClasses[] = {{"TESTTHING", THING_SIZE, []() -> THING* { return new TESTTHING; }}};

class LevelFileTest : public PlatformTest
{
protected:
    std::unique_ptr<ORVLEVEL> L = std::make_unique<ORVLEVEL>();
    TEMPDIR Temp;
    const fs::path& Dir = Temp.Path;

    void SetUp() override
    {
        PlatformTest::SetUp();
        SetThingClasses(TestClasses);
        Constructed = AfterLoads = 0;
    }
    void TearDown() override
    {
        L.reset();
        RegisterThingClasses();
    }
    void Load(const std::vector<uint8_t>& bytes, size_t size)
    {
        L->Clear();
        P().Reset();
        L->Deserialize(bytes.data(), size);
    }
    // One error message; its text.
    std::string OneStop()
    {
        EXPECT_EQ(P().Messages.size(), 1u);
        if (P().Messages.size() != 1u)
            return "";
        EXPECT_TRUE(P().Messages[0].Caption == "HIBA!" && P().Messages[0].Icon == MSGICON_STOP);
        return P().Messages[0].Text;
    }
};

TEST_F(LevelFileTest, HandBuiltFileLoadsEveryField)
{
    LEVELBYTES f;
    f.Header("Pr\xF3" "ba").Point(0, 1.5f, -2, 3).Point(5, 4, 5, 6).Point(39999, -7, 8.25f, 9).End();
    f.Segment(3, 2).Segment(4999, 7).End();
    // A name may fill its whole field: the second is read after a longer one.
    f.Texture(4, "SmallExplosion.bmp", 19).Texture(5, "WallTex.bmp", 11).Texture(199, "InvSide.bmp").End();
    f.End().Light(127).End().SpecPoint(255, 3).End();
    WriteFile(Dir / "hand.ORVLevel", f.B);

    L->CurrentSegment = 0;
    L->LoadLevel((Dir / "hand.ORVLevel").c_str());
    EXPECT_TRUE(P().Messages.empty());
    EXPECT_STREQ(L->Name, "Pr\xF3" "ba");
    EXPECT_EQ(L->FileName, (Dir / "hand.ORVLevel").string());
    EXPECT_EQ(L->CurrentSegment, 0); // the selection survives a load
    EXPECT_EQ(L->Points[39999]->y, 8.25f);
    ExpectSegment(L->Segments[3], 2, 736, 2);
    ExpectSegment(L->Segments[4999], 7, 736, 3);
    EXPECT_EQ(Filled(L->Segments, MAX_SEGMENTS), 2);
    EXPECT_EQ(std::string(L->Textures[4]->FileName) + L->Textures[5]->FileName + L->Textures[199]->FileName,
              "SmallExplosion.bmpWallTex.bmpInvSide.bmp");
    EXPECT_TRUE(L->Lights[127]->Colour.y == 0.25f && L->Lights[127]->Brightness == 10000.0f);
    EXPECT_TRUE(L->SpecPoints[255]->Position.z == -3.0f && L->SpecPoints[255]->Type == 3);
    EXPECT_NE(L->InvisibleSideTexture, nullptr);
}

TEST_F(LevelFileTest, OldSegmentRecordsLoadWithTypeZeroAndSaveAsCurrent)
{
    // The slot held a segment of type 3 before: an old record sets the type
    // too.
    LEVELBYTES before;
    before.Header().End().Segment(2, 7).End().End().End().End().End();
    Load(before.B, before.B.size());
    ASSERT_EQ(L->Segments[2]->Type, 3);

    LEVELBYTES f;
    f.Header().Point(0, 1, 2, 3).End().Segment(0, 1, 732).Segment(2, 5, 732).End();
    f.Texture(0, "WallTex.bmp").End().End().End().End();
    Load(f.B, f.B.size());
    EXPECT_TRUE(P().Messages.empty());
    ExpectSegment(L->Segments[0], 1, 732, 0);
    ExpectSegment(L->Segments[2], 5, 732, 0);
    EXPECT_NE(L->Textures[0], nullptr); // the records were 732 bytes long, not 736

    std::vector<uint8_t> image = L->Serialize();
    EXPECT_EQ(image.size(), f.B.size() + 8);
    EXPECT_EQ(L->Segments[2]->RecordSize, 732u); // taking the image changes nothing
    Load(image, image.size());
    ExpectSegment(L->Segments[2], 5, 736, 0);
}

// Cutting the file after any byte keeps exactly the records that are
// complete, repeats none, and complains unless the cut follows a terminator.
// The whole file, read and written again, gives back its very bytes: every
// entry at its index, gaps and last slots included.
TEST_F(LevelFileTest, FileEndingAnywhereKeepsTheCompleteRecords)
{
    LEVELBYTES f;
    std::vector<size_t> ends[6], clean;
    auto record = [&](int table) { ends[table].push_back(f.B.size()); };
    auto end = [&] { f.End(), clean.push_back(f.B.size()); };
    f.Header();
    for (int i : {0, 5, MAX_POINTS - 1})
        f.Point(i, 1, 2, 3), record(0);
    end();
    f.Segment(3, 1), record(1);
    f.Segment(MAX_SEGMENTS - 1, 2), record(1);
    end();
    f.Texture(MAX_TEXTURES - 1, "WallTex.bmp"), record(2);
    end();
    f.Thing(5, "TESTTHING", THING_SIZE, 3), record(3); // a dead one
    end();
    f.Light(MAX_LIGHTS - 1), record(4);
    end();
    f.SpecPoint(MAX_SPECPOINTS - 1, 3), record(5);
    end();

    for (size_t n = 0; n <= f.B.size(); ++n)
    {
        SCOPED_TRACE(n);
        Load(f.B, n);
        ASSERT_NE(L->InvisibleSideTexture, nullptr);
        auto complete = [&](int table) { return int(std::count_if(ends[table].begin(), ends[table].end(), [&](size_t e) { return e <= n; })); };
        EXPECT_EQ(Filled(L->Points, MAX_POINTS), complete(0));
        EXPECT_EQ(Filled(L->Segments, MAX_SEGMENTS), complete(1));
        EXPECT_EQ(Filled(L->Textures, MAX_TEXTURES), complete(2));
        EXPECT_EQ(Filled(L->Things, MAX_THINGS), complete(3));
        EXPECT_EQ(Filled(L->Lights, MAX_LIGHTS), complete(4));
        EXPECT_EQ(Filled(L->SpecPoints, MAX_SPECPOINTS), complete(5));
        if (n < 9)
            continue; // the magic itself is cut: a second message about it
        if (std::find(clean.begin(), clean.end(), n) != clean.end())
            EXPECT_TRUE(P().Messages.empty());
        else
            OneStop();
    }
    EXPECT_EQ(AfterLoads, Constructed);
    EXPECT_TRUE(L->Things[5] && L->Things[5]->dead);
    EXPECT_EQ(L->Serialize(), f.B);
}

TEST_F(LevelFileTest, WrongMagicIsReportedAndTheFileStillLoads)
{
    std::vector<uint8_t> image = L->Serialize();
    for (const char* magic : {"ORVLEVEX", "ORVLEVELX", "orvlevel"})
    {
        SCOPED_TRACE(magic);
        std::vector<uint8_t> bytes = image;
        std::memcpy(bytes.data(), magic, std::strlen(magic));
        Load(bytes, bytes.size());
        EXPECT_EQ(OneStop(), "Nem Orvane Battle pálya ez.");
        EXPECT_EQ(L->Serialize(), image);
    }
}

TEST_F(LevelFileTest, BrokenRecordStopsTheLoadAndKeepsWhatCameBefore)
{
    struct CASE { const char* What; std::function<void(LEVELBYTES&)> Tail; std::function<void(ORVLEVEL&)> Check; };
    auto noSegments = [](ORVLEVEL& l) { EXPECT_EQ(Filled(l.Segments, MAX_SEGMENTS), 0); };
    const CASE cases[] = {
        {"point index too high", [](LEVELBYTES& f) { f.Point(40000, 0, 0, 0); }, noSegments},
        {"point index twice", [](LEVELBYTES& f) { f.Point(0, 9, 9, 9); }, noSegments},
        {"segment index too high", [](LEVELBYTES& f) { f.End().Segment(1, 1).Segment(5000, 2); },
         [](ORVLEVEL& l) { EXPECT_EQ(Filled(l.Segments, MAX_SEGMENTS), 1); }},
        {"door block of 21 bytes", [](LEVELBYTES& f) { f.End().Segment(0, 1).Patch(f.B.size() - 736 + 152, 21); }, noSegments},
        {"segment of 740 bytes", [](LEVELBYTES& f) { f.End().Segment(0, 1).Patch(f.B.size() - 736, 740); }, noSegments},
        {"texture name of 1001 bytes", [](LEVELBYTES& f) { f.End().End().Texture(0, "WallTex.bmp", 1001).End(); },
         [](ORVLEVEL& l) { EXPECT_EQ(Filled(l.Textures, MAX_TEXTURES), 0); }},
        {"thing of the wrong size", [](LEVELBYTES& f) { f.End().End().End().Thing(0, "TESTTHING", 148).End().Light(0).End(); },
         [](ORVLEVEL& l) { EXPECT_TRUE(Constructed == 0 && Filled(l.Lights, MAX_LIGHTS) == 0); }},
        {"light index too high", [](LEVELBYTES& f) { f.End().End().End().End().Light(0).Light(128).End(); },
         [](ORVLEVEL& l) { EXPECT_EQ(Filled(l.Lights, MAX_LIGHTS), 1); }},
        {"special point index twice", [](LEVELBYTES& f) { f.End().End().End().End().End().SpecPoint(255, 1).SpecPoint(255, 2).End(); },
         [](ORVLEVEL& l) { EXPECT_EQ(l.SpecPoints[255]->Type, 1); }},
    };
    for (const CASE& c : cases)
    {
        SCOPED_TRACE(c.What);
        LEVELBYTES f;
        f.Header().Point(0, 1, 2, 3);
        c.Tail(f);
        Load(f.B, f.B.size());
        OneStop();
        ASSERT_TRUE(L->Points[0] && L->InvisibleSideTexture);
        EXPECT_TRUE(L->Points[0]->x == 1.0f && Filled(L->Points, MAX_POINTS) == 1);
        c.Check(*L);
    }
}

// An unreadable file leaves the level untouched; a saved one loads back as
// it was.
TEST_F(LevelFileTest, SaveAndLoadThroughFiles)
{
    L->Points[3]->x = 42;
    const std::vector<uint8_t> before = L->Serialize();
    TEXTURE* invisible = L->InvisibleSideTexture;
    for (fs::path name : {Dir / "missing.ORVLevel", Dir})
    {
        P().Reset();
        L->LoadLevel(name.c_str());
        EXPECT_NE(OneStop().find(name.string()), std::string::npos);
        EXPECT_EQ(L->Serialize(), before);
        EXPECT_TRUE(!L->FileName && L->InvisibleSideTexture == invisible);
    }
    const fs::path file = Dir / "level.ORVLevel";
    P().Reset();
    L->SaveLevel(file.c_str());
    auto back = std::make_unique<ORVLEVEL>();
    back->LoadLevel(file.c_str());
    EXPECT_TRUE(P().Messages.empty());
    EXPECT_EQ(back->FileName, file.string());
    EXPECT_EQ(back->Serialize(), before);
}

// A save never costs the previous file: not when the folder or the file is
// refused, not when the write fails half way; and it leaves no temporary.
TEST_F(LevelFileTest, FailedSaveKeepsThePreviousFileAndSaysSo)
{
    const fs::path file = Dir / "level.ORVLevel";
    WriteFile(file, {1, 2, 3});
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    // What a killed save left beside the file goes with the next save; a
    // name that only looks alike stays.
    WriteFile(Dir / ".level.ORVLevel.orvsave-Ab3xYz", {9});
    WriteFile(Dir / ".level.ORVLevel.orvsave-Ab3xYz7", {9});
    L->SaveLevel(file.c_str());
    EXPECT_TRUE(P().Messages.empty());
    EXPECT_EQ(ReadFile(file), L->Serialize());
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);

    fs::create_directory(Dir / "sub");
    const fs::path locked = Dir / "locked.ORVLevel"; // refused even for root
    WriteFile(locked, {4, 5});
    fs::permissions(locked, fs::perms::owner_read);
    for (fs::path target : {Dir / "nodir" / "x.ORVLevel", Dir / "sub", locked})
    {
        P().Reset();
        L->SaveLevel(target.c_str());
        EXPECT_NE(OneStop().find(target.string()), std::string::npos);
    }
    EXPECT_EQ(ReadFile(locked), (std::vector<uint8_t>{4, 5}));
    fs::remove(locked);

    // Over the file size limit (which holds for root too) the write fails
    // half way.
    const std::vector<uint8_t> previous = ReadFile(file);
    L->Points[0]->x = 1;
    rlimit old, small;
    getrlimit(RLIMIT_FSIZE, &old);
    small = {100, old.rlim_max};
    auto oldSignal = signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    P().Reset();
    L->SaveLevel(file.c_str());
    setrlimit(RLIMIT_FSIZE, &old);
    signal(SIGXFSZ, oldSignal);
    OneStop();
    EXPECT_EQ(ReadFile(file), previous);
    std::vector<fs::path> left;
    for (const auto& e : fs::directory_iterator(Dir))
        left.push_back(e.path().filename());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<fs::path>{".level.ORVLevel.orvsave-Ab3xYz7", "level.ORVLevel", "sub"}));
}

} // namespace
