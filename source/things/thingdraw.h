// What the game objects draw that is more than a mesh. Meshes draw through
// the mesh drawer; the billboard, the spark lines, the cockpit and the texture
// unbinding need OpenGL, so the drawing layer installs these at start-up.
// Null hooks draw nothing.
#pragma once

class SPACESHIP;
class EXPLOSION;
class SPARK;

struct THINGDRAWHOOKS
{
    void (*Explosion)(const EXPLOSION& e) = nullptr;
    void (*Spark)(const SPARK& s) = nullptr;
    void (*Cockpit)(SPACESHIP& ship) = nullptr;
    // Binds texture 0 after a ship, so later drawing starts untextured.
    void (*UnbindTexture)() = nullptr;
};

extern THINGDRAWHOOKS ThingDrawHooks;
