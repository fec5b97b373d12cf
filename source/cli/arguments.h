// Reading the numbers of command-line options the same way whatever the
// locale, shared by the commands that take them.
#pragma once

#include <cstddef>
#include <span>

// A number as the C locale reads it, the whole text and finite.
bool Number(const char* text, float& v);

// The twelve numbers after args[i] ("--camera": position, view direction, up,
// right); moves i onto the last of them. False when there are not twelve.
bool CameraOption(std::span<char* const> args, size_t& i, float (&camera)[12]);
