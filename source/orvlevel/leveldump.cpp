#include "orvlevel/leveldump.h"

#include "graphics/texture.h"
#include "orvlevel/level.h"
#include "platform/cp1250.h"
#include "things/thing.h"

#include <charconv>
#include <cmath>
#include <cstring>

// ---------------------------------------------------------------------------
// JSONWRITER

void JSONWRITER::BeforeValue()
{
    if (AfterKey)
    {
        AfterKey = false;
        return;
    }
    if (!First.empty())
    {
        if (!First.back())
            Out += ", ";
        First.back() = false;
    }
}

void JSONWRITER::BeginObject()
{
    BeforeValue();
    Out += '{';
    First.push_back(true);
}

void JSONWRITER::EndObject()
{
    First.pop_back();
    Out += '}';
}

void JSONWRITER::BeginArray()
{
    BeforeValue();
    Out += '[';
    First.push_back(true);
}

void JSONWRITER::EndArray()
{
    First.pop_back();
    Out += ']';
}

JSONWRITER& JSONWRITER::Key(std::string_view name)
{
    BeforeValue();
    Escaped(name);
    Out += ": ";
    AfterKey = true;
    return *this;
}

void JSONWRITER::Int(int64_t v)
{
    BeforeValue();
    char buffer[24];
    auto end = std::to_chars(buffer, buffer + sizeof buffer, v).ptr;
    Out.append(buffer, end);
}

void JSONWRITER::Float(float v)
{
    if (std::isnan(v))
        return String("nan");
    if (std::isinf(v))
        return String(v > 0 ? "inf" : "-inf");
    BeforeValue();
    char buffer[32];
    auto end = std::to_chars(buffer, buffer + sizeof buffer, v).ptr;
    Out.append(buffer, end);
}

void JSONWRITER::Bool(bool v)
{
    BeforeValue();
    Out += v ? "true" : "false";
}

void JSONWRITER::Null()
{
    BeforeValue();
    Out += "null";
}

void JSONWRITER::String(std::string_view utf8)
{
    BeforeValue();
    Escaped(utf8);
}

void JSONWRITER::Text1250(const char* text, size_t field)
{
    String(Cp1250ToUtf8(std::string_view(text, strnlen(text, field))));
}

void JSONWRITER::Vec(VECTOR3D v)
{
    const float f[3] = {v.x, v.y, v.z};
    Floats(f, 3);
}

void JSONWRITER::Floats(const float* v, size_t count)
{
    BeginArray();
    for (size_t i = 0; i < count; ++i)
        Float(v[i]);
    EndArray();
}

void JSONWRITER::Ints(const int32_t* v, size_t count)
{
    BeginArray();
    for (size_t i = 0; i < count; ++i)
        Int(v[i]);
    EndArray();
}

void JSONWRITER::Escaped(std::string_view s)
{
    static const char HEX[] = "0123456789abcdef";
    Out += '"';
    for (char c : s)
    {
        unsigned char u = static_cast<unsigned char>(c);
        switch (c)
        {
        case '"': Out += "\\\""; break;
        case '\\': Out += "\\\\"; break;
        case '\b': Out += "\\b"; break;
        case '\f': Out += "\\f"; break;
        case '\n': Out += "\\n"; break;
        case '\r': Out += "\\r"; break;
        case '\t': Out += "\\t"; break;
        default:
            if (u < 0x20)
            {
                Out += "\\u00";
                Out += HEX[u >> 4];
                Out += HEX[u & 15];
            }
            else
                Out += c;
        }
    }
    Out += '"';
}

// ---------------------------------------------------------------------------
// The level

namespace {

void DumpSide(JSONWRITER& j, const SIDE& s)
{
    j.BeginObject();
    j.Key("recordSize").Int(s.RecordSize);
    j.Key("texture").Int(s.Texture);
    j.Key("wallType").Int(s.WallType);
    j.Key("texCoords").BeginArray();
    for (const TEXPAIR& t : s.TexCoords)
    {
        const float st[2] = {t.s, t.t};
        j.Floats(st, 2);
    }
    j.EndArray();
    j.Key("colours").BeginArray();
    for (const VECTOR3D& c : s.Colours)
        j.Vec(c);
    j.EndArray();
    j.Key("door").BeginObject();
    j.Key("recordSize").Int(s.Door.RecordSize);
    j.Key("state").Int(s.Door.State);
    j.Key("opening").Float(s.Door.Opening);
    j.Key("reserved").Int(s.Door.Reserved);
    j.Key("slideEdge").Int(s.Door.SlideEdge);
    j.EndObject();
    j.EndObject();
}

void DumpSegment(JSONWRITER& j, int index, const SEGMENT& s)
{
    j.BeginObject();
    j.Key("index").Int(index);
    j.Key("recordSize").Int(s.RecordSize);
    j.Key("type").Int(s.Type);
    j.Key("neighbours").Ints(s.Neighbours, 6);
    j.Key("corners").Ints(s.Corners, 8);
    j.Key("sides").BeginArray();
    for (const SIDE& side : s.Sides)
        DumpSide(j, side);
    j.EndArray();
    j.EndObject();
}

// Every stored member of an object under its own name. Flags are 0 or 1 and
// pointers the number the record stores, so the dump shows what a saved
// record would hold.
class MEMBERDUMP : public THINGMEMBERS
{
public:
    explicit MEMBERDUMP(JSONWRITER& j) : J(j) {}
    void Vec(const char* name, VECTOR3D& v) override { J.Key(name).Vec(v); }
    void I32(const char* name, int32_t& v) override { J.Key(name).Int(v); }
    void F32(const char* name, float& v) override { J.Key(name).Float(v); }
    void Flag(const char* name, bool& v) override { J.Key(name).Int(v ? 1 : 0); }
    void Pointer(const char* name, uint32_t stored) override { J.Key(name).Int(stored); }
    void Texts(const char* name, char* fields, int count, int size) override
    {
        J.Key(name).BeginArray();
        for (int i = 0; i < count; ++i)
            J.Text1250(fields + size_t(i) * size_t(size), size_t(size));
        J.EndArray();
    }

private:
    JSONWRITER& J;
};

} // namespace

