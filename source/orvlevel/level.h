// The level in memory: a pool of corner points, six-sided segments built on
// them and joined side to side, the textures the sides use, placed objects,
// static lights and special points, each in a fixed-capacity table whose slot
// number is the entry's index for life. Also the editor's selection.
#pragma once

#include "math/vector3d.h"
#include "platform/timer.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

class TEXTURE;
class THING;
class BINWRITER;
struct CAMERA;
struct LEVELINDEX;

constexpr int MAX_POINTS = 40000;
constexpr int MAX_SEGMENTS = 5000;
constexpr int MAX_TEXTURES = 200;
constexpr int MAX_THINGS = 1000;
constexpr int MAX_LIGHTS = 128;
constexpr int MAX_SPECPOINTS = 256;

constexpr int LEVEL_NAME_SIZE = 30;

constexpr uint32_t SEGMENT_RECORD_SIZE = 736;
constexpr uint32_t OLD_SEGMENT_RECORD_SIZE = 732; // written before segments had a type
constexpr uint32_t SIDE_RECORD_SIZE = 112;
constexpr uint32_t DOOR_RECORD_SIZE = 20;
constexpr uint32_t STATICLIGHT_RECORD_SIZE = 28;
constexpr uint32_t SPECPOINT_RECORD_SIZE = 16;

enum WALLTYPE
{
    WALL_PASSABLE = 0,
    WALL_NORMAL = 1,
    WALL_DOOR = 2,
    WALL_SHOOTTHROUGH = 3,
    WALL_SEETHROUGH = 4,
};

enum SEGMENTTYPE
{
    SEGTYPE_NORMAL = 0,
    SEGTYPE_RELOAD = 1,
    SEGTYPE_REPAIR = 2,
    SEGTYPE_SUPPORT = 3,
};

enum DOORSTATE
{
    DOOR_CLOSED = 0,
    DOOR_OPENING = 1,
    DOOR_OPEN = 2,
    DOOR_CLOSING = 3,
};

struct DOOR
{
    uint32_t RecordSize = DOOR_RECORD_SIZE;
    int32_t State = DOOR_CLOSED;
    float Opening = 0.0f;
    int32_t Reserved = 1;
    int32_t SlideEdge = 0;
};

struct SIDE
{
    uint32_t RecordSize = SIDE_RECORD_SIZE;
    int32_t Texture = -1;
    int32_t WallType = WALL_PASSABLE;
    TEXPAIR TexCoords[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    VECTOR3D Colours[4] = {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}, {1, 1, 1}};
    DOOR Door;
};

struct SEGMENT
{
    uint32_t RecordSize = SEGMENT_RECORD_SIZE;
    int32_t Neighbours[6] = {-1, -1, -1, -1, -1, -1};
    int32_t Corners[8] = {-1, -1, -1, -1, -1, -1, -1, -1}; // every creator fills them
    SIDE Sides[6];
    int32_t Type = SEGTYPE_NORMAL;
};

struct STATICLIGHT
{
    VECTOR3D Position;
    VECTOR3D Colour;
    float Brightness = 0.0f;
};

struct SPECPOINT
{
    VECTOR3D Position;
    int32_t Type = 0; // 0: single-player start
};

// A class of game object the level reader can build from a stored class
// name: the name, the record size the file must give, and a constructor.
struct THINGCLASS
{
    const char* Name;
    int32_t Size;
    THING* (*Construct)();
};

// The classes the level reader tries, in order. None until the game objects
// register theirs, so without them every object record is an undefined thing.
void SetThingClasses(std::span<const THINGCLASS> classes);
std::span<const THINGCLASS> ThingClasses();

// The corner slots of side i, for side corners 0 ... 3.
extern const int SideCorners[6][4];
// The side opposite side i.
extern const int OppositeSide[6];
// Corner slot positions of the default 200-unit cube.
extern const VECTOR3D DefaultCubeCorners[8];

