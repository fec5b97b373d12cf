#include "orvlevel/leveldiff.h"

#include "orvlevel/tests/leveltesting.h"

#include <cstring>
#include <functional>
#include <string>

namespace {

std::vector<std::string> Texts(const ORVLEVEL& a, const ORVLEVEL& b)
{
    std::vector<std::string> out;
    for (const LEVELDIFFLINE& l : DiffLevels(a, b))
        out.push_back(l.Text);
    return out;
}

} // namespace

TEST(LevelDiff, NamesEachChangeByItsDumpPath)
{
    struct CASE
    {
        const char* What;
        // Makes the second level differ from the first; answers the lines.
        std::function<std::vector<std::string>(ORVLEVEL& a, ORVLEVEL& b)> Change;
    };
    const CASE cases[] = {
        {"header", [](ORVLEVEL&, ORVLEVEL& b) {
             std::strcpy(b.Name, "\xDAj"); // code page 1250
             return std::vector<std::string>{"name: \"UNNAMED\" -> \"Új\""};
         }},
        {"point moved", [](ORVLEVEL&, ORVLEVEL& b) {
             b.Points[3]->y = 7.5f;
             return std::vector<std::string>{"points[3].y: -100 -> 7.5"};
         }},
        {"point added and removed", [](ORVLEVEL& a, ORVLEVEL& b) {
             a.Add(VECTOR3D(1, 2, 3));
             b.DeletePoint(2);
             return std::vector<std::string>{"- points[2]", "- points[8]"};
         }},
        {"side and neighbour", [](ORVLEVEL&, ORVLEVEL& b) {
             b.Segments[0]->Sides[3].Texture = -1;
             b.Segments[0]->Neighbours[5] = 12;
             return std::vector<std::string>{"segments[0].neighbours[5]: -1 -> 12",
                                             "segments[0].sides[3].texture: 0 -> -1"};
         }},
        {"segment added", [](ORVLEVEL& a, ORVLEVEL& b) {
             SEGMENT s = *b.Segments[0];
             b.Add(&s);
             return std::vector<std::string>{"+ segments[1]"};
         }},
        {"texture", [](ORVLEVEL&, ORVLEVEL& b) {
             const int t = b.Add("InvSide.bmp");
             return std::vector<std::string>{"+ textures[" + std::to_string(t) + "]"};
         }},
        {"thing", [](ORVLEVEL& a, ORVLEVEL& b) {
             a.AddThing(new THING);
             auto* t = new THING;
             t->position = {5, 0, 0};
             b.AddThing(t);
             return std::vector<std::string>{"things[0].position[0]: 0 -> 5", "things[0].oldPosition[0]: 0 -> 5"};
         }},
    };
    for (const CASE& c : cases)
    {
        ORVLEVEL a, b;
        EXPECT_TRUE(DiffLevels(a, b).empty());
        const std::vector<std::string> want = c.Change(a, b);
        EXPECT_EQ(Texts(a, b), want) << c.What;
    }
}
