#include "platform/cp1250.h"

#include <cstdint>

namespace {

constexpr char32_t UNDEFINED = 0xFFFD;

// Bytes 0x80 ... 0xFF; below 0x80 the code page equals ASCII.
constexpr char32_t HighHalf[128] = {
    // 0x80
    0x20AC, UNDEFINED, 0x201A, UNDEFINED, 0x201E, 0x2026, 0x2020, 0x2021,
    UNDEFINED, 0x2030, 0x0160, 0x2039, 0x015A, 0x0164, 0x017D, 0x0179,
    // 0x90
    UNDEFINED, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    UNDEFINED, 0x2122, 0x0161, 0x203A, 0x015B, 0x0165, 0x017E, 0x017A,
    // 0xA0
    0x00A0, 0x02C7, 0x02D8, 0x0141, 0x00A4, 0x0104, 0x00A6, 0x00A7,
    0x00A8, 0x00A9, 0x015E, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x017B,
    // 0xB0
    0x00B0, 0x00B1, 0x02DB, 0x0142, 0x00B4, 0x00B5, 0x00B6, 0x00B7,
    0x00B8, 0x0105, 0x015F, 0x00BB, 0x013D, 0x02DD, 0x013E, 0x017C,
    // 0xC0
    0x0154, 0x00C1, 0x00C2, 0x0102, 0x00C4, 0x0139, 0x0106, 0x00C7,
    0x010C, 0x00C9, 0x0118, 0x00CB, 0x011A, 0x00CD, 0x00CE, 0x010E,
    // 0xD0
    0x0110, 0x0143, 0x0147, 0x00D3, 0x00D4, 0x0150, 0x00D6, 0x00D7,
    0x0158, 0x016E, 0x00DA, 0x0170, 0x00DC, 0x00DD, 0x0162, 0x00DF,
    // 0xE0
    0x0155, 0x00E1, 0x00E2, 0x0103, 0x00E4, 0x013A, 0x0107, 0x00E7,
    0x010D, 0x00E9, 0x0119, 0x00EB, 0x011B, 0x00ED, 0x00EE, 0x010F,
    // 0xF0
    0x0111, 0x0144, 0x0148, 0x00F3, 0x00F4, 0x0151, 0x00F6, 0x00F7,
    0x0159, 0x016F, 0x00FA, 0x0171, 0x00FC, 0x00FD, 0x0163, 0x02D9,
};

void AppendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        // Every character of the code page lies in the basic plane.
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// Decodes one character at pos and advances past it. A malformed sequence
// (stray continuation, truncated, overlong, surrogate, beyond U+10FFFF)
// yields false and advances by a single byte.
bool NextChar(std::string_view s, size_t& pos, char32_t& c)
{
    uint8_t lead = static_cast<uint8_t>(s[pos]);
    size_t length;
    char32_t min;
    if (lead < 0x80) {
        c = lead;
        ++pos;
        return true;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        c = lead & 0x1F;
        min = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        c = lead & 0x0F;
        min = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        c = lead & 0x07;
        min = 0x10000;
    } else {
        ++pos;
        return false;
    }
    if (s.size() - pos < length) {
        ++pos;
        return false;
    }
    for (size_t i = 1; i < length; ++i) {
        uint8_t b = static_cast<uint8_t>(s[pos + i]);
        if ((b & 0xC0) != 0x80) {
            ++pos;
            return false;
        }
        c = (c << 6) | (b & 0x3F);
    }
    if (c < min || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) {
        ++pos;
        return false;
    }
    pos += length;
    return true;
}

char ToCp1250(char32_t c)
{
    if (c < 0x80)
        return static_cast<char>(c);
    if (c == UNDEFINED)
        return '?';
    for (int i = 0; i < 128; ++i)
        if (HighHalf[i] == c)
            return static_cast<char>(0x80 + i);
    return '?';
}

} // namespace

std::string Cp1250ToUtf8(std::string_view cp1250)
{
    std::string out;
    out.reserve(cp1250.size() * 2);
    for (char ch : cp1250) {
        uint8_t b = static_cast<uint8_t>(ch);
        if (b < 0x80)
            out += ch;
        else
            AppendUtf8(out, HighHalf[b - 0x80]);
    }
    return out;
}

std::string Utf8ToCp1250(std::string_view utf8)
{
    std::string out;
    out.reserve(utf8.size());
    size_t pos = 0;
    while (pos < utf8.size()) {
        char32_t c;
        out += NextChar(utf8, pos, c) ? ToCp1250(c) : '?';
    }
    return out;
}
