#include "orvlevel/level.h"
#include "orvlevel/levelindex.h"
#include "platform/newordie.h"
#include "platform/pages.h"

#include "graphics/texture.h"
#include "math/geometry.h"
#include "math/random.h"
#include "platform/platform.h"
#include "things/thing.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <new>

ORVLEVEL* TheLevel = nullptr;

const int SideCorners[6][4] = {
    {1, 0, 4, 5},
    {1, 5, 7, 3},
    {7, 6, 2, 3},
    {4, 0, 2, 6},
    {0, 1, 3, 2},
    {5, 4, 6, 7},
};

const int OppositeSide[6] = {2, 3, 0, 1, 5, 4};

const VECTOR3D DefaultCubeCorners[8] = {
    {-100, 100, 100},  {100, 100, 100},  {-100, -100, 100},  {100, -100, 100},
    {-100, 100, -100}, {100, 100, -100}, {-100, -100, -100}, {100, -100, -100},
};

namespace {

// Sweeps over the thing table while destructors may still add things; the
// last sweep after these refuses additions, so Clear always ends empty.
constexpr int THING_SWEEPS = 16;

constexpr float RAND_SCALE = 1.0f / 32767;


template <class T>
void DestroyAll(T**& table, int count)
{
    if (!table)
        return;
    for (int i = 0; i < count; ++i)
    {
        delete table[i];
        table[i] = nullptr;
    }
}

template <class T>
void FreeTable(T**& table)
{
    delete[] table;
    table = nullptr;
}

template <class T>
T** NewTable(int count)
{
    return new T*[count](); // every slot null
}

} // namespace

// ---------------------------------------------------------------------------
// Creation and destruction

ORVLEVEL::ORVLEVEL(const char* fileName)
{
    try
    {
        try
        {
            AllocateStores();
            AllocateTables();
        }
        catch (const std::bad_alloc&)
        {
            FatalMessage("Hiba történt a pálya létrehozásakor");
        }
        FileName.reset();
        CurrentTexture = 0;
        std::memset(Name, 0, sizeof Name);
        std::strcpy(Name, "UNNAMED");
        InvisibleSideTexture = NewOrDie<TEXTURE>("Hiba történt a pálya létrehozásakor", "InvSide.bmp");
        CurrentSide = 0;
        CurrentSegment = -1;
        CurrentPoint = 0;
        BlinkTimer = NewOrDie<TIMER>("Hiba történt a pálya létrehozásakor");
        BlinkOn = false;
        BuildDefault();
        SparkCountdown = 0;
        ListBuilt = false;
        DisplayList = 0;
    }
    catch (...)
    {
        // Only a test platform returns from a fatal end; leave nothing behind.
        Clear();
        delete BlinkTimer;
        BlinkTimer = nullptr;
        FreeStores();
        throw;
    }
    if (fileName && fileName[0])
        LoadLevel(fileName);
}

ORVLEVEL::~ORVLEVEL()
{
    Clear();
    delete BlinkTimer;
    BlinkTimer = nullptr;
    FreeStores();
}

void ORVLEVEL::AllocateStores()
{
    // Whole pages, zero-filled by the system: the tables start empty, and
    // pages nobody fills are never touched.
    if (!PointStore)
        PointStore = static_cast<VECTOR3D*>(AllocatePages(sizeof(VECTOR3D) * MAX_POINTS));
    if (!SegmentStore)
        SegmentStore = static_cast<SEGMENT*>(AllocatePages(sizeof(SEGMENT) * MAX_SEGMENTS));
    if (!PointSlots)
        PointSlots = static_cast<VECTOR3D**>(AllocatePages(sizeof(VECTOR3D*) * MAX_POINTS));
    if (!SegmentSlots)
        SegmentSlots = static_cast<SEGMENT**>(AllocatePages(sizeof(SEGMENT*) * MAX_SEGMENTS));
    if (!Index)
        Index = new LEVELINDEX;
}

