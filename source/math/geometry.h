// Rotations, triangle normals, the 3 x 3 solver, the ray-triangle test and
// the six-degrees-of-freedom moves of an object frame.
#pragma once

#include "math/vector3d.h"

void Rotate2D(float* xOut, float* yOut, float x, float y, float angle);
void RotateAroundAxis(VECTOR3D axis, VECTOR3D* v, long double angle);
VECTOR3D TriangleNormal(VECTOR3D a, VECTOR3D b, VECTOR3D c);
float CosAngle(VECTOR3D a, VECTOR3D b);
bool SolveLinear3(float m0, float m1, float m2, float m3,
                  float m4, float m5, float m6, float m7,
                  float m8, float m9, float m10, float m11,
                  float* r0, float* r1, float* r2);
bool Decompose3(VECTOR3D u, VECTOR3D v, VECTOR3D w, float* a, float* b, float* c, VECTOR3D r);

struct PLUCKER
{
    VECTOR3D Dir;
    VECTOR3D Moment;
};
void PluckerLine(VECTOR3D p, VECTOR3D q, VECTOR3D* dir, VECTOR3D* moment);
float PluckerSide(const PLUCKER& l1, const PLUCKER& l2);

bool IntersectRayTriangle(VECTOR3D p0, VECTOR3D p1, VECTOR3D p2, VECTOR3D o, VECTOR3D d,
                          float* t, float* u, float* v, bool cull);

// how 0-5 translate, 6-11 rotate; anything else changes nothing.
void MoveFrame(int how, float amount, VECTOR3D* P, VECTOR3D* X, VECTOR3D* Y, VECTOR3D* Z);
