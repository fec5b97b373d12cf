#include "orvlevel/levelcheck.h"

#include "orvlevel/tests/leveltesting.h"
#include "platform/tests/testplatform.h"
#include "things/thing.h"

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

std::string Lines(const std::vector<LEVELPROBLEM>& problems)
{
    std::string all;
    for (const LEVELPROBLEM& p : problems)
        all += p.Text + "\n";
    return all;
}

} // namespace

TEST(LevelCheck, FindsEveryKindOfProblemWithItsNumbers)
{
    ORVLEVEL L;
    SPECPOINT start;
    L.Add(start);
    EXPECT_EQ(Lines(CheckLevel(L)), ""); // the default cube with a start is sound

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
    const std::string all = Lines(found);
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
