#include "platform/platform.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {
CONSOLEPLATFORM ConsolePlatform;
PLATFORM* Default = &ConsolePlatform;
PLATFORM* Current = &ConsolePlatform;
}

void CONSOLEPLATFORM::MessageBox(const std::string& text, const std::string& caption, MESSAGEICON)
{
    // One line per message: line breaks inside become spaces, trailing ones go.
    std::string line = text;
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.pop_back();
    for (char& c : line)
        if (c == '\n' || c == '\r')
            c = ' ';
    std::fprintf(stderr, "message [%s] %s\n", caption.c_str(), line.c_str());
    std::fflush(stderr);
}

bool CONSOLEPLATFORM::Ask(const std::string& text, const std::string& caption)
{
    MessageBox(text, caption, MSGICON_QUESTION);
    return false;
}

void CONSOLEPLATFORM::Beep()
{
    std::fputs("beep\n", stderr);
    std::fflush(stderr);
}

void CONSOLEPLATFORM::FatalExit(int status)
{
    std::fflush(stdout);
    std::fflush(stderr);
    std::_Exit(status);
}

uint32_t CONSOLEPLATFORM::TickCount()
{
    return MonotonicMilliseconds();
}

uint32_t MonotonicMilliseconds()
{
    using namespace std::chrono;
    return static_cast<uint32_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void SetPlatform(PLATFORM* platform)
{
    Current = platform ? platform : Default;
}

void SetDefaultPlatform(PLATFORM* platform)
{
    Default = platform ? platform : &ConsolePlatform;
    Current = Default;
}

PLATFORM& Platform()
{
    return *Current;
}

void ShowMessage(const std::string& text, const std::string& caption, MESSAGEICON icon)
{
    Current->MessageBox(text, caption, icon);
}

void InfoBeep()
{
    Current->Beep();
}

bool AskYesNo(const std::string& text, const std::string& caption)
{
    return Current->Ask(text, caption);
}

void FatalExit(int status)
{
    Current->FatalExit(status);
    std::abort(); // a backend's FatalExit never returns
}

uint32_t GetTickCount32()
{
    return Current->TickCount();
}

void FatalMessage(const std::string& text, const std::string& caption, MESSAGEICON icon, int status)
{
    Current->MessageBox(text, caption, icon);
    FatalExit(status);
}

void AssertionFailed(const char* expression, const char* module, int line)
{
    std::string text = "Assertion failed: ";
    text += expression;
    text += ", file ";
    text += module;
    text += ", line ";
    text += std::to_string(line);
    FatalMessage(text, "Assertion failed", MSGICON_STOP, 3);
}
