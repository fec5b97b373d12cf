// Texture file names are stored relative to the program's directory, with
// backslashes, so a level reads the same in the game on Windows.
#pragma once

#include <string>

// The path (as a file dialog gives it, separated by "/") relative to the
// directory `current`: one "..\" per directory of `current` left, then the
// rest of the path joined with "\". Pieces are compared without regard to
// case; the first directory that differs comes out in upper case, since it
// was compared after conversion. A path equal to `current` gives "".
std::string MakeRelativePath(const std::string& path, const std::string& current);
// The same against the current directory.
std::string MakeRelativePath(const std::string& path);
