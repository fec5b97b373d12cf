// Level file commands: new, resave, dump.
#include "cli/commands.h"

#include "orvlevel/leveldump.h"
#include "orvlevel/level.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

namespace {

// The level every command works on; things reach it through TheLevel.
class CURRENTLEVEL
{
public:
    CURRENTLEVEL() : Level(std::make_unique<ORVLEVEL>()) { TheLevel = Level.get(); }
    ~CURRENTLEVEL()
    {
        Level.reset();
        TheLevel = nullptr;
    }
    ORVLEVEL& operator*() { return *Level; }

private:
    std::unique_ptr<ORVLEVEL> Level;
};

// LoadLevel keeps the level it had (and no file name) when the file could not
// be read; it has already said so.
bool Load(ORVLEVEL& level, const char* name)
{
    level.LoadLevel(name);
    return level.FileName.has_value();
}

// SaveLevel reports a failure only as a message; the status comes from
// reading back what is on disk.
bool Save(ORVLEVEL& level, const char* name)
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

} // namespace

int CmdNew(std::span<char* const> args)
{
    CURRENTLEVEL level;
    return Save(*level, args[0]) ? 0 : 1;
}

int CmdResave(std::span<char* const> args)
{
    CURRENTLEVEL level;
    if (!Load(*level, args[0]))
        return 1;
    return Save(*level, args[1]) ? 0 : 1;
}

int CmdDump(std::span<char* const> args)
{
    CURRENTLEVEL level;
    if (!Load(*level, args[0]))
        return 1;
    std::string json = DumpLevelJson(*level);
    json += '\n';
    std::fwrite(json.data(), 1, json.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
