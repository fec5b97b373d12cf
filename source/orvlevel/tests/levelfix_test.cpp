#include "orvlevel/levelcheck.h"
#include "orvlevel/levelfix.h"

#include "orvlevel/tests/leveltesting.h"
#include "things/thingmeshes.h"

#include <filesystem>
#include <functional>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string Lines(const std::vector<std::string>& lines)
{
    std::string all;
    for (const std::string& l : lines)
        all += l + "\n";
    return all;
}

std::string Problems(const ORVLEVEL& level)
{
    std::string all;
    for (const LEVELPROBLEM& p : CheckLevel(level))
        all += p.Text + "\n";
    return all;
}

} // namespace

TEST(LevelCheck, FindsEveryKindOfProblemWithItsNumbers)
{
    ORVLEVEL L;
    SPECPOINT start;
    L.Add(start);
    EXPECT_EQ(Problems(L), ""); // the default cube with a start is sound

    const int dangling = AddCubeCopy(L, {1000, 0, 0});
    L.Segments[dangling]->Neighbours[0] = 77;
    const int oneWay = AddCubeCopy(L, {2000, 0, 0});
    L.Segments[oneWay]->Neighbours[1] = 0;
    const int broken = AddCubeCopy(L, {3000, 0, 0});
    L.Segments[broken]->Corners[6] = 39999;
    const int flat = AddCubeCopy(L, {4000, 0, 0});
    for (int k : {1, 3, 5, 7}) // the +x corners onto the -x ones
        *L.Points[L.Segments[flat]->Corners[k]] = *L.Points[L.Segments[flat]->Corners[k - 1]];
    const int inverted = AddCubeCopy(L, {5000, 0, 0});
    for (int k = 0; k < 8; k += 2)
        std::swap(L.Segments[inverted]->Corners[k], L.Segments[inverted]->Corners[k + 1]);
    const int a = AddCubeCopy(L, {6000, 0, 0});
    const int b = AddCubeCopy(L, {6000, 0, 0});
    const int unused = L.Add(VECTOR3D(0, 0, 0));
    L.Segments[0]->Sides[2].WallType = WALL_PASSABLE;
    L.Segments[0]->Sides[3].Texture = 5;
    auto* lost = new THING;
    lost->position = {0, 1e6f, 0};
    L.AddThing(lost);
    L.Add(STATICLIGHT{{0, -1e6f, 0}, {1, 1, 1}, 100});
    SPECPOINT outside;
    outside.Position = {0, 0, 1e6f};
    L.Add(outside);
    const fs::path gone = fs::temp_directory_path() / "orvcheck-gone.bmp";
    fs::copy_file("WallTex.bmp", gone, fs::copy_options::overwrite_existing);
    const int tex = L.Add(gone.c_str());
    fs::remove(gone);

    const std::vector<LEVELPROBLEM> found = CheckLevel(L);
    const std::string all = Problems(L);
    auto num = [](int n) { return std::to_string(n); };
    for (const std::string& line :
         {"Szegmens " + num(dangling) + ", oldal 0: a szomszédja (77) nem létező szegmens.",
          "Szegmens " + num(oneWay) + ", oldal 1: a(z) 0. szegmenssel való kapcsolat egyirányú.",
          std::string("Szegmens 0, oldal 2: átjárható, de nincs mögötte szegmens"), std::string("Szegmens 0, oldal 3: a(z) 5. textúrahely üres."),
          "Szegmens " + num(broken) + ": a(z) 6. sarka nem létező pontra mutat (39999).",
          "Szegmens " + num(flat) + ", oldal 0: az oldal területe nulla.", "Szegmens " + num(inverted) + ", oldal 0: kifelé néz",
          "Szegmens " + num(b) + ", oldal 4: egybeesik a(z) " + num(a) + ". szegmens 4. oldalával",
          "Pont " + num(unused) + ": egyik szegmens sem használja.", std::string("Cucc 0 (THING): egyik szegmensben sincs."),
          std::string("Fényforrás 0: egyik szegmensben sincs."), std::string("Különleges pont 1: egyik szegmensben sincs."),
          std::string("2 egyfős játékos kezdőpont van"), "Textúra " + num(tex) + ": a(z) \"" + gone.string() + "\" bitkép nem található."})
        EXPECT_NE(all.find(line), std::string::npos) << line << "\nin:\n" << all;

    // Each problem tells where to go; sound sides and joined ones stay quiet.
    for (const LEVELPROBLEM& p : found)
        EXPECT_TRUE(!p.Text.starts_with("Szegmens 0, oldal 3") || p.Side == 3);
    EXPECT_EQ(all.find("Szegmens 0, oldal 0"), std::string::npos) << all;
    EXPECT_EQ(all.find("Szegmens " + num(a) + ", oldal 4: egybeesik"), std::string::npos) << all;
}

