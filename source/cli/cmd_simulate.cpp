// simulate: the game's object simulation outside the editor, so the
// behaviour of ships, shots and items can be watched in the saved result.
#include "cli/commands.h"
#include "cli/levelfiles.h"

#include "math/camera.h"
#include "math/random.h"

#include <charconv>
#include <cstdio>
#include <cstring>

namespace {

template <class T>
bool Number(const char* text, T& v)
{
    const char* end = text + std::strlen(text);
    auto [p, ec] = std::from_chars(text, end, v);
    return ec == std::errc() && p == end && p != text;
}

} // namespace

int CmdSimulate(std::span<char* const> args)
{
    int32_t ticks = 0;
    if (!Number(args[1], ticks) || ticks < 0)
    {
        std::fprintf(stderr, "orvane-cli simulate: TICKS must be a whole number from 0 up: \"%s\"\n", args[1]);
        return EXIT_USAGE;
    }
    if (args.size() > 3)
    {
        uint32_t seed = 0;
        if (!Number(args[3], seed))
        {
            std::fprintf(stderr, "orvane-cli simulate: SEED must be a whole number from 0 to 4294967295: \"%s\"\n",
                         args[3]);
            return EXIT_USAGE;
        }
        SRand(seed);
    }
    CLIDOCUMENT doc;
    if (!doc.Open(args[0]))
        return 1;
    // The camera stays at its start-up place: it only carries the listener.
    CAMERA camera;
    for (int32_t i = 0; i < ticks; ++i)
    {
        doc.Level().GameTick(camera);
        doc.Level().PhysicsStep();
    }
    return doc.SaveAs(args[2]) ? 0 : 1;
}
