// Little-endian field-by-field reading and writing of the packed records of
// level files. Only the level's points and segments are copied whole, where
// their layout is checked at compile time (orvlevel/levelfile.cpp).
#pragma once

#include "math/vector3d.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

class BINWRITER
{
public:
    std::vector<uint8_t> Bytes;

    void U8(uint8_t v) { Bytes.push_back(v); }
    void U32(uint32_t v)
    {
        uint8_t b[4] = {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)};
        Bytes.insert(Bytes.end(), b, b + 4);
    }
    void I32(int32_t v) { U32(static_cast<uint32_t>(v)); }
    void F32(float v)
    {
        uint32_t u;
        std::memcpy(&u, &v, 4);
        U32(u);
    }
    void Bool(bool v) { U8(v ? 1 : 0); }
    void Vec(VECTOR3D v)
    {
        F32(v.x);
        F32(v.y);
        F32(v.z);
    }
    void Raw(const void* p, size_t n)
    {
        auto b = static_cast<const uint8_t*>(p);
        Bytes.insert(Bytes.end(), b, b + n);
    }
    // Text in a fixed field: the text, a NUL and zeros to the field's end.
    void Text(const char* s, size_t field)
    {
        size_t n = strnlen(s, field);
        if (n == field)
            n = field - 1;
        Raw(s, n);
        Bytes.insert(Bytes.end(), field - n, 0);
    }
    size_t Size() const { return Bytes.size(); }
};

// Reads from a byte range. A read that runs past the end reads nothing,
// returns false and sets Eof, like a stream whose end-of-file flag is set by
// a short read.
class BINREADER
{
public:
    BINREADER(const uint8_t* data, size_t size) : Data(data), Size(size) {}

    const uint8_t* Data;
    size_t Size;
    size_t Pos = 0;
    bool Eof = false;

    size_t Remaining() const { return Size - Pos; }

    bool Raw(void* out, size_t n)
    {
        if (n > Size - Pos) {
            Pos = Size;
            Eof = true;
            return false;
        }
        std::memcpy(out, Data + Pos, n);
        Pos += n;
        return true;
    }
    bool Skip(size_t n)
    {
        if (n > Size - Pos) {
            Pos = Size;
            Eof = true;
            return false;
        }
        Pos += n;
        return true;
    }
    // Looks at a 32-bit value `offset` bytes ahead without consuming it.
    bool PeekU32(size_t offset, uint32_t& v) const
    {
        if (offset > Size - Pos || 4 > Size - Pos - offset)
            return false;
        const uint8_t* b = Data + Pos + offset;
        v = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
        return true;
    }
    bool U8(uint8_t& v) { return Raw(&v, 1); }
    bool U32(uint32_t& v)
    {
        uint8_t b[4];
        if (!Raw(b, 4))
            return false;
        v = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
        return true;
    }
    bool I32(int32_t& v)
    {
        uint32_t u;
        if (!U32(u))
            return false;
        v = static_cast<int32_t>(u);
        return true;
    }
    bool F32(float& v)
    {
        uint32_t u;
        if (!U32(u))
            return false;
        std::memcpy(&v, &u, 4);
        return true;
    }
    bool Bool(bool& v)
    {
        uint8_t b;
        if (!U8(b))
            return false;
        v = b != 0;
        return true;
    }
    bool Vec(VECTOR3D& v) { return F32(v.x) && F32(v.y) && F32(v.z); }
};
