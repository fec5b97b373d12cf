// The fixture the window tests share: a main window under the X server of the
// test run, its recovery copies in a folder of its own, the clock and keys
// under the test's control.
#pragma once

#include "app/filedialogs.h"
#include "app/mainwindow.h"
#include "editor/recovery.h"
#include "platform/tests/testplatform.h"
#include "render/view.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include <filesystem>
#include <unistd.h>

class WindowFixture : public PlatformTest
{
protected:
    std::filesystem::path Dir = std::filesystem::temp_directory_path() / ("orvwindow-" + std::to_string(getpid()));
    std::unique_ptr<ORVEWINDOW> W;

    void SetUp() override
    {
        PlatformTest::SetUp();
        std::filesystem::create_directories(Dir);
        setenv("ORV_RECOVERY_DIR", (Dir / "recovery").c_str(), 1);
    }
    void TearDown() override
    {
        FileDialogAnswer = nullptr;
        if (W)
            W->Recovery()->Remove();
        W.reset();
        std::filesystem::remove_all(Dir);
    }
    // A new window, shown, with its level loaded and the view focused.
    void Open()
    {
        W = std::make_unique<ORVEWINDOW>();
        W->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(W.get()));
        for (int i = 0; i < 200 && !W->Document(); ++i)
            QTest::qWait(10);
        ASSERT_NE(W->Document(), nullptr);
        QApplication::setActiveWindow(W.get());
        W->View()->setFocus();
        QApplication::processEvents();
    }
    // Closed and opened again, as at the next start.
    void Reopen()
    {
        W->close();
        W.reset();
        Open();
    }
    ORVLEVEL& L() { return W->Document()->Level(); }
    CAMERA& Cam() { return *W->Camera(); }
    // One pass of the frame loop with the clock moved on by `ms`.
    void Step(uint32_t ms = 41)
    {
        P().Now += ms;
        W->Step();
    }
    // A key by its evdev code, as X delivers it.
    void Key(uint32_t evdev, bool down, Qt::Key key = Qt::Key_unknown)
    {
        QKeyEvent e(down ? QEvent::KeyPress : QEvent::KeyRelease, key, Qt::NoModifier, evdev + 8, 0, 0);
        QApplication::sendEvent(W->View(), &e);
    }
    QPoint Centre() const { return QPoint(W->View()->width() / 2, W->View()->height() / 2); }
};