const char* DumpTableName(int table)
{
    static const char* const NAMES[DUMP_TABLES] = {"points", "segments", "textures", "things", "lights", "specPoints"};
    return table >= 0 && table < DUMP_TABLES ? NAMES[table] : "";
}

int DumpTableEnd(const ORVLEVEL& level, int table)
{
    switch (table)
    {
    case DUMP_POINTS: return level.Points ? level.PointsEnd() : 0;
    case DUMP_SEGMENTS: return level.Segments ? level.SegmentsEnd() : 0;
    case DUMP_TEXTURES: return level.Textures ? MAX_TEXTURES : 0;
    case DUMP_THINGS: return level.Things ? MAX_THINGS : 0;
    case DUMP_LIGHTS: return level.Lights ? MAX_LIGHTS : 0;
    case DUMP_SPECPOINTS: return level.SpecPoints ? MAX_SPECPOINTS : 0;
    default: return 0;
    }
}

bool DumpRecord(JSONWRITER& j, const ORVLEVEL& level, int table, int i)
{
    if (i < 0 || i >= DumpTableEnd(level, table))
        return false;
    switch (table)
    {
    case DUMP_POINTS:
        if (const VECTOR3D* p = level.Points[i])
        {
            j.BeginObject();
            j.Key("index").Int(i);
            j.Key("x").Float(p->x);
            j.Key("y").Float(p->y);
            j.Key("z").Float(p->z);
            j.EndObject();
            return true;
        }
        return false;
    case DUMP_SEGMENTS:
        if (const SEGMENT* s = level.Segments[i])
        {
            DumpSegment(j, i, *s);
            return true;
        }
        return false;
    case DUMP_TEXTURES:
        if (const TEXTURE* t = level.Textures[i])
        {
            j.BeginObject();
            j.Key("index").Int(i);
            j.Key("fileName").Text1250(t->FileName, TEXTURE_NAME_SIZE);
            j.EndObject();
            return true;
        }
        return false;
    case DUMP_THINGS:
        if (const THING* t = level.Things[i])
        {
            j.BeginObject();
            j.Key("index").Int(i);
            j.Key("class").Text1250(t->ClassName(), THING_CLASS_NAME_SIZE);
            MEMBERDUMP members(j);
            // Visiting never changes a member; the dump only reads them.
            const_cast<THING*>(t)->Members(members);
            j.EndObject();
            return true;
        }
        return false;
    case DUMP_LIGHTS:
        if (const STATICLIGHT* l = level.Lights[i])
        {
            j.BeginObject();
            j.Key("index").Int(i);
            j.Key("position").Vec(l->Position);
            j.Key("colour").Vec(l->Colour);
            j.Key("brightness").Float(l->Brightness);
            j.EndObject();
            return true;
        }
        return false;
    case DUMP_SPECPOINTS:
        if (const SPECPOINT* sp = level.SpecPoints[i])
        {
            j.BeginObject();
            j.Key("index").Int(i);
            j.Key("position").Vec(sp->Position);
            j.Key("type").Int(sp->Type);
            j.EndObject();
            return true;
        }
        return false;
    default: return false;
    }
}

void DumpHeader(JSONWRITER& j, const ORVLEVEL& level, bool withFileName)
{
    j.Key("name").Text1250(level.Name, LEVEL_NAME_SIZE);
    if (withFileName)
    {
        j.Key("fileName");
        if (level.FileName)
            j.String(*level.FileName);
        else
            j.Null();
    }
    j.Key("selection").BeginObject();
    j.Key("segment").Int(level.CurrentSegment);
    j.Key("side").Int(level.CurrentSide);
    j.Key("point").Int(level.CurrentPoint);
    j.EndObject();
    j.Key("currentTexture").Int(level.CurrentTexture);
}

std::string DumpLevelJson(const ORVLEVEL& level)
{
    JSONWRITER j;
    j.BeginObject();
    DumpHeader(j, level, true);
    for (int table = 0; table < DUMP_TABLES; ++table)
    {
        j.Key(DumpTableName(table)).BeginArray();
        for (int i = 0, end = DumpTableEnd(level, table); i < end; ++i)
            DumpRecord(j, level, table, i);
        j.EndArray();
    }
    j.EndObject();
    return std::move(j.Out);
}
