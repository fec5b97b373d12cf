// orvane-builder: the level editor.
#include "app/mainwindow.h"
#include "app/qtplatform.h"
#include "app/translations.h"

#include "math/random.h"
#include "math/trig.h"
#include "sound/beep.h"
#include "sound/buffer.h"
#include "sound/objectal.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <QApplication>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

// Mouse look moves the pointer back to the view's centre, which Qt cannot do
// on Wayland: there the program runs through XWayland, unless the user chose
// a platform (QT_QPA_PLATFORM or -platform).
void PreferXcbOnWayland(int argc, char** argv)
{
    const char* wayland = std::getenv("WAYLAND_DISPLAY");
    if (!wayland || !*wayland || std::getenv("QT_QPA_PLATFORM"))
        return;
    for (int i = 1; i < argc; ++i)
        if (!std::strcmp(argv[i], "-platform") || !std::strcmp(argv[i], "--platform") ||
            !std::strncmp(argv[i], "-platform=", 10) || !std::strncmp(argv[i], "--platform=", 11))
            return;
    setenv("QT_QPA_PLATFORM", "xcb;wayland", 1); // Wayland itself where XWayland is missing
}

} // namespace

int main(int argc, char** argv)
{
    PreferXcbOnWayland(argc, argv);
    // The toolkit comes first so that even the earliest fatal message shows.
    QApplication app(argc, argv);
    InstallToolkitTranslations();
    // Qt takes the user's locale; numbers in texts stay in the C locale.
    std::setlocale(LC_NUMERIC, "C");
    QTPLATFORM platform;
    SetPlatform(&platform);

    SRand(static_cast<uint32_t>(std::time(nullptr)));
    InitTrigTables();
    LoadOpenAL();
    LoadThingMeshes();
    RegisterThingClasses();

    // A level named on the command line opens once the view exists.
    ORVEWINDOW window(argc > 1 ? argv[1] : ""); // the frame driver with it; view and level at the first show
    TheSound = new OBJECTAL;
    LaserShotSound = new ADVBUFFER("LaserShot.wav");
    ExplosionSound = new ADVBUFFER("ExpGen.wav");
    MissileSound = new ADVBUFFER("Missile.wav");
    PowerupSound = new ADVBUFFER("Powerup.wav");
    BeepSound = new BUFFER("Beep.wav");
    window.show();
    return app.exec();
}
