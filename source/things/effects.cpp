#include "things/effects.h"

#include "graphics/drawing.h"
#include "graphics/trimesh.h"
#include "orvlevel/level.h"
#include "platform/platform.h"
#include "sound/buffer.h"
#include "sound/source.h"
#include "things/spaceship.h"
#include "things/thingmeshes.h"

#include <cmath>
#include <new>
#include <typeinfo>

namespace {

SOURCE* NewSource(BUFFER* buffer, VECTOR3D at)
{
    try
    {
        return new SOURCE(buffer, at.x, at.y, at.z, 0.0f, 0.0f, 0.0f);
    }
    catch (const std::bad_alloc&)
    {
        FatalMessage("Not enough memory!", "FATAL!", MSGICON_STOP);
    }
}

// Draws a shot-like object: model z along the direction of flight.
void DrawAlongFlight(const THING& t, TRIMESH* mesh, VECTOR3D colour)
{
    if (mesh)
        mesh->Draw(t.position, t.axisX, t.axisY, t.axisZ, 1, colour);
}

} // namespace

VECTOR3D SegmentAmbient(const THING& t)
{
    const ORVLEVEL* level = t.Level;
    int32_t segment = t.segment;
    if (segment < 0 || segment >= MAX_SEGMENTS || !level || !level->Segments || !level->Segments[segment])
        return VECTOR3D(1, 1, 1);
    return level->SegmentColour(*level->Segments[segment]);
}

VECTOR3D LaserColour(int32_t level)
{
    static const VECTOR3D colours[10] = {{1, 0, 0},   {1, 0.5f, 0}, {1, 1, 0},   {0.5f, 1, 0}, {0, 1, 0},
                                         {0, 1, 0.5f}, {0, 1, 1},   {0, 0.5f, 1}, {0, 0, 1},   {0.5f, 0, 1}};
    if (level < 1 || level > 10)
        FatalMessage("Invalid Laser shot level value!", "FATAL!", MSGICON_STOP);
    return colours[level - 1];
}

// ---------------------------------------------------------------------------

SOUNDEFFECT::SOUNDEFFECT(BUFFER* buffer, VECTOR3D p, bool loop)
{
    ghost = true;
    source = NewSource(buffer, p);
    position = oldPosition = p;
    if (loop)
        source->SetLooping(true);
    source->Play();
}

SOUNDEFFECT::~SOUNDEFFECT()
{
    delete source;
}

void SOUNDEFFECT::Update()
{
    int state = source ? source->GetState() : -1;
    if (state == -1 || state == AL_STOPPED)
        dead = true;
}

void SOUNDEFFECT::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.Pointer("source", StoredPointer(source));
}

// ---------------------------------------------------------------------------

SPARK::SPARK(VECTOR3D p, float s, float d) : size(s), decay(d)
{
    ghost = true;
    position = p;
}

void SPARK::Draw()
{
    if (Drawing().DrawSpark)
        Drawing().DrawSpark(*this);
}

void SPARK::Update()
{
    size -= decay;
    if (size <= 0.0f)
        dead = true;
}

void SPARK::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.F32("size", size);
    m.F32("decay", decay);
}

// ---------------------------------------------------------------------------

EXPLOSION::EXPLOSION() : EXPLOSION(0.0f, 0.0f, VECTOR3D()) {}

EXPLOSION::EXPLOSION(float g, float m, VECTOR3D c, TEXTURE* tex, BUFFER* buffer) : maxSize(m), growth(g), centre(c)
{
    ghost = true;
    texture = tex ? tex : Drawing().ExplosionTexture;
    source = NewSource(buffer ? buffer : ExplosionSound, c);
    source->Play();
}

EXPLOSION::~EXPLOSION()
{
    delete source;
}

void EXPLOSION::Draw()
{
    if (Drawing().DrawExplosion)
        Drawing().DrawExplosion(*this);
}

void EXPLOSION::Update()
{
    radius += growth;
    if (radius >= maxSize)
        dead = true;
}

