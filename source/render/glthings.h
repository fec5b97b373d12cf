// The OpenGL side of the drawing seam: textures, meshes, explosions, sparks
// and the ship's cockpit, installed into the DRAWING table the core draws
// through.
#pragma once

#include "math/vector3d.h"

#include <cstdint>

struct CAMERA;
class SPACESHIP;
class TEXTURE;
class TRIMESH;

// The frame being drawn: the camera that meshes set their view from and
// explosions face, and the client size the cockpit lays itself out in. The
// view sets it at the start of every frame; without a camera meshes are
// drawn under the identity view.
struct FRAMEVIEW
{
    const CAMERA* Camera = nullptr;
    int Width = 0;
    int Height = 0;
};
extern FRAMEVIEW DrawingView;

// Fills the DRAWING table with the functions below and installs it. Needs a
// current context before textures are made or anything is drawn.
void InstallGLDrawing();
// Puts back the empty table (the core then draws nothing).
void UninstallGLDrawing();
// The explosion billboard's texture (not owned); null draws it untextured.
void SetExplosionTexture(TEXTURE* texture);

// A new texture object holding the bitmap, linear filter, repeating.
uint32_t CreateGLTexture(const char* file);
void DeleteGLTexture(uint32_t name);

// Draws the mesh with model x, y, z along X, Y, Z from P, lit only by the
// ambient colour. The first draw compiles the triangles into a display list
// (names 1 ... 999), later draws call it.
void DrawMesh(TRIMESH& mesh, VECTOR3D P, VECTOR3D Z, VECTOR3D Y, VECTOR3D X, int32_t flag, VECTOR3D ambient);
// A new context has none of the old lists: every shared game mesh compiles
// again at its next draw.
void ForgetMeshLists();

// A white lightning line from a to b in steps of about 1 / stepScale.
void DrawSparkLine(VECTOR3D a, VECTOR3D b, float stepScale);

// The ship's two-dimensional display over the view: crosshair, missile
// side, shield and energy bars, weapons, money, level, messages and shop.
void DrawCockpit(SPACESHIP& ship);
void DrawMessages(const SPACESHIP& ship);
// Closes the shop outside a support segment; draws its texts inside one.
void DrawShop(SPACESHIP& ship);
