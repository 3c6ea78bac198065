#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

#include <cstdint>

#include <gtest/gtest.h>

using namespace Platform;

TEST(StringCommon, WellFormedTextConvertsBothWays) {
    const struct {
        std::string utf8;
        std::wstring wide;
    } rows[] = {
        {"", L""},
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
        {"\x7F\xC2\x80\xDF\xBF", L"\x7F\x80\x7FF"},
        {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\x800\xD7FF\xE000\xFFFF"},
        {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},
        {"Jo\xCC\x88rg", L"Jo\u0308rg"}, // stays decomposed
    };
    for (const auto& row : rows) {
        std::wstring wide = L"old";
        std::string utf8 = "old";
        EXPECT_EQ(ConvertString(row.utf8, wide), ConvertString_Done) << row.utf8;
        EXPECT_EQ(wide, row.wide) << row.utf8;
        EXPECT_EQ(ConvertString(row.wide, utf8), ConvertString_Done) << row.utf8;
        EXPECT_EQ(utf8, row.utf8);
    }
}

TEST(StringCommon, IllFormedTextIsRefused) {
    const struct {
        std::string_view utf8;
        ConvertStringResult result;
    } rows[] = {
        {"\x80", ConvertString_InvalidCharacter},     // continuation alone
        {"\xC1\xBF", ConvertString_InvalidCharacter}, // overlong, and the next two
        {"\xE0\x9F", ConvertString_InvalidCharacter},
        {"\xF0\x8F\xBF", ConvertString_InvalidCharacter},
        {"\xED\xA0\x80", ConvertString_InvalidCharacter},     // surrogates
        {"\xF4\x90\x80\x80", ConvertString_InvalidCharacter}, // beyond U+10FFFF
        {"ok\xE5\xA4(", ConvertString_InvalidCharacter},      // continuation missing
        {"a\xF0\x9F\x98", ConvertString_Partial},
        {{nullptr, 1}, ConvertString_InvalidArgument},
        {{"a", SIZE_MAX / 2}, ConvertString_UnknownError}, // no string holds so much
    };
    for (const auto& row : rows) {
        std::wstring wide = L"old";
        EXPECT_EQ(ConvertString(row.utf8, wide), row.result) << &row - rows;
        EXPECT_EQ(wide, L"");
    }
    const wchar_t high = 0xD83D;
    const wchar_t low = 0xDE00;
    for (const std::wstring& wide :
         {std::wstring{high}, std::wstring{low, high}, std::wstring{high, L'a'}, std::wstring{L'a', high}}) {
        std::string utf8 = "old";
        EXPECT_EQ(ConvertString(wide, utf8), ConvertString_InvalidCharacter);
        EXPECT_EQ(utf8, "");
    }
}
