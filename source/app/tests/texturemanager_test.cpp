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
#include <fstream>

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
    put(10, 54);
    put(14, 40);
    put(18, uint32_t(width));
    put(22, uint32_t(height));
    put(28, bpp);
    put(34, uint32_t(pixels.size()));
    return b;
}

class TextureDialogTest : public DialogTest
{
protected:
    fs::path Dir = fs::temp_directory_path() / ("orv-texdlg-" + std::to_string(getpid()));
    std::string Chosen; // what the file dialog answers
    int FileDialogs = 0;

    void SetUp() override
    {
        DialogTest::SetUp();
        fs::create_directories(Dir);
        FileDialogAnswer = [this](bool save, const std::string& ext, const std::string& description) {
            ++FileDialogs;
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
        std::string file = (Dir / name).string();
        std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
        return file;
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

TEST_F(TextureDialogTest, ListPositionsStandForFilledSlots)
{
    const std::string a = Picture("a.bmp"), b = Picture("b.bmp");
    L.Add(Stored(a).c_str());
    L.Add(Stored(b).c_str());
    L.DeleteTexture(1); // slots 0 and 2 filled
    const uint64_t revision = L.Revision;
    {
        ORVETEXTUREDLG d(Host);
        ASSERT_TRUE(d.Init());
        d.show();
        ASSERT_EQ(List(d).count(), 2);
        EXPECT_EQ(List(d).item(1)->text().toStdString(), MakeRelativePath(b));
        EXPECT_EQ(d.Selection(), 0); // the current texture's entry
        List(d).setCurrentRow(1);
        Press(d, 106);
        EXPECT_FALSE(d.isVisible());
    }
    EXPECT_EQ(L.CurrentTexture, 2);
    EXPECT_EQ(Checkpoints, 1); // a step of its own for undo
    EXPECT_EQ(L.Revision, revision);

    // The current slot is empty: nothing selected, and the buttons that act
    // on the selection do nothing.
    L.CurrentTexture = 1;
    ORVETEXTUREDLG d(Host);
    ASSERT_TRUE(d.Init());
    d.show();
    EXPECT_EQ(d.Selection(), -1);
    for (int id : {106, 102, 105})
        Press(d, id);
    EXPECT_TRUE(d.isVisible());
    EXPECT_EQ(FileDialogs, 0);
    EXPECT_EQ(L.CurrentTexture, 1);
    EXPECT_EQ(L.Revision, revision);
    EXPECT_EQ(Checkpoints, 1);
    EXPECT_EQ(MakeCurrents + P().Beeps, 0);
}

TEST_F(TextureDialogTest, LoadDeleteAndReplace)
{
    const std::string a = Picture("a.bmp"), b = Picture("b.bmp"), c = Picture("c.bmp");
    L.Add(Stored(a).c_str());
    L.Add(Stored(b).c_str()); // slots 0, 1, 2
    ORVETEXTUREDLG d(Host);
    ASSERT_TRUE(d.Init());

    Press(d, 102); // the current texture's entry, slot 0
    EXPECT_EQ(L.Textures[0], nullptr);
    EXPECT_EQ(List(d).count(), 2);
    EXPECT_EQ(Checkpoints, 1);

    Chosen = "";
    const uint64_t revision = L.Revision;
    Press(d, 101); // cancelled
    EXPECT_EQ(L.Revision, revision);

    Chosen = c;
    Press(d, 101); // into the first empty slot
    EXPECT_EQ(SlotOf(c), 0);
    EXPECT_EQ(List(d).count(), 3);
    EXPECT_EQ(List(d).item(0)->text().toStdString(), MakeRelativePath(c));
    EXPECT_EQ(Checkpoints, 2);

    // "Csere" on the current texture: same slot, still current.
    L.CurrentTexture = 2;
    Press(d, 104);
    EXPECT_EQ(d.Selection(), 2);
    Chosen = Picture("d.bmp");
    Press(d, 105);
    EXPECT_EQ(SlotOf(Chosen), 2);
    EXPECT_EQ(SlotOf(b), -1);
    EXPECT_EQ(L.CurrentTexture, 2);
    EXPECT_EQ(d.Selection(), 2);
    List(d).setCurrentRow(0);
    Press(d, 105); // the first entry too
    EXPECT_EQ(SlotOf(Chosen), 0);
    EXPECT_EQ(Checkpoints, 4);
    // The view's context was made current before each texture was made or freed.
    EXPECT_EQ(MakeCurrents, 4);
    EXPECT_TRUE(P().Messages.empty());
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
    EXPECT_EQ(List(d).count(), 2);
    EXPECT_EQ(SlotOf(a), 1);
    EXPECT_EQ(d.Selection(), 1);
    EXPECT_EQ(L.Revision, revision);
    EXPECT_EQ(Checkpoints, 0);

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
    EXPECT_EQ(image.pixelColor(0, 0), QColor(0, 255, 0)); // the file's last row on top
    EXPECT_EQ(image.pixelColor(1, 0), QColor(0, 0, 255));
    EXPECT_EQ(image.pixelColor(0, 1).alpha(), 0); // black is the colour key
    EXPECT_EQ(image.pixelColor(1, 1), QColor(255, 0, 0));
    EXPECT_EQ(d.PreviewInfo->text(), "4 × 2 képpont, 24 bites");
    // Drawn over the checkerboard: the key pixel is not black on screen.
    const QImage shown = d.Preview->grab().toImage();
    const QPoint keyPixel(d.Preview->width() / 2 - d.Preview->width() / 4 - 2, d.Preview->height() / 2 + 2);
    EXPECT_NE(shown.pixelColor(keyPixel), QColor(Qt::black));

    // A texture whose file went away since shows nothing and ends nothing.
    fs::remove(a);
    Press(d, 104);
    EXPECT_TRUE(d.Preview->Image().isNull());
    EXPECT_EQ(d.PreviewInfo->text(), "A fájl nem található.");
}
