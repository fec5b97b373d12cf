// The one seam between the program and OpenGL. The drawing layer fills in a
// DRAWING table at start-up and installs it; everything below the drawing
// layer (textures, meshes, game objects) draws only through it. A null
// member draws nothing, so the command-line tool and the core tests run
// without any OpenGL at all.
#pragma once

#include "math/vector3d.h"

#include <cstdint>

class TEXTURE;
class TRIMESH;
class EXPLOSION;
class SPARK;
class SPACESHIP;

struct DRAWING
{
    // Textures: a new texture object loaded from a bitmap file (its name),
    // deleting one, and binding one through the one-entry cache.
    uint32_t (*CreateTexture)(const char* file) = nullptr;
    void (*DeleteTexture)(uint32_t name) = nullptr;
    void (*BindTexture)(uint32_t name) = nullptr;

    // Meshes: draws one with its model origin at P and its model x, y, z axes
    // along X, Y, Z under the ambient colour.
    void (*DrawMesh)(TRIMESH& mesh, VECTOR3D P, VECTOR3D Z, VECTOR3D Y, VECTOR3D X, int32_t flag,
                     VECTOR3D ambient) = nullptr;

    // Game objects that draw more than a mesh.
    void (*DrawExplosion)(const EXPLOSION& e) = nullptr;
    void (*DrawSpark)(const SPARK& s) = nullptr;
    void (*DrawCockpit)(SPACESHIP& ship) = nullptr;

    // The explosion billboard ("SmallExplosion.bmp"), owned by the main
    // window; null draws explosions untextured.
    TEXTURE* ExplosionTexture = nullptr;
};

// Installs a table (not owned); null installs the empty one.
void SetDrawing(const DRAWING* drawing);
const DRAWING& Drawing();
