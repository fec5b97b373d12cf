#include <gtest/gtest.h>

#include "platform/cp1250.h"

#include <set>
#include <string>

TEST(Cp1250Test, HighHalfMapsOneToOneExceptTheUndefinedBytes)
{
    const std::set<int> undefined = {0x81, 0x83, 0x88, 0x90, 0x98};
    std::set<std::string> seen;
    for (int b = 0x80; b <= 0xFF; ++b) {
        std::string byte(1, char(b));
        std::string utf8 = Cp1250ToUtf8(byte);
        if (undefined.count(b)) {
            EXPECT_TRUE(utf8 == "\xEF\xBF\xBD" && Utf8ToCp1250(utf8) == "?") << b;
        } else {
            EXPECT_EQ(Utf8ToCp1250(utf8), byte) << b;
            EXPECT_TRUE(seen.insert(utf8).second) << "two bytes decode to the same character: " << b;
        }
    }
    // The Hungarian letters, and a few that are easy to get wrong.
    EXPECT_EQ(Cp1250ToUtf8("\xF5\xD5\xFB\xDB\xE1\xE9\xED\xF3\xF6\xFA\xFC \xC1\xC9\xCD\xD3\xD6\xDA\xDC"),
              "őŐűŰáéíóöúü ÁÉÍÓÖÚÜ");
    EXPECT_EQ(Cp1250ToUtf8("\x80\x8A\x8F\xA0\xA1\xFF"), "€ŠŹ\u00A0ˇ˙");
    EXPECT_EQ(Cp1250ToUtf8(std::string("a\0b", 3)), std::string("a\0b", 3));
}

TEST(Cp1250Test, UnmappableAndMalformedBecomeQuestionMarks)
{
    // ñ is not in the code page; then an overlong '/', a surrogate and a
    // code beyond U+10FFFF.
    EXPECT_EQ(Utf8ToCp1250("ж€ñ😀x|\xC3(A|\xC0\xAF|\xED\xA0\x80|\xF4\x90\x80\x80"), "?\x80?" "?x|?(A|??|???|????");
}
