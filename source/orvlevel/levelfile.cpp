// Level files: "ORVLEVEL\0", the 30-byte name, then one section per table,
// each a run of records keyed by their table index and closed by -1.
#include "orvlevel/level.h"
#include "platform/newordie.h"

#include "graphics/texture.h"
#include "platform/binio.h"
#include "platform/cp1250.h"
#include "platform/datafile.h"
#include "platform/fileio.h"
#include "platform/platform.h"
#include "things/thing.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>
#include <string>

namespace {
std::span<const THINGCLASS> RegisteredClasses;
} // namespace

void SetThingClasses(std::span<const THINGCLASS> classes)
{
    RegisteredClasses = classes;
}

std::span<const THINGCLASS> ThingClasses()
{
    return RegisteredClasses;
}

namespace {

// ---------------------------------------------------------------------------
// Messages

const char* const MSG_CAPTION = "HIBA!";
const char* const MSG_BAD_MAGIC = "Nem Orvane Battle pálya ez.";
const char* const MSG_UNDEFINED_THING = "Undefined Thing:";
const char* const MSG_NOMEM_SAVE = "SaveLevel: not enough mem.";
const char* const MSG_NOMEM_TABLES = "ORVLEVEL::LoadLevel: not enough mem.";
const char* const MSG_NOMEM_LOAD = "LoadLevel: not enough mem.";
const char* const MSG_CANNOT_READ = "Nem sikerült beolvasni a pályafájlt:\n%s\nA jelenlegi pálya változatlan maradt.";
const char* const MSG_CANNOT_SAVE = "Nem sikerült elmenteni a pályát ide:\n%s\nA korábbi fájl (ha volt) változatlan maradt.";
// Every message that ends a load early is followed by this.
const char* const MSG_LOAD_STOPPED = "\nA beolvasás itt megszakadt, a pálya addig beolvasott része megmaradt.";
const char* const MSG_TRUNCATED = "A pályafájl váratlanul véget ért (%s).";
const char* const MSG_BAD_INDEX = "Érvénytelen sorszám (%d) a pályafájlban (%s).";
const char* const MSG_DUPLICATE_INDEX = "A(z) %d. sorszám kétszer szerepel a pályafájlban (%s).";
const char* const MSG_BAD_SEGMENT_SIZE = "Ismeretlen szegmensrekord-méret a pályafájlban: %u bájt.";
const char* const MSG_BAD_SIDE_SIZE = "Ismeretlen oldalrekord-méret a pályafájlban: %u bájt.";
const char* const MSG_BAD_DOOR_SIZE = "Ismeretlen ajtórekord-méret a pályafájlban: %u bájt.";
const char* const MSG_BAD_NAME_LENGTH = "Érvénytelen textúranév-hossz a pályafájlban: %d bájt.";
const char* const MSG_BAD_THING_SIZE = "A(z) %s cucc mérete a pályafájlban %d bájt, %d helyett.";

// Section names for the messages above.
const char* const SECTION_HEADER = "fejléc";
const char* const SECTION_POINTS = "pontok";
const char* const SECTION_SEGMENTS = "szegmensek";
const char* const SECTION_TEXTURES = "textúrák";
const char* const SECTION_THINGS = "cuccok";
const char* const SECTION_LIGHTS = "fények";
const char* const SECTION_SPECPOINTS = "különleges pontok";

const char LEVEL_MAGIC[9] = {'O', 'R', 'V', 'L', 'E', 'V', 'E', 'L', 0};
constexpr int TEXTURE_NAME_BUFFER = 1000; // longest name a texture record may carry
constexpr int32_t END_OF_SECTION = -1;

// Side bytes up to the door block: size, texture, wall type, coordinates, colours.
constexpr uint32_t SIDE_HEAD_SIZE = 92;
// Segment bytes before the sides: size, neighbours, corners.
constexpr uint32_t SEGMENT_HEAD_SIZE = 60;

std::string Format(const char* pattern, const std::string& a)
{
    std::string out;
    for (const char* p = pattern; *p; ++p)
    {
        if (p[0] == '%' && p[1] == 's')
        {
            out += a;
            ++p;
        }
        else
            out += *p;
    }
    return out;
}

template <class... ARGS>
std::string Printf(const char* pattern, ARGS... args)
{
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, pattern, args...);
    return buffer;
}


// ---------------------------------------------------------------------------
// Writing