class ORVLEVEL
{
public:
    // A point or segment lives in storage the level owns, at its own slot:
    // Points[i] is null or &PointStore[i], and the same for segments. Fill
    // slots with Add, PutPoint or PutSegment, never with new; empty them
    // with DeletePoint, DeleteSegment or DropSegment.
    VECTOR3D** Points = nullptr;
    SEGMENT** Segments = nullptr;
    TEXTURE** Textures = nullptr;
    THING** Things = nullptr;
    STATICLIGHT** Lights = nullptr;
    SPECPOINT** SpecPoints = nullptr;
    char Name[LEVEL_NAME_SIZE] = {};
    int32_t CurrentSide = 0;
    int32_t CurrentSegment = -1;
    int32_t CurrentPoint = 0;
    TIMER* BlinkTimer = nullptr;
    bool BlinkOn = false;
    TEXTURE* InvisibleSideTexture = nullptr;
    std::optional<std::string> FileName;
    int32_t CurrentTexture = 0;
    int32_t SparkCountdown = 0;
    bool ListBuilt = false;
    uint32_t DisplayList = 0;

    // Advances with every change to what the level holds (not with selection
    // changes): loading, every editing operation, lighting, the game tick.
    // A refused operation leaves it alone. Whoever changes the level's fields
    // directly (a dialog) calls Changed().
    uint64_t Revision = 0;
    void Changed() { ++Revision; }

    // One past the highest point or segment slot filled since the tables were
    // made: every slot from there on is empty, so walks over a small level
    // stop early instead of visiting all the fixed capacity.
    int32_t PointsEnd() const { return PointsTop; }
    int32_t SegmentsEnd() const { return SegmentsTop; }

    // Set while the level is rebuilt from a stored image (undo and redo):
    // objects destroyed then leave nothing behind, since the image already
    // holds whatever the level had.
    bool Restoring = false;

    // Builds the default level, then loads the file if a name is given.
    explicit ORVLEVEL(const char* fileName = "");
    ~ORVLEVEL();
    ORVLEVEL(const ORVLEVEL&) = delete;
    ORVLEVEL& operator=(const ORVLEVEL&) = delete;

    // Destroys every object (things first, while the rest of the level still
    // stands, since their destructors may look at it or add new things), frees
    // the tables and the invisible-side texture and forgets FileName. Safe to
    // call twice; every operation on a cleared level does nothing or answers
    // -1 / null.
    void Clear();

    // Adding: the lowest free slot, or -1 when the table is full.
    int32_t Add(VECTOR3D p);
    int32_t Add(const SEGMENT* s);
    int32_t Add(const char* textureFile);
    int32_t Add(STATICLIGHT l);
    int32_t Add(SPECPOINT sp);
    // Null or a full table: -1, and the thing stays the caller's.
    int32_t AddThing(THING* t);

    // Fill slot `index` whatever it held, as the file reader does (the
    // free-slot search is not disturbed: it only relies on the slots below
    // its hint being in use). False for an index outside the table or a
    // level without tables.
    bool PutPoint(int32_t index, VECTOR3D p);
    bool PutSegment(int32_t index, const SEGMENT& s);

    // Deleting.
    void DeletePoint(int32_t index);
    // Empties a segment slot and nothing else: links and points stay as they
    // are. Editing uses DeleteSegment.
    void DropSegment(int32_t index);
    void RemoveUnusedPoints();
    void DeleteTexture(int32_t index);
    void DeleteTextureAt(int32_t position);
    void ReplaceTextureAt(const char* fileName, int32_t position);
    // Empty one slot; nothing happens for an empty slot or an index outside
    // the table. A thing's destructor runs first, as for DeleteNearestThing.
    void DeleteLight(int32_t index);
    void DeleteSpecPoint(int32_t index);
    void DeleteThing(int32_t index);
    void DeleteNearestLight(VECTOR3D from);
    void DeleteNearestSpecPoint(VECTOR3D from);
    void DeleteNearestThing(VECTOR3D from);

