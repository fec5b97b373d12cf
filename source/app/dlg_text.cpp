#include "app/dlg_text.h"

#include <clocale>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <locale.h>

namespace {

locale_t CLocale()
{
    static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
    return c;
}

// snprintf in the C locale, for this thread only.
template <class... ARGS>
QString FormatC(const char* format, ARGS... args)
{
    locale_t previous = uselocale(CLocale());
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, format, args...);
    uselocale(previous);
    return QString::fromLatin1(buffer);
}

} // namespace

double TextToDouble(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    return strtod_l(bytes.constData(), nullptr, CLocale());
}

int32_t TextToLong(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    long v = strtol_l(bytes.constData(), nullptr, 10, CLocale());
    if (v > INT32_MAX)
        return INT32_MAX;
    if (v < INT32_MIN)
        return INT32_MIN;
    return int32_t(v);
}

QString FormatOneDecimal(double value)
{
    return FormatC("%-0.1f", value);
}

QString FormatInt(int value)
{
    return FormatC("%d", value);
}

int32_t TruncateToInt(double value)
{
    if (value > -2147483649.0 && value < 2147483648.0)
        return int32_t(value);
    return INT32_MIN;
}