// The records' memory layout is their file layout, so points and segments
// are copied whole rather than field by field.
static_assert(std::endian::native == std::endian::little && std::numeric_limits<float>::is_iec559);
static_assert(std::is_trivially_copyable_v<SEGMENT> && std::is_standard_layout_v<SEGMENT>);
static_assert(sizeof(VECTOR3D) == 12 && sizeof(DOOR) == DOOR_RECORD_SIZE && sizeof(SIDE) == SIDE_RECORD_SIZE &&
              sizeof(SEGMENT) == SEGMENT_RECORD_SIZE);
static_assert(offsetof(SEGMENT, Sides) == SEGMENT_HEAD_SIZE && offsetof(SIDE, Door) == SIDE_HEAD_SIZE &&
              offsetof(SEGMENT, Type) == OLD_SEGMENT_RECORD_SIZE);

// n more bytes at the end of the image, to be filled through the pointer.
uint8_t* Grow(BINWRITER& w, size_t n)
{
    size_t at = w.Bytes.size();
    w.Bytes.resize(at + n);
    return w.Bytes.data() + at;
}

template <class T>
int CountOf(T* const* table, int count)
{
    int n = 0;
    if (table)
        for (int i = 0; i < count; ++i)
            n += table[i] != nullptr;
    return n;
}

} // namespace

// ---------------------------------------------------------------------------
// Reading

// Reads a file image into a level; a friend of the level, so that points and
// segments are copied straight into their slots.
class LEVELREADER
{
public:
    LEVELREADER(ORVLEVEL& level, const uint8_t* data, size_t size) : L(level), In(data, size) {}

    void Run()
    {
        ReadHeader();
        // Each section is entered only while no read has run past the end.
        if (Going())
            ReadPoints();
        if (Going())
            ReadSegments();
        if (Going())
            ReadTextures();
        if (Going())
            ReadThings();
        if (Going())
            ReadLights();
        if (Going())
            ReadSpecPoints();
    }

private:
    ORVLEVEL& L;
    BINREADER In;
    bool Stopped = false;
    // The last section read ended with its terminator: a file may end here.
    bool Closed = false;

    bool Going() const { return !Stopped && !In.Eof; }

    void Stop(const std::string& why)
    {
        ShowMessage(why + MSG_LOAD_STOPPED, MSG_CAPTION, MSGICON_STOP);
        Stopped = true;
    }
    void Truncated(const char* section) { Stop(Printf(MSG_TRUNCATED, section)); }

    // Makes sure a record body of n bytes follows; otherwise the file ends
    // inside the record and the load stops.
    bool Need(size_t n, const char* section)
    {
        if (In.Remaining() >= n)
            return true;
        Truncated(section);
        return false;
    }

    // Reads the index that starts a record. False ends the section: at its
    // terminator, at the end of the file, or at an index that names no free
    // slot of the table.
    template <class T>
    bool NextIndex(int32_t& index, T* const* table, int capacity, bool& first, const char* section)
    {
        bool clean = first && Closed && In.Remaining() == 0;
        first = false;
        if (!In.I32(index))
        {
            // Only a file that ends right after a section's terminator ends cleanly.
            if (!clean)
                Truncated(section);
            return false;
        }
        Closed = false;
        if (index == END_OF_SECTION)
        {
            Closed = true;
            return false;
        }
        if (index < 0 || index >= capacity)
        {
            Stop(Printf(MSG_BAD_INDEX, int(index), section));
            return false;
        }
        if (table[index])
        {
            Stop(Printf(MSG_DUPLICATE_INDEX, int(index), section));
            return false;
        }
        return true;
    }

    void ReadHeader()
    {
        char magic[sizeof LEVEL_MAGIC + 1] = {};
        size_t got = In.Remaining() < sizeof LEVEL_MAGIC ? In.Remaining() : sizeof LEVEL_MAGIC;
        if (got > 0)
            std::memcpy(magic, In.Data + In.Pos, got);
        In.Skip(sizeof LEVEL_MAGIC);
        if (std::strcmp(magic, LEVEL_MAGIC) != 0)
            ShowMessage(MSG_BAD_MAGIC, MSG_CAPTION, MSGICON_STOP);
        if (!In.Raw(L.Name, LEVEL_NAME_SIZE))
        {
            Truncated(SECTION_HEADER);
            return;
        }
        // Whatever the file holds, the name stays a terminated text.
        L.Name[LEVEL_NAME_SIZE - 1] = 0;
    }