    // Selection. A CurrentSegment that is out of range or names an empty slot,
    // and a CurrentSide outside 0 ... 5, count as no selection. The point
    // queries also answer null when a corner they need names no point (a
    // broken file can leave such corners); GetCurrentPointPtr does so for a
    // CurrentPoint outside 0 ... 3 as well.
    SEGMENT* GetCurrentSegment();
    SIDE* GetCurrentSide();
    VECTOR3D* GetCurrentPointPtr();
    VECTOR3D** GetCurrentSidePoints();
    int32_t* GetCurrentSideIndices();
    VECTOR3D* GetCurrentSideCorners();
    VECTOR3D* GetSideCorners(int32_t segment, int32_t side);
    TEXPAIR* GetCurrentTexCoords();
    void SetCurrentTexCoords(const TEXPAIR coords[4]);
    void SelectTextureAt(int32_t position);
    void ApplyTexture();
    void ClearSideTexture();
    void NextPointOnSide();

    // Lookups.
    int32_t SegmentIndexOf(const SEGMENT* s) const;
    int32_t SideTowards(int32_t a, int32_t b) const;
    int32_t SideTowardsPtr(int32_t a, const SEGMENT* b) const;
    int32_t FindSegment(VECTOR3D p, SEGMENT** found = nullptr) const;
    bool FindSpecPoint(VECTOR3D* position) const;
    // When a corner names no point there is no cell to sample: the answer is
    // the first existing corner, or (0, 0, 0). The three draws happen anyway.
    VECTOR3D RandomPointInSegment(const SEGMENT& s) const;
    // The position of point `index`, or null when the index names no point.
    const VECTOR3D* PointAt(int32_t index) const;

    // Segment construction and editing
    // Selects the side under client pixel (x, y) of a width x height view
    // seen through the camera. CurrentSide becomes 0 first, so a click into
    // empty space leaves side 0 of the previous segment selected.
    void PickSide(int x, int y, const CAMERA& camera, int width, int height);
    // Extrudes a new segment from the selected side, as deep as the side's
    // mean edge length. Beeps without a change when the side is already
    // joined or there is no room for four points and a segment.
    void NewSegment();
    // Moves side b of segment B onto side a of segment A and links them; side
    // corner 3 - shift of b meets corner 0 of a. The shift is taken mod 4.
    bool JoinSides(int32_t a, int32_t sideA, int32_t b, int32_t sideB, int32_t shift);
    // The selected side before the click is joined with (or fitted to) the
    // side picked by the click; false when either is missing.
    bool JoinWithPicked(int x, int y, const CAMERA& camera, int width, int height, int32_t shift);
    // Carries side a's texture across the one edge it shares with side b.
    bool FitTexture(int32_t a, int32_t sideA, int32_t b, int32_t sideB);
    bool FitTextureToPicked(int x, int y, const CAMERA& camera, int width, int height);
    void DeleteSegment(int32_t index);
    void DeleteCurrentSegment();
    // Drops the link of side `side` on both segments; both become walls.
    void Unlink(int32_t index, int32_t side);
    void MovePoint(float dx, float dy, float dz);
    // Lays the selected side's texture out flat from its corner distances.
    void RestoreTexture();
    // Texture pairs for n corners laid out flat: corner 0 at the origin,
    // corner 1 on the s axis, the rest on the positive t side; all divided by
    // scale.
    static void TexCoordsFromCorners(TEXPAIR* pairs, const VECTOR3D* corners, int n, float scale);
    // Rewrites the pairs of every corner other than a and b so the texture
    // keeps the scale and direction the known edge a-b has.
    static void CalcTexCoordsFromEdge(TEXPAIR* pairs, const VECTOR3D* points, int n, int a, int b);

    // Lighting
    // Bakes every light into the corner colours of every textured side; a
    // corner no light faces ends black. Untextured sides keep their colours.
    void CalculateLighting();
    // Every corner of every side, textured or not, becomes white.
    void FullBrightness();
    // The mean corner colour of the segment's textured sides; white when it
    // has none, so objects in it are drawn untinted.
    VECTOR3D SegmentColour(const SEGMENT& s) const;
    // The new-light dialog's OK: a light at `position` (the camera's), its
    // colour given per channel as the dialog shows it, 0 ... 255, unclamped.
    // The light's index, or -1 when the light table is full.
    int32_t NewLight(VECTOR3D position, double red, double green, double blue, float brightness);

