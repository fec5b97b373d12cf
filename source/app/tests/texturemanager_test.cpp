#include "app/tests/dialogtesting.h"

#include "app/dlg_texturemanager.h"
#include "app/dlg_texturepreview.h"
#include "app/filedialogs.h"
#include "editor/filepath.h"
#include "graphics/texture.h"
#include "platform/cp1250.h"

#include <QLabel>
#include <QListWidget>

#include <unistd.h>

#include <filesystem>

namespace fs = std::filesystem;
using Bytes = std::vector<uint8_t>;

namespace {

// A bitmap file image: the header fields the loader reads, then the pixels.
Bytes Bmp(int32_t width, int32_t height, uint16_t bpp, Bytes pixels = {})
{
    Bytes b(54 + pixels.size(), 0);
    std::copy(pixels.begin(), pixels.end(), b.begin() + 54);
    auto put = [&](size_t at, uint32_t v) { for (int i = 0; i < 4; ++i) b[at + i] = uint8_t(v >> (8 * i)); };
    b[0] = 'B', b[1] = 'M', b[26] = 1;
    for (auto [at, v] : {std::pair{10, 54u}, {14, 40u}, {18, uint32_t(width)}, {22, uint32_t(height)}, {28, bpp}, {34, uint32_t(pixels.size())}})
        put(at, v);
    return b;
}

class TextureDialogTest : public DialogTest
{
protected:
    fs::path Dir = fs::temp_directory_path() / ("orv-texdlg-" + std::to_string(getpid()));
    std::string Chosen; // what the file dialog answers

    void SetUp() override
    {
        DialogTest::SetUp();
        fs::create_directories(Dir);
        FileDialogAnswer = [this](bool save, const std::string& ext, const std::string& description) {
            EXPECT_EQ((save ? "save " : "open ") + ext + " " + description, "open bmp Bitképek");
            return Chosen;
        };
    }
    void TearDown() override
    {
        FileDialogAnswer = nullptr;
        fs::remove_all(Dir);
    }
    std::string Write(const std::string& name, const Bytes& b)
    {
        WriteFile(Dir / name, b);
        return (Dir / name).string();
    }
    // A 4 x 2 picture: bottom row (first in the file) black, red, red, red;
    // top row green, blue, blue, blue.
    std::string Picture(const std::string& name)
    {
        Bytes px;
        for (uint32_t bgr : {0x000000u, 0x0000FFu, 0x0000FFu, 0x0000FFu, 0x00FF00u, 0xFF0000u, 0xFF0000u, 0xFF0000u})
            px.insert(px.end(), {uint8_t(bgr >> 16), uint8_t(bgr >> 8), uint8_t(bgr)});
        return Write(name, Bmp(4, 2, 24, px));
    }
    // The name a texture stores for a chosen file.
    static std::string Stored(const std::string& path) { return Utf8ToCp1250(MakeRelativePath(path)); }
    int SlotOf(const std::string& path)
    {
        for (int i = 0; i < MAX_TEXTURES; ++i)
            if (L.Textures[i] && Stored(path) == L.Textures[i]->FileName)
                return i;
        return -1;
    }
    static QListWidget& List(ORVEDIALOG& d) { return *qobject_cast<QListWidget*>(d.Control(103)); }
};

} // namespace

