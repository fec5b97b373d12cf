// The commands of orvane-cli. A command gets the arguments that follow its
// name (their count already checked against the table) and returns the
// program's exit status.
#pragma once

#include "platform/platform.h"

#include <span>

constexpr int EXIT_USAGE = 2;

struct CLICOMMAND
{
    const char* Name;
    const char* Arguments; // for the usage text
    const char* Summary;
    int MinArgs;
    int MaxArgs;
    int (*Run)(std::span<char* const> args);
};

std::span<const CLICOMMAND> CliCommands();

// The tool's backend: the console one that also counts messages and beeps, so
// that a file the loader complained about gives a non-zero status even where
// loading goes on. A fatal end is always a failure here, even the ones that
// end the editor with status 0 (a missing data file).
class COUNTINGPLATFORM : public CONSOLEPLATFORM
{
public:
    int Messages = 0;
    int Beeps = 0;

    void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) override
    {
        ++Messages;
        CONSOLEPLATFORM::MessageBox(text, caption, icon);
    }
    void Beep() override
    {
        ++Beeps;
        CONSOLEPLATFORM::Beep();
    }
    [[noreturn]] void FatalExit(int status) override { CONSOLEPLATFORM::FatalExit(status ? status : 1); }
};

// Looks up the command in argv[1] and runs it with COUNTINGPLATFORM as the
// default backend; usage errors exit 2.
int RunCommandLine(int argc, char** argv);

// cmd_level.cpp
int CmdNew(std::span<char* const> args);
int CmdResave(std::span<char* const> args);
int CmdDump(std::span<char* const> args);
int CmdCheck(std::span<char* const> args);
// cmd_fix.cpp: check --fix LEVEL OUT
int CmdCheckFix(std::span<char* const> args);

// cmd_diff.cpp
int CmdDiff(std::span<char* const> args);

// cmd_run.cpp
int CmdRun(std::span<char* const> args);

// cmd_simulate.cpp
int CmdSimulate(std::span<char* const> args);

// cmd_play.cpp
int CmdPlay(std::span<char* const> args);

// cmd_render.cpp
int CmdRender(std::span<char* const> args);

// cmd_media.cpp
int CmdMesh(std::span<char* const> args);
int CmdWave(std::span<char* const> args);
