// Collectable items: the PICKUP base and its five item classes. In play an
// item turns slowly and gives itself to the first ship that touches it, under
// rules that depend on the ship's level.
#pragma once

#include "things/thing.h"

class SPACESHIP;
class TRIMESH;

constexpr int32_t PICKUP_SIZE = 151;

class PICKUP : public THING
{
public:
    // Ticks during which a new item still takes part in object collision.
    int32_t solidTicks = 3;

    PICKUP();
    // Leaves a sound effect playing "Powerup.wav" at the item's position.
    ~PICKUP() override;
    // Counts down the solid ticks, then offers itself to the first object
    // touching it when that is exactly a SPACESHIP; taken -> dead.
    void Update() override;
    void WriteRecord(BINWRITER& out, int32_t index) const override;
    const char* ClassName() const override { return "PICKUP"; }
    int32_t RecordSize() const override { return PICKUP_SIZE; }
    void Members(THINGMEMBERS& m) override;

    // True when the ship took the item; a refusal only leaves a message in
    // the ship's log.
    virtual bool ApplyTo(SPACESHIP* ship);

protected:
    // The item classes: PICKUP's defaults, then the given place and frame.
    PICKUP(VECTOR3D position, VECTOR3D axisZ, VECTOR3D axisY, VECTOR3D axisX);
    // Update of the item classes: PICKUP's, then a turn of 0.1 about axisY.
    void ItemUpdate();
    // Draw of the item classes: the mesh at `position`, axes (Z, Y, X).
    void DrawItem(TRIMESH* mesh);
};

class P_SHIELD : public PICKUP
{
public:
    P_SHIELD(VECTOR3D position, VECTOR3D axisZ, VECTOR3D axisY, VECTOR3D axisX);
    void Draw() override;
    void Update() override;
    const char* ClassName() const override { return "P_SHIELD"; }
    bool ApplyTo(SPACESHIP* ship) override;
};

class P_ENERGY : public PICKUP
{
public:
    P_ENERGY(VECTOR3D position, VECTOR3D axisZ, VECTOR3D axisY, VECTOR3D axisX);
    void Draw() override;
    void Update() override;
    const char* ClassName() const override { return "P_ENERGY"; }
    bool ApplyTo(SPACESHIP* ship) override;
};

class P_TEMPEST : public PICKUP
{
public:
    P_TEMPEST(VECTOR3D position, VECTOR3D axisZ, VECTOR3D axisY, VECTOR3D axisX);
    void Draw() override;
    void Update() override;
    const char* ClassName() const override { return "P_TEMPEST"; }
    bool ApplyTo(SPACESHIP* ship) override;
};

class P_LASERBOOST : public PICKUP
{
public:
    P_LASERBOOST(VECTOR3D position, VECTOR3D axisZ, VECTOR3D axisY, VECTOR3D axisX);
    void Draw() override;
    void Update() override;
    const char* ClassName() const override { return "P_LASERBOOST"; }
    bool ApplyTo(SPACESHIP* ship) override;
};

class P_SHIPLEVEL : public PICKUP
{
public:
    P_SHIPLEVEL(VECTOR3D position, VECTOR3D axisZ, VECTOR3D axisY, VECTOR3D axisX);
    void Draw() override;
    void Update() override;
    const char* ClassName() const override { return "P_SHIPLEVEL"; }
    bool ApplyTo(SPACESHIP* ship) override;
};
