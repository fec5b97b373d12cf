// Level file commands: new, resave, dump, check.
#include "cli/commands.h"

#include "cli/levelfiles.h"
#include "orvlevel/levelcheck.h"
#include "orvlevel/leveldump.h"

#include <cstdio>
#include <string>

int CmdNew(std::span<char* const> args)
{
    CLIDOCUMENT doc;
    return doc.SaveAs(args[0]) ? 0 : 1;
}

int CmdResave(std::span<char* const> args)
{
    CLIDOCUMENT doc;
    if (!doc.Open(args[0]))
        return 1;
    return doc.SaveAs(args[1]) ? 0 : 1;
}

int CmdDump(std::span<char* const> args)
{
    CLIDOCUMENT doc;
    if (!doc.Open(args[0]))
        return 1;
    std::string json = DumpLevelJson(doc.Level());
    json += '\n';
    std::fwrite(json.data(), 1, json.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

int CmdCheck(std::span<char* const> args)
{
    if (std::string(args[0]) == "--fix")
        return CmdCheckFix(args.subspan(1));
    if (args.size() != 1)
    {
        std::fprintf(stderr, "usage: orvane-cli check LEVEL | check --fix LEVEL OUT\n");
        return EXIT_USAGE;
    }
    CLIDOCUMENT doc;
    if (!doc.Open(args[0]))
        return 1;
    const std::vector<LEVELPROBLEM> problems = CheckLevel(doc.Level());
    for (const LEVELPROBLEM& p : problems)
        std::printf("%s\n", p.Text.c_str());
    return std::fflush(stdout) == 0 && problems.empty() ? 0 : 1;
}
