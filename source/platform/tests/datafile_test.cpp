#include <gtest/gtest.h>

#include "platform/datafile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

// A directory tree to resolve names in, made the current directory for the
// test's lifetime.
class DATATREE
{
public:
    fs::path Path;
    fs::path Saved;
    DATATREE()
    {
        Saved = fs::current_path();
        Path = fs::temp_directory_path() / ("orv-datafile-" + std::to_string(getpid()));
        fs::remove_all(Path);
        fs::create_directories(Path / "Textúrák" / "Régi");
        fs::create_directories(Path / "ŐSZ");
        Touch("Textúrák/Fal Tex.BMP");
        Touch("Textúrák/Régi/KŐ.bmp");
        Touch("ŐSZ/ÁBRA.bmp");
        Touch("lezárt.bmp");
        chmod((Path / "lezárt.bmp").c_str(), 0444);
        fs::current_path(Path);
    }
    ~DATATREE()
    {
        fs::current_path(Saved);
        fs::remove_all(Path);
    }
    void Touch(const std::string& name) { std::ofstream(Path / name) << "x"; }
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
    if (fd >= 0)
        close(fd);
    EXPECT_EQ(OpenDataFileReadWrite("LEZ\xC1RT.BMP"), -1); // read-only, even for the superuser
    EXPECT_EQ(OpenDataFileReadWrite("\xF5sz"), -1);         // a directory
    EXPECT_EQ(OpenDataFileReadWrite("nincs.bmp"), -1);
}
