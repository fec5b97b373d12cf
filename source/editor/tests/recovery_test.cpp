#include "editor/recovery.h"

#include "editor/document.h"
#include "platform/tests/testplatform.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

class RecoveryTest : public PlatformTest
{
protected:
    fs::path Dir = fs::temp_directory_path() / ("orvrecovery-" + std::to_string(getpid()));
    ORVEDOCUMENT Doc;
    ORVERECOVERY Rec{Doc, (Dir / "data").string(), 30000};

    ~RecoveryTest() override { fs::remove_all(Dir); }
    void Edit()
    {
        Doc.Level().CurrentSegment = 0;
        Doc.Level().MovePoint(1, 0, 0);
    }
};

} // namespace

TEST_F(RecoveryTest, CopiesFollowUnsavedChangesAtTheInterval)
{
    EXPECT_FALSE(Rec.Tick(1000)); // nothing unsaved
    Edit();
    EXPECT_TRUE(Rec.Tick(1000));
    EXPECT_FALSE(Rec.Tick(2000)); // nothing new
    Edit();
    EXPECT_FALSE(Rec.Tick(30999)); // too soon
    EXPECT_TRUE(Rec.Tick(31000));

    RECOVERYCOPY copy;
    ASSERT_EQ(Rec.Find(copy), ORVERECOVERY::INTACT);
    EXPECT_TRUE(copy.Image == Doc.Level().Serialize() && !copy.FileName);

    // A save removes the copy; closing without changes leaves none.
    fs::create_directories(Dir);
    ASSERT_TRUE(Doc.SaveAs((Dir / "mine.ORVLevel").string()));
    Rec.Remove();
    EXPECT_EQ(Rec.Find(copy), ORVERECOVERY::NONE);
    EXPECT_TRUE(Rec.Close() && !fs::exists(Rec.Path()));
    Edit();
    EXPECT_TRUE(Rec.Close());
    ASSERT_EQ(Rec.Find(copy), ORVERECOVERY::INTACT);
    EXPECT_EQ(copy.FileName, (Dir / "mine.ORVLevel").string());
    EXPECT_FALSE(fs::exists(Dir / "data" / "mine.ORVLevel")); // never beside the designer's file
}

TEST_F(RecoveryTest, RestoreKeepsTheFileNameAndDamageIsRecognised)
{
    fs::create_directories(Dir);
    ASSERT_TRUE(Doc.SaveAs((Dir / "mine.ORVLevel").string()));
    Edit();
    ASSERT_TRUE(Rec.Close());
    const std::vector<uint8_t> edited = Doc.Level().Serialize();

    ORVEDOCUMENT other;
    ORVERECOVERY again(other, (Dir / "data").string());
    RECOVERYCOPY copy;
    ASSERT_EQ(again.Find(copy), ORVERECOVERY::INTACT);
    again.Restore(copy);
    EXPECT_EQ(other.Level().Serialize(), edited);
    EXPECT_EQ(other.FileName(), (Dir / "mine.ORVLevel").string());
    EXPECT_TRUE(other.Modified() && !other.History.CanUndo());

    // Any byte changed or cut off makes the copy damaged; it is set aside.
    const std::vector<uint8_t> bytes = ReadFile(again.Path());
    std::vector<uint8_t> flipped = bytes;
    flipped[200] ^= 1;
    for (const std::vector<uint8_t>& damaged : {std::vector<uint8_t>(), std::vector<uint8_t>(bytes.begin(), bytes.begin() + 100),
                                                std::vector<uint8_t>(bytes.begin(), bytes.end() - 1), flipped})
    {
        WriteFile(again.Path(), damaged);
        EXPECT_EQ(again.Find(copy), ORVERECOVERY::DAMAGED) << damaged.size();
    }
    EXPECT_TRUE(fs::exists(again.SetAside()));
    EXPECT_EQ(again.Find(copy), ORVERECOVERY::NONE);
}
