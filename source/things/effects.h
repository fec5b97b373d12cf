// Short-lived objects: positional sound effects, sparks, explosion
// billboards, laser shots and Tempest missiles. None of them takes part in
// object-to-object collision (all are ghosts).
#pragma once

#include "things/thing.h"

class BUFFER;
class SOURCE;
class SPACESHIP;
class TEXTURE;

constexpr int32_t SOUNDEFFECT_SIZE = 151;
constexpr int32_t SPARK_SIZE = 155;
constexpr int32_t EXPLOSION_SIZE = 179;
constexpr int32_t LASERSHOT_SIZE = 180;

// A sound played at a place; the object ends when the sound has stopped.
class SOUNDEFFECT : public THING
{
public:
    SOURCE* source = nullptr;

    SOUNDEFFECT(BUFFER* buffer, VECTOR3D position, bool loop);
    ~SOUNDEFFECT() override;
    void Update() override;
    const char* ClassName() const override { return "SOUNDEFFECT"; }
    int32_t RecordSize() const override { return SOUNDEFFECT_SIZE; }
    void Members(THINGMEMBERS& m) override;
};

// A burst of lightning lines that shrinks by `decay` every tick.
class SPARK : public THING
{
public:
    float size;
    float decay;

    SPARK(VECTOR3D position, float size, float decay);
    void Draw() override;
    void Update() override;
    const char* ClassName() const override { return "SPARK"; }
    int32_t RecordSize() const override { return SPARK_SIZE; }
    void Members(THINGMEMBERS& m) override;
};

// A camera-facing billboard that grows by `growth` per tick and fades out;
// it ends when `radius` reaches `maxSize`.
class EXPLOSION : public THING
{
public:
    TEXTURE* texture = nullptr;
    float maxSize;
    float growth;
    float radius = 0.0f;
    VECTOR3D centre;
    SOURCE* source = nullptr;

    // The reader's construction: growth 0, maxSize 0 at the origin.
    EXPLOSION();
    // Null texture and buffer select the drawing seam's ExplosionTexture and
    // ExplosionSound. The sound starts at once.
    EXPLOSION(float growth, float maxSize, VECTOR3D centre, TEXTURE* texture = nullptr, BUFFER* buffer = nullptr);
    ~EXPLOSION() override;
    void Draw() override;
    void Update() override;
    void AfterLoad() override;
    const char* ClassName() const override { return "EXPLOSION"; }
    int32_t RecordSize() const override { return EXPLOSION_SIZE; }
    void Members(THINGMEMBERS& m) override;
};

// A laser shot: flies `speed` per tick along axisX, dies on a wall, on the
// first solid object other than its owner, or beyond +-10000.
class LASERSHOT : public THING
{
public:
    int32_t level = 1; // 1 ... 10: the colour
    SOURCE* sound = nullptr;
    bool withSound;
    SPACESHIP* owner = nullptr;
    VECTOR3D lastPoint;
    float damage = 0.0f;
    float speed = 0.0f;

    LASERSHOT(bool withSound, VECTOR3D start);
    // Leaves a small explosion.
    ~LASERSHOT() override;
    void Draw() override;
    void Update() override;
    void Control(int32_t how, float amount, int32_t a = 0, int32_t b = 0, int32_t c = 0, int32_t d = 0) override;
    void AfterLoad() override;
    void WriteRecord(BINWRITER& out, int32_t index) const override;
    const char* ClassName() const override { return "LASERSHOT"; }
    int32_t RecordSize() const override { return LASERSHOT_SIZE; }
    void Members(THINGMEMBERS& m) override;

protected:
    struct NOSOUND {};
    // The shot part without any sound (the missile adds its own).
    LASERSHOT(NOSOUND, VECTOR3D start);
};

// A Tempest missile: a shot with its own mesh and a looping flight sound.
class TEMPEST : public LASERSHOT
{
public:
    TEMPEST(bool withSound, VECTOR3D start);
    // Stops the loop, then the shot's destructor.
    ~TEMPEST() override;
    void Draw() override;
    void WriteRecord(BINWRITER& out, int32_t index) const override;
    const char* ClassName() const override { return "TEMPEST"; }
};

// The light an object is drawn with: the mean corner colour of its segment in
// its level, or white outside any (valid) segment.
VECTOR3D SegmentAmbient(const THING& t);

// The colour of a shot of `level` 1 ... 10; any other level shows
// "Invalid Laser shot level value!" and ends the program.
VECTOR3D LaserColour(int32_t level);
