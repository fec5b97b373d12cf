// run SCRIPT: an editing script against one level (see script.h).
#include "cli/commands.h"

#include "cli/script.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace {

bool ReadScript(const char* name, std::string& text, int& error)
{
    std::FILE* f = std::fopen(name, "rb");
    if (!f)
    {
        error = errno;
        return false;
    }
    char buffer[4096];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0)
        text.append(buffer, n);
    // A directory opens but does not read.
    error = std::ferror(f) ? errno : 0;
    std::fclose(f);
    return error == 0;
}

} // namespace

int CmdRun(std::span<char* const> args)
{
    const char* name = args[0];
    std::string text;
    int error = 0;
    if (!ReadScript(name, text, error))
    {
        std::fprintf(stderr, "orvane-cli run: cannot read %s: %s\n", name, std::strerror(error));
        return 1;
    }
    return RunScript(text, name, std::cout, std::cerr);
}
