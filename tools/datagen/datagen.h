#pragma once

#include <string>

// Each writes its files into dir and returns false (after a message on
// standard error) when a file cannot be written.
bool WriteBitmaps(const std::string& dir);
bool WriteMeshes(const std::string& dir);
bool WriteSounds(const std::string& dir);
