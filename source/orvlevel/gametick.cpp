#include "orvlevel/level.h"

#include "things/thing.h"

// Placeholder bodies: the game loop comes next.
THING* ORVLEVEL::FindTouchingThing(const THING*, VECTOR3D, THING* const*, int) const { return nullptr; }
void ORVLEVEL::PhysicsStep() {}
void ORVLEVEL::CommitThings() {}
void ORVLEVEL::GameTick(const CAMERA&) {}

void HandToLevel(THING* t)
{
    if (!t)
        return;
    if (!TheLevel || TheLevel->AddThing(t) < 0)
        delete t;
}