// The sound of the construction belongs to no stored explosion.
void EXPLOSION::AfterLoad()
{
    delete source;
    source = nullptr;
    texture = Drawing().ExplosionTexture;
}

void EXPLOSION::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.Pointer("texture", StoredPointer(texture));
    m.F32("maxSize", maxSize);
    m.F32("growth", growth);
    m.F32("radius", radius);
    m.Vec("centre", centre);
    m.Pointer("source", StoredPointer(source));
}

// ---------------------------------------------------------------------------

LASERSHOT::LASERSHOT(NOSOUND, VECTOR3D start) : withSound(false), lastPoint(start)
{
    ghost = true;
    BoxFromMesh(*this, ThingMeshes.LaserShot);
}

LASERSHOT::LASERSHOT(bool sounding, VECTOR3D start) : LASERSHOT(NOSOUND{}, start)
{
    withSound = sounding;
    if (!withSound)
        return;
    try
    {
        sound = new SOURCE(LaserShotSound, start.x, start.y, start.z, 0.0f, 0.0f, 0.0f);
        sound->Play();
    }
    catch (const std::bad_alloc&)
    {
        withSound = false; // flies silently
    }
}

LASERSHOT::~LASERSHOT()
{
    // Only a shot with sound ever holds a source.
    delete sound;
    if (LeavesEffects())
        HandToLevel(Level, new EXPLOSION(1.0f, 25.0f, position));
}

void LASERSHOT::Draw()
{
    DrawAlongFlight(*this, ThingMeshes.LaserShot, LaserColour(level));
}

void LASERSHOT::Update()
{
    if (std::fabs(position.x) > 10000.0f || std::fabs(position.y) > 10000.0f || std::fabs(position.z) > 10000.0f)
        dead = true;
    if (hit)
    {
        dead = true;
        return;
    }
    position += axisX * speed;
    THING* other = nullptr;
    if (Level)
    {
        THING* excluded[1] = {owner};
        other = Level->FindTouchingThing(this, lastPoint, excluded, owner ? 1 : 0);
    }
    lastPoint = position;
    if (!other)
    {
        if (withSound && sound)
        {
            sound->SetPosition(position.x, position.y, position.z);
            VECTOR3D v = position - oldPosition;
            sound->SetVelocity(v.x, v.y, v.z);
        }
        return;
    }
    dead = true;
    if (typeid(*other) == typeid(SPACESHIP))
        static_cast<SPACESHIP*>(other)->DamageShield(damage);
}

void LASERSHOT::Control(int32_t, float, int32_t, int32_t, int32_t, int32_t) {}

void LASERSHOT::AfterLoad()
{
    delete sound;
    sound = nullptr;
    owner = nullptr;
}

void LASERSHOT::WriteRecord(BINWRITER& out, int32_t index) const
{
    WriteClassRecord(out, index);
}

void LASERSHOT::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.I32("level", level);
    m.Pointer("sound", StoredPointer(sound));
    m.Flag("withSound", withSound);
    m.Pointer("owner", StoredPointer(owner));
    m.Vec("lastPoint", lastPoint);
    m.F32("damage", damage);
    m.F32("speed", speed);
}

// ---------------------------------------------------------------------------

TEMPEST::TEMPEST(bool sounding, VECTOR3D start) : LASERSHOT(NOSOUND{}, start)
{
    BoxFromMesh(*this, ThingMeshes.Tempest);
    withSound = sounding;
    if (withSound)
    {
        sound = NewSource(MissileSound, start);
        sound->SetLooping(true);
        sound->Play();
    }
}

TEMPEST::~TEMPEST()
{
    if (sound)
        sound->SetLooping(false);
}

void TEMPEST::Draw()
{
    if (segment != lastSegment)
        lastSegment = segment;
    DrawAlongFlight(*this, ThingMeshes.Tempest, SegmentAmbient(*this));
}

void TEMPEST::WriteRecord(BINWRITER& out, int32_t index) const
{
    WriteClassRecord(out, index);
}
