// diff and check --fix as a designer runs them: statuses, lines, files.
#include "clitest.h"

TEST_F(CliTest, DiffAndFixStatusesAndFiles)
{
    const std::string a = Path("a.ORVLevel"), b = Path("b.ORVLevel"), fixed = Path("fixed.ORVLevel");
    ASSERT_EQ(Cli({"new", a}).Status, 0);
    // A start point outside the level.
    WriteText(In("s.txt"), "load " + a + "\ncamera 500 500 500 0 0 -1 0 1 0 1 0 0\ncommand 11874\nsave " + b + "\n");
    ASSERT_EQ(Cli({"run", Path("s.txt")}).Status, 0);

    RUN same = Cli({"diff", a, a}), added = Cli({"diff", a, b, "--png", Path("d.png")});
    EXPECT_TRUE(same.Status == 0 && same.Out.empty());
    EXPECT_TRUE(added.Status == 1 && added.Out == "+ specPoints[0]\n") << added.Out;
    EXPECT_GT(fs::file_size(In("d.png")), 1000u);
    EXPECT_EQ(Cli({"diff", b, a}).Out, "- specPoints[0]\n");
    EXPECT_TRUE(Cli({"diff", a, Path("missing")}).Status == 2 && Cli({"diff", a, b, "--png"}).Status == 2);

    const std::string before = ReadText(b);
    EXPECT_EQ(Cli({"check", "--fix", b, b}).Status, 2);
    RUN fix = Cli({"check", "--fix", b, fixed});
    EXPECT_EQ(fix.Out, "Különleges pont 0: áthelyezve a(z) 0. szegmens közepére.\n");
    EXPECT_EQ(fix.Status, 0);
    EXPECT_EQ(ReadText(b), before);
    RUN ok = Cli({"check", fixed});
    EXPECT_TRUE(ok.Status == 0 && ok.Out.empty());
    EXPECT_EQ(Cli({"diff", b, fixed}).Out, "specPoints[0].position[0]: 500 -> 0\nspecPoints[0].position[1]: 500 -> 0\n"
                                           "specPoints[0].position[2]: 500 -> 0\n");
}
