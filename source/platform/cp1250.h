// Code page 1250, the encoding of level files, texture names and 3D labels.
#pragma once

#include <string>
#include <string_view>

// Every byte maps to one character; the five unassigned bytes map to U+FFFD.
std::string Cp1250ToUtf8(std::string_view cp1250);
// Characters that code page 1250 lacks become '?'; malformed UTF-8 bytes too.
std::string Utf8ToCp1250(std::string_view utf8);
