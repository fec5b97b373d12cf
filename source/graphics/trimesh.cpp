#include "graphics/trimesh.h"
#include "graphics/drawing.h"
#include "math/geometry.h"
#include "platform/datafile.h"
#include "platform/fileio.h"
#include "platform/platform.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace {

[[noreturn]] void OutOfMemory()
{
    FatalMessage("Not enough memory!", "FATAL!", MSGICON_STOP);
}

template <typename T>
T** NewTable(int n)
{
    T** table = new (std::nothrow) T*[n];
    if (!table)
        OutOfMemory();
    for (int i = 0; i < n; ++i)
        table[i] = nullptr;
    return table;
}

template <typename T>
void DeleteTable(T** table, int n)
{
    if (!table)
        return;
    for (int i = 0; i < n; ++i)
        delete table[i];
    delete[] table;
}

// The whole file in memory; every read below is checked against its size, so
// a size field that runs past the end is cut short instead of read blindly.
struct LWOFILE
{
    std::vector<uint8_t> Bytes;
    const uint8_t* Data = nullptr;
    uint32_t Size = 0;
    uint32_t Pos = 0;

    bool Has(uint32_t n) const { return Pos <= Size && Size - Pos >= n; }
    bool IdAt(uint32_t at, const char* id) const { return std::memcmp(Data + at, id, 4) == 0; }
};

uint16_t U16(const uint8_t* p)
{
    return uint16_t(p[0] << 8 | p[1]);
}

uint32_t U32(const uint8_t* p)
{
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
}

float F32(const uint8_t* p)
{
    uint32_t bits = U32(p);
    float f;
    std::memcpy(&f, &bits, 4);
    return f;
}

// Loads the file; false when it cannot be opened as a regular file.
bool ReadMeshFile(const char* file, LWOFILE& f)
{
    if (!ReadWholeFile(FindDataFile(file), f.Bytes))
        return false;
    // Bigger files are cut at 4 GB; no mesh comes near that.
    f.Size = f.Bytes.size() > 0xFFFFFFFFu ? 0xFFFFFFFFu : uint32_t(f.Bytes.size());
    f.Data = f.Bytes.data();
    return true;
}

// Finds the chunk `id` and leaves the position at its data. Returns its size,
// cut to what the file holds, or 0 (and the error beep if asked) when the end
// comes first. Odd sizes are not padded.
uint32_t FindChunk(LWOFILE& f, const char* id, bool fromStart, bool beep)
{
    if (fromStart)
        f.Pos = 12;
    while (f.Has(8)) {
        bool match = f.IdAt(f.Pos, id);
        uint32_t size = U32(f.Data + f.Pos + 4);
        f.Pos += 8;
        uint32_t left = f.Size - f.Pos;
        if (size > left)
            size = left;
        if (match)
            return size;
        f.Pos += size;
    }
    if (beep)
        InfoBeep();
    return 0;
}

struct NAMEREF
{
    uint32_t At;
    uint32_t Length;
};

// Surface names of SRFS: zero-padded texts, numbered in file order.
int CollectSurfaceNames(const uint8_t* data, uint32_t size, NAMEREF* names)
{
    int count = 0;
    bool expecting = true;
    for (uint32_t i = 0; i < size; ++i) {
        if (expecting && data[i] != 0) {
            if (count == TRIMESH_MAX_SURFACE_NAMES)
                break; // later names get no colour
            names[count].At = i;
            names[count].Length = 0;
            ++count;
            expecting = false;
        } else if (!expecting && data[i] == 0) {
            expecting = true;
        }
        if (!expecting)
            ++names[count - 1].Length;
    }
    return count;
}

