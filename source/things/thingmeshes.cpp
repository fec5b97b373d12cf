#include "things/thingmeshes.h"

#include "graphics/trimesh.h"
#include "things/thing.h"

THINGMESHES ThingMeshes;

namespace {

void Load(TRIMESH*& mesh, const char* file, float scale)
{
    if (!mesh)
        mesh = new TRIMESH(file, scale);
}

void Free(TRIMESH*& mesh)
{
    delete mesh;
    mesh = nullptr;
}

} // namespace

void LoadThingMeshes()
{
    Load(ThingMeshes.Ship, "SpaceShip.lwo", 5.0f);
    Load(ThingMeshes.LaserShot, "LaserBase.lwo", 10.0f);
    Load(ThingMeshes.Tempest, "Tempest.lwo", 10.0f);
    Load(ThingMeshes.ShipLevel, "pShipLevel.lwo", 30.0f);
    Load(ThingMeshes.LaserBoost, "pLaserBoost.lwo", 10.0f);
    Load(ThingMeshes.Energy, "pEnergy.lwo", 5.0f);
    Load(ThingMeshes.Shield, "pShield.lwo", 5.0f);
}

void FreeThingMeshes()
{
    Free(ThingMeshes.Ship);
    Free(ThingMeshes.LaserShot);
    Free(ThingMeshes.Tempest);
    Free(ThingMeshes.ShipLevel);
    Free(ThingMeshes.LaserBoost);
    Free(ThingMeshes.Energy);
    Free(ThingMeshes.Shield);
}

void BoxFromMesh(THING& t, const TRIMESH* mesh)
{
    if (mesh)
        mesh->GetBounds(&t.boxZLow, &t.boxZHigh, &t.boxYLow, &t.boxYHigh, &t.boxXLow, &t.boxXHigh, &t.outerRadius,
                        &t.innerRadius);
}