TEST(LevelFix, EachRepairLeavesACleanLevel)
{
    struct CASE
    {
        const char* Line; // what the repair says it did
        std::function<void(ORVLEVEL&)> Break;
        std::function<void(ORVLEVEL&)> Expect = [](ORVLEVEL&) {};
    };
    const CASE cases[] = {
        {"Szegmens 0, oldal 1: a nem létező szomszédra (77) mutató kapcsolat levágva.",
         [](ORVLEVEL& l) {
             l.Segments[0]->Neighbours[1] = 77;
             l.Segments[0]->Sides[1].WallType = WALL_PASSABLE;
         },
         [](ORVLEVEL& l) {
             EXPECT_EQ(l.Segments[0]->Neighbours[1], -1);
             EXPECT_EQ(l.Segments[0]->Sides[1].WallType, WALL_NORMAL);
         }},
        {"Szegmens 0, oldal 0: a(z) 1. szegmens 2. oldala visszakötve",
         [](ORVLEVEL& l) { l.Segments[AddCubeAbove(l)]->Neighbours[2] = -1; },
         [](ORVLEVEL& l) { EXPECT_EQ(l.Segments[1]->Neighbours[2], 0); }},
        {"Szegmens 1, oldal 3: a(z) 0. szegmenssel való egyirányú kapcsolat levágva",
         [](ORVLEVEL& l) {
             const int far = AddCubeCopy(l, {1000, 0, 0});
             l.Segments[far]->Neighbours[3] = 0;
             l.Segments[far]->Sides[3].WallType = WALL_PASSABLE;
         },
         [](ORVLEVEL& l) { EXPECT_EQ(l.Segments[1]->Sides[3].WallType, WALL_NORMAL); }},
        {"Szegmens 0, oldal 2: az átjárható oldal mögött nincs szegmens, fal lett belőle.",
         [](ORVLEVEL& l) { l.Segments[0]->Sides[2].WallType = WALL_PASSABLE; }},
        {"Pont 8: törölve", [](ORVLEVEL& l) { l.Add(VECTOR3D(5, 5, 5)); },
         [](ORVLEVEL& l) { EXPECT_EQ(l.Points[8], nullptr); }},
        {"Szegmens 0, oldal 4: az üres textúrahely (9) helyett textúrázatlan lett (-1).",
         [](ORVLEVEL& l) { l.Segments[0]->Sides[4].Texture = 9; },
         [](ORVLEVEL& l) { EXPECT_EQ(l.Segments[0]->Sides[4].Texture, -1); }},
        {"Cucc 0 (THING): áthelyezve a(z) 0. szegmens közepére.",
         [](ORVLEVEL& l) {
             auto* t = new THING;
             t->position = {0, 1e5f, 0};
             l.AddThing(t);
         },
         [](ORVLEVEL& l) { EXPECT_EQ(l.FindSegment(l.Things[0]->oldPosition), 0); }},
        {"Fényforrás 0: áthelyezve a(z) 1. szegmens közepére.",
         [](ORVLEVEL& l) {
             AddCubeCopy(l, {1000, 0, 0});
             l.Add(STATICLIGHT{{1900, 0, 0}, {1, 1, 1}, 100});
         }},
        {"Különleges pont 1: áthelyezve a(z) 0. szegmens közepére.",
         [](ORVLEVEL& l) { l.Add(SPECPOINT{{0, 0, -900}, 1}); }},
    };
    for (const CASE& c : cases)
    {
        ORVLEVEL level;
        level.Add(SPECPOINT{{0, -90, 0}, 0});
        ASSERT_EQ(Problems(level), "");
        c.Break(level);
        const uint64_t before = level.Revision;
        const std::string done = Lines(FixLevel(level));
        EXPECT_NE(done.find(c.Line), std::string::npos) << done;
        EXPECT_GT(level.Revision, before);
        EXPECT_EQ(Problems(level), "") << c.Line;
        c.Expect(level);
        EXPECT_EQ(Lines(FixLevel(level)), "") << "a clean level needs nothing";
    }
}

TEST(LevelFix, OpeningsTooNarrowForTheShipAreListed)
{
    LoadThingMeshes();
    ORVLEVEL level;
    level.Add(SPECPOINT{{0, -90, 0}, 0});
    const int above = AddCubeAbove(level);
    EXPECT_EQ(Problems(level), "");
    // The back edge of the shared side (corner slots 4 and 5 of segment 0)
    // moves in until the opening is 30 units deep: narrower than the ship.
    for (int slot : {4, 5})
        level.Points[level.Segments[0]->Corners[slot]]->z = 70.0f;
    const std::vector<LEVELPROBLEM> found = CheckLevel(level);
    ASSERT_EQ(found.size(), 1u) << Problems(level);
    EXPECT_EQ(found[0].Segment, 0);
    EXPECT_EQ(found[0].Side, 0);
    EXPECT_NE(found[0].Text.find("a(z) " + std::to_string(above) + ". szegmens felé nyíló átjáró túl szűk"),
              std::string::npos);
}
