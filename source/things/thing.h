// Base of every object placed in, or moving through, a level.
#pragma once

#include "math/vector3d.h"

#include <cstdint>

class BINWRITER;
class BINREADER;
class ORVLEVEL;
struct SEGMENT;

// Walks the stored members of an object in record order, each under its own
// name; the record writer, the record reader and the JSON dump are visitors.
class THINGMEMBERS
{
public:
    virtual ~THINGMEMBERS() = default;
    virtual void Vec(const char* name, VECTOR3D& v) = 0;
    virtual void I32(const char* name, int32_t& v) = 0;
    virtual void F32(const char* name, float& v) = 0;
    virtual void Flag(const char* name, bool& v) = 0;
    // A pointer member: four bytes in the record. It is written as `stored`
    // and skipped on reading, since an address from another run means nothing.
    virtual void Pointer(const char* name, uint32_t stored) = 0;
    // `count` code page 1250 texts in fixed fields of `size` bytes each.
    virtual void Texts(const char* name, char* fields, int count, int size) = 0;
};

// The number a pointer member is saved as: 0 for none, 1 for an object.
inline uint32_t StoredPointer(const void* p)
{
    return p ? 1u : 0u;
}

constexpr int32_t THING_SIZE = 147;         // packed size of the base record
constexpr int THING_CLASS_NAME_SIZE = 40;   // class-name field of a file record

// World-space box: centre and three half-axes.
struct THINGBOX
{
    VECTOR3D Centre;
    VECTOR3D HalfZ;
    VECTOR3D HalfY;
    VECTOR3D HalfX;
};

class THING
{
public:
    // Stored members, in record order (offsets 4 ... 146 of the packed object).
    VECTOR3D position;
    VECTOR3D oldPosition;
    VECTOR3D axisY{0, 1, 0};
    VECTOR3D axisZ{1, 0, 0};
    VECTOR3D axisX{0, 0, 1};
    VECTOR3D oldAxisY;
    VECTOR3D oldAxisZ;
    VECTOR3D oldAxisX;
    int32_t segment = -1;
    int32_t lastSegment = -1;
    float outerRadius = 0.0f;
    float innerRadius = 0.0f;
    bool hit = false;
    bool ghost = false;
    bool dead = false;
    float boxZLow = 0.0f;
    float boxZHigh = 0.0f;
    float boxYLow = 0.0f;
    float boxYHigh = 0.0f;
    float boxXLow = 0.0f;
    float boxXHigh = 0.0f;
    float pushDistance = 0.0f;

    // The level whose table holds the object (set when it is added), or null.
    // Everything the object does to a level, its destructor included, goes
    // there and never to another level.
    ORVLEVEL* Level = nullptr;
    // Whether destroying the object leaves its effects (explosions, drops,
    // sounds): not while its level is being rebuilt from a stored image.
    bool LeavesEffects() const;

    THING() = default;
    THING(const THING&) = delete;
    THING& operator=(const THING&) = delete;

    // Virtual operations, in their fixed order.
    virtual ~THING();
    virtual void Draw();
    virtual void Update();
    virtual void Control(int32_t how, float amount, int32_t a = 0, int32_t b = 0, int32_t c = 0, int32_t d = 0);
    virtual void DrawCockpit();
    virtual void AfterLoad();
    // Appends the object's file record (index, class name, size, members) or nothing.
    virtual void WriteRecord(BINWRITER& out, int32_t index) const;
    virtual bool CollideBodyPoint(float z, float y, float x, SEGMENT* seg);

    // The class name a file record carries, and the packed record: its size
    // and the members from offset 4 to the end.
    virtual const char* ClassName() const { return "THING"; }
    virtual int32_t RecordSize() const { return THING_SIZE; }
    // THING's members, then each class's own, in record order.
    virtual void Members(THINGMEMBERS& m);
    void WriteMembers(BINWRITER& out) const;
    // False when the reader ran out of bytes.
    bool ReadMembers(BINREADER& in);

    // One tick's wall collision: the outer-radius pass, the eight box corners
    // when it hit, then the inner-radius pass (game only).
    void CollideWithWalls();

    // The record every class that saves itself writes.
    void WriteClassRecord(BINWRITER& out, int32_t index) const;

    THINGBOX GetBox() const;
    VECTOR3D RandomBoxOffset() const;
    static VECTOR3D RandomOffset(float radius, bool onSurface = false);
};

bool PointInBox(VECTOR3D p, VECTOR3D centre, VECTOR3D h1, VECTOR3D h2, VECTOR3D h3);
bool SegmentCrossesBox(VECTOR3D p0, VECTOR3D p1, VECTOR3D centre, VECTOR3D h1, VECTOR3D h2, VECTOR3D h3);
bool BoxesOverlap(const THINGBOX& a, const THINGBOX& b);
// The axis-aligned room an object's box takes on its path from `old` (plus a
// rounding margin). Objects whose reaches are apart never collide, so a
// search can rule pairs out with one reach per object.
struct THINGREACH
{
    float Low[3], High[3];
};
THINGREACH ThingReach(const THING& t, VECTOR3D old);
// Also true when either holds an undefined coordinate.
bool ReachesApart(const THINGREACH& a, const THINGREACH& b);
// Object against object; oldA is the position A came from.
bool ThingsCollide(const THING* a, VECTOR3D oldA, const THING* b, VECTOR3D oldB);