// Reads one SURF chunk's colour into surfaces[] of the first SRFS name equal
// to its own.
void ReadSurface(const uint8_t* data, uint32_t size, const uint8_t* srfs, const NAMEREF* names,
                 int nameCount, VECTOR3D** surfaces)
{
    uint32_t nameLength = 0;
    while (nameLength < size && data[nameLength] != 0)
        ++nameLength;
    uint32_t o = nameLength;
    while (o < size && data[o] == 0)
        ++o;

    // Sub-chunks: 4-byte id, 16-bit size. The scan stops 8 bytes before the
    // end, so a found COLR always has its three bytes.
    VECTOR3D colour(1.0f, 1.0f, 1.0f);
    uint32_t p = o;
    while (size >= 8 && p + 6 <= size) {
        bool isColr = std::memcmp(data + p, "COLR", 4) == 0;
        uint32_t subSize = U16(data + p + 4);
        p += 6;
        if (p >= size - 8)
            break;
        if (isColr) {
            const float k = 0.00392156862745098f;
            colour = VECTOR3D(data[p] * k, data[p + 1] * k, data[p + 2] * k);
            break;
        }
        p += subSize;
    }

    for (int j = 0; j < nameCount; ++j) {
        if (names[j].Length == nameLength && std::memcmp(srfs + names[j].At, data, nameLength) == 0) {
            VECTOR3D* c = new (std::nothrow) VECTOR3D(colour);
            if (!c)
                OutOfMemory();
            delete surfaces[j];
            surfaces[j] = c;
            return;
        }
    }
}

} // namespace

TRIMESH::TRIMESH(const char* file, float scale) : vertices(nullptr), triangles(nullptr), surfaces(nullptr)
{
    // A fatal message can come back as an exception (the test seam does
    // that); the tables must not outlive the half-built mesh.
    try
    {
        vertices = NewTable<VECTOR3D>(TRIMESH_MAX_VERTICES);
        triangles = NewTable<TRIANGLE>(TRIMESH_MAX_TRIANGLES);
        surfaces = NewTable<VECTOR3D>(TRIMESH_MAX_SURFACES);
        std::memset(name, 0, sizeof name);
        listId = 0;
        if (file)
            Load(file, scale);
    }
    catch (...)
    {
        FreeTables();
        throw;
    }
    hasList = false;
    dirty = true;
}

void TRIMESH::FreeTables()
{
    DeleteTable(vertices, TRIMESH_MAX_VERTICES);
    DeleteTable(triangles, TRIMESH_MAX_TRIANGLES);
    DeleteTable(surfaces, TRIMESH_MAX_SURFACES);
    vertices = nullptr;
    triangles = nullptr;
    surfaces = nullptr;
}

TRIMESH::~TRIMESH()
{
    FreeTables();
}

void TRIMESH::Load(const char* file, float scale)
{
    LWOFILE f;
    if (!ReadMeshFile(file, f))
        FatalMessage(std::string(file) + " nem található!", "FATAL!", MSGICON_NONE, 0);

    if (!f.Has(4) || !f.IdAt(0, "FORM")) {
        ShowMessage("FORM chunk not found!", file, MSGICON_STOP);
        return;
    }
    if (f.Size < 12 || !f.IdAt(8, "LWOB")) {
        ShowMessage("LWOB chunk not found!", file, MSGICON_STOP);
        return;
    }

    uint32_t size = FindChunk(f, "PNTS", true, true);
    if (size == 0)
        return;
    for (uint32_t i = 0; i < size / 12; ++i) {
        const uint8_t* p = f.Data + f.Pos + 12 * i;
        AddVertex(F32(p) * scale, F32(p + 4) * scale, F32(p + 8) * scale);
    }

    size = FindChunk(f, "SRFS", true, true);
    if (size == 0)
        return;
    const uint8_t* srfs = f.Data + f.Pos;
    NAMEREF names[TRIMESH_MAX_SURFACE_NAMES];
    int nameCount = CollectSurfaceNames(srfs, size, names);

    size = FindChunk(f, "SURF", true, true);
    while (size != 0) {
        ReadSurface(f.Data + f.Pos, size, srfs, names, nameCount, surfaces);
        f.Pos += size;
        size = FindChunk(f, "SURF", false, false);
    }

    size = FindChunk(f, "POLS", true, true);
    if (size == 0) {
        ShowMessage("POLS chunk not found!", file, MSGICON_STOP);
        return;
    }
    // 16-bit words: count, indices, surface; a negative surface is followed
    // by detail polygons, which are skipped. A polygon cut off by the end of
    // the chunk is dropped.
    const uint8_t* w = f.Data + f.Pos;
    uint32_t words = size / 2;
    uint32_t at = 0;
    auto word = [&](uint32_t k) { return int16_t(U16(w + 2 * k)); };
    while (at < words) {
        uint32_t n = uint16_t(word(at));
        if (at + 1 + n + 1 > words)
            break;
        uint32_t first = at + 1;
        int32_t s = word(at + 1 + n);
        at += n + 2;
        if (s < 0) {
            if (at >= words)
                break;
            uint32_t details = uint16_t(word(at++));
            for (uint32_t d = 0; d < details && at < words; ++d)
                at += uint16_t(word(at)) + 2u;
        }
        for (uint32_t k = 2; k < n; ++k) {
            TRIANGLE t;
            t.vertex[0] = word(first);
            t.vertex[1] = word(first + k - 1);
            t.vertex[2] = word(first + k);
            t.surface = std::abs(s) - 1;
            AddTriangle(t);
        }
    }

    std::strncpy(name, file, TRIMESH_NAME_SIZE - 1);
    name[TRIMESH_NAME_SIZE - 1] = 0;
}

