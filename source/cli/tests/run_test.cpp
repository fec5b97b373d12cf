// orvane-cli run, end to end.
#include "clitest.h"

#include <string>
#include <vector>

namespace {

class RunTest : public CliTest
{
protected:
    RUN Run(const std::string& script) const
    {
        WriteText(In("script"), script);
        return Cli({"run", In("script")});
    }
    std::string Error(int line, const std::string& reason) const
    {
        return "orvane-cli run: " + In("script").string() + ":" + std::to_string(line) + ": " + reason + "\n";
    }
};

// The "selection" objects of every dump in the text, in order.
std::vector<std::string> Selections(const std::string& out)
{
    std::vector<std::string> found;
    const std::string key = R"("selection": )";
    for (size_t at = out.find(key); at != std::string::npos; at = out.find(key, at + 1))
        found.push_back(out.substr(at + key.size(), out.find('}', at) + 1 - at - key.size()));
    return found;
}

} // namespace

TEST_F(RunTest, CameraViewportClicksAndLights)
{
    // From the start-up camera the centre pixel shows side 2. Inside the cube
    // looking down -x the centre is side 3; in a 100 x 100 view the same
    // pixel lies far off to the lower right, on side 5, and (50, 110) is low
    // enough for the floor, side 2, only with the view's square proportion.
    RUN r = Run("click 320 240\ndump -\n"
                "camera 0 0 0  -1.0 0 0  0 +1 0  0 0 -1e0\nclick 320 240\ndump -\n"
                "viewport 100 100\nclick 320 240\ndump -\nclick 50 110\ndump -\n"
                "viewport 640 480\nmove 0 150\nclick 320 240\ndump -\n" // out of the cube: nothing
                "light 255 128 0 10000\nlight 0x33 12.5abc x 1e3\ndump -\n");
    EXPECT_TRUE(r.Status == 0 && r.Err.empty());
    const std::vector<std::string> want = {
        R"({"segment": 0, "side": 2, "point": 0})", R"({"segment": 0, "side": 3, "point": 0})",
        R"({"segment": 0, "side": 5, "point": 0})", R"({"segment": 0, "side": 2, "point": 0})",
        R"({"segment": 0, "side": 0, "point": 0})",
        R"({"segment": 0, "side": 0, "point": 0})"};
    EXPECT_EQ(Selections(r.Out), want);
    EXPECT_NE(r.Out.find(R"("lights": [{"index": 0, "position": [-150, 0, 0], "colour": [1, 0.5019608, 0], "brightness": 10000}, )"
                         R"({"index": 1, "position": [-150, 0, 0], "colour": [0.2, 0.04901961, 0], "brightness": 1000}])"),
              std::string::npos);
}

TEST_F(RunTest, ABadLineStopsTheScriptAfterWhatCameBefore)
{
    const std::pair<const char*, const char*> bad[] = {
        {"frobnicate 1", R"(unknown command "frobnicate")"},
        {"select 0 0", "expected 3 arguments"},
        {"command", "expected 1 argument"},
        {"fitmode on", "expected no arguments"},
        {"save   # no path", "expected a path"},
        {"click 1 x", R"(not an integer: "x")"},
        {"click +-1 0", R"(not an integer: "+-1")"},
        {"select 0 1.0 0", R"(not an integer: "1.0")"},
        {"select 0 0 2147483648", R"(out of range: "2147483648")"},
        {"move 0 1,5", R"(not a number: "1,5")"},
        {"move 0 nan", R"(not a number: "nan")"},
        {"command 11846", "not an editor command: 11846"},
        {"command 11868", "not an editor command: 11868"},
    };
    for (auto [line, reason] : bad)
    {
        fs::remove(In("before"));
        RUN r = Run("save " + Path("before") + "\r\n\r\n" + line + "\r\nsave " + Path("after") + "\n");
        EXPECT_TRUE(r.Status == 2 && r.Out.empty() && fs::exists(In("before")) && !fs::exists(In("after"))) << line;
        EXPECT_EQ(r.Err, Error(3, reason));
    }

    // Lines that fail stop with 1, after what the level code has said; a
    // level that has a file name still sees a failed load as one.
    RUN r = Run("save " + Path("before") + "\nload " + Path("missing") + "\nsave " + Path("after") + "\n");
    EXPECT_TRUE(r.Status == 1 && r.Err.rfind("message [HIBA!] ", 0) == 0u);
    EXPECT_EQ(r.Err.substr(r.Err.find('\n') + 1), Error(2, "cannot load " + Path("missing")));
    r = Run("\nsave " + Path("io") + "\n");
    EXPECT_TRUE(r.Status == 1 && r.Err.find(Error(2, "cannot save " + Path("io"))) != std::string::npos);
    r = Run("dump " + Path("nodir/a.json") + "\n");
    EXPECT_TRUE(r.Status == 1 && r.Err == Error(1, "cannot write " + Path("nodir/a.json") + ": No such file or directory"))
        << r.Err;
    EXPECT_FALSE(fs::exists(In("after")));
    r = Cli({"run", Path("none")});
    EXPECT_TRUE(r.Status == 1 && r.Err == "orvane-cli run: cannot read " + Path("none") + ": No such file or directory\n")
        << r.Err;
}
