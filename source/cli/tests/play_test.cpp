// orvane-cli play end to end: the start point, the input file, the picture,
// the level it read left alone, and the lines it refuses.
#include "clitest.h"

TEST_F(CliTest, PlayFliesFromTheStartPointLeavesTheLevelAloneAndRefusesBadInput)
{
    // The start point at (0, 0, 50); the ship faces -z from it.
    WriteText(In("script"), "camera 0 0 50 0 0 -1 0 1 0 1 0 0\ncommand 11874\nsave " + Path("level") + "\n");
    ASSERT_EQ(Cli({"run", Path("script")}).Status, 0);
    const std::string level = ReadText(In("level"));
    WriteText(In("input"), "# four ticks forward, then one salvo\n0 forward\n4 laser shop choose 2\n5\n");
    RUN r = Cli({"play", Path("level"), "8", Path("out"), "--seed", "3", "--input", Path("input"), "--png",
                 Path("frame.png")});
    ASSERT_EQ(r.Status, 0) << r.Err;
    EXPECT_EQ(ReadText(In("level")), level);
    const std::string out = Cli({"dump", Path("out")}).Out;
    EXPECT_NE(out.find(R"("class": "SPACESHIP", "position": [0, 0, 10])"), std::string::npos) << out;
    EXPECT_NE(out.find(R"("energy": 99.7)"), std::string::npos);
    const std::string png = ReadText(In("frame.png"));
    ASSERT_GT(png.size(), 24u);
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\x80\0\0\x01\xe0", 8)); // 640 x 480

    // What it cannot read: status 2 and the line, or 1 for the level; no output.
    fs::remove(In("out"));
    const std::pair<const char*, const char*> bad[] = {
        {"0 forward\nx laser\n", ":2: a line starts with its tick"},
        {"3 forward\n2\n", ":2: ticks must not go back"},
        {"0 fly\n", ":1: unknown action \"fly\""},
        {"0 choose 4\n", ":1: choose takes a menu item from 1 to 3"},
    };
    for (auto [input, message] : bad)
    {
        WriteText(In("input"), input);
        r = Cli({"play", Path("level"), "5", Path("out"), "--input", Path("input")});
        EXPECT_TRUE(r.Status == 2 && r.Err.find("orvane-cli play: " + Path("input") + message) != std::string::npos)
            << input << r.Err;
    }
    EXPECT_EQ(Cli({"play", Path("level"), "-1", Path("out")}).Status, 2);
    EXPECT_EQ(Cli({"play", Path("level"), "1", Path("out"), "--camera", "1", "2"}).Status, 2);
    EXPECT_EQ(Cli({"play", Path("missing"), "1", Path("out")}).Status, 1);
    EXPECT_FALSE(fs::exists(In("out")));
}