void TRIMESH::AddVertex(float x, float y, float z)
{
    for (int i = 0; i < TRIMESH_MAX_VERTICES; ++i) {
        if (!vertices[i]) {
            vertices[i] = new (std::nothrow) VECTOR3D(x, y, z);
            if (!vertices[i])
                OutOfMemory();
            return;
        }
    }
}

void TRIMESH::AddTriangle(TRIANGLE t)
{
    for (int v : t.vertex)
        if (v < 0 || v >= TRIMESH_MAX_VERTICES || !vertices[v])
            return;
    t.normal = TriangleNormal(*vertices[t.vertex[0]], *vertices[t.vertex[1]], *vertices[t.vertex[2]]);
    for (int i = 0; i < TRIMESH_MAX_TRIANGLES; ++i) {
        if (!triangles[i]) {
            triangles[i] = new (std::nothrow) TRIANGLE(t);
            if (!triangles[i])
                OutOfMemory();
            return;
        }
    }
}

void TRIMESH::Draw(VECTOR3D P, VECTOR3D Z, VECTOR3D Y, VECTOR3D X, int32_t flag, VECTOR3D ambient)
{
    if (Drawing().DrawMesh)
        Drawing().DrawMesh(*this, P, Z, Y, X, flag, ambient);
}

void TRIMESH::GetBounds(float* minX, float* maxX, float* minY, float* maxY, float* minZ, float* maxZ,
                        float* outerRadius, float* innerRadius) const
{
    float lo[3] = {1e10f, 1e10f, 1e10f};
    float hi[3] = {-1e10f, -1e10f, -1e10f};
    for (int i = 0; i < TRIMESH_MAX_VERTICES; ++i) {
        if (!vertices[i])
            continue;
        float v[3] = {vertices[i]->x, vertices[i]->y, vertices[i]->z};
        for (int a = 0; a < 3; ++a) {
            if (v[a] < lo[a])
                lo[a] = v[a];
            if (v[a] > hi[a])
                hi[a] = v[a];
        }
    }

    float inner = 1e30f;
    for (int a = 0; a < 3; ++a) {
        inner = std::fmin(inner, std::fabs(lo[a]));
        inner = std::fmin(inner, std::fabs(hi[a]));
    }
    float outer = -1e30f;
    for (int c = 0; c < 8; ++c) {
        float x = (c & 1) ? hi[0] : lo[0];
        float y = (c & 2) ? hi[1] : lo[1];
        float z = (c & 4) ? hi[2] : lo[2];
        outer = std::fmax(outer, std::sqrt(x * x + y * y + z * z));
    }

    *minX = lo[0];
    *maxX = hi[0];
    *minY = lo[1];
    *maxY = hi[1];
    *minZ = lo[2];
    *maxZ = hi[2];
    *outerRadius = outer;
    *innerRadius = inner;
}

VECTOR3D TRIMESH::SurfaceColour(int32_t surface) const
{
    if (surface < 0 || surface >= TRIMESH_MAX_SURFACES || !surfaces[surface])
        return VECTOR3D(1.0f, 1.0f, 1.0f);
    return *surfaces[surface];
}

int TRIMESH::VertexCount() const
{
    int n = 0;
    for (int i = 0; i < TRIMESH_MAX_VERTICES; ++i)
        n += vertices[i] != nullptr;
    return n;
}

int TRIMESH::TriangleCount() const
{
    int n = 0;
    for (int i = 0; i < TRIMESH_MAX_TRIANGLES; ++i)
        n += triangles[i] != nullptr;
    return n;
}

int TRIMESH::SurfaceCount() const
{
    int n = 0;
    for (int i = 0; i < TRIMESH_MAX_SURFACES; ++i)
        n += surfaces[i] != nullptr;
    return n;
}
