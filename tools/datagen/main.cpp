// Writes the data files the programs load at start into one directory.
// Every file is original artwork made by code.
#include "datagen.h"

#include <cstdio>
#include <string>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: orvane-datagen OUTPUT_DIRECTORY\n");
        return 2;
    }
    std::string dir = argv[1];
    bool ok = WriteBitmaps(dir);
    ok = WriteMeshes(dir) && ok;
    ok = WriteSounds(dir) && ok;
    return ok ? 0 : 1;
}
