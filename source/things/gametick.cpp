#include "orvlevel/level.h"

#include "math/camera.h"
#include "sound/source.h"
#include "things/effects.h"
#include "things/thing.h"

#include <algorithm>

namespace {

constexpr int SPARK_PERIOD = 4; // ticks between two rounds of recharger sparks

} // namespace

THING* ORVLEVEL::FindTouchingThing(const THING* t, VECTOR3D oldPosition, THING* const* excluded, int count) const
{
    if (!t || !Things)
        return nullptr;
    // Every shot in flight searches the table each tick: the searcher's
    // reach is taken once, and each other object's rules it out before the
    // exact test.
    const THINGREACH reach = ThingReach(*t, oldPosition);
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        THING* other = Things[i];
        if (!other || other->ghost)
            continue;
        if (excluded && count > 0 && std::find(excluded, excluded + count, other) != excluded + count)
            continue;
        if (ReachesApart(reach, ThingReach(*other, other->oldPosition)))
            continue;
        // Only the searching object's previous place is the caller's (a shot
        // passes the point of its last update); the other object's path runs
        // from its own oldPosition, the place it had when the last physics
        // step committed it, as in PhysicsStep.
        if (ThingsCollide(t, oldPosition, other, other->oldPosition))
            return other;
    }
    return nullptr;
}

void ORVLEVEL::PhysicsStep()
{
    if (!Things)
        return;
    Changed();
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        THING* a = Things[i];
        // A ghost meets nothing: most objects in flight are ghosts.
        if (!a || a->dead || a->ghost)
            continue;
        // A's reach rules most pairs out before the exact test; a push moves
        // A, and its reach with it.
        THINGREACH reach = ThingReach(*a, a->oldPosition);
        // j starts at i: ThingsCollide rejects an object against itself. B may
        // be dead; only A is required to be alive.
        for (int j = i; j < MAX_THINGS; ++j)
        {
            THING* b = Things[j];
            if (!b || b->ghost)
                continue;
            if (ReachesApart(reach, ThingReach(*b, b->oldPosition)))
                continue;
            if (!ThingsCollide(a, a->oldPosition, b, b->oldPosition))
                continue;
            a->hit = true;
            b->hit = true;
            if (a->position != b->position)
            {
                VECTOR3D d = a->position - b->position;
                d /= Length(d);
                // Both move by A's distance, whatever B's own is.
                a->position += d * a->pushDistance;
                b->position -= d * a->pushDistance;
                reach = ThingReach(*a, a->oldPosition);
            }
        }
    }
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        THING* t = Things[i];
        if (!t || t->dead)
            continue;
        t->CollideWithWalls();
        t->segment = FindSegment(t->oldPosition);
    }
    CommitThings();
}

void ORVLEVEL::CommitThings()
{
    if (!Things)
        return;
    Changed();
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        THING* t = Things[i];
        if (!t || t->dead)
            continue;
        t->oldPosition = t->position;
        t->oldAxisY = t->axisY;
        t->oldAxisX = t->axisX;
        t->oldAxisZ = t->axisZ;
    }
}

void ORVLEVEL::GameTick(const CAMERA& camera)
{
    SetListener(camera.Position, camera.ViewDir, camera.Up);
    if (!Things)
        return;
    Changed();
    // Objects an Update or a destructor adds land in free slots, earlier or
    // later ones alike; those after the current slot are updated this tick.
    for (int i = 0; i < MAX_THINGS; ++i)
    {
        THING* t = Things[i];
        if (!t)
            continue;
        t->Update();
        if (!t->dead)
            continue;
        // The slot stays taken while the destructor runs, so whatever it adds
        // goes elsewhere.
        delete t;
        Things[i] = nullptr;
        SlotFreed(TABLE_THINGS, i);
    }

    SparkCountdown -= 1;
    if (SparkCountdown > 0)
        return;
    SparkCountdown = SPARK_PERIOD;
    for (int s = 0; Segments && s < SegmentsEnd(); ++s)
    {
        const SEGMENT* seg = Segments[s];
        if (!seg || seg->Type != SEGTYPE_RELOAD)
            continue;
        SPARK* spark = new SPARK(VECTOR3D(0, 0, 0), 20.0f, 0.1f);
        spark->position = RandomPointInSegment(*seg);
        spark->size = 20.0f;
        spark->decay = 2.0f;
        if (AddThing(spark) < 0)
            delete spark;
    }
}

void HandToLevel(ORVLEVEL* level, THING* t)
{
    if (!t)
        return;
    if (!level || level->AddThing(t) < 0)
        delete t;
}
