// The editing script reader of orvane-cli run on any text. Lines that read or
// write files are pointed at this process's scratch file, so a fuzzed script
// never touches anything else.
#include "cli/script.h"
#include "fuzzing.h"
#include "math/trig.h"

#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view SPACE = " \t\r\v\f";

std::string_view FirstToken(std::string_view line)
{
    line = line.substr(0, line.find('#'));
    size_t begin = line.find_first_not_of(SPACE);
    if (begin == std::string_view::npos)
        return {};
    line = line.substr(begin);
    return line.substr(0, line.find_first_of(SPACE));
}

std::string Confined(std::string_view text, const std::string& scratch)
{
    std::string out;
    for (size_t pos = 0; pos < text.size();)
    {
        size_t end = std::min(text.find('\n', pos), text.size());
        std::string_view line = text.substr(pos, end - pos);
        pos = end + 1;
        std::string_view first = FirstToken(line);
        if (first == "load" || first == "save" || first == "dump" || first == "loadblock" || first == "saveblock")
            out.append(first).append(" ").append(scratch);
        else
            out.append(line);
        out += '\n';
    }
    return out;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** argv)
{
    FuzzSetUp((*argv)[0]);
    InitTrigTables();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string scratch = std::string(FuzzFile(nullptr, 0)) + ".level";
    const std::string text = Confined(std::string_view(reinterpret_cast<const char*>(data), size), scratch);
    std::ostringstream out, err;
    try
    {
        RunScript(text, "fuzz", out, err);
    }
    catch (const FUZZEXIT&)
    {
    }
    return 0;
}
