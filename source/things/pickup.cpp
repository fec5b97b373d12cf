#include "things/pickup.h"

// Placeholder bodies: the item rules come next.
PICKUP::PICKUP() {}
PICKUP::PICKUP(VECTOR3D p, VECTOR3D z, VECTOR3D y, VECTOR3D x)
{
    position = p, axisZ = z, axisY = y, axisX = x;
}
PICKUP::~PICKUP() {}
void PICKUP::Update() {}
void PICKUP::WriteRecord(BINWRITER& out, int32_t index) { WriteClassRecord(out, index); }
void PICKUP::Members(THINGMEMBERS& m)
{
    THING::Members(m);
    m.I32("solidTicks", solidTicks);
}
bool PICKUP::ApplyTo(SPACESHIP*) { return false; }
void PICKUP::ItemUpdate() {}
void PICKUP::DrawItem(TRIMESH*) {}

#define ITEM_STUB(C)                                                                                   \
    C::C(VECTOR3D p, VECTOR3D z, VECTOR3D y, VECTOR3D x) : PICKUP(p, z, y, x) {}                       \
    void C::Draw() {}                                                                                  \
    void C::Update() {}                                                                                \
    bool C::ApplyTo(SPACESHIP*) { return false; }
ITEM_STUB(P_SHIELD)
ITEM_STUB(P_ENERGY)
ITEM_STUB(P_TEMPEST)
ITEM_STUB(P_LASERBOOST)
ITEM_STUB(P_SHIPLEVEL)
