#include "cli/levelfiles.h"

#include "platform/platform.h"
#include "things/thingclasses.h"
#include "things/thingmeshes.h"

#include <cstdlib>

WORLDREADY::WORLDREADY()
{
    LoadThingMeshes();
    RegisterThingClasses();
}

namespace {

// Passes everything on to the backend it watches, counting the messages.
class WATCHEDPLATFORM : public PLATFORM
{
public:
    explicit WATCHEDPLATFORM(PLATFORM& next) : Next(next) {}
    PLATFORM& Next;
    int Messages = 0;

    void MessageBox(const std::string& text, const std::string& caption, MESSAGEICON icon) override
    {
        ++Messages;
        Next.MessageBox(text, caption, icon);
    }
    bool Ask(const std::string& text, const std::string& caption) override { return Next.Ask(text, caption); }
    void Beep() override { Next.Beep(); }
    [[noreturn]] void FatalExit(int status) override
    {
        Next.FatalExit(status);
        std::abort(); // a backend's FatalExit never returns
    }
    uint32_t TickCount() override { return Next.TickCount(); }
};

} // namespace

bool OpenWhole(ORVEDOCUMENT& doc, const std::string& path)
{
    PLATFORM& backend = Platform();
    WATCHEDPLATFORM watch(backend);
    SetPlatform(&watch);
    const bool opened = doc.Open(path);
    SetPlatform(&backend);
    return opened && watch.Messages == 0;
}
