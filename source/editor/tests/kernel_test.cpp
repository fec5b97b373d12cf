#include "editor/filepath.h"
#include "editor/kernel.h"

#include "platform/tests/testplatform.h"

namespace {

class KernelTest : public PlatformTest, public KERNELHOST
{
protected:
    CAMERA Cam;
    KERNEL Kernel{*this};
    int CursorX = 320, CursorY = 240;

    void ClientSize(int& w, int& h) override { w = 641, h = 481; } // centre (320, 240)
    void CursorPos(int& x, int& y) override { x = CursorX, y = CursorY; }
    void SetCursorPos(int x, int y) override { CursorX = x, CursorY = y; }
    CAMERA* ViewCamera() override { return &Cam; }

    void Press(uint32_t evdev, bool down = true) { Kernel.SetMoveKey(ScanCodeOfEvdev(evdev), down); }
};

constexpr uint32_t KEY_KP8 = 72, KEY_KP5 = 76, KEY_UP = 103, KEY_DOWN = 108, KEY_KP2 = 80, KEY_DELETE = 111;

} // namespace

TEST_F(KernelTest, KeysByScanCodeMoveTheCameraOncePerStep)
{
    const CAMERA start = Cam;
    Press(KEY_UP); // the grey key is keypad 8
    EXPECT_TRUE(Kernel.Moving() && Kernel.Update());
    EXPECT_EQ(Cam.Position, start.Position + start.ViewDir * 10.0f);
    EXPECT_FALSE(Kernel.Update()); // within the same 40 ms
    P().Now += 41;
    Press(KEY_UP, false);
    Press(KEY_KP8);
    Press(KEY_KP5); // forward and back in one step cancel out
    VECTOR3D before = Cam.Position;
    Kernel.Update();
    EXPECT_NEAR(Length(Cam.Position - before), 0.0f, 1e-4f);

    for (uint32_t key : {KEY_KP8, KEY_KP5})
        Press(key, false);
    Press(KEY_DOWN);
    Press(KEY_KP2);
    EXPECT_FALSE(Kernel.Moving()); // the down arrow and keypad 2 do nothing
    // The extended bit is ignored.
    EXPECT_EQ((std::vector{CameraOpOfScanCode(ScanCodeOfEvdev(KEY_DELETE)), CameraOpOfScanCode(0xE053), CameraOpOfScanCode(0x50)}),
              (std::vector{int(CAM_ROLLRIGHTDOWN), int(CAM_ROLLRIGHTDOWN), -1}));
}

TEST(FilePath, MakeRelativePath)
{
    // The first piece that differs was compared in upper case.
    for (auto [path, from, want] : {std::tuple{"/a/b/x.bmp", "/a/b", "x.bmp"}, {"/a/b/x.bmp", "/a/b/c", "..\\x.bmp"},
                                    {"/a/b/x.bmp", "/a", "b\\x.bmp"}, {"/A/b/x.bmp", "/a/B", "x.bmp"},
                                    {"/games/tex/wall.bmp", "/games/edit", "..\\TEX\\wall.bmp"}, {"/a/b", "/a/b", ""}})
        EXPECT_EQ(MakeRelativePath(path, from), want) << path << " from " << from;
}
