#include "things/spaceship.h"

#include <cstring>

// Placeholder bodies: the ship comes next.
int32_t Fibonacci(int32_t n)
{
    if (n < 0)
        return 0;
    int32_t a = 1, b = 1; // F(0), F(1)
    for (int32_t i = 1; i < n; ++i)
    {
        int32_t c = a + b;
        a = b;
        b = c;
    }
    return b;
}
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
void SPACESHIP::ShowMessage(const char* text)
{
    for (const char* line : messages)
        if (std::strncmp(line, text, SHIP_MESSAGE_SIZE) == 0)
            return;
    ScrollMessages();
    std::strncpy(messages[SHIP_MESSAGES - 1], text, SHIP_MESSAGE_SIZE - 1);
}

void SPACESHIP::ScrollMessages()
{
    std::memmove(messages[0], messages[1], sizeof messages - SHIP_MESSAGE_SIZE);
    std::memset(messages[SHIP_MESSAGES - 1], 0, SHIP_MESSAGE_SIZE);
}
void SPACESHIP::DamageShield(float amount) { shield -= amount; }
void SPACESHIP::OpenShop() {}
void SPACESHIP::ShopSelect(int32_t) {}
float SPACESHIP::LaserPrice() const { return 1000.0f; }
void SPACESHIP::ToggleLaunchSide() { launchSide = !launchSide; }
const char* SPACESHIP::PrimaryWeaponName() const { return ""; }
const char* SPACESHIP::SecondaryWeaponName() const { return ""; }
