// Base of every object placed in, or moving through, a level.
#pragma once

#include "math/vector3d.h"

#include <cstdint>

class BINWRITER;
class BINREADER;
struct SEGMENT;

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
    virtual void WriteRecord(BINWRITER& out, int32_t index);
    virtual bool CollideBodyPoint(float z, float y, float x, SEGMENT* seg);

    // The class name a file record carries, and the packed record: its size
    // and the members from offset 4 to the end.
    virtual const char* ClassName() const { return "THING"; }
    virtual int32_t RecordSize() const { return THING_SIZE; }
    virtual void WriteMembers(BINWRITER& out) const;
    virtual bool ReadMembers(BINREADER& in);

    // The record every class that saves itself writes.
    void WriteClassRecord(BINWRITER& out, int32_t index) const;

    THINGBOX GetBox() const;
    VECTOR3D RandomBoxOffset() const;
    static VECTOR3D RandomOffset(float radius, bool onSurface = false);
};

bool PointInBox(VECTOR3D p, VECTOR3D centre, VECTOR3D h1, VECTOR3D h2, VECTOR3D h3);
bool SegmentCrossesBox(VECTOR3D p0, VECTOR3D p1, VECTOR3D centre, VECTOR3D h1, VECTOR3D h2, VECTOR3D h3);
bool BoxesOverlap(const THINGBOX& a, const THINGBOX& b);
// Object against object; oldA is the position A came from.
bool ThingsCollide(const THING* a, VECTOR3D oldA, const THING* b, VECTOR3D oldB);
