#include "cli/arguments.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <locale.h>

bool Number(const char* text, float& v)
{
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
    char* end = nullptr;
    errno = 0;
    double d = c ? strtod_l(text, &end, c) : std::strtod(text, &end);
    if (end == text || *end || errno || !std::isfinite(d) || std::fabs(d) > 3.4e38)
        return false;
    v = float(d);
    return true;
}

bool CameraOption(std::span<char* const> args, size_t& i, float (&camera)[12])
{
    if (i + 12 >= args.size())
        return false;
    for (int k = 0; k < 12; ++k)
        if (!Number(args[i + 1 + k], camera[k]))
            return false;
    i += 12;
    return true;
}
