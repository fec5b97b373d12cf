// Writes the data files the programs load at start into one directory.
// Every file is original artwork made by code.
#include "datagen.h"

#include <cstdio>
#include <string>

bool WriteFile(const std::string& path, const std::vector<uint8_t>& bytes)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    bool ok = f && std::fwrite(bytes.data(), 1, bytes.size(), f) == bytes.size();
    if (f && std::fclose(f) != 0)
        ok = false;
    if (!ok)
        std::fprintf(stderr, "orvane-datagen: cannot write %s\n", path.c_str());
    return ok;
}

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
    ok = WriteIcon(dir) && ok;
    return ok ? 0 : 1;
}
