// Opening the data files a level names (textures, written on Windows as
// relative, backslash-separated, code page 1250 names).
#pragma once

#include <string>
#include <vector>

// Turns a stored name into a path of this file system: backslashes become
// slashes and the text becomes UTF-8. When that exact path does not exist,
// each component is matched case-insensitively against its directory.
// Returns the converted name unchanged when nothing matches.
std::string ResolveDataPath(const char* storedName);

// Opens a data file for reading and writing, as the bitmap reader does: a
// file that is missing, or that the program may not write (read-only), is not
// opened. Returns a file descriptor or -1.
int OpenDataFileReadWrite(const char* storedName);

// Data files are looked up in the current directory first. Where they are not
// found there, these folders are searched in order: the executable's own
// folder (the build tree), share/orvane-builder beside it, the installed data
// folder and orvane-builder under each folder of $XDG_DATA_DIRS.
const std::vector<std::string>& DataDirectories();

// The level file being worked on: bitmaps are also looked up beside it, after
// the current directory and before the data directories. Empty: no file.
void SetLevelDirectory(const std::string& levelFile);

// A bitmap by its stored name, found the same way as OpenBitmapFile finds it
// but writable or not: the path of the regular file, or empty.
std::string FindBitmapFile(const char* storedName);

// A mesh or a sound by its UTF-8 name: the name itself when it exists, else
// the first match in the data directories, else the name unchanged.
std::string FindDataFile(const char* name);

// Opens a bitmap: as OpenDataFileReadWrite first; where that fails, read-only
// from beside the level or the data directories. A descriptor or -1.
int OpenBitmapFile(const char* storedName);