void ORVLEVEL::FreeStores()
{
    FreePages(PointStore, sizeof(VECTOR3D) * MAX_POINTS);
    PointStore = nullptr;
    FreePages(SegmentStore, sizeof(SEGMENT) * MAX_SEGMENTS);
    SegmentStore = nullptr;
    FreePages(PointSlots, sizeof(VECTOR3D*) * MAX_POINTS);
    PointSlots = nullptr;
    FreePages(SegmentSlots, sizeof(SEGMENT*) * MAX_SEGMENTS);
    SegmentSlots = nullptr;
    delete Index;
    Index = nullptr;
}

void ORVLEVEL::BuildDefault()
{
    const char* text = "Hiba történt a pálya létrehozásakor";
    Textures[0] = NewOrDie<TEXTURE>(text, "WallTex.bmp");
    FreeHint[TABLE_TEXTURES] = 1;

    for (int i = 0; i < 8; ++i)
        PutPoint(i, DefaultCubeCorners[i]);
    FreeHint[TABLE_POINTS] = 8;

    SEGMENT cube;
    SEGMENT* s = &cube;
    for (int i = 0; i < 8; ++i)
        s->Corners[i] = i;
    for (SIDE& side : s->Sides)
    {
        side.Texture = 0;
        side.WallType = WALL_NORMAL;
        side.TexCoords[0] = {1, 1};
        side.TexCoords[1] = {0, 1};
        side.TexCoords[2] = {0, 0};
        side.TexCoords[3] = {1, 0};
    }
    PutSegment(0, cube);
    FreeHint[TABLE_SEGMENTS] = 1;
}

void ORVLEVEL::AllocateTables()
{
    FreeTables();
    try
    {
        Points = PointSlots; // empty: FreeTables nulls what was used
        Segments = SegmentSlots;
        Textures = NewTable<TEXTURE>(MAX_TEXTURES);
        Things = NewTable<THING>(MAX_THINGS);
        Lights = NewTable<STATICLIGHT>(MAX_LIGHTS);
        SpecPoints = NewTable<SPECPOINT>(MAX_SPECPOINTS);
    }
    catch (const std::bad_alloc&)
    {
        FreeTables();
        throw;
    }
    for (int& hint : FreeHint)
        hint = 0;
    PointsTop = SegmentsTop = 0;
}

void ORVLEVEL::DestroyThings()
{
    if (!Things)
        return;
    for (int sweep = 0; sweep <= THING_SWEEPS; ++sweep)
    {
        ThingsClosed = sweep == THING_SWEEPS;
        bool any = false;
        for (int i = 0; i < MAX_THINGS; ++i)
        {
            if (!Things[i])
                continue;
            any = true;
            THING* t = Things[i];
            delete t; // may add new things to the level
            Things[i] = nullptr;
            SlotFreed(TABLE_THINGS, i);
        }
        if (!any)
            break;
    }
    ThingsClosed = false;
}

void ORVLEVEL::FreeTables()
{
    DestroyThings();
    // Points and segments live in the stores: nothing to destroy one by one.
    DestroyAll(Textures, MAX_TEXTURES);
    DestroyAll(Lights, MAX_LIGHTS);
    DestroyAll(SpecPoints, MAX_SPECPOINTS);
    // The big tables stay with the stores; emptying the used part is enough.
    if (Points)
        std::fill(Points, Points + PointsTop, nullptr);
    if (Segments)
        std::fill(Segments, Segments + SegmentsTop, nullptr);
    Points = nullptr;
    Segments = nullptr;
    FreeTable(Textures);
    FreeTable(Things);
    FreeTable(Lights);
    FreeTable(SpecPoints);
    for (int& hint : FreeHint)
        hint = 0;
    PointsTop = SegmentsTop = 0;
}

void ORVLEVEL::Clear()
{
    if (Index)
        Index->Built = false; // whatever comes next is a new level
    FreeTables();
    delete InvisibleSideTexture;
    InvisibleSideTexture = nullptr;
    FileName.reset();
    Changed();
}

// ---------------------------------------------------------------------------
// Adding

