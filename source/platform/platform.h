// The seam between the program and the desktop: message boxes, beeps, fatal
// ends and the millisecond clock. The core calls only these functions; the
// editor, the command-line tool and the tests each install their own backend.
#pragma once

#include <cstdint>
#include <string>

enum MESSAGEICON
{
    MSGICON_NONE = 0,
    MSGICON_STOP,
    MSGICON_INFORMATION,
    MSGICON_WARNING,
    MSGICON_QUESTION,
};

class PLATFORM
{
public:
    virtual ~PLATFORM() = default;
    // Texts are UTF-8. A message box has no owner window and an OK button.
    virtual void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) = 0;
    // A question with "yes" and "no"; true for yes.
    virtual bool Ask(const std::string& text, const std::string& caption) = 0;
    // The information beep that answers a refused command.
    virtual void Beep() = 0;
    // Ends the program at once with the given status; nothing is cleaned up.
    [[noreturn]] virtual void FatalExit(int status) = 0;
    // Monotonic milliseconds, wrapping at 2^32.
    virtual uint32_t TickCount() = 0;
};

// The console backend: messages become "message [CAPTION] TEXT" lines and
// beeps "beep" lines on standard error; FatalExit flushes and exits.
class CONSOLEPLATFORM : public PLATFORM
{
public:
    void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) override;
    // Nobody is there to answer: the question is shown and answered no.
    bool Ask(const std::string& text, const std::string& caption) override;
    void Beep() override;
    [[noreturn]] void FatalExit(int status) override;
    uint32_t TickCount() override;
};

// Installs a backend (not owned); null restores the default one.
void SetPlatform(PLATFORM* platform);
// Makes a backend (not owned) the default and installs it; null makes the
// console backend the default again.
void SetDefaultPlatform(PLATFORM* platform);
PLATFORM& Platform();

// Shorthands used throughout the program.
void ShowMessage(const std::string& text, const std::string& caption, MESSAGEICON icon = MSGICON_NONE);
void InfoBeep();
bool AskYesNo(const std::string& text, const std::string& caption);
[[noreturn]] void FatalExit(int status);
uint32_t GetTickCount32();
uint32_t MonotonicMilliseconds();

// Exit status of fatal ends that name none of their own.
constexpr int FATAL_STATUS = 1;

// Shows the message box (caption "FATAL!" unless given) and ends the program.
[[noreturn]] void FatalMessage(const std::string& text, const std::string& caption = "FATAL!",
                               MESSAGEICON icon = MSGICON_NONE, int status = FATAL_STATUS);

// A failed run-time check after an OpenGL or OpenAL call: shows the expression
// and the module and ends the program.
[[noreturn]] void AssertionFailed(const char* expression, const char* module, int line);

#define ORV_ASSERT(expr, module) \
    do { if (!(expr)) AssertionFailed(#expr, module, __LINE__); } while (0)