    // Collision and sight
    // Whether the point (or, swept, its path from `from` to `to`) comes within
    // `distance` of a solid side; with `correct` the tested point is pushed
    // back to that distance and touched doors start opening. Mode 0 tests
    // every segment, 1 the start segment and its neighbours, 2 the start
    // segment only (1 and 2 fall back to 0 without a start segment). A
    // negative or undefined distance counts as 0.
    bool CollidePoint(VECTOR3D* from, int32_t mode, SEGMENT* start, float distance, bool swept,
                      VECTOR3D* to, bool correct);
    bool CollideSegment(VECTOR3D* from, SEGMENT* s, float distance, bool swept, VECTOR3D* to,
                        bool correct);
    // One triangle; its outward normal is the reverse of TriangleNormal(a, b, c).
    static bool CollideTriangle(VECTOR3D* from, VECTOR3D a, VECTOR3D b, VECTOR3D c, float distance,
                                bool swept, VECTOR3D* to, bool correct);
    // The edge a-b, only where the foot of p lies between a and b.
    static bool CollideEdge(VECTOR3D a, VECTOR3D b, VECTOR3D* p, float distance, bool correct);
    // Whether `to` can be seen from `from` through openings, shoot-through
    // and see-through sides. Without a start segment (or with one that is not
    // in this level) the segment holding `from` is looked up.
    bool LineOfSight(VECTOR3D from, VECTOR3D to, SEGMENT* start);
    // Follows the line from segment k on; -1 when it ends inside a segment,
    // else the blocking side of the last segment reached. A walk longer than
    // the segment table (only links that loop allow it) stops as at a wall.
    int32_t SightWalk(VECTOR3D from, VECTOR3D to, int32_t k) const;
    // The side through which the line from -> to leaves segment k before
    // reaching `to`, or -1.
    int32_t FindCrossedSide(VECTOR3D from, VECTOR3D to, int32_t k) const;

    // Game objects in play. The first object in slot order that exists, is
    // not a ghost, is not among `excluded` and collides with `t` coming from
    // `oldPosition`; null if none.
    THING* FindTouchingThing(const THING* t, VECTOR3D oldPosition, THING* const* excluded = nullptr,
                             int count = 0) const;
    // Object against object, objects against walls, then CommitThings.
    void PhysicsStep();
    // Every live object's frame becomes its previous frame.
    void CommitThings();
    // The listener at the camera, every object's Update (dead ones are
    // destroyed), then sparks in recharger segments every fourth tick.
    void GameTick(const CAMERA& camera);

    // Doors (game time).
    void OpenDoor(int32_t segment, int32_t side);
    void UpdateDoors();
    // The slide edge reduced into 0 ... 3 (0 for a side that does not exist).
    int32_t DoorSlideEdge(int32_t segment, int32_t side) const;
    VECTOR3D DoorOffset(int32_t segment, int32_t side) const;

    // Level files. False (after the designed message) when the file could not
    // be written or read; a failed load leaves the level as it was.
    bool SaveLevel(const char* fileName);
    bool Save();
    bool LoadLevel(const char* fileName);

    // The whole file image SaveLevel writes, without touching FileName.
    std::vector<uint8_t> Serialize() const;
    // Reads a file image over a cleared level (the body of LoadLevel).
    void Deserialize(const uint8_t* data, size_t size);
    // Replaces the level's contents with an image Serialize made, quietly:
    // no object leaves effects, and the file name, the selection and the
    // current texture stay as they are.
    void RestoreImage(const uint8_t* data, size_t size);

private:
    friend class LEVELREADER;

    // Indices into FreeHint.
    enum TABLEID
    {
        TABLE_POINTS,
        TABLE_SEGMENTS,
        TABLE_TEXTURES,
        TABLE_THINGS,
        TABLE_LIGHTS,
        TABLE_SPECPOINTS,
    };

    // Gives the level its six tables with every slot null (the point and
    // segment tables are the kept ones below) and resets FreeHint (tables
    // that still exist are freed first, with their objects). Throws
    // std::bad_alloc with every table null again; callers report it in their
    // own words.
    void AllocateTables();
    // Destroys whatever objects are still in the tables (things first), then
    // frees the tables themselves.
    void FreeTables();
    void BuildDefault();
    void DestroyThings();

