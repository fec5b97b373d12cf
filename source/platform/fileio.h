// Whole files in and out: reading a regular file at once, and replacing a
// file so that a failure at any point leaves the previous one intact.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// Reads a regular file completely; false when it cannot be opened or read.
bool ReadWholeFile(const std::string& name, std::vector<uint8_t>& out);
// The same into memory that is not cleared first, for large files.
bool ReadWholeFile(const std::string& name, std::unique_ptr<uint8_t[]>& out, size_t& size);

// Writes the bytes to a hidden temporary file beside the target and renames
// it over the target. A symbolic link is followed, so the link itself stays;
// an existing file keeps its permissions. A read-only target is refused.
// Temporary files that a killed save of the same target left are removed.
bool ReplaceFile(const std::string& name, const uint8_t* data, size_t size);
