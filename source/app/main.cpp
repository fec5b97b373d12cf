// orvane-builder: the level editor.
#include "app/mainwindow.h"
#include "app/qtplatform.h"

#include "math/random.h"
#include "math/trig.h"
#include "sound/buffer.h"
#include "sound/objectal.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <QApplication>

#include <clocale>
#include <ctime>

int main(int argc, char** argv)
{
    // The toolkit comes first so that even the earliest fatal message shows.
    QApplication app(argc, argv);
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
    window.show();
    return app.exec();
}