// Points and segments need no allocation: their room is in the stores.
int32_t ORVLEVEL::Add(VECTOR3D p)
{
    int32_t i = FindFree(Points, MAX_POINTS, FreeHint[TABLE_POINTS]);
    if (i < 0)
        return -1;
    PutPoint(i, p);
    FreeHint[TABLE_POINTS] = i + 1;
    return i;
}

int32_t ORVLEVEL::Add(const SEGMENT* s)
{
    if (!s)
        return -1;
    int32_t i = FindFree(Segments, MAX_SEGMENTS, FreeHint[TABLE_SEGMENTS]);
    if (i < 0)
        return -1;
    PutSegment(i, *s);
    FreeHint[TABLE_SEGMENTS] = i + 1;
    return i;
}

bool ORVLEVEL::PutPoint(int32_t index, VECTOR3D p)
{
    if (!Points || index < 0 || index >= MAX_POINTS)
        return false;
    Points[index] = new (&PointStore[index]) VECTOR3D(p);
    PointsTop = std::max(PointsTop, index + 1);
    Changed();
    return true;
}

bool ORVLEVEL::PutSegment(int32_t index, const SEGMENT& s)
{
    if (!Segments || index < 0 || index >= MAX_SEGMENTS)
        return false;
    SEGMENT* slot = &SegmentStore[index];
    if (&s != slot) // the argument may be the slot's own segment
        new (slot) SEGMENT(s);
    Segments[index] = slot;
    SegmentsTop = std::max(SegmentsTop, index + 1);
    Changed();
    return true;
}

int32_t ORVLEVEL::Add(const char* textureFile)
{
    if (!textureFile)
        return -1;
    int32_t i = FindFree(Textures, MAX_TEXTURES, FreeHint[TABLE_TEXTURES]);
    if (i < 0)
        return -1;
    Textures[i] = NewOrDie<TEXTURE>("ORVLEVEL::Add(const char*): not enough mem.", textureFile);
    FreeHint[TABLE_TEXTURES] = i + 1;
    Changed();
    return i;
}

int32_t ORVLEVEL::Add(STATICLIGHT l)
{
    int32_t i = FindFree(Lights, MAX_LIGHTS, FreeHint[TABLE_LIGHTS]);
    if (i < 0)
        return -1;
    Lights[i] = NewOrDie<STATICLIGHT>("ORVLEVEL::Add(STATICLIGHT): not enough mem.", l);
    FreeHint[TABLE_LIGHTS] = i + 1;
    Changed();
    return i;
}

int32_t ORVLEVEL::Add(SPECPOINT sp)
{
    int32_t i = FindFree(SpecPoints, MAX_SPECPOINTS, FreeHint[TABLE_SPECPOINTS]);
    if (i < 0)
        return -1;
    SpecPoints[i] = NewOrDie<SPECPOINT>("ORVLEVEL::Add(SPECPOINT): not enough mem.", sp);
    FreeHint[TABLE_SPECPOINTS] = i + 1;
    Changed();
    return i;
}

int32_t ORVLEVEL::AddThing(THING* t)
{
    if (!t || ThingsClosed)
        return -1;
    int32_t i = FindFree(Things, MAX_THINGS, FreeHint[TABLE_THINGS]);
    if (i < 0)
        return -1;
    Things[i] = t;
    FreeHint[TABLE_THINGS] = i + 1;
    t->Level = this;
    Changed();
    t->oldPosition = t->position;
    t->oldAxisX = t->axisX;
    t->oldAxisY = t->axisY;
    t->oldAxisZ = t->axisZ;
    return i;
}

// ---------------------------------------------------------------------------
// Deleting

void ORVLEVEL::DeletePoint(int32_t index)
{
    if (!PointPtr(index))
        return;
    Points[index] = nullptr;
    SlotFreed(TABLE_POINTS, index);
    Changed();
}

void ORVLEVEL::DropSegment(int32_t index)
{
    if (!SegmentAt(index))
        return;
    Segments[index] = nullptr;
    SlotFreed(TABLE_SEGMENTS, index);
    Changed();
}

