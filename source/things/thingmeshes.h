// The meshes shared by every object of a class, loaded once at program start
// (a missing or broken mesh file ends the program with the mesh's message).
// Until they are loaded the pointers are null and objects keep zero boxes.
#pragma once

class TRIMESH;

struct THINGMESHES
{
    TRIMESH* Ship = nullptr;       // "SpaceShip.lwo", scale 5
    TRIMESH* LaserShot = nullptr;  // "LaserBase.lwo", scale 10
    TRIMESH* Tempest = nullptr;    // "Tempest.lwo", scale 10; also the P_TEMPEST item
    TRIMESH* ShipLevel = nullptr;  // "pShipLevel.lwo", scale 30
    TRIMESH* LaserBoost = nullptr; // "pLaserBoost.lwo", scale 10
    TRIMESH* Energy = nullptr;     // "pEnergy.lwo", scale 5
    TRIMESH* Shield = nullptr;     // "pShield.lwo", scale 5
};

extern THINGMESHES ThingMeshes;

// Loads the meshes that are not loaded yet.
void LoadThingMeshes();
void FreeThingMeshes();

class THING;
// Fills the six box fields and both radii of `t` from `mesh`'s bounds; a null
// mesh leaves them as they are.
void BoxFromMesh(THING& t, const TRIMESH* mesh);
