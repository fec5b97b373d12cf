// play: a play-test of a level without a window. The player's ship flies
// under the actions of an input file, tick by tick; the result is saved and
// the last frame from the ship can be drawn offscreen.
#include "cli/arguments.h"
#include "cli/commands.h"
#include "cli/levelfiles.h"

#include "graphics/texture.h"
#include "math/random.h"
#include "play/playsession.h"
#include "render/glthings.h"
#include "render/offscreen.h"
#include "render/view.h"
#include "things/spaceship.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <locale.h>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int PNG_WIDTH = 640, PNG_HEIGHT = 480;

const char* const HeldNames[PLAY_ACTIONS] = {
    "forward", "back", "left", "right", "up", "down", "turnleft", "turnright",
    "lookdown", "lookup", "rollleft", "rollright", "laser", "tempest",
};

enum ONESHOT
{
    SHOT_SHOP,
    SHOT_CHOOSE, // with its item number
    SHOT_SHOPBACK,
    SHOT_LAUNCHSIDE,
};

// One line of the input file: from Tick on exactly Held is held; the
// one-shot actions act once at that tick.
struct INPUTLINE
{
    int64_t Tick = 0;
    bool Held[PLAY_ACTIONS] = {};
    std::vector<std::pair<ONESHOT, int>> Once;
};

int Usage(const char* reason)
{
    std::fprintf(stderr, "orvane-cli play: %s\n", reason);
    std::fprintf(stderr, "usage: orvane-cli play LEVEL TICKS OUT [--seed N] [--input FILE] "
                         "[--camera PX PY PZ VX VY VZ UX UY UZ RX RY RZ] [--png FILE]\n");
    return EXIT_USAGE;
}

template <class T>
bool Whole(const std::string& text, T& v)
{
    const char* end = text.data() + text.size();
    auto [p, ec] = std::from_chars(text.data(), end, v);
    return ec == std::errc() && p == end && p != text.data();
}

// Reads the input file: 0, or the exit status after saying what is wrong
// (on a line it cannot read, where and why).
int ReadInput(const char* file, std::vector<INPUTLINE>& lines)
{
    std::ifstream in(file, std::ios::binary);
    if (!in)
    {
        std::fprintf(stderr, "orvane-cli play: %s: cannot be read\n", file);
        return 1;
    }
    std::string text;
    int number = 0;
    auto fail = [&](const std::string& reason) {
        std::fprintf(stderr, "orvane-cli play: %s:%d: %s\n", file, number, reason.c_str());
        return EXIT_USAGE;
    };
    while (std::getline(in, text))
    {
        ++number;
        if (!text.empty() && text.back() == '\r')
            text.pop_back();
        if (size_t hash = text.find('#'); hash != std::string::npos)
            text.erase(hash);
        std::istringstream words(text);
        std::string word;
        if (!(words >> word))
            continue;
        INPUTLINE line;
        if (!Whole(word, line.Tick) || line.Tick < 0)
            return fail("a line starts with its tick, a whole number from 0 up: \"" + word + "\"");
        if (!lines.empty() && line.Tick < lines.back().Tick)
            return fail("ticks must not go back");
        while (words >> word)
        {
            int held = -1;
            for (int a = 0; a < PLAY_ACTIONS; ++a)
                if (word == HeldNames[a])
                    held = a;
            if (held >= 0)
                line.Held[held] = true;
            else if (word == "shop")
                line.Once.emplace_back(SHOT_SHOP, 0);
            else if (word == "shopback")
                line.Once.emplace_back(SHOT_SHOPBACK, 0);
            else if (word == "launchside")
                line.Once.emplace_back(SHOT_LAUNCHSIDE, 0);
            else if (word == "choose")
            {
                int item = 0;
                if (!(words >> word) || !Whole(word, item) || item < 1 || item > 3)
                    return fail("choose takes a menu item from 1 to 3");
                line.Once.emplace_back(SHOT_CHOOSE, item);
            }
            else
                return fail("unknown action \"" + word + "\"");
        }
        lines.push_back(std::move(line));
    }
    return 0;
}

void Act(PLAYSESSION& session, const INPUTLINE& line)
{
    std::copy(std::begin(line.Held), std::end(line.Held), session.Held);
    for (auto [what, item] : line.Once)
        switch (what)
        {
        case SHOT_SHOP: session.OpenShop(); break;
        case SHOT_CHOOSE: session.ShopSelect(item - 1); break;
        case SHOT_SHOPBACK: session.ShopSelect(-1); break;
        case SHOT_LAUNCHSIDE: session.ToggleLaunchSide(); break;
        }
}

} // namespace

