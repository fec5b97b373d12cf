// The operations the benchmarks measure, written as the plain scans they are
// described as, without the tables, bit sets or threads of the real ones.
// They run on the same level and must give the same results.
#pragma once

#include "editor/camera.h"
#include "orvlevel/level.h"

// Point by point: is it a corner of any segment?
void LiteralRemoveUnusedPoints(ORVLEVEL& level);
// Unlink, delete, then the literal point scan.
void LiteralDeleteSegment(ORVLEVEL& level, int32_t index);
// Light by light, single-threaded, clamping after each.
void LiteralCalculateLighting(ORVLEVEL& level);
// Every side of every segment against the click ray; the selection as PickSide leaves it.
void LiteralPickSide(ORVLEVEL& level, int x, int y, const CAMERA& camera, int width, int height);
// The first segment no side plane puts the point outside of.
int32_t LiteralFindSegment(const ORVLEVEL& level, VECTOR3D p);
