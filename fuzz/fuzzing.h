// What every fuzz target shares: a platform backend that stays quiet and
// turns the designed fatal ends into an exception the target catches, the
// program directory as the working directory (the data files are there),
// and a file for loaders that only take a file name.
#pragma once

#include "platform/platform.h"

#include <cstddef>
#include <cstdint>
#include <string>

// A designed fatal end ("%s nem található!", "Undefined Thing:", a corrupt
// wave file): not a finding.
struct FUZZEXIT
{
};

class FUZZPLATFORM : public PLATFORM
{
public:
    void MessageBox(const std::string&, const std::string&, MESSAGEICON) override {}
    bool Ask(const std::string&, const std::string&) override { return false; }
    void Beep() override {}
    [[noreturn]] void FatalExit(int) override { throw FUZZEXIT{}; }
    // Every timer is due at every look.
    uint32_t TickCount() override { return Now += 41; }

private:
    uint32_t Now = 0;
};

// Installs the backend and changes into the directory of the program.
void FuzzSetUp(const char* argv0);

// Writes the input to this process's scratch file and answers its name;
// the file and the same name with ".level" after it are removed at exit.
const char* FuzzFile(const uint8_t* data, size_t size);
