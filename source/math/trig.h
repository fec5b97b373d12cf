// Table trigonometry at a tenth of a degree.
#pragma once

constexpr int SIN_TABLE_SIZE = 3601;    // 0 ... 3600
constexpr int ASIN_TABLE_HALF = 10000;  // -10000 ... +10000

extern float SinTable[SIN_TABLE_SIZE];
// AsinTable[i] for i in -10000 ... 10000 (points into the middle of its storage).
extern float* const AsinTable;

void InitTrigTables();

float FastSin(float a);
float FastCos(float a);
float FastTan(float a);
float FastCot(float a);
float FastAsin(float x);
float FastAcos(float x);
float FastAtan(float x);
float FastAtan2(float y, float x);
float AngleDifference(float a, float b);
