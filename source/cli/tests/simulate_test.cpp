// orvane-cli simulate and the object commands of run, end to end.
#include "clitest.h"

#include <string>

TEST_F(CliTest, SimulatePlacedObjectsRunRepeatablyFromASeed)
{
    auto count = [](const std::string& text, const std::string& what) {
        size_t n = 0;
        for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
            ++n;
        return n;
    };
    // Two ships and three items placed from the camera in the default cube;
    // the second ship is placed and then deleted again, which leaves its
    // explosion and dropped items in the level.
    WriteText(In("script"), "srand 42\n"
                            "camera 0 0 50 0 0 -1 0 1 0 -1 0 0\ncommand 11873\n"
                            "camera 0 0 -50 0 0 1 0 1 0 1 0 0\ncommand 11878\n"
                            "camera 50 0 0 1 0 0 0 1 0 0 0 1\ncommand 11881\ncommand 11877\n"
                            "camera -60 0 0 1 0 0 0 1 0 0 0 1\ncommand 11873\ncommand 11876\n"
                            "save " + Path("placed") + "\n");
    RUN r = Cli({"run", Path("script")});
    ASSERT_EQ(r.Status, 0) << r.Err;
    std::string placed = Cli({"dump", Path("placed")}).Out;
    // The placed items plus at least one drop; effects are never saved.
    EXPECT_TRUE(count(placed, R"("class": "SPACESHIP")") == 1 && count(placed, R"("class": "P_)") >= 4 && count(placed, "EXPLOSION") == 0);

    ASSERT_EQ(Cli({"simulate", Path("placed"), "200", Path("a"), "7"}).Status, 0);
    ASSERT_EQ(Cli({"simulate", Path("placed"), "200", Path("b"), "7"}).Status, 0);
    EXPECT_TRUE(ReadText(In("a")) == ReadText(In("b")));
    std::string after = Cli({"dump", Path("a")}).Out;
    EXPECT_TRUE(after != placed && count(after, R"("class": "SPACESHIP")") == 1); // items turn, ships count money

    EXPECT_EQ(Cli({"simulate", Path("placed"), "-1", Path("d")}).Status, 2);
    EXPECT_EQ(Cli({"simulate", Path("placed"), "1", Path("d"), "x"}).Status, 2);
    EXPECT_EQ(Cli({"simulate", Path("missing"), "1", Path("d")}).Status, 1);
    EXPECT_FALSE(fs::exists(In("d")));
}
