// Numbers in dialog fields, read and written in the C locale whatever the
// user's locale, with the C library's rules: only the leading number counts
// and a text that is no number reads as 0 ("3.7" as an integer is 3).
#pragma once

#include <QString>

#include <cstdint>

double TextToDouble(const QString& text);
// Read as a 32-bit long: values beyond its range saturate, as strtol does.
int32_t TextToLong(const QString& text);

// "%-0.1f" and "%d".
QString FormatOneDecimal(double value);
QString FormatInt(int value);

// A double truncated toward zero to a 32-bit int; values that do not fit
// (and NaN) give INT32_MIN, the processor's answer for an invalid conversion.
int32_t TruncateToInt(double value);
