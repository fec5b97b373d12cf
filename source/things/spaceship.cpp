#include "things/spaceship.h"

// Placeholder bodies: the ship comes next.
int32_t Fibonacci(int32_t) { return 0; }
RGBA BarColour(float, float a) { return {1, 0, 0, a}; }

SPACESHIP::SPACESHIP() : strafeDirection(0) {}
SPACESHIP::~SPACESHIP() {}
void SPACESHIP::Draw() {}
void SPACESHIP::Update() {}
void SPACESHIP::DrawCockpit() {}
void SPACESHIP::AfterLoad() {}
void SPACESHIP::WriteRecord(BINWRITER& out, int32_t index) { WriteClassRecord(out, index); }
void SPACESHIP::Members(THINGMEMBERS& m) { THING::Members(m); }
void SPACESHIP::AcquireTarget() {}
void SPACESHIP::AttackTarget() {}
void SPACESHIP::SteerTo(VECTOR3D) {}
float SPACESHIP::TurnRate() const { return 0.2f; }
void SPACESHIP::FirePrimary(ORVLEVEL*) {}
void SPACESHIP::FireSecondary(ORVLEVEL*) {}
void SPACESHIP::ShowMessage(const char*) {}
void SPACESHIP::ScrollMessages() {}
void SPACESHIP::DamageShield(float amount) { shield -= amount; }
void SPACESHIP::OpenShop() {}
void SPACESHIP::ShopSelect(int32_t) {}
float SPACESHIP::LaserPrice() const { return 1000.0f; }
void SPACESHIP::ToggleLaunchSide() { launchSide = !launchSide; }
const char* SPACESHIP::PrimaryWeaponName() const { return ""; }
const char* SPACESHIP::SecondaryWeaponName() const { return ""; }
