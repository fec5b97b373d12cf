// The whole level as one line of JSON, for scripts and tests that look at a
// level without the editor. Texts of the level (code page 1250) come out as
// UTF-8.
#pragma once

#include "math/vector3d.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class ORVLEVEL;

// Writes JSON into Out with ", " between items and ": " after keys. Every
// value goes either into an open array or after a Key of an open object.
// Game-object classes use it to add their members to the dump.
class JSONWRITER
{
public:
    std::string Out;

    void BeginObject();
    void EndObject();
    void BeginArray();
    void EndArray();
    // The key of the next member of the open object; its value follows.
    JSONWRITER& Key(std::string_view name);

    void Int(int64_t v);
    // The shortest decimal that reads back as the same float; NaN and the
    // infinities, which JSON cannot carry, as the strings "nan", "inf", "-inf".
    void Float(float v);
    void Bool(bool v);
    void Null();
    void String(std::string_view utf8);
    // A code page 1250 text stored in a fixed field, up to its NUL.
    void Text1250(const char* text, size_t field);
    // [x, y, z]
    void Vec(VECTOR3D v);
    void Floats(const float* v, size_t count);
    void Ints(const int32_t* v, size_t count);

private:
    // One entry per open array or object: true until its first item.
    std::vector<bool> First;
    bool AfterKey = false;

    void BeforeValue();
    void Escaped(std::string_view utf8);
};

std::string DumpLevelJson(const ORVLEVEL& level);

// The dump's record arrays, in the order it writes them, and their pieces:
// level diffs compare the levels record by record without writing the whole.
enum DUMPTABLE
{
    DUMP_POINTS,
    DUMP_SEGMENTS,
    DUMP_TEXTURES,
    DUMP_THINGS,
    DUMP_LIGHTS,
    DUMP_SPECPOINTS,
    DUMP_TABLES
};
// "points", "segments", ...
const char* DumpTableName(int table);
// One past the last slot of the table that may hold a record.
int DumpTableEnd(const ORVLEVEL& level, int table);
// Writes record `index` as the dump does; false (nothing written) for an
// empty slot or an index outside the table.
bool DumpRecord(JSONWRITER& j, const ORVLEVEL& level, int table, int index);
// The members before the tables, into the open object.
void DumpHeader(JSONWRITER& j, const ORVLEVEL& level, bool withFileName);
