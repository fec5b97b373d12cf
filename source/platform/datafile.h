// Opening the data files a level names (textures, written on Windows as
// relative, backslash-separated, code page 1250 names).
#pragma once

#include <string>

// Turns a stored name into a path of this file system: backslashes become
// slashes and the text becomes UTF-8. When that exact path does not exist,
// each component is matched case-insensitively against its directory.
// Returns the converted name unchanged when nothing matches.
std::string ResolveDataPath(const char* storedName);

// Opens a data file for reading and writing, as the bitmap reader does: a
// file that is missing, or that the program may not write (read-only), is not
// opened. Returns a file descriptor or -1.
int OpenDataFileReadWrite(const char* storedName);
