#include <gtest/gtest.h>

#include "platform/datafile.h"
#include "platform/tests/testplatform.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

// A directory tree to resolve names in, made the current directory for the
// test's lifetime.
struct DATATREE : TEMPDIR
{
    fs::path Saved = fs::current_path();
    DATATREE()
    {
        fs::create_directories(Path / "Textúrák" / "Régi");
        fs::create_directories(Path / "ŐSZ");
        for (const char* name : {"Textúrák/Fal Tex.BMP", "Textúrák/Régi/KŐ.bmp", "ŐSZ/ÁBRA.bmp", "lezárt.bmp"})
            std::ofstream(Path / name) << "x";
        chmod((Path / "lezárt.bmp").c_str(), 0444);
        fs::current_path(Path);
    }
    ~DATATREE() { fs::current_path(Saved); }
};

} // namespace

TEST(DataFileTest, ResolvesBackslashesCodePageAndCase)
{
    DATATREE tree;
    // Stored names are code page 1250 with backslashes.
    EXPECT_EQ(ResolveDataPath("TEXT\xDAR\xC1K\\fal tex.bmp"), "Textúrák/Fal Tex.BMP");
    EXPECT_EQ(ResolveDataPath("text\xFAr\xE1k\\r\xC9gi\\k\xF5.BMP"), "Textúrák/Régi/KŐ.bmp");
    EXPECT_EQ(ResolveDataPath(".\\\xF5sz\\\\\xE1" "bra.bmp"), "./ŐSZ//ÁBRA.bmp");

    std::string up = "..\\" + tree.Path.filename().string() + "\\\xF5SZ\\\xC1" "BRA.BMP";
    EXPECT_EQ(ResolveDataPath(up.c_str()), "../" + tree.Path.filename().string() + "/ŐSZ/ÁBRA.bmp");
    std::string absolute = tree.Path.string() + "/text\xFAr\xE1k\\fal tex.bmp";
    EXPECT_EQ(ResolveDataPath(absolute.c_str()), tree.Path.string() + "/Textúrák/Fal Tex.BMP");

    // Nothing matches: the converted name comes back.
    EXPECT_EQ(ResolveDataPath("text\xFAr\xE1k\\nincs.bmp"), "textúrák/nincs.bmp");
    EXPECT_EQ(ResolveDataPath(""), "");
}

TEST(DataFileTest, OpensOnlyWritablePlainFiles)
{
    DATATREE tree;
    int fd = OpenDataFileReadWrite("TEXT\xDAR\xC1K\\fal tex.bmp");
    EXPECT_GE(fd, 0);
    close(fd);
    // Read-only (even for the superuser), a directory, a missing file.
    for (const char* name : {"LEZ\xC1RT.BMP", "\xF5sz", "nincs.bmp"})
        EXPECT_EQ(OpenDataFileReadWrite(name), -1) << name;
}
