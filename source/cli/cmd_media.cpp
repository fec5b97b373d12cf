// Data file commands: mesh (a LightWave object) and wave (a sound).
#include "cli/commands.h"

#include "graphics/trimesh.h"
#include "orvlevel/leveldump.h"
#include "platform/platform.h"
#include "sound/buffer.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

int Print(const JSONWRITER& json)
{
    std::string out = json.Out + '\n';
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

} // namespace

int CmdMesh(std::span<char* const> args)
{
    const char* file = args[0];
    char* end = nullptr;
    errno = 0;
    float scale = std::strtof(args[1], &end);
    if (end == args[1] || *end || errno || !std::isfinite(scale)) {
        std::fprintf(stderr, "orvane-cli mesh: SCALE must be a number, not \"%s\"\n", args[1]);
        return EXIT_USAGE;
    }
    COUNTINGPLATFORM platform;
    SetPlatform(&platform);
    TRIMESH mesh(file, scale);
    SetPlatform(nullptr);

    float b[6], outer, inner;
    mesh.GetBounds(&b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &outer, &inner);
    JSONWRITER json;
    json.BeginObject();
    json.Key("file").String(file);
    json.Key("scale").Float(scale);
    json.Key("vertices").Int(mesh.VertexCount());
    json.Key("triangles").Int(mesh.TriangleCount());
    json.Key("surfaces").Int(mesh.SurfaceCount());
    json.Key("bounds").BeginObject();
    const char* names[6] = {"minX", "maxX", "minY", "maxY", "minZ", "maxZ"};
    for (int i = 0; i < 6; ++i)
        json.Key(names[i]).Float(b[i]);
    json.EndObject();
    json.Key("outerRadius").Float(outer);
    json.Key("innerRadius").Float(inner);
    json.EndObject();
    int status = Print(json);
    return platform.Messages + platform.Beeps ? 1 : status;
}

int CmdWave(std::span<char* const> args)
{
    // Every failure of LoadWave ends the program with its own message.
    ALenum format;
    void* data;
    uint32_t size, frequency;
    void* memory;
    LoadWave(args[0], &format, &data, &size, &frequency, &memory);
    std::free(memory);

    JSONWRITER json;
    json.BeginObject();
    json.Key("file").String(args[0]);
    json.Key("format").String(WaveFormatName(format));
    json.Key("frequency").Int(frequency);
    json.Key("size").Int(size);
    json.EndObject();
    return Print(json);
}
