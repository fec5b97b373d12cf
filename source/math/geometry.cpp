#include "math/geometry.h"
#include "math/trig.h"

#include <cmath>

void Rotate2D(float* xOut, float* yOut, float x, float y, float angle)
{
    float c = FastCos(angle);
    float s = FastSin(angle);
    *xOut = x * c - y * s;
    *yOut = x * s + y * c;
}

void RotateAroundAxis(VECTOR3D axis, VECTOR3D* v, long double angle)
{
    float theta = static_cast<float>(angle);
    float c = FastCos(theta);
    float t = 1.0f - FastCos(theta);
    float s = FastSin(theta);
    float l = std::sqrt(axis.x * axis.x + axis.y * axis.y + axis.z * axis.z);
    float ax = axis.x / l, ay = axis.y / l, az = axis.z / l;
    float x = v->x, y = v->y, z = v->z;
    // The transpose of the usual right-handed matrix: the camera and the
    // frame moves are built on this sense of rotation.
    v->x = (t * ax * ax + c) * x + (t * ax * ay + s * az) * y + (t * ax * az - s * ay) * z;
    v->y = (t * ax * ay - s * az) * x + (t * ay * ay + c) * y + (t * ay * az + s * ax) * z;
    v->z = (t * ax * az + s * ay) * x + (t * ay * az - s * ax) * y + (t * az * az + c) * z;
}

VECTOR3D TriangleNormal(VECTOR3D a, VECTOR3D b, VECTOR3D c)
{
    VECTOR3D n = Cross(a - b, a - c);
    float l = Length(n);
    if (std::fabs(l) < 0.000001)
        return {1, 0, 0};
    return n / l;
}

float CosAngle(VECTOR3D a, VECTOR3D b)
{
    float p = Length(a) * Length(b);
    if (p == 0.0f)
        return 2.0f;
    return Dot(a, b) / p;
}

bool SolveLinear3(float m0, float m1, float m2, float m3,
                  float m4, float m5, float m6, float m7,
                  float m8, float m9, float m10, float m11,
                  float* r0, float* r1, float* r2)
{
    float det = m0 * (m5 * m10 - m6 * m9) + m1 * (m6 * m8 - m4 * m10) + m2 * (m4 * m9 - m5 * m8);
    if (det == 0.0f)
        return false;
    *r0 = -(m1 * (m6 * m11 - m7 * m10) + m2 * (m7 * m9 - m5 * m11) + m3 * (m5 * m10 - m6 * m9)) / det;
    *r1 = (m0 * (m6 * m11 - m7 * m10) + m2 * (m7 * m8 - m4 * m11) + m3 * (m4 * m10 - m6 * m8)) / det;
    *r2 = -(m0 * (m5 * m11 - m7 * m9) + m1 * (m7 * m8 - m4 * m11) + m3 * (m4 * m9 - m5 * m8)) / det;
    return true;
}

bool Decompose3(VECTOR3D u, VECTOR3D v, VECTOR3D w, float* a, float* b, float* c, VECTOR3D r)
{
    return SolveLinear3(u.x, v.x, w.x, -r.x,
                        u.y, v.y, w.y, -r.y,
                        u.z, v.z, w.z, -r.z, a, b, c);
}

void PluckerLine(VECTOR3D p, VECTOR3D q, VECTOR3D* dir, VECTOR3D* moment)
{
    *dir = p - q;
    *moment = Cross(p, q);
}

float PluckerSide(const PLUCKER& l1, const PLUCKER& l2)
{
    return Dot(l1.Dir, l2.Moment) + Dot(l1.Moment, l2.Dir);
}

bool IntersectRayTriangle(VECTOR3D p0, VECTOR3D p1, VECTOR3D p2, VECTOR3D o, VECTOR3D d,
                          float* t, float* u, float* v, bool cull)
{
    if (cull) {
        PLUCKER r, e01, e12, e20;
        PluckerLine(o, o + d, &r.Dir, &r.Moment);
        PluckerLine(p0, p1, &e01.Dir, &e01.Moment);
        PluckerLine(p1, p2, &e12.Dir, &e12.Moment);
        PluckerLine(p2, p0, &e20.Dir, &e20.Moment);
        if (PluckerSide(r, e01) < 0 || PluckerSide(r, e12) < 0 || PluckerSide(r, e20) < 0)
            return false;
    }
    VECTOR3D e1 = p1 - p0;
    VECTOR3D e2 = p2 - p0;
    if (p1 == p0 || p2 == p0 || p1 == p2)
        return false;
    VECTOR3D pv = Cross(d, e2);
    float det = Dot(e1, pv);
    VECTOR3D tv;
    if (det > 0) {
        tv = o - p0;
    } else {
        tv = p0 - o;
        det = -det;
    }
    if (det < 0.0001)
        return false;
    *u = Dot(tv, pv);
    if (*u < 0 || *u > det)
        return false;
    VECTOR3D qv = Cross(tv, e1);
    *v = Dot(d, qv);
    if (*v < 0 || *u + *v > det)
        return false;
    *t = Dot(e2, qv);
    float inv = 1.0f / det;
    *t *= inv;
    *u *= inv;
    *v *= inv;
    return *t > 0;
}

void MoveFrame(int how, float amount, VECTOR3D* P, VECTOR3D* X, VECTOR3D* Y, VECTOR3D* Z)
{
    VECTOR3D axis;
    switch (how) {
    case 0: *P += *X * amount; break;
    case 1: *P -= *X * amount; break;
    case 2: *P -= *Z * amount; break;
    case 3: *P += *Z * amount; break;
    case 4: *P += *Y * amount; break;
    case 5: *P -= *Y * amount; break;
    case 6: axis = *Y; RotateAroundAxis(axis, Z, -amount); RotateAroundAxis(axis, X, -amount); break;
    case 7: axis = *Y; RotateAroundAxis(axis, Z, amount); RotateAroundAxis(axis, X, amount); break;
    case 8: axis = *Z; RotateAroundAxis(axis, Y, amount); RotateAroundAxis(axis, X, amount); break;
    case 9: axis = *Z; RotateAroundAxis(axis, Y, -amount); RotateAroundAxis(axis, X, -amount); break;
    case 10: axis = *X; RotateAroundAxis(axis, Z, amount); RotateAroundAxis(axis, Y, amount); break;
    case 11: axis = *X; RotateAroundAxis(axis, Z, -amount); RotateAroundAxis(axis, Y, -amount); break;
    default: break;
    }
}
