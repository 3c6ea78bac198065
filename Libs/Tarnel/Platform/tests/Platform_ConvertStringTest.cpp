#include "Libs/Tarnel/Platform/src/Common/Platform_ConvertString.h"

#include <cstdint>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"

using namespace Platform;

namespace {

struct TextPair {
    std::string utf8;
    std::wstring wide;
};

const TextPair WellFormed[] = {
    {"", L""},
    {"plain", L"plain"},
    {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
    {"\x7F\xC2\x80\xDF\xBF", L"\x7F\x80\x7FF"},
    {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\x800\xD7FF\xE000\xFFFF"},
    {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},
    {"J\xC3\xB6rg \xE5\xA4\xAA\xE9\x83\x8E \xF0\x9F\x98\x80", L"J\u00F6rg \u592A\u90CE \U0001F600"},
};

const char* const IllFormed[] = {
    "\x80",                           // continuation alone
    "\xC0\x80",                       // overlong NUL
    "\xC1\xBF",                       // overlong
    "\xE0\x9F\xBF",                   // overlong
    "\xF0\x8F\xBF\xBF",               // overlong
    "\xED\xA0\x80",                   // surrogate
    "\xED\xBF\xBF",                   // surrogate
    "\xF4\x90\x80\x80",               // beyond U+10FFFF
    "\xF5\x80\x80\x80",               // beyond
    "\xFF",                           // never valid
    "\xC3(",                          // continuation missing
    "\xE5\xA4(",                      // second continuation missing
    "ok\xF0\x9F\x98\x80\xC3\xC3\xB6", // bad in the middle
};

} // namespace

TEST(Encoding, WellFormedTextGoesBothWays) {
    for (const TextPair& row : WellFormed) {
        std::wstring wide = L"old";
        std::string utf8 = "old";
        EXPECT_EQ(EncodingOutcome::Done, Utf8ToWide(row.utf8, wide)) << row.utf8;
        EXPECT_EQ(row.wide, wide) << row.utf8;
        EXPECT_EQ(EncodingOutcome::Done, WideToUtf8(row.wide, utf8)) << row.utf8;
        EXPECT_EQ(row.utf8, utf8);
    }
}

TEST(Encoding, IllFormedTextIsRefused) {
    for (const char* const text : IllFormed) {
        std::wstring wide = L"old";
        EXPECT_EQ(EncodingOutcome::InvalidCharacter, Utf8ToWide(text, wide)) << text;
        EXPECT_EQ(L"", wide);
        EXPECT_EQ(ConvertString_InvalidCharacter, ConvertString(text, wide)) << text;
    }
    const wchar_t high = 0xD83D;
    const wchar_t low = 0xDE00;
    for (const std::wstring& wide : {std::wstring{high}, std::wstring{low}, std::wstring{low, high},
                                     std::wstring{high, L'a'}, std::wstring{L'a', high}}) {
        std::string utf8 = "old";
        EXPECT_EQ(EncodingOutcome::InvalidCharacter, WideToUtf8(wide, utf8));
        EXPECT_EQ("", utf8);
    }
}

TEST(ConvertString, TextThatEndsInsideACharacterIsPartial) {
    const std::string text = "a\xF0\x9F\x98\x80";
    for (std::size_t length = 2; length < text.size(); ++length) {
        wchar_t output[8] = {};
        std::size_t units = 0;
        EXPECT_EQ(ConvertString_Partial, ConvertString(text.data(), length, output, 8, units)) << length;
        EXPECT_EQ(1u, units);
        EXPECT_EQ(L'a', output[0]);
        std::wstring wide = L"old";
        EXPECT_EQ(ConvertString_Partial, ConvertString(text.substr(0, length), wide));
        EXPECT_EQ(L"", wide);
    }
}

TEST(ConvertString, StopsAtTheCapacityBetweenCharacters) {
    const std::string text = "\xC3\xB6\xF0\x9F\x98\x80z";
    const std::wstring whole = L"\u00F6\U0001F600z";
    std::size_t units = 0;
    EXPECT_EQ(ConvertString_CalcLength, ConvertString(text.data(), text.size(), nullptr, 0, units));
    EXPECT_EQ(whole.size(), units);
    for (std::size_t capacity = 1; capacity <= whole.size(); ++capacity) {
        wchar_t output[8] = {};
        const bool fits = capacity == whole.size();
        EXPECT_EQ(fits ? ConvertString_Done : ConvertString_Partial,
                  ConvertString(text.data(), text.size(), output, capacity, units));
        EXPECT_EQ(whole.substr(0, units), std::wstring(output)); // nothing behind what is counted
        EXPECT_LE(units, capacity);
    }
}

TEST(ConvertString, SenselessArgumentsAreToldApart) {
    wchar_t output[4];
    std::size_t units = 9;
    EXPECT_EQ(ConvertString_InvalidArgument, ConvertString(nullptr, 1, output, 4, units));
    EXPECT_EQ(0u, units);
    EXPECT_EQ(ConvertString_InvalidArgument, ConvertString("a", 1, nullptr, 4, units));
    EXPECT_EQ(ConvertString_Done, ConvertString(nullptr, 0, output, 4, units));
}

TEST(ConvertString, ATextThatNoStringCanHoldIsAFailureAndNoException) {
    const std::string_view endless("a", SIZE_MAX / 2);
    std::wstring wide = L"old";
    EXPECT_EQ(ConvertString_UnknownError, ConvertString(endless, wide));
    EXPECT_EQ(L"", wide);
    EXPECT_EQ(EncodingOutcome::OtherFailure, Utf8ToWide(endless, wide));
}
