// The operations the benchmarks measure, written as the plain scans they are
// described as: no bit sets, no SIMD, no threads, no skipping of cells that
// cannot matter. They work on the same levels as the real operations and
// must give exactly the same results, or the ratios mean nothing.
#pragma once

#include "math/camera.h"
#include "orvlevel/level.h"

// Point by point: is it a corner of any segment?
void LiteralRemoveUnusedPoints(ORVLEVEL& level);
// Unlink every joined side, delete, then the point-by-point scan.
void LiteralDeleteSegment(ORVLEVEL& level, int32_t index);
// Light by light, segment by segment, corner by corner, one thread,
// clamping after each addition.
void LiteralCalculateLighting(ORVLEVEL& level);
// Both triangles of every side of every segment against the click ray.
void LiteralPickSide(ORVLEVEL& level, int x, int y, const CAMERA& camera, int width, int height);
// The first segment whose six side planes all have the point on their inner side.
int32_t LiteralFindSegment(const ORVLEVEL& level, VECTOR3D p);
// Every solid side of every segment, in slot order (CollidePoint's mode 0).
bool LiteralCollidePoint(ORVLEVEL& level, VECTOR3D* from, float distance, bool swept, VECTOR3D* to,
                         bool correct);
