// Level file commands: new, resave, dump.
#include "cli/commands.h"

#include "cli/levelfiles.h"
#include "orvlevel/leveldump.h"

#include <cstdio>
#include <string>

int CmdNew(std::span<char* const> args)
{
    CURRENTLEVEL level;
    return SaveLevelFile(*level, args[0]) ? 0 : 1;
}

int CmdResave(std::span<char* const> args)
{
    CURRENTLEVEL level;
    if (!LoadLevelFile(*level, args[0]))
        return 1;
    return SaveLevelFile(*level, args[1]) ? 0 : 1;
}

int CmdDump(std::span<char* const> args)
{
    CURRENTLEVEL level;
    if (!LoadLevelFile(*level, args[0]))
        return 1;
    std::string json = DumpLevelJson(*level);
    json += '\n';
    std::fwrite(json.data(), 1, json.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
