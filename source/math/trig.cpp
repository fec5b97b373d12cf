#include "math/trig.h"

#include <cmath>

float SinTable[SIN_TABLE_SIZE];
namespace {
float AsinStorage[2 * ASIN_TABLE_HALF + 1];
}
float* const AsinTable = AsinStorage + ASIN_TABLE_HALF;

void InitTrigTables()
{
    for (int i = 0; i < SIN_TABLE_SIZE; ++i)
        SinTable[i] = static_cast<float>(std::sin(i * 0.001745329251));
    for (int i = -ASIN_TABLE_HALF; i <= ASIN_TABLE_HALF; ++i)
        AsinTable[i] = static_cast<float>(std::asin(i * 0.0001));
}

namespace {
// Static tables are filled before main so no lookup can precede them.
struct TRIGINIT
{
    TRIGINIT() { InitTrigTables(); }
} TrigInit;

int SinIndex(float a)
{
    // Truncation toward zero, then a remainder with the sign of the dividend.
    double scaled = static_cast<double>(a) * 572.97;
    if (!(scaled > -2.0e9 && scaled < 2.0e9)) // beyond int or NaN: reduce first
        scaled = std::isnan(scaled) ? 0.0 : std::fmod(std::trunc(scaled), 3600.0);
    int i = static_cast<int>(scaled);
    i %= 3600;
    if (i < 0)
        i += 3600;
    return i;
}
}

float FastSin(float a) { return SinTable[SinIndex(a)]; }
// The quarter turn is a double constant and the difference is rounded once:
// a float constant shifts the truncated table index for some angles.
constexpr double QUARTER_TURN = 1.570796326;

float FastCos(float a) { return FastSin(static_cast<float>(QUARTER_TURN - a)); }
float FastTan(float a) { return FastSin(a) / FastCos(a); }
float FastCot(float a) { return FastCos(a) / FastSin(a); }

float FastAsin(float x)
{
    if (x > 1.0f)
        x = 1.0f;
    if (x < -1.0f)
        x = -1.0f;
    if (std::isnan(x))
        x = 0.0f;
    int i = static_cast<int>(x * 10000.0);
    return AsinTable[i];
}

float FastAcos(float x) { return static_cast<float>(QUARTER_TURN - FastAsin(x)); }

float FastAtan(float x)
{
    double sign = x > 0.0f ? 1.0 : (x < 0.0f ? -1.0 : 0.0);
    double xd = x;
    float s = static_cast<float>(1.0 / std::sqrt(xd * xd + 1.0));
    return static_cast<float>(sign * (QUARTER_TURN - FastAsin(s)));
}

float FastAtan2(float y, float x)
{
    if (y == 0.0f && x == 0.0f)
        return 0.0f;
    if (y == 0.0f && x > 0.0f)
        return 0.0f;
    if (y == 0.0f && x < 0.0f)
        return 3.1415927f;
    if (x == 0.0f && y > 0.0f)
        return 1.5707964f;
    if (x == 0.0f && y < 0.0f)
        return -1.5707964f;
    float t = FastAtan(y / x);
    if (y > 0.0f && x > 0.0f)
        return t;
    if (y > 0.0f && x < 0.0f)
        return static_cast<float>(t + 3.1415926536);
    if (y < 0.0f && x > 0.0f)
        return t;
    if (y < 0.0f && x < 0.0f)
        return static_cast<float>(t - 3.1415926536);
    return 0.0f;
}

float AngleDifference(float a, float b)
{
    float d = a - b;
    if (d > 3.1415926536)
        return static_cast<float>(d - 6.2831853072);
    if (d < -3.1415926536)
        return static_cast<float>(d + 6.2831853072);
    return d;
}
