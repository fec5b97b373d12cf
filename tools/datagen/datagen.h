#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Each writes its files into dir and returns false (after a message on
// standard error) when a file cannot be written.
bool WriteBitmaps(const std::string& dir);
bool WriteMeshes(const std::string& dir);
bool WriteSounds(const std::string& dir);
// The program's icon, orvane-builder.svg.
bool WriteIcon(const std::string& dir);

// Writes the bytes to path; on failure says so on standard error and returns false.
bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes);
