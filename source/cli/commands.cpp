#include "cli/commands.h"

#include <cstdio>
#include <cstring>

namespace {

const CLICOMMAND Commands[] = {
    {"new", "OUT", "save the default level", 1, 1, CmdNew},
    {"resave", "IN OUT", "load a level and save it again", 2, 2, CmdResave},
    {"dump", "IN", "print the whole level as JSON", 1, 1, CmdDump},
    {"check", "[--fix] LEVEL [OUT]", "list the level's problems (exit 1 when there are any); --fix repairs into OUT", 1, 3, CmdCheck},
    {"diff", "A B [--png OUT]", "list how two levels differ, one a line (exit 1 when they do)", 2, 4, CmdDiff},
    {"run", "SCRIPT", "run an editing script against one level", 1, 1, CmdRun},
    {"simulate", "LEVEL TICKS OUT [SEED]", "run the game objects for TICKS ticks and save the result", 3, 4, CmdSimulate},
    {"play", "LEVEL TICKS OUT [options]", "fly the player's ship through a copy of the level, save the result", 3, 22, CmdPlay},
    {"mesh", "FILE SCALE", "print a mesh's counts, bounds and radii as JSON", 2, 2, CmdMesh},
    {"render", "LEVEL OUT.png [--size WxH] [--camera 12 numbers]",
     "draw the editor's first frame of a level offscreen into a PNG", 2, 17, CmdRender},
    {"wave", "FILE", "print a wave file's format, frequency and size as JSON", 1, 1, CmdWave},
};

void PrintUsage(std::FILE* to)
{
    std::fputs("usage: orvane-cli COMMAND ARGUMENTS...\n", to);
    for (const CLICOMMAND& c : Commands)
    {
        char line[64];
        std::snprintf(line, sizeof line, "%s %s", c.Name, c.Arguments);
        std::fprintf(to, "  orvane-cli %-22s %s\n", line, c.Summary);
    }
}

} // namespace

std::span<const CLICOMMAND> CliCommands()
{
    return Commands;
}

int RunCommandLine(int argc, char** argv)
{
    static COUNTINGPLATFORM backend;
    SetDefaultPlatform(&backend);
    if (argc == 2 && (!std::strcmp(argv[1], "help") || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h")))
    {
        PrintUsage(stdout);
        return 0;
    }
    if (argc >= 2)
    {
        int count = argc - 2;
        for (const CLICOMMAND& c : Commands)
            if (!std::strcmp(c.Name, argv[1]))
            {
                if (count < c.MinArgs || count > c.MaxArgs)
                {
                    std::fprintf(stderr, "orvane-cli %s: wrong number of arguments\n", c.Name);
                    break;
                }
                return c.Run(std::span<char* const>(argv + 2, size_t(count)));
            }
    }
    PrintUsage(stderr);
    return EXIT_USAGE;
}