void ORVLEVEL::RemoveUnusedPoints()
{
    if (!Points || !Segments)
        return;
    // One pass over the segments instead of one per point.
    std::bitset<MAX_POINTS> used;
    for (int s = 0; s < SegmentsEnd(); ++s)
    {
        if (!Segments[s])
            continue;
        for (int32_t c : Segments[s]->Corners)
            if (c >= 0 && c < MAX_POINTS)
                used.set(c);
    }
    for (int i = 0; i < PointsEnd(); ++i)
        if (Points[i] && !used.test(i))
            DeletePoint(i);
}

void ORVLEVEL::DeleteTexture(int32_t index)
{
    if (!Textures || index < 0 || index >= MAX_TEXTURES || !Textures[index])
        return;
    delete Textures[index];
    Textures[index] = nullptr;
    SlotFreed(TABLE_TEXTURES, index);
    Changed();
}

int32_t ORVLEVEL::TextureIndexAt(int32_t position) const
{
    if (!Textures || position < 0)
        return -1;
    for (int i = 0; i < MAX_TEXTURES; ++i)
        if (Textures[i] && position-- == 0)
            return i;
    return -1;
}

void ORVLEVEL::DeleteTextureAt(int32_t position)
{
    int32_t i = TextureIndexAt(position);
    if (i >= 0)
        DeleteTexture(i);
}

void ORVLEVEL::ReplaceTextureAt(const char* fileName, int32_t position)
{
    int32_t i = TextureIndexAt(position);
    if (i < 0 || !fileName)
        return;
    DeleteTexture(i);
    Textures[i] = NewOrDie<TEXTURE>("ORVLEVEL::ReplaceTextureAt: not enough mem.", fileName);
}

void ORVLEVEL::DeleteNearestLight(VECTOR3D from)
{
    if (!Lights)
        return;
    float best = 1.0e30f;
    int found = -1;
    for (int i = 0; i < MAX_LIGHTS; ++i)
    {
        if (!Lights[i])
            continue;
        float d = Length(Lights[i]->Position - from);
        if (d < best)
        {
            best = d;
            found = i;
        }
    }
    DeleteLight(found);
}

void ORVLEVEL::DeleteLight(int32_t index)
{
    if (!Lights || index < 0 || index >= MAX_LIGHTS || !Lights[index])
        return;
    delete Lights[index];
    Lights[index] = nullptr;
    SlotFreed(TABLE_LIGHTS, index);
    Changed();
}

void ORVLEVEL::DeleteNearestSpecPoint(VECTOR3D from)
{
    if (!SpecPoints)
        return;
    float best = 1.0e30f;
    int found = -1;
    for (int i = 0; i < MAX_SPECPOINTS; ++i)
    {
        if (!SpecPoints[i])
            continue;
        float d = Length(SpecPoints[i]->Position - from);
        if (d < best)
        {
            best = d;
            found = i;
        }
    }
    DeleteSpecPoint(found);
}

void ORVLEVEL::DeleteSpecPoint(int32_t index)
{
    if (!SpecPoints || index < 0 || index >= MAX_SPECPOINTS || !SpecPoints[index])
        return;
    delete SpecPoints[index];
    SpecPoints[index] = nullptr;
    SlotFreed(TABLE_SPECPOINTS, index);
    Changed();
}

void ORVLEVEL::DeleteNearestThing(VECTOR3D from)
{
    if (!Things)
        return;
    float best = 1.0e30f;
    int found = -1;
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        if (!Things[i])
            continue;
        float d = Length(Things[i]->position - from);
        if (d < best)
        {
            best = d;
            found = i;
        }
    }
    DeleteThing(found);
}

void ORVLEVEL::DeleteThing(int32_t index)
{
    if (!Things || index < 0 || index >= MAX_THINGS || !Things[index])
        return;
    // The slot stays taken while the destructor runs, so whatever it adds
    // goes elsewhere.
    delete Things[index];
    Things[index] = nullptr;
    SlotFreed(TABLE_THINGS, index);
    Changed();
}