    void ReadPoints()
    {
        int32_t index;
        bool first = true;
        while (NextIndex(index, L.Points, MAX_POINTS, first, SECTION_POINTS))
        {
            if (!Need(sizeof(VECTOR3D), SECTION_POINTS))
                return;
            // Straight into the slot's room in the store.
            std::memcpy(&L.PointStore[index], In.Data + In.Pos, sizeof(VECTOR3D));
            In.Pos += sizeof(VECTOR3D);
            L.Points[index] = &L.PointStore[index];
            L.PointsTop = std::max(L.PointsTop, index + 1);
        }
    }

    void ReadSegments()
    {
        uint32_t segSize = 0, sideSize = 0, doorSize = 0;
        bool latched = false;
        int32_t index;
        bool first = true;
        while (NextIndex(index, L.Segments, MAX_SEGMENTS, first, SECTION_SEGMENTS))
        {
            if (!latched)
            {
                // The first record's sizes hold for the whole file.
                if (!In.PeekU32(0, segSize) || !In.PeekU32(SEGMENT_HEAD_SIZE, sideSize) ||
                    !In.PeekU32(SEGMENT_HEAD_SIZE + SIDE_HEAD_SIZE, doorSize))
                    return Truncated(SECTION_SEGMENTS);
                if (segSize != SEGMENT_RECORD_SIZE && segSize != OLD_SEGMENT_RECORD_SIZE)
                    return Stop(Printf(MSG_BAD_SEGMENT_SIZE, unsigned(segSize)));
                if (sideSize != SIDE_RECORD_SIZE)
                    return Stop(Printf(MSG_BAD_SIDE_SIZE, unsigned(sideSize)));
                if (doorSize != DOOR_RECORD_SIZE)
                    return Stop(Printf(MSG_BAD_DOOR_SIZE, unsigned(doorSize)));
                latched = true;
            }
            // Sizes are checked above, so a record is the segment's own bytes,
            // without the type in the older layout.
            bool hasType = sideSize * 6 + SEGMENT_HEAD_SIZE < segSize;
            size_t bytes = hasType ? SEGMENT_RECORD_SIZE : OLD_SEGMENT_RECORD_SIZE;
            if (!Need(bytes, SECTION_SEGMENTS))
                return;
            SEGMENT* s = &L.SegmentStore[index];
            std::memcpy(s, In.Data + In.Pos, bytes);
            In.Pos += bytes;
            if (!hasType)
                s->Type = SEGTYPE_NORMAL;
            L.Segments[index] = s;
            L.SegmentsTop = std::max(L.SegmentsTop, index + 1);
        }
    }

    void ReadTextures()
    {
        int32_t index;
        bool first = true;
        while (NextIndex(index, L.Textures, MAX_TEXTURES, first, SECTION_TEXTURES))
        {
            int32_t length;
            if (!In.I32(length))
                return Truncated(SECTION_TEXTURES);
            if (length < 0 || length > TEXTURE_NAME_BUFFER)
                return Stop(Printf(MSG_BAD_NAME_LENGTH, int(length)));
            char name[TEXTURE_NAME_BUFFER + 1];
            if (!In.Raw(name, size_t(length)))
                return Truncated(SECTION_TEXTURES);
            name[length] = 0;
            L.Textures[index] = NewOrDie<TEXTURE>(MSG_NOMEM_LOAD, static_cast<const char*>(name));
        }
    }

