#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/LogCapture.h"

using TestSupport::LogCapture;

namespace {

TEST(Encoding, TextGoesThereAndBack) {
    const struct {
        std::string utf8;
        std::wstring wide;
    } rows[] = {
        {"", L""},
        {"C:\\dumps\\", L"C:\\dumps\\"},
        {"J\xC3\xB6rg", L"J\x00F6rg"},
        {"\xE5\xA4\xAA\xE9\x83\x8E", L"\x592A\x90CE"},
        {"\xF0\x9F\x8E\xAE", L"\xD83C\xDFAE"},
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.utf8);
        std::wstring wide = L"old";
        std::string utf8 = "old";
        EXPECT_TRUE(PlatformHelpers::Utf8ToWide(row.utf8, wide).Succeeded());
        EXPECT_EQ(wide, row.wide);
        EXPECT_TRUE(PlatformHelpers::WideToUtf8(row.wide, utf8).Succeeded());
        EXPECT_EQ(utf8, row.utf8);
    }
}

TEST(Encoding, BothWaysCompose) {
    std::wstring wide;
    ASSERT_TRUE(PlatformHelpers::Utf8ToWide("Jo\xCC\x88rg", wide).Succeeded());
    EXPECT_EQ(wide, L"J\x00F6rg");
    std::string utf8;
    ASSERT_TRUE(PlatformHelpers::WideToUtf8(L"Jo\x0308rg", utf8).Succeeded());
    EXPECT_EQ(utf8, "J\xC3\xB6rg");
}

// Some characters are longer composed than the system's first estimate may allow for.
TEST(Encoding, ComposesTextOfAnyLength) {
    std::wstring text;
    std::wstring composed;
    for (int i = 0; i < 5000; ++i) {
        text += L"o\x0308";
        text += L"\xFB2C"; // becomes three
        composed += L"\x00F6\x05E9\x05BC\x05C1";
    }
    std::wstring normalized;
    ASSERT_TRUE(PlatformHelpers::NormalizeWide(text, normalized).Succeeded());
    EXPECT_EQ(normalized, composed);
}

TEST(Encoding, IllFormedUtf8IsRefused) {
    for (const char* text : {"\xFF", "a\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
        std::wstring wide = L"old";
        EXPECT_STREQ(PlatformHelpers::Utf8ToWide(text, wide).Text(),
                     "Error while converting MBCS to WCS: Invalid Unicode was found in a string.");
        EXPECT_TRUE(wide.empty());
    }
}

TEST(Encoding, UnpairedSurrogatesAreRefusedAndLogged) {
    const LogCapture log;
    std::string text = "old";
    EXPECT_STREQ(PlatformHelpers::WideToUtf8(L"ab\xD800x", text).Text(), "Invalid unicode character found");
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(log.Errors(), std::vector<std::string>{
                                " Failed to normalize string \"ab\xEF\xBF\xBDx\" because of invalid unicode "
                                "found at input character 3. Error Code=0x00000459"});
}

// The system would look at what stands before the NUL.
TEST(Encoding, PathsWithANulAreRefused) {
    std::wstring path;
    EXPECT_FALSE(PlatformHelpers::ToSystemPath(std::string("C:\\dumps\0.txt", 13), path).Succeeded());
    EXPECT_FALSE(PlatformHelpers::PathExists(std::string(".\0x", 3)));
}

} // namespace
