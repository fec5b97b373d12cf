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