TEST_F(TextureDialogTest, LoadDeleteChooseAndReplace)
{
    const std::string a = Picture("a.bmp"), b = Picture("b.bmp"), c = Picture("c.bmp");
    L.Add(Stored(a).c_str());
    L.Add(Stored(b).c_str()); // slots 0, 1, 2
    ORVETEXTUREDLG d(Host);
    ASSERT_TRUE(d.Init());

    Press(d, 102); // the current texture's entry, slot 0
    EXPECT_TRUE(!L.Textures[0] && List(d).count() == 2 && Checkpoints == 1);
    List(d).setCurrentRow(1); // slot 0 empty: row 1 stands for slot 2
    Press(d, 106); // "OK" makes it current, a step of its own for undo
    EXPECT_TRUE(L.CurrentTexture == 2 && Checkpoints == 2);

    Chosen = c;
    Press(d, 101); // into the first empty slot
    EXPECT_TRUE(SlotOf(c) == 0 && List(d).count() == 3 && Checkpoints == 3);

    // "Csere" on the current texture: same slot, still current.
    Press(d, 104);
    EXPECT_EQ(d.Selection(), 2);
    Chosen = Picture("d.bmp");
    Press(d, 105);
    EXPECT_TRUE(SlotOf(Chosen) == 2 && SlotOf(b) == -1 && L.CurrentTexture == 2 && d.Selection() == 2);
    List(d).setCurrentRow(0);
    Press(d, 105); // the first entry too
    // The view's context was made current before each texture was made or freed.
    EXPECT_TRUE(SlotOf(Chosen) == 0 && Checkpoints == 5 && MakeCurrents == 4 && P().Messages.empty());
}

TEST_F(TextureDialogTest, RefusedBitmapsLeaveEverythingAsItWas)
{
    const std::string a = Picture("a.bmp");
    L.Add(Stored(a).c_str());
    const uint64_t revision = L.Revision;
    ORVETEXTUREDLG d(Host);
    ASSERT_TRUE(d.Init());
    List(d).setCurrentRow(1);
    const std::pair<std::string, const char*> refused[] = {
        {Write("deep.bmp", Bmp(4, 2, 16, Bytes(16))), "16 bites"},
        {Write("huge.bmp", Bmp(1000, 1000, 24)), "1000 × 1000"},
        {Write("topdown.bmp", Bmp(4, -2, 24, Bytes(24))), "4 × -2"},
        {Write("notes.bmp", Bytes{'h', 'e', 'l', 'l', 'o'}), "nem Windows bitkép"},
        {Picture("日本.bmp"), "nevezze át"},
    };
    for (const auto& [file, why] : refused)
        for (int id : {101, 105})
        {
            P().Reset();
            Chosen = file;
            Press(d, id);
            ASSERT_EQ(P().Messages.size(), 1u) << file;
            const RECORDEDMESSAGE& m = P().Messages[0];
            EXPECT_TRUE(m.Text.find(why) != std::string::npos && m.Text.find(file) != std::string::npos) << m.Text;
            EXPECT_TRUE(m.Caption == "[i]" && m.Icon == MSGICON_INFORMATION);
        }
    EXPECT_TRUE(List(d).count() == 2 && SlotOf(a) == 1 && d.Selection() == 1 && L.Revision == revision && Checkpoints == 0);

    // A file that cannot be opened ends the program, as for every texture.
    P().Reset();
    Chosen = (Dir / "gone.bmp").string();
    EXPECT_THROW(d.Press(101), FATALEXIT);
    ASSERT_EQ(P().Messages.size(), 1u);
    EXPECT_EQ(P().Messages[0].Text, Cp1250ToUtf8(Stored(Chosen)) + " nem található!\n");
}

TEST_F(TextureDialogTest, PreviewShowsTheSelectedTextureWithItsColourKey)
{
    const std::string a = Picture("a.bmp");
    L.Add(Stored(a).c_str());
    L.CurrentTexture = 1;
    ORVETEXTUREDLG d(Host);
    ASSERT_TRUE(d.Init());
    const QImage& image = d.Preview->Image();
    ASSERT_EQ(image.size(), QSize(4, 2));
    // The file's last row on top; black is the colour key.
    EXPECT_EQ((std::vector{image.pixelColor(0, 0), image.pixelColor(1, 0), image.pixelColor(1, 1)}),
              (std::vector{QColor(0, 255, 0), QColor(0, 0, 255), QColor(255, 0, 0)}));
    EXPECT_TRUE(image.pixelColor(0, 1).alpha() == 0 && d.PreviewInfo->text() == "4 × 2 képpont, 24 bites");

    // A texture whose file went away since shows nothing and ends nothing.
    fs::remove(a);
    Press(d, 104);
    EXPECT_TRUE(d.Preview->Image().isNull() && d.PreviewInfo->text() == "A fájl nem található.");
}