// ---------------------------------------------------------------------------
// Selection

SEGMENT* ORVLEVEL::SegmentAt(int32_t index) const
{
    if (!Segments || index < 0 || index >= MAX_SEGMENTS)
        return nullptr;
    return Segments[index];
}

VECTOR3D* ORVLEVEL::PointPtr(int32_t index) const
{
    if (!Points || index < 0 || index >= MAX_POINTS)
        return nullptr;
    return Points[index];
}

const VECTOR3D* ORVLEVEL::PointAt(int32_t index) const
{
    return PointPtr(index);
}

SIDE* ORVLEVEL::SideAt(int32_t segment, int32_t side) const
{
    SEGMENT* s = SegmentAt(segment);
    if (!s || side < 0 || side >= 6)
        return nullptr;
    return &s->Sides[side];
}

bool ORVLEVEL::SidePoints(const SEGMENT& s, int side, VECTOR3D* out[4]) const
{
    for (int k = 0; k < 4; ++k)
    {
        out[k] = PointPtr(s.Corners[SideCorners[side][k]]);
        if (!out[k])
            return false;
    }
    return true;
}

SEGMENT* ORVLEVEL::GetCurrentSegment()
{
    return SegmentAt(CurrentSegment);
}

SIDE* ORVLEVEL::GetCurrentSide()
{
    return SideAt(CurrentSegment, CurrentSide);
}

VECTOR3D* ORVLEVEL::GetCurrentPointPtr()
{
    if (!GetCurrentSide() || CurrentPoint < 0 || CurrentPoint >= 4)
        return nullptr;
    return PointPtr(Segments[CurrentSegment]->Corners[SideCorners[CurrentSide][CurrentPoint]]);
}

VECTOR3D** ORVLEVEL::GetCurrentSidePoints()
{
    if (!GetCurrentSide() || !SidePoints(*Segments[CurrentSegment], CurrentSide, SidePointsBuffer))
        return nullptr;
    return SidePointsBuffer;
}

int32_t* ORVLEVEL::GetCurrentSideIndices()
{
    if (!GetCurrentSide())
        return nullptr;
    for (int k = 0; k < 4; ++k)
        SideIndicesBuffer[k] = Segments[CurrentSegment]->Corners[SideCorners[CurrentSide][k]];
    return SideIndicesBuffer;
}

VECTOR3D* ORVLEVEL::GetCurrentSideCorners()
{
    return GetSideCorners(CurrentSegment, CurrentSide);
}

VECTOR3D* ORVLEVEL::GetSideCorners(int32_t segment, int32_t side)
{
    VECTOR3D* p[4];
    if (!SideAt(segment, side) || !SidePoints(*Segments[segment], side, p))
        return nullptr;
    for (int k = 0; k < 4; ++k)
        SideCornersBuffer[k] = *p[k];
    return SideCornersBuffer;
}

TEXPAIR* ORVLEVEL::GetCurrentTexCoords()
{
    SIDE* side = GetCurrentSide();
    if (!side)
        return nullptr;
    for (int k = 0; k < 4; ++k)
        TexCoordsBuffer[k] = side->TexCoords[k];
    return TexCoordsBuffer;
}

void ORVLEVEL::SetCurrentTexCoords(const TEXPAIR coords[4])
{
    SIDE* side = GetCurrentSide();
    if (!side || !coords)
        return;
    for (int k = 0; k < 4; ++k)
        side->TexCoords[k] = coords[k];
    Changed();
}

void ORVLEVEL::SelectTextureAt(int32_t position)
{
    int32_t i = TextureIndexAt(position);
    if (i >= 0)
        CurrentTexture = i;
}

void ORVLEVEL::ApplyTexture()
{
    if (SIDE* side = GetCurrentSide())
    {
        side->Texture = CurrentTexture;
        Changed();
    }
}

void ORVLEVEL::ClearSideTexture()
{
    if (SIDE* side = GetCurrentSide())
    {
        side->Texture = -1;
        Changed();
    }
}