    // The lowest free slot at or above hint, or -1; hint moves up to it.
    template <class T>
    static int32_t FindFree(T* const* table, int count, int& hint)
    {
        if (!table)
            return -1;
        for (int i = hint; i < count; ++i)
            if (!table[i])
            {
                hint = i;
                return i;
            }
        hint = count;
        return -1;
    }
    // Every member that empties a slot directly must report it here, or the
    // next add would no longer take the lowest free slot.
    void SlotFreed(TABLEID table, int32_t index)
    {
        if (index >= 0 && index < FreeHint[table])
            FreeHint[table] = index;
    }
    SEGMENT* SegmentAt(int32_t index) const;
    VECTOR3D* PointPtr(int32_t index) const;
    SIDE* SideAt(int32_t segment, int32_t side) const;
    // The four corner points of a side, false when one is missing.
    bool SidePoints(const SEGMENT& s, int side, VECTOR3D* out[4]) const;
    // FindSegment's test: p is on the inner side of all six side planes.
    bool SegmentHolds(const SEGMENT& seg, VECTOR3D p) const;
    int32_t TextureIndexAt(int32_t position) const;
    // Segment construction and editing
    // At least `needed` free slots in a table, counted from its hint.
    bool HasFreeSlots(TABLEID table, int needed) const;

    // Collision and sight
    // The side's corners with a door's sliding corners moved by its offset;
    // false when a corner names no point. `index` is the segment's slot, or
    // -2 to look it up only if the side is a door.
    bool MovedSideCorners(const SEGMENT& s, int32_t& index, int side, VECTOR3D c[4]) const;
    bool CollideSegmentAt(VECTOR3D* from, SEGMENT& s, int32_t index, float distance, bool swept,
                          VECTOR3D* to, bool correct);
    // Mode 0: every segment in index order, skipping those out of reach.
    bool CollideEverySegment(VECTOR3D* from, float distance, bool swept, VECTOR3D* to, bool correct);

    // Room for every point and segment slot, kept from construction to
    // destruction so that loading allocates nothing per record. Zero-filled
    // system pages: only the pages of filled slots are ever touched.
    VECTOR3D* PointStore = nullptr;
    SEGMENT* SegmentStore = nullptr;
    // The point and segment tables themselves, kept as long as the stores:
    // Points and Segments are these while the level has tables, else null.
    VECTOR3D** PointSlots = nullptr;
    SEGMENT** SegmentSlots = nullptr;
    void AllocateStores();
    void FreeStores();

    // The spatial index behind picking, FindSegment and collision, brought up
    // to date from Revision before each use (see levelindex.h).
    mutable LEVELINDEX* Index = nullptr;
    LEVELINDEX& CurrentIndex() const;

    // Lowest slot that may be free in each table: every slot below is in use.
    int FreeHint[6] = {};
    // Behind PointsEnd and SegmentsEnd; they only grow until the tables go.
    int32_t PointsTop = 0;
    int32_t SegmentsTop = 0;
    // Set for the last sweep of Clear: destructors can no longer add things.
    bool ThingsClosed = false;

    // Buffers behind the multi-value queries.
    VECTOR3D* SidePointsBuffer[4] = {};
    int32_t SideIndicesBuffer[4] = {};
    VECTOR3D SideCornersBuffer[4];
    TEXPAIR TexCoordsBuffer[4];
};

// The level every command, dialog and game object works on.
extern ORVLEVEL* TheLevel;

// Hands a new object to a level, which owns it from then on; when there is no
// level or its table is full the object is destroyed at once (its
// destructor's own new objects are handed on the same way).
void HandToLevel(ORVLEVEL* level, THING* t);

// Installs a level as TheLevel for the guard's lifetime and then puts back
// whatever was there before.
class SCOPEDLEVEL
{
public:
    explicit SCOPEDLEVEL(ORVLEVEL* level) : Previous(TheLevel) { TheLevel = level; }
    ~SCOPEDLEVEL() { TheLevel = Previous; }
    SCOPEDLEVEL(const SCOPEDLEVEL&) = delete;
    SCOPEDLEVEL& operator=(const SCOPEDLEVEL&) = delete;

private:
    ORVLEVEL* Previous;
};
