#include "fuzzing.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <unistd.h>

namespace {

FUZZPLATFORM Quiet;
std::string Scratch;

} // namespace

void FuzzSetUp(const char* argv0)
{
    SetPlatform(&Quiet);
    const std::string program = argv0;
    size_t slash = program.rfind('/');
    if (slash != std::string::npos && chdir(program.substr(0, slash + 1).c_str()) != 0)
        std::perror("chdir");
    // Memory-backed when the system has it: every input is written there.
    const char* tmp = std::getenv("TMPDIR");
    const std::string dir = tmp && *tmp ? tmp : access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    Scratch = dir + "/orvfuzz-" + std::to_string(getpid());
    std::atexit([] {
        unlink(Scratch.c_str());
        unlink((Scratch + ".level").c_str());
    });
}

const char* FuzzFile(const uint8_t* data, size_t size)
{
    FILE* f = std::fopen(Scratch.c_str(), "wb");
    if (!f)
        std::abort();
    if (size && std::fwrite(data, 1, size, f) != size)
        std::abort();
    std::fclose(f);
    return Scratch.c_str();
}