    void ReadThings()
    {
        const std::span<const THINGCLASS> classes = RegisteredClasses;
        int32_t index;
        bool first = true;
        while (NextIndex(index, L.Things, MAX_THINGS, first, SECTION_THINGS))
        {
            char name[THING_CLASS_NAME_SIZE + 1] = {};
            if (!In.Raw(name, THING_CLASS_NAME_SIZE))
                return Truncated(SECTION_THINGS);
            const THINGCLASS* cls = nullptr;
            for (const THINGCLASS& c : classes)
                if (std::strcmp(c.Name, name) == 0)
                {
                    cls = &c;
                    break;
                }
            if (!cls)
                FatalMessage(MSG_UNDEFINED_THING, Cp1250ToUtf8(name), MSGICON_STOP, FATAL_STATUS);

            // The size is checked before anything is constructed: a thing's
            // destructor may have effects on the level, so none is built in vain.
            int32_t size;
            if (!In.I32(size))
                return Truncated(SECTION_THINGS);
            if (size != cls->Size)
                return Stop(Printf(MSG_BAD_THING_SIZE, Cp1250ToUtf8(name).c_str(), int(size), int(cls->Size)));
            size_t body = size_t(size) - 4;
            if (!Need(body, SECTION_THINGS))
                return;
            THING* t = nullptr;
            try
            {
                t = cls->Construct();
            }
            catch (const std::bad_alloc&)
            {
                FatalMessage(MSG_NOMEM_LOAD);
            }
            size_t start = In.Pos;
            t->ReadMembers(In);
            // Stay in step with the file whatever the class read.
            In.Pos = start + body;
            L.Things[index] = t;
            t->Level = &L;
            t->AfterLoad();
            // A restored image must come back exactly: what AfterLoad sets
            // for a level read from a file (a ship's goal and launch side)
            // is read again from the record.
            if (L.Restoring)
            {
                In.Pos = start;
                t->ReadMembers(In);
                In.Pos = start + body;
            }
        }
    }

    void ReadLights()
    {
        int32_t index;
        bool first = true;
        while (NextIndex(index, L.Lights, MAX_LIGHTS, first, SECTION_LIGHTS))
        {
            if (!Need(STATICLIGHT_RECORD_SIZE, SECTION_LIGHTS))
                return;
            STATICLIGHT l{};
            In.Vec(l.Position);
            In.Vec(l.Colour);
            In.F32(l.Brightness);
            L.Lights[index] = NewOrDie<STATICLIGHT>(MSG_NOMEM_LOAD, l);
        }
    }

    void ReadSpecPoints()
    {
        int32_t index;
        bool first = true;
        while (NextIndex(index, L.SpecPoints, MAX_SPECPOINTS, first, SECTION_SPECPOINTS))
        {
            if (!Need(SPECPOINT_RECORD_SIZE, SECTION_SPECPOINTS))
                return;
            SPECPOINT sp{};
            In.Vec(sp.Position);
            In.I32(sp.Type);
            L.SpecPoints[index] = NewOrDie<SPECPOINT>(MSG_NOMEM_LOAD, sp);
        }
    }
};

// ---------------------------------------------------------------------------

std::vector<uint8_t> ORVLEVEL::Serialize() const
{
    const int points = CountOf(Points, PointsEnd());
    const int segments = CountOf(Segments, SegmentsEnd());
    const int textures = CountOf(Textures, MAX_TEXTURES);
    const int things = CountOf(Things, MAX_THINGS);
    const int lights = CountOf(Lights, MAX_LIGHTS);
    const int specPoints = CountOf(SpecPoints, MAX_SPECPOINTS);

    BINWRITER w;
    // Things are sized by their largest class; the rest exactly.
    w.Bytes.reserve(sizeof LEVEL_MAGIC + LEVEL_NAME_SIZE + 6 * 4 + size_t(points) * 16 +
                    size_t(segments) * (4 + SEGMENT_RECORD_SIZE) + size_t(textures) * (8 + TEXTURE_NAME_SIZE) +
                    size_t(things) * (8 + THING_CLASS_NAME_SIZE + 1233) + size_t(lights) * (4 + STATICLIGHT_RECORD_SIZE) +
                    size_t(specPoints) * (4 + SPECPOINT_RECORD_SIZE));

    w.Raw(LEVEL_MAGIC, sizeof LEVEL_MAGIC);
    w.Raw(Name, LEVEL_NAME_SIZE);

    // Points and segments go straight into room made for the whole section.
    uint8_t* out = Grow(w, size_t(points) * (4 + sizeof(VECTOR3D)));
    for (int i = 0; Points && i < PointsEnd(); ++i)
        if (Points[i])
        {
            std::memcpy(out, &i, 4);
            std::memcpy(out + 4, Points[i], sizeof(VECTOR3D));
            out += 4 + sizeof(VECTOR3D);
        }
    w.I32(END_OF_SECTION);

    // A segment is always written in the present layout, whatever size it
    // was read with.
    const uint32_t recordSize = SEGMENT_RECORD_SIZE;
    out = Grow(w, size_t(segments) * (4 + SEGMENT_RECORD_SIZE));
    for (int i = 0; Segments && i < SegmentsEnd(); ++i)
        if (Segments[i])
        {
            std::memcpy(out, &i, 4);
            std::memcpy(out + 4, &recordSize, 4);
            std::memcpy(out + 8, reinterpret_cast<const uint8_t*>(Segments[i]) + 4, SEGMENT_RECORD_SIZE - 4);
            out += 4 + SEGMENT_RECORD_SIZE;
        }
    w.I32(END_OF_SECTION);

    for (int i = 0; Textures && i < MAX_TEXTURES; ++i)
        if (Textures[i])
        {
            w.I32(i);
            w.I32(TEXTURE_NAME_SIZE);
            w.Text(Textures[i]->FileName, TEXTURE_NAME_SIZE);
        }
    w.I32(END_OF_SECTION);

    for (int i = 0; Things && i < MAX_THINGS; ++i)
        if (Things[i])
            Things[i]->WriteRecord(w, i);
    w.I32(END_OF_SECTION);

    for (int i = 0; Lights && i < MAX_LIGHTS; ++i)
        if (Lights[i])
        {
            w.I32(i);
            w.Vec(Lights[i]->Position);
            w.Vec(Lights[i]->Colour);
            w.F32(Lights[i]->Brightness);
        }
    w.I32(END_OF_SECTION);

    for (int i = 0; SpecPoints && i < MAX_SPECPOINTS; ++i)
        if (SpecPoints[i])
        {
            w.I32(i);
            w.Vec(SpecPoints[i]->Position);
            w.I32(SpecPoints[i]->Type);
        }
    w.I32(END_OF_SECTION);

    return std::move(w.Bytes);
}