int CmdPlay(std::span<char* const> args)
{
    int64_t ticks = 0;
    if (!Whole(std::string(args[1]), ticks) || ticks < 0)
        return Usage("TICKS must be a whole number from 0 up");
    std::optional<uint32_t> seed;
    const char* inputFile = nullptr;
    const char* pngFile = nullptr;
    bool haveCamera = false;
    float camera[12];
    for (size_t i = 3; i < args.size(); ++i)
    {
        const bool hasValue = i + 1 < args.size();
        if (!std::strcmp(args[i], "--seed"))
        {
            uint32_t n = 0;
            if (!hasValue || !Whole(std::string(args[i + 1]), n))
                return Usage("--seed takes a whole number from 0 to 4294967295");
            seed = n;
            ++i;
        }
        else if (!std::strcmp(args[i], "--input") || !std::strcmp(args[i], "--png"))
        {
            if (!hasValue)
                return Usage((std::string(args[i]) + " takes a file").c_str());
            (args[i][2] == 'i' ? inputFile : pngFile) = args[i + 1];
            ++i;
        }
        else if (!std::strcmp(args[i], "--camera"))
        {
            if (!CameraOption(args, i, camera))
                return Usage("--camera takes 12 numbers");
            haveCamera = true;
        }
        else
            return Usage((std::string("unknown option ") + args[i]).c_str());
    }
    std::vector<INPUTLINE> input;
    if (inputFile)
        if (int failed = ReadInput(inputFile, input))
            return failed;
    if (seed)
        SRand(*seed);

    // The picture needs OpenGL textures from the start, the level's included.
    std::unique_ptr<OFFSCREENCONTEXT> context;
    std::unique_ptr<TEXTURE> explosion;
    if (pngFile)
    {
        context = std::make_unique<OFFSCREENCONTEXT>(PNG_WIDTH, PNG_HEIGHT);
        if (!context->Ok())
        {
            std::fprintf(stderr, "orvane-cli play: no offscreen OpenGL context: %s\n", context->Error().c_str());
            return 1;
        }
        InstallGLDrawing();
        explosion = std::make_unique<TEXTURE>("SmallExplosion.bmp");
        SetExplosionTexture(explosion.get());
    }
    int status = 1;
    {
        CLIDOCUMENT doc;
        if (doc.Open(args[0]))
        {
            CAMERA start;
            if (haveCamera)
            {
                start.Position = VECTOR3D(camera[0], camera[1], camera[2]);
                start.ViewDir = VECTOR3D(camera[3], camera[4], camera[5]);
                start.Up = VECTOR3D(camera[6], camera[7], camera[8]);
                start.Right = VECTOR3D(camera[9], camera[10], camera[11]);
            }
            else
                PlayStartOf(doc.Level(), start);
            PLAYSESSION session(doc.Level(), start);
            if (!session.Started())
                std::fprintf(stderr, "orvane-cli play: the level has no room for the player's ship\n");
            else
            {
                size_t next = 0;
                for (int64_t t = 0; t < ticks && !session.Ended(); ++t)
                {
                    while (next < input.size() && input[next].Tick == t)
                        Act(session, input[next++]);
                    session.Tick();
                }
                status = session.Level().SaveLevel(args[2]) ? 0 : 1;
                if (pngFile && status == 0)
                {
                    ORVERENDER view([&] { context->MakeCurrent(); }, [&] { context->Swap(); });
                    view.Level = &session.Level();
                    view.Eye = &session.Eye;
                    view.Viewer = session.Ship();
                    view.SetClientSize(PNG_WIDTH, PNG_HEIGHT);
                    view.Update();
                    std::string error;
                    if (!WritePng(pngFile, PNG_WIDTH, PNG_HEIGHT, context->ReadPixels(), &error))
                    {
                        std::fprintf(stderr, "orvane-cli play: cannot write %s: %s\n", pngFile, error.c_str());
                        status = 1;
                    }
                }
            }
        }
    }
    if (pngFile)
    {
        SetExplosionTexture(nullptr);
        explosion.reset();
        UninstallGLDrawing();
    }
    return status;
}
