// Helpers the world tests (and the editor's) share.
#pragma once

#include "orvlevel/level.h"
#include "platform/tests/testplatform.h"
#include "things/thing.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <typeinfo>
#include <vector>

// Filled slots of a table; none in a cleared level.
template <class T>
int Filled(T* const* table, int size)
{
    return table ? int(std::count_if(table, table + size, [](const T* p) { return p != nullptr; })) : 0;
}

// Objects of exactly class T in a level, and the first of them in slot order.
template <class T>
int CountOf(const ORVLEVEL& level)
{
    return int(std::count_if(level.Things, level.Things + MAX_THINGS,
                             [](const THING* t) { return t && typeid(*t) == typeid(T); }));
}
template <class T>
T* FirstOf(const ORVLEVEL& level)
{
    for (THING* t : std::span(level.Things, MAX_THINGS))
        if (t && typeid(*t) == typeid(T))
            return static_cast<T*>(t);
    return nullptr;
}

inline void ExpectNear(VECTOR3D a, VECTOR3D b, float eps = 1e-3f)
{
    EXPECT_NEAR(a.x, b.x, eps);
    EXPECT_NEAR(a.y, b.y, eps);
    EXPECT_NEAR(a.z, b.z, eps);
}

// An unjoined copy of the default cube (segment 0) moved by `offset`, on
// points of its own; its index.
inline int AddCubeCopy(ORVLEVEL& level, VECTOR3D offset, int32_t type = SEGTYPE_NORMAL)
{
    SEGMENT s = *level.Segments[0];
    for (int i = 0; i < 8; ++i)
        s.Corners[i] = level.Add(DefaultCubeCorners[i] + offset);
    s.Type = type;
    return level.Add(&s);
}

// A cube on top of segment 0, joined through segment 0's side 0 and its own
// side 2, both passable; its bottom corners are segment 0's top ones.
inline int AddCubeAbove(ORVLEVEL& level)
{
    SEGMENT s = *level.Segments[0];
    for (int slot : {2, 3, 6, 7})
        s.Corners[slot] = slot - 2;
    for (int slot : {0, 1, 4, 5})
        s.Corners[slot] = level.Add(DefaultCubeCorners[slot] + VECTOR3D(0, 200, 0));
    s.Neighbours[2] = 0;
    s.Sides[2].WallType = level.Segments[0]->Sides[0].WallType = WALL_PASSABLE;
    int n = level.Add(&s);
    level.Segments[0]->Neighbours[0] = n;
    return n;
}

// Level-file bytes assembled by hand, independently of the writer.
struct LEVELBYTES
{
    std::vector<uint8_t> B;

    LEVELBYTES& U8(uint8_t v)
    {
        B.push_back(v);
        return *this;
    }
    LEVELBYTES& I32(int32_t v)
    {
        for (int i = 0; i < 4; ++i)
            B.push_back(uint8_t(uint32_t(v) >> 8 * i));
        return *this;
    }
    LEVELBYTES& F32(float f)
    {
        uint32_t u;
        std::memcpy(&u, &f, 4);
        return I32(int32_t(u));
    }
    LEVELBYTES& Vec(float x, float y, float z) { return F32(x).F32(y).F32(z); }
    LEVELBYTES& Zeros(size_t n)
    {
        B.resize(B.size() + n);
        return *this;
    }
    // `s`, then `junk` after its NUL, in a zero-filled field.
    LEVELBYTES& Text(const char* s, size_t field, const char* junk = "")
    {
        size_t n = std::strlen(s), j = *junk ? std::strlen(junk) + 1 : 0;
        B.insert(B.end(), s, s + n);
        if (j)
            B.push_back(0), B.insert(B.end(), junk, junk + j - 1);
        return Zeros(field - n - j);
    }
    LEVELBYTES& Header(const char* name = "UNNAMED") { return Text("ORVLEVEL", 9).Text(name, 30); }
    LEVELBYTES& End() { return I32(-1); }
    // The header and empty point, segment and texture sections; the things
    // follow.
    LEVELBYTES& Start() { return Header().End().End().End(); }
    // The things' terminator and empty light and special-point sections.
    LEVELBYTES& Finish() { return End().End().End(); }
    LEVELBYTES& Point(int32_t i, float x, float y, float z) { return I32(i).Vec(x, y, z); }
    // Every field of the record tells the seed, the side and the field apart.
    LEVELBYTES& Segment(int32_t index, int seed, uint32_t size = 736)
    {
        I32(index).I32(int32_t(size));
        for (int i = 0; i < 6; ++i)
            I32(seed + i);
        for (int i = 0; i < 8; ++i)
            I32(seed * 10 + i);
        for (int k = 0; k < 6; ++k)
        {
            int v = seed * 100 + k * 10;
            I32(112).I32(v).I32(k % 5);
            for (int i = 0; i < 8; ++i)
                F32(v + i * 0.5f);
            for (int i = 0; i < 12; ++i)
                F32(i / 16.0f);
            I32(20).I32(k % 4).F32(k * 0.25f).I32(v + 7).I32((k + 1) % 4);
        }
        if (size == 736)
            I32(seed % 4);
        return *this;
    }
    LEVELBYTES& Texture(int32_t index, const char* name, int32_t length = 512)
    {
        return I32(index).I32(length).Text(name, size_t(length));
    }
    // A thing's index, 40-byte name field and size.
    LEVELBYTES& ThingHead(int32_t index, const char* name, int32_t size, const char* junk = "")
    {
        return I32(index).Text(name, 40, junk).I32(size);
    }
    // THING's 143 bytes; `seed` tells records apart (an odd one makes the
    // object dead). The frame is none a constructor would choose.
    LEVELBYTES& ThingBase(float seed)
    {
        Vec(seed, seed + 1, seed + 2).Vec(seed + 3, seed + 4, seed + 5);
        Vec(0, 0, 1).Vec(0, -1, 0).Vec(1, 0, 0); // axisY, axisZ, axisX
        Vec(0, 0, -1).Vec(0, 1, 0).Vec(-1, 0, 0);
        I32(7).I32(int32_t(seed));
        F32(30.5f).F32(4.25f);
        U8(1).U8(0).U8(int(seed) % 2); // hit, ghost, dead
        F32(-1).F32(2).F32(-3).F32(4).F32(-5).F32(6);
        return F32(1.5f);
    }
    // A whole record, zeros after THING's members.
    LEVELBYTES& Thing(int32_t index, const char* name, int32_t size, float seed = 1)
    {
        return ThingHead(index, name, size).ThingBase(seed).Zeros(size_t(std::max(size - THING_SIZE, 0)));
    }
    LEVELBYTES& Light(int32_t index) { return I32(index).Vec(1, 2, 3).Vec(0.5f, 0.25f, 1).F32(10000); }
    LEVELBYTES& SpecPoint(int32_t index, int32_t type = 0) { return I32(index).Vec(-1, -2, -3).I32(type); }
    void Patch(size_t offset, uint32_t v)
    {
        for (int i = 0; i < 4; ++i)
            B[offset + i] = uint8_t(v >> 8 * i);
    }
};