void ORVLEVEL::Deserialize(const uint8_t* data, size_t size)
{
    if (!Points || !Segments || !Textures || !Things || !Lights || !SpecPoints)
    {
        try
        {
            AllocateTables();
        }
        catch (const std::bad_alloc&)
        {
            FatalMessage(MSG_NOMEM_TABLES);
        }
    }
    Changed();
    LEVELREADER(*this, data, size).Run();
    delete InvisibleSideTexture;
    InvisibleSideTexture = nullptr;
    InvisibleSideTexture = NewOrDie<TEXTURE>(MSG_NOMEM_LOAD, "InvSide.bmp");
}

void ORVLEVEL::RestoreImage(const uint8_t* data, size_t size)
{
    std::optional<std::string> name = std::move(FileName);
    Restoring = true;
    Clear();
    Deserialize(data, size);
    Restoring = false;
    FileName = std::move(name);
}

bool ORVLEVEL::SaveLevel(const char* fileName)
{
    std::vector<uint8_t> image;
    try
    {
        FileName = std::string(fileName ? fileName : "");
        SetLevelDirectory(*FileName);
        image = Serialize();
    }
    catch (const std::bad_alloc&)
    {
        FatalMessage(MSG_NOMEM_SAVE);
    }
    // The memory copy now holds what the file holds.
    for (int i = 0; Segments && i < SegmentsEnd(); ++i)
        if (Segments[i])
            Segments[i]->RecordSize = SEGMENT_RECORD_SIZE;
    if (ReplaceFile(*FileName, image.data(), image.size()))
        return true;
    ShowMessage(Format(MSG_CANNOT_SAVE, *FileName), MSG_CAPTION, MSGICON_STOP);
    return false;
}

bool ORVLEVEL::Save()
{
    if (!FileName)
        return false;
    std::string name = *FileName; // SaveLevel replaces FileName
    return SaveLevel(name.c_str());
}

bool ORVLEVEL::LoadLevel(const char* fileName)
{
    std::string name = fileName ? fileName : "";
    std::unique_ptr<uint8_t[]> image;
    size_t size = 0;
    // Nothing is destroyed until the whole file is in memory.
    if (!ReadWholeFile(name, image, size))
    {
        ShowMessage(Format(MSG_CANNOT_READ, name), MSG_CAPTION, MSGICON_STOP);
        return false;
    }
    Clear();
    try
    {
        AllocateTables();
    }
    catch (const std::bad_alloc&)
    {
        FatalMessage(MSG_NOMEM_TABLES);
    }
    try
    {
        FileName = std::move(name);
        // The bitmaps it names may lie beside it.
        SetLevelDirectory(*FileName);
    }
    catch (const std::bad_alloc&)
    {
        FatalMessage(MSG_NOMEM_LOAD);
    }
    Deserialize(image.get(), size);
    return true;
}
