// Triangle meshes read from LightWave object files (IFF "LWOB", big-endian).
// Every visible game object is drawn from one. The core only reads and keeps
// the mesh; drawing goes through the drawing seam, which compiles and calls
// the display list.
#pragma once

#include "math/vector3d.h"

#include <cstdint>

constexpr int TRIMESH_MAX_VERTICES = 1000;
constexpr int TRIMESH_MAX_TRIANGLES = 3000;
constexpr int TRIMESH_MAX_SURFACES = 200;
constexpr int TRIMESH_MAX_SURFACE_NAMES = 100; // names taken from one file
constexpr int TRIMESH_NAME_SIZE = 512;

struct TRIANGLE
{
    int32_t vertex[3] = {-1, -1, -1}; // indices into the vertex table, drawing order
    VECTOR3D normal;                  // set when the triangle is added
    int32_t surface = 0;              // index into the colour table
};

class TRIMESH
{
public:
    VECTOR3D** vertices;  // TRIMESH_MAX_VERTICES entries, null = free
    TRIANGLE** triangles; // TRIMESH_MAX_TRIANGLES entries, null = free
    VECTOR3D** surfaces;  // TRIMESH_MAX_SURFACES colours, null = none (drawn white)
    char name[TRIMESH_NAME_SIZE];
    bool hasList;
    bool dirty;
    int32_t listId;

    explicit TRIMESH(const char* file = nullptr, float scale = 1.0f);
    ~TRIMESH();
    TRIMESH(const TRIMESH&) = delete;
    TRIMESH& operator=(const TRIMESH&) = delete;

    void Load(const char* file, float scale);
    void AddVertex(float x, float y, float z);
    void AddTriangle(TRIANGLE t);
    void Draw(VECTOR3D P, VECTOR3D Z, VECTOR3D Y, VECTOR3D X, int32_t flag, VECTOR3D ambient);
    void GetBounds(float* minX, float* maxX, float* minY, float* maxY, float* minZ, float* maxZ,
                   float* outerRadius, float* innerRadius) const;

    // The colour a triangle is drawn in: its surface's colour, or white when
    // the surface has none or lies outside the table (a polygon with surface
    // number 0 or above 200 in the file).
    VECTOR3D SurfaceColour(int32_t surface) const;

    int VertexCount() const;
    int TriangleCount() const;
    int SurfaceCount() const; // surfaces with a colour

private:
    void FreeTables();
};
