#include "math/vector3d.h"

#include <cmath>

VECTOR3D operator+(VECTOR3D a, VECTOR3D b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
VECTOR3D operator-(VECTOR3D a, VECTOR3D b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
VECTOR3D operator-(VECTOR3D a) { return {-a.x, -a.y, -a.z}; }
VECTOR3D operator*(float k, VECTOR3D a) { return {k * a.x, k * a.y, k * a.z}; }
VECTOR3D operator*(VECTOR3D a, float k) { return {k * a.x, k * a.y, k * a.z}; }
// Three true divisions: results must match a division, not a multiplication by 1/k.
VECTOR3D operator/(VECTOR3D a, float k) { return {a.x / k, a.y / k, a.z / k}; }

VECTOR3D operator+=(VECTOR3D& a, VECTOR3D b) { a = a + b; return a; }
VECTOR3D operator-=(VECTOR3D& a, VECTOR3D b) { a = a - b; return a; }
VECTOR3D operator*=(VECTOR3D& a, float k) { a = a * k; return a; }
VECTOR3D operator/=(VECTOR3D& a, float k) { a = a / k; return a; }

bool operator==(VECTOR3D a, VECTOR3D b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
bool operator!=(VECTOR3D a, VECTOR3D b) { return !(a == b); }

float Dot(VECTOR3D a, VECTOR3D b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

VECTOR3D Cross(VECTOR3D a, VECTOR3D b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

VECTOR3D CrossAssign(VECTOR3D& a, VECTOR3D b)
{
    a = Cross(a, b);
    return a;
}

float Length(VECTOR3D a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }

float Square(float v) { return v * v; }

TEXPAIR ToPair(VECTOR3D a) { return {a.x, a.y}; }
