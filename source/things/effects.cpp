#include "things/effects.h"

// Placeholder bodies: the effects come next.
TEXTURE* ExplosionTexture = nullptr;

SOUNDEFFECT::SOUNDEFFECT(BUFFER*, VECTOR3D p, bool) { position = oldPosition = p; ghost = true; }
SOUNDEFFECT::~SOUNDEFFECT() {}
void SOUNDEFFECT::Update() {}
void SOUNDEFFECT::Members(THINGMEMBERS& m) { THING::Members(m); m.Pointer("source", StoredPointer(source)); }

SPARK::SPARK(VECTOR3D p, float s, float d) : size(s), decay(d) { position = p; ghost = true; }
void SPARK::Draw() {}
void SPARK::Update() {}
void SPARK::Members(THINGMEMBERS& m) { THING::Members(m); m.F32("size", size); m.F32("decay", decay); }

EXPLOSION::EXPLOSION() : maxSize(0), growth(0) { ghost = true; }
EXPLOSION::EXPLOSION(float g, float m, VECTOR3D c, TEXTURE*, BUFFER*) : maxSize(m), growth(g), centre(c) { ghost = true; }
EXPLOSION::~EXPLOSION() {}
void EXPLOSION::Draw() {}
void EXPLOSION::Update() {}
void EXPLOSION::AfterLoad() {}
void EXPLOSION::Members(THINGMEMBERS& m) { THING::Members(m); }

LASERSHOT::LASERSHOT(bool w, VECTOR3D start) : withSound(w), lastPoint(start) { ghost = true; }
LASERSHOT::LASERSHOT(NOSOUND, VECTOR3D start) : withSound(false), lastPoint(start) { ghost = true; }
LASERSHOT::~LASERSHOT() {}
void LASERSHOT::Draw() {}
void LASERSHOT::Update() {}
void LASERSHOT::Control(int32_t, float, int32_t, int32_t, int32_t, int32_t) {}
void LASERSHOT::AfterLoad() {}
void LASERSHOT::WriteRecord(BINWRITER& out, int32_t index) { WriteClassRecord(out, index); }
void LASERSHOT::Members(THINGMEMBERS& m) { THING::Members(m); }

TEMPEST::TEMPEST(bool w, VECTOR3D start) : LASERSHOT(NOSOUND{}, start) { withSound = w; }
TEMPEST::~TEMPEST() {}
void TEMPEST::Draw() {}
void TEMPEST::WriteRecord(BINWRITER& out, int32_t index) { WriteClassRecord(out, index); }

VECTOR3D LaserColour(int32_t) { return {1, 0, 0}; }
