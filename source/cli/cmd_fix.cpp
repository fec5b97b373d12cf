// check --fix: the level check's safe repairs, written to a new file.
#include "cli/commands.h"
#include "cli/levelfiles.h"

#include "orvlevel/levelcheck.h"
#include "orvlevel/levelfix.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

int CmdCheckFix(std::span<char* const> args)
{
    if (args.size() != 2)
    {
        std::fprintf(stderr, "usage: orvane-cli check --fix LEVEL OUT\n");
        return EXIT_USAGE;
    }
    // The original stays as it was, whatever name OUT reaches it by.
    std::error_code error;
    if (std::filesystem::equivalent(args[0], args[1], error))
    {
        std::fprintf(stderr, "orvane-cli check --fix: OUT must not be LEVEL itself\n");
        return EXIT_USAGE;
    }
    CLIDOCUMENT doc;
    if (!doc.Open(args[0]))
        return EXIT_USAGE;
    for (const std::string& line : FixLevel(doc.Level()))
        std::printf("%s\n", line.c_str());
    if (!doc.SaveAs(args[1]))
        return EXIT_USAGE;
    // What is left, as check reports it on OUT.
    const std::vector<LEVELPROBLEM> problems = CheckLevel(doc.Level());
    for (const LEVELPROBLEM& p : problems)
        std::printf("%s\n", p.Text.c_str());
    return std::fflush(stdout) == 0 && problems.empty() ? 0 : 1;
}
