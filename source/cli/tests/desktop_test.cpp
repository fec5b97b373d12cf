// The tool as an installed program meets it: started from any folder, with
// no data files at all, and from the Debian package.
#include "clitest.h"

#include <sstream>

namespace {

class DesktopTest : public CliTest
{
protected:
    // A level with an enemy ship, and one whose only bitmap lies beside it.
    void MakeLevels()
    {
        WriteText(In("ship.script"), "command 11873\nsave " + Path("ship.ORVLevel") + "\n");
        ASSERT_EQ(Cli({"run", Path("ship.script")}).Status, 0);
        fs::create_directory(Dir / "own");
        ASSERT_EQ(Cli({"new", Path("own/own.ORVLevel")}).Status, 0);
        std::string level = ReadText(In("own/own.ORVLevel"));
        const size_t at = level.find("WallTex.bmp");
        ASSERT_NE(at, std::string::npos);
        level.replace(at, 11, "Falkep1.bmp");
        WriteText(In("own/own.ORVLevel"), level);
        fs::copy_file(fs::path(ORV_CLI_WORKDIR) / "WallTex.bmp", In("own/Falkep1.bmp"));
        fs::create_directory(Dir / "elsewhere");
    }
};

TEST_F(DesktopTest, DataFilesAreFoundFromAnyFolder)
{
    MakeLevels();
    const fs::path cwd = Dir / "elsewhere";
    RUN r = RunIn(ORV_CLI_PATH, cwd, {"dump", Path("ship.ORVLevel")});
    EXPECT_EQ(r.Status, 0) << r.Err;
    EXPECT_NE(r.Out.find(R"("class": "SPACESHIP")"), std::string::npos) << r.Out;

    // The level's own bitmap beside it, the explosion from the program's folder.
    r = RunIn(ORV_CLI_PATH, cwd, {"render", Path("own/own.ORVLevel"), "a.png"});
    EXPECT_TRUE(r.Status == 0 && r.Err.empty() && fs::file_size(cwd / "a.png") > 1000u) << r.Err;

    // Without it, the usual message, and a failure.
    fs::remove(In("own/Falkep1.bmp"));
    r = RunIn(ORV_CLI_PATH, cwd, {"render", Path("own/own.ORVLevel"), "b.png"});
    EXPECT_TRUE(r.Status == 1 && r.Err == "message [] Falkep1.bmp nem található!\n") << r.Err;
    EXPECT_FALSE(fs::exists(cwd / "b.png"));
}

// The package holds everything a desktop asks for, and its programs find its
// data from any folder.
TEST_F(DesktopTest, EveryCommandFailsWithoutItsDataFiles)
{
    MakeLevels();
    fs::create_directories(Dir / "bare" / "bin");
    const fs::path copy = Dir / "bare" / "bin" / "orvane-cli";
    fs::copy_file(ORV_CLI_PATH, copy);
    WriteText(In("dump.script"), "dump -\n");
    const std::map<std::string, std::string> env = {{"XDG_DATA_DIRS", Path("bare")}};

    const std::map<std::string, std::vector<std::string>> fixed = {
        {"mesh", {"SpaceShip.lwo", "1"}}, {"wave", {"Missile.wav"}}, {"run", {Path("dump.script")}},
        {"check", {Path("ship.ORVLevel")}}};
    std::istringstream usage(Cli({"help"}).Out);
    std::string line;
    int commands = 0;
    while (std::getline(usage, line))
    {
        std::istringstream words(line);
        std::string tool, name, word;
        if (!(words >> tool >> name) || tool != "orvane-cli")
            continue;
        std::vector<std::string> args = {name};
        if (fixed.count(name))
            args.insert(args.end(), fixed.at(name).begin(), fixed.at(name).end());
        else
            while (words >> word && word[0] >= 'A' && word[0] <= 'Z')
                if (word.find("TICKS") == 0 || word.find("SEED") == 0)
                    args.push_back("1");
                else if (word.find("OUT") == 0)
                    args.push_back(Path(("out-" + name).c_str()));
                else
                    args.push_back(Path("ship.ORVLevel"));
        ++commands;
        RUN r = RunIn(copy, Dir / "elsewhere", args, env);
        EXPECT_TRUE(r.Status != 0 && r.Status != 2) << name << ": " << r.Err;
        EXPECT_TRUE(r.Err.find(" nem található!") != std::string::npos ||
                    r.Err.find("File not found: Missile.wav") != std::string::npos)
            << name << ": " << r.Err;
        EXPECT_FALSE(fs::exists(In(("out-" + name).c_str()))) << name;
    }
    EXPECT_GE(commands, 9);
}

TEST_F(DesktopTest, DebianPackageRunsFromAnyFolder)
{
    if (!fs::exists("/usr/bin/dpkg-deb"))
        GTEST_SKIP() << "dpkg-deb is not installed";
    MakeLevels();
    RUN r = RunIn(ORV_CPACK, ORV_BUILD_DIR, {"-G", "DEB", "-B", Path("pkg")});
    ASSERT_EQ(r.Status, 0) << r.Out << r.Err;
    std::string deb;
    for (const fs::directory_entry& e : fs::directory_iterator(In("pkg")))
        if (e.path().extension() == ".deb")
            deb = e.path().string();
    ASSERT_NE(deb, "");

    r = RunIn("/usr/bin/dpkg-deb", Dir, {"-f", deb, "Depends"});
    for (const char* needed : {"libc6", "libopenal1", "qt6-translations-l10n"})
        EXPECT_NE(r.Out.find(needed), std::string::npos) << r.Out;
    ASSERT_EQ(RunIn("/usr/bin/dpkg-deb", Dir, {"-x", deb, Path("root")}).Status, 0);
    const fs::path usr = Dir / "root" / fs::path(ORV_INSTALL_PREFIX).relative_path();
    std::vector<std::string> files = {"bin/orvane-cli", "share/orvane-builder/WallTex.bmp",
                                      "share/man/man1/orvane-cli.1.gz"};
    if (ORV_WITH_EDITOR)
        files.insert(files.end(), {"bin/orvane-builder", "share/man/man1/orvane-builder.1.gz",
                                   "share/applications/hu.orvane.builder.desktop",
                                   "share/metainfo/hu.orvane.builder.metainfo.xml",
                                   "share/icons/hicolor/scalable/apps/orvane-builder.svg",
                                   "share/icons/hicolor/48x48/apps/orvane-builder.png"});
    for (const std::string& f : files)
        EXPECT_TRUE(fs::is_regular_file(usr / f)) << f;

    r = RunIn(usr / "bin/orvane-cli", Dir / "elsewhere", {"dump", Path("ship.ORVLevel")},
              {{"XDG_DATA_DIRS", Path("none")}});
    EXPECT_EQ(r.Status, 0) << r.Err;
}

} // namespace
