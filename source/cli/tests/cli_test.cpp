// The tool's commands other than run, end to end.
#include "clitest.h"

#include <string>
#include <vector>

namespace {

// The dump is every other test's reader; here, that a resave keeps the file.
TEST_F(CliTest, NewSavesTheDefaultLevelAndResaveKeepsEveryByte)
{
    const RUN made = Cli({"new", Path("a.ORVLevel")}), resaved = Cli({"resave", Path("a.ORVLevel"), Path("b.ORVLevel")});
    EXPECT_TRUE(made.Status == 0 && made.Err.empty() && resaved.Status == 0 && resaved.Err.empty()) << made.Err;
    EXPECT_EQ(ReadText(In("b.ORVLevel")), ReadText(In("a.ORVLevel")));
}

TEST_F(CliTest, UsageErrorsExitWithTwo)
{
    const std::vector<std::vector<std::string>> wrong = {
        {}, {"frobnicate"}, {"new"}, {"new", "a", "b"}, {"resave", "a"}, {"dump"}, {"dump", "a", "b"}, {"check"}};
    for (const auto& args : wrong)
    {
        RUN r = Cli(args);
        EXPECT_TRUE(r.Status == 2 && r.Out.empty() && r.Err.find("usage: orvane-cli") != std::string::npos) << args.size();
    }
    EXPECT_FALSE(fs::exists(fs::path(ORV_CLI_WORKDIR) / "b"));
}

TEST_F(CliTest, BrokenInputsAreReported)
{
    ASSERT_EQ(Cli({"new", In("a.ORVLevel")}).Status, 0);
    const std::string level = ReadText(In("a.ORVLevel"));

    std::string badMagic = level;
    badMagic[7] = 'X';
    WriteText(In("magic.ORVLevel"), badMagic);
    RUN r = Cli({"dump", In("magic.ORVLevel")});
    EXPECT_TRUE(r.Status == 1 && r.Out.empty()); // no dump of what is not that file
    EXPECT_EQ(r.Err, "message [HIBA!] Nem Orvane Battle pálya ez.\n");

    for (const char* command : {"dump", "check"})
    {
        r = Cli({command, In("missing.ORVLevel")});
        EXPECT_TRUE(r.Status == 1 && r.Out.empty() && r.Err.rfind("message [HIBA!] ", 0) == 0u) << command;
    }

    for (const char* target : {"nodir/b.ORVLevel", "io"})
    {
        r = Cli({"resave", In("a.ORVLevel"), In(target)});
        EXPECT_TRUE(r.Status == 1 && r.Err.rfind("message [HIBA!] ", 0) == 0u && r.Err.find(In(target).string()) != std::string::npos);
    }
}

} // namespace

TEST_F(CliTest, MeshAndWaveDescribeDataFiles)
{
    RUN r = Cli({"mesh", "SpaceShip.lwo", "5"});
    EXPECT_TRUE(r.Status == 0 && r.Err.empty() && r.Out.find(R"("outerRadius": )") != std::string::npos);
    EXPECT_EQ(r.Out.rfind(R"({"file": "SpaceShip.lwo", "scale": 5, "vertices": )", 0), 0u) << r.Out;

    r = Cli({"wave", "Missile.wav"});
    EXPECT_EQ(r.Out, R"({"file": "Missile.wav", "format": "AL_FORMAT_MONO16", "frequency": 22050, "size": 44100})"
                     "\n");

    // A broken mesh still shows what was read, but fails; a missing one or
    // a bad scale never gets that far.
    WriteText(In("bad.lwo"), std::string("FORM\0\0\0\4LWO2", 12));
    r = Cli({"mesh", In("bad.lwo").string(), "1"});
    EXPECT_TRUE(r.Status == 1 && r.Err.rfind("message [" + In("bad.lwo").string() + "] ", 0) == 0u);
    EXPECT_NE(r.Out.find(R"("vertices": 0, "triangles": 0)"), std::string::npos);
    EXPECT_EQ(Cli({"mesh", In("none.lwo").string(), "1"}).Status, 1);
    EXPECT_EQ(Cli({"mesh", "SpaceShip.lwo", "big"}).Status, 2);

    r = Cli({"wave", In("none.wav").string()});
    EXPECT_TRUE(r.Status == 255 && r.Out.empty() && r.Err.rfind("message [Error] ", 0) == 0u);
}

TEST_F(CliTest, RenderDrawsTheFirstFrameIntoAPng)
{
    ASSERT_EQ(Cli({"new", In("a.ORVLevel")}).Status, 0);
    RUN r = Cli({"render", In("a.ORVLevel"), In("a.png")});
    EXPECT_TRUE(r.Status == 0 && r.Err.empty());
    std::string png = ReadText(In("a.png"));
    ASSERT_GT(png.size(), 1000u); // a picture, not a blank
    EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\x02\x80\0\0\x01\xE0", 8)); // 640 x 480, big-endian

    // Another size, and another camera gives another picture.
    const std::vector<std::string> camera = {"--camera", "0", "0", "0", "0", "0", "-1", "0", "1", "0", "1", "0", "0"};
    std::vector<std::string> args = {"render", In("a.ORVLevel"), In("b.png"), "--size", "33x17"};
    ASSERT_EQ(Cli(args).Status, 0);
    EXPECT_EQ(ReadText(In("b.png")).substr(16, 8), std::string("\0\0\0\x21\0\0\0\x11", 8));
    args[2] = In("c.png");
    args.insert(args.end(), camera.begin(), camera.end());
    ASSERT_EQ(Cli(args).Status, 0);
    EXPECT_NE(ReadText(In("c.png")), ReadText(In("b.png")));

    // A level the loader complains about: its message, status 1, no picture.
    std::string badMagic = ReadText(In("a.ORVLevel"));
    badMagic[7] = 'X';
    WriteText(In("magic.ORVLevel"), badMagic);
    for (const char* level : {"missing.ORVLevel", "magic.ORVLevel"})
    {
        RUN dump = Cli({"dump", In(level)});
        r = Cli({"render", In(level), In("d.png")});
        EXPECT_TRUE(r.Status == 1 && r.Err == dump.Err && !fs::exists(In("d.png"))) << level;
    }

    const std::vector<std::vector<std::string>> wrong = {
        {"--size", "0x5"}, {"--size", "8193x10"}, {"--size", "10x"}, {"--size", "10x10x"}, {"--size"},
        {"--camera", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"},
        {"--camera", "1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "x"}, {"--zoom", "2"}};
    for (const auto& extra : wrong)
    {
        args = {"render", In("a.ORVLevel"), In("e.png")};
        args.insert(args.end(), extra.begin(), extra.end());
        r = Cli(args);
        EXPECT_TRUE(r.Status == 2 && r.Err.find("usage: orvane-cli render") != std::string::npos && !fs::exists(In("e.png")))
            << extra[0] << " " << extra.size();
    }
}