void ORVLEVEL::NextPointOnSide()
{
    // 64-bit and non-negative, so even a corrupt value lands in 0 ... 3.
    int64_t next = (int64_t(CurrentPoint) + 1) % 4;
    CurrentPoint = int32_t(next < 0 ? next + 4 : next);
}

// ---------------------------------------------------------------------------
// Lookups

int32_t ORVLEVEL::SegmentIndexOf(const SEGMENT* s) const
{
    if (!s || !Segments)
        return -1;
    // A slot's segment sits at its own place in the store, so the address
    // names the only slot that can hold it.
    uintptr_t at = reinterpret_cast<uintptr_t>(s);
    uintptr_t first = reinterpret_cast<uintptr_t>(SegmentStore);
    if (at < first || (at - first) % sizeof(SEGMENT) != 0 || (at - first) / sizeof(SEGMENT) >= MAX_SEGMENTS)
        return -1;
    int32_t i = int32_t((at - first) / sizeof(SEGMENT));
    return Segments[i] == s ? i : -1;
}

int32_t ORVLEVEL::SideTowards(int32_t a, int32_t b) const
{
    SEGMENT* sa = SegmentAt(a);
    if (!sa || !SegmentAt(b))
        return -1;
    for (int i = 0; i < 6; ++i)
        if (sa->Neighbours[i] == b)
            return i;
    return -1;
}

int32_t ORVLEVEL::SideTowardsPtr(int32_t a, const SEGMENT* b) const
{
    SEGMENT* sa = SegmentAt(a);
    if (!sa || !b)
        return -1;
    for (int i = 0; i < 6; ++i)
        if (SegmentAt(sa->Neighbours[i]) == b)
            return i;
    return -1;
}

bool ORVLEVEL::SegmentHolds(const SEGMENT& seg, VECTOR3D p) const
{
    for (int i = 0; i < 6; ++i)
    {
        VECTOR3D* c[4];
        if (!SidePoints(seg, i, c))
            return false; // a broken cell contains nothing
        VECTOR3D n = TriangleNormal(*c[0], *c[1], *c[2]);
        if (CosAngle(p - *c[0], n) < 0)
            return false;
    }
    return true;
}

int32_t ORVLEVEL::FindSegment(VECTOR3D p, SEGMENT** found) const
{
    if (found)
        *found = nullptr;
    if (!Segments)
        return -1;
    auto holds = [this, p](int32_t s) { return Segments[s] && SegmentHolds(*Segments[s], p); };
    int32_t s = -1;
    if (LEVELINDEX::Tame(p))
        s = CurrentIndex().FirstHolding(p, holds);
    else // undefined or huge coordinates pass every plane test: only the scan answers alike
        for (int i = 0; i < SegmentsEnd() && s < 0; ++i)
            if (holds(i))
                s = i;
    if (s >= 0 && found)
        *found = Segments[s];
    return s;
}

LEVELINDEX& ORVLEVEL::CurrentIndex() const
{
    if (!Index->Built || Index->Revision != Revision)
        Index->Update(*this);
    return *Index;
}

bool ORVLEVEL::FindSpecPoint(VECTOR3D* position) const
{
    if (!SpecPoints)
        return false;
    for (int i = 0; i < MAX_SPECPOINTS; ++i)
        if (SpecPoints[i] && SpecPoints[i]->Type == 0)
        {
            if (position)
                *position = SpecPoints[i]->Position;
            return true;
        }
    return false;
}

