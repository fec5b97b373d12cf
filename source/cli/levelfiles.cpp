#include "cli/levelfiles.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

bool LoadLevelFile(ORVLEVEL& level, const char* name)
{
    // A failed read leaves FileName alone, so only a name set by this load
    // tells success from a level that had one already.
    std::optional<std::string> had = std::move(level.FileName);
    level.FileName.reset();
    level.LoadLevel(name);
    if (level.FileName)
        return true;
    level.FileName = std::move(had);
    return false;
}

bool SaveLevelFile(ORVLEVEL& level, const char* name)
{
    level.SaveLevel(name);
    std::vector<uint8_t> expected = level.Serialize();
    std::FILE* f = std::fopen(name, "rb");
    if (!f)
        return false;
    std::vector<uint8_t> stored(expected.size() + 1);
    size_t n = std::fread(stored.data(), 1, stored.size(), f);
    bool ok = !std::ferror(f) && n == expected.size() && std::equal(expected.begin(), expected.end(), stored.begin());
    std::fclose(f);
    return ok;
}
