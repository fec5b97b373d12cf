// The main of the Qt test programs: the shared test set-up (trigonometry
// tables, a fixed random seed, the recording platform) under a QApplication.
// Listing the tests (done at build time, without a display) needs no
// application.
#include <gtest/gtest.h>

#include "math/random.h"
#include "math/trig.h"
#include "platform/tests/testplatform.h"

#include <QApplication>
#include <QSettings>
#include <QTemporaryDir>

#include <clocale>
#include <memory>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    InitTrigTables();
    SRand(1);
    SetPlatform(&TestPlatform());
    std::unique_ptr<QApplication> app;
    // Windows remember panels and views in their settings: a folder of the
    // run's own, never the user's.
    QTemporaryDir settings;
    setenv("XDG_CONFIG_HOME", settings.path().toLocal8Bit().constData(), 1);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    if (!GTEST_FLAG_GET(list_tests))
    {
        app = std::make_unique<QApplication>(argc, argv);
        // As the program does: Qt takes the user's locale, numbers stay C.
        std::setlocale(LC_NUMERIC, "C");
    }
    return RUN_ALL_TESTS();
}

// In the sanitizer build: Qt's plugins leave allocations behind in libraries
// they unload, where no suppression can name them, so the leak check is off
// for the window and dialog tests; the other checks stay on.
extern "C" const char* __asan_default_options()
{
    return "detect_leaks=0";
}
