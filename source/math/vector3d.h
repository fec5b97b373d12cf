// The one value type of the program's geometry: points, directions, colours
// (red, green, blue in x, y, z) and texture pairs (s, t in x, y).
#pragma once

struct VECTOR3D
{
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;

    VECTOR3D() = default;
    VECTOR3D(float x_, float y_, float z_) : x(x_), y(y_), z(z_) {}
};

// A side corner's texture coordinate.
struct TEXPAIR
{
    float s = 0.0f;
    float t = 0.0f;
};

VECTOR3D operator+(VECTOR3D a, VECTOR3D b);
VECTOR3D operator-(VECTOR3D a, VECTOR3D b);
VECTOR3D operator-(VECTOR3D a);
VECTOR3D operator*(float k, VECTOR3D a);
VECTOR3D operator*(VECTOR3D a, float k);
VECTOR3D operator/(VECTOR3D a, float k);
VECTOR3D operator+=(VECTOR3D& a, VECTOR3D b);
VECTOR3D operator-=(VECTOR3D& a, VECTOR3D b);
VECTOR3D operator*=(VECTOR3D& a, float k);
VECTOR3D operator/=(VECTOR3D& a, float k);
bool operator==(VECTOR3D a, VECTOR3D b);
bool operator!=(VECTOR3D a, VECTOR3D b);

float Dot(VECTOR3D a, VECTOR3D b);
VECTOR3D Cross(VECTOR3D a, VECTOR3D b);
VECTOR3D CrossAssign(VECTOR3D& a, VECTOR3D b);
float Length(VECTOR3D a);
float Square(float v);
TEXPAIR ToPair(VECTOR3D a);