VECTOR3D ORVLEVEL::RandomPointInSegment(const SEGMENT& s) const
{
    float r1 = Rand() * RAND_SCALE;
    float r2 = Rand() * RAND_SCALE;
    float r3 = Rand() * RAND_SCALE;

    VECTOR3D c[8];
    const VECTOR3D* any = nullptr;
    bool complete = true;
    for (int i = 0; i < 8; ++i)
    {
        const VECTOR3D* p = PointAt(s.Corners[i]);
        if (!p)
        {
            complete = false;
            continue;
        }
        if (!any)
            any = p;
        c[i] = *p;
    }
    if (!complete)
        return any ? *any : VECTOR3D();

    VECTOR3D q0 = c[0] + (c[1] - c[0]) * r1;
    VECTOR3D q1 = c[2] + (c[3] - c[2]) * r1;
    VECTOR3D q2 = c[4] + (c[5] - c[4]) * r1;
    VECTOR3D q3 = c[6] + (c[7] - c[6]) * r1;
    VECTOR3D s0 = q0 + (q1 - q0) * r2;
    VECTOR3D s1 = q2 + (q3 - q2) * r2;
    return s0 + (s1 - s0) * r3;
}

// ---------------------------------------------------------------------------
// Doors

void ORVLEVEL::OpenDoor(int32_t segment, int32_t side)
{
    SIDE* d = SideAt(segment, side);
    if (!d || d->WallType != WALL_DOOR)
        return;
    int32_t n = Segments[segment]->Neighbours[side];
    SIDE* partner = SideAt(n, SideTowardsPtr(n, Segments[segment]));
    if (d->Door.State == DOOR_CLOSED || d->Door.State == DOOR_CLOSING)
    {
        d->Door.State = DOOR_OPENING;
        if (partner)
            partner->Door.State = DOOR_OPENING;
        Changed();
    }
}

void ORVLEVEL::UpdateDoors()
{
    if (!Segments)
        return;
    Changed();
    for (int s = 0; s < SegmentsEnd(); ++s)
    {
        SEGMENT* seg = Segments[s];
        if (!seg)
            continue;
        for (int i = 0; i < 6; ++i)
        {
            DOOR& d = seg->Sides[i].Door;
            if (seg->Sides[i].WallType != WALL_DOOR)
                continue;
            int32_t n = seg->Neighbours[i];
            SIDE* partnerSide = SideAt(n, SideTowards(n, s));
            DOOR* partner = partnerSide ? &partnerSide->Door : nullptr;

            if (d.State == DOOR_OPENING)
            {
                d.Opening += 0.01;
                if (d.Opening >= 1.0f)
                {
                    d.Opening = 2.0f; // the hold countdown
                    d.State = DOOR_OPEN;
                    if (partner)
                    {
                        partner->Opening = 2.0f;
                        partner->State = DOOR_OPEN;
                    }
                }
            }
            if (d.State == DOOR_CLOSING)
            {
                d.Opening -= 0.01;
                if (d.Opening <= 0.0f)
                {
                    d.Opening = 0.0f;
                    d.State = DOOR_CLOSED;
                    if (partner)
                    {
                        partner->Opening = 0.0f;
                        partner->State = DOOR_CLOSED;
                    }
                }
            }
            if (d.State == DOOR_OPEN)
            {
                d.Opening -= 0.01;
                if (d.Opening <= 0.0f)
                {
                    d.Opening = 1.0f;
                    d.State = DOOR_CLOSING;
                    if (partner)
                    {
                        partner->Opening = 1.0f;
                        partner->State = DOOR_CLOSING;
                    }
                }
            }
        }
    }
}

int32_t ORVLEVEL::DoorSlideEdge(int32_t segment, int32_t side) const
{
    const SIDE* d = SideAt(segment, side);
    if (!d)
        return 0;
    int32_t e = d->Door.SlideEdge % 4;
    return e < 0 ? e + 4 : e;
}

VECTOR3D ORVLEVEL::DoorOffset(int32_t segment, int32_t side) const
{
    const SIDE* d = SideAt(segment, side);
    VECTOR3D* c[4];
    if (!d || d->WallType != WALL_DOOR || !SidePoints(*Segments[segment], side, c))
        return VECTOR3D();
    int32_t e = DoorSlideEdge(segment, side);
    VECTOR3D v = *c[e] - *c[(e + 1) % 4];
    if (d->Door.State == DOOR_OPEN)
        return v;
    return v * d->Door.Opening;
}
