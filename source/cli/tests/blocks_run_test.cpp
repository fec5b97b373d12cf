// The block lines of orvane-cli run, end to end.
#include "clitest.h"

#include <string>

TEST_F(CliTest, BlockLinesRunRefuseWithABeepAndWriteBlockFiles)
{
    const std::string block = Path("block.ORVLevel"), level = Path("level.ORVLevel");
    WriteText(In("script"), "select 0 0 0\n"
                            "command 11847\n"
                            "mark 1\n"
                            "select 1 4 0\n"
                            "copyblock\n"
                            "pasteblock      # segment 2 on top, now the marked one\n"
                            "pasteblock      # that side is taken: beep\n"
                            "saveblock " + block + "   # anchored on an unmarked segment: beep\n"
                            "select 2 4 0\n"
                            "saveblock " + block + "\n"
                            "unmarkall\n"
                            "deleteblock     # nothing marked: beep\n"
                            "markall\n"
                            "moveblock 0 10 0.5\n"
                            "rotateblock y 90\n"
                            "mirrorblock x\n"
                            "mark 0\n"
                            "loadblock " + block + "\n"
                            "select 0 2 0\n"
                            "pasteblock\n"
                            "select 0 1 0\n"
                            "spreadtexture\n"
                            "save " + level + "\n"
                            "mirrorblock w\n");
    RUN r = Cli({"run", Path("script")});
    EXPECT_EQ(r.Status, 2);
    EXPECT_EQ(r.Err, "beep\nbeep\nbeep\norvane-cli run: " + Path("script") + ":24: not an axis (x, y or z): \"w\"\n");
    EXPECT_EQ(Cli({"check", level}).Out, "Nincs egyfős játékos kezdőpont.\n");
    const std::string dump = Cli({"dump", block}).Out;
    EXPECT_NE(dump.find(R"("name": "BLOKK 0 4")"), std::string::npos) << dump.substr(0, 200);
    EXPECT_NE(Cli({"dump", level}).Out.find(R"("index": 3, "recordSize")"), std::string::npos);
}
