#include "orvlevel/leveldump.h"

#include "orvlevel/level.h"
#include "platform/tests/testplatform.h"
#include "things/thing.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

TEST(JsonWriterTest, NumbersAreShortestAndTextsEscaped)
{
    JSONWRITER j;
    j.BeginObject();
    j.Key("f").Floats(std::array<float, 8>{-100.0f, 0.1f, 1e30f, -0.0f, 1.0f / 3, 16777216.0f, 1e-7f, 3.5f}.data(), 8);
    j.Key("odd").BeginArray();
    j.Float(std::numeric_limits<float>::quiet_NaN());
    j.Float(-std::numeric_limits<float>::infinity());
    j.Float(std::numeric_limits<float>::infinity());
    j.EndArray();
    j.Key("s").String("a\"b\\c\nd\x01\x7f" "é");
    j.Key("t").Text1250("\xF5r\0junk", 8);
    j.Key("e").BeginObject();
    j.EndObject();
    j.Key("n").Null();
    j.EndObject();
    EXPECT_EQ(j.Out, "{\"f\": [-100, 0.1, 1e+30, -0, 0.33333334, 16777216, 1e-07, 3.5], "
                     "\"odd\": [\"nan\", \"-inf\", \"inf\"], \"s\": \"a\\\"b\\\\c\\nd\\u0001\x7f" "é\", "
                     "\"t\": \"őr\", \"e\": {}, \"n\": null}");
    // Every float printed reads back as the same float.
    for (float v : {0.1f, 1.0f / 3, 123456.789f, 1e-38f, 3.4028235e38f})
    {
        JSONWRITER w;
        w.Float(v);
        EXPECT_EQ(std::strtof(w.Out.c_str(), nullptr), v) << w.Out;
    }
}

namespace {

// Members of every kind a game-object class may have, after THING's.
class DUMPEDTHING : public THING
{
public:
    int32_t count = -7;
    void* owner = this;
    char lines[3][6] = {"full!", "\xE1rny", ""};
    const char* ClassName() const override { return "DUMPED"; }
    void Members(THINGMEMBERS& m) override
    {
        THING::Members(m);
        m.I32("count", count);
        m.Pointer("owner", StoredPointer(owner));
        m.Pointer("none", StoredPointer(nullptr));
        m.Texts("lines", &lines[0][0], 3, 6);
    }
};

} // namespace

using LevelDumpTest = PlatformTest;

TEST_F(LevelDumpTest, TextsAndSmallTablesAppearInIndexOrderWithEveryRecordMember)
{
    ORVLEVEL level;
    std::strcpy(level.Name, "\"Pr\xF3" "ba\"");
    level.FileName = "dir/a\\b.ORVLevel";
    level.Lights[3] = new STATICLIGHT{{1.5f, -2, 0.1f}, {1, 0.5f, 0}, 10000};
    level.SpecPoints[200] = new SPECPOINT{{0, 0, 0}, 1};
    level.SpecPoints[7] = new SPECPOINT{{1, 2, 3}, 0};
    auto* t = new DUMPEDTHING;
    t->position = {1, -2.5f, 0.1f};
    t->lastSegment = 12;
    t->ghost = true;
    t->boxXHigh = 3;
    std::memcpy(t->lines[0], "full!!", 6); // no NUL: the text ends with the field
    level.Things[999] = t;
    std::string json = DumpLevelJson(level);
    EXPECT_EQ(json.rfind("{\"name\": \"\\\"Próba\\\"\", \"fileName\": \"dir/a\\\\b.ORVLevel\", "
                         "\"selection\": {\"segment\": -1, \"side\": 0, \"point\": 0}, \"currentTexture\": 0, ", 0), 0u);
    EXPECT_NE(json.find(", \"things\": [{\"index\": 999, \"class\": \"DUMPED\", \"position\": [1, -2.5, 0.1], "
                        "\"oldPosition\": [0, 0, 0], \"axisY\": [0, 1, 0], \"axisZ\": [1, 0, 0], \"axisX\": [0, 0, 1], "
                        "\"oldAxisY\": [0, 0, 0], \"oldAxisZ\": [0, 0, 0], \"oldAxisX\": [0, 0, 0], "
                        "\"segment\": -1, \"lastSegment\": 12, \"outerRadius\": 0, \"innerRadius\": 0, "
                        "\"hit\": 0, \"ghost\": 1, \"dead\": 0, \"boxZLow\": 0, \"boxZHigh\": 0, \"boxYLow\": 0, "
                        "\"boxYHigh\": 0, \"boxXLow\": 0, \"boxXHigh\": 3, \"pushDistance\": 0, "
                        "\"count\": -7, \"owner\": 1, \"none\": 0, \"lines\": [\"full!!\", \"árny\", \"\"]}], "
                        "\"lights\": [{\"index\": 3, \"position\": [1.5, -2, 0.1], \"colour\": [1, 0.5, 0], \"brightness\": 10000}], "
                        "\"specPoints\": [{\"index\": 7, \"position\": [1, 2, 3], \"type\": 0}, "
                        "{\"index\": 200, \"position\": [0, 0, 0], \"type\": 1}]}"),
              std::string::npos)
        << json;
    EXPECT_EQ(json.find('\n'), std::string::npos);
}
