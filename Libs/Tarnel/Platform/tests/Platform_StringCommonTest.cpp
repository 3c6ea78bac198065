#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

#include <string>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"

TEST(StringCommon, OverlappingCopiesKeepTheText) {
    wchar_t up[] = L"abcdef";
    EXPECT_EQ(up + 2, Platform::StringCopy(up + 2, up, 4));
    EXPECT_EQ(std::wstring(L"ababcd"), up);
    wchar_t down[] = L"abcdef";
    Platform::StringCopy(down, down + 2, 5);
    EXPECT_EQ(std::wstring(L"cdef"), down);
}

TEST(StringCommon, FindsTheFirstOfASet) {
    const wchar_t text[] = L"C:\\a/b";
    EXPECT_EQ(text + 2, Platform::StringFindFirstOf(text, L"/\\"));
    EXPECT_EQ(nullptr, Platform::StringFindFirstOf(text, L"xyz"));
    EXPECT_EQ(nullptr, Platform::StringFindFirstOf(text, L""));
    EXPECT_EQ(6u, Platform::StringLength(text));
}

TEST(StringCommon, NullPointersAreReported) {
    const AssertCapture capture;
    wchar_t buffer[4] = L"abc";
    EXPECT_EQ(0u, Platform::StringLength(nullptr));
    EXPECT_EQ(nullptr, Platform::StringCopy(nullptr, buffer, 1));
    EXPECT_EQ(nullptr, Platform::StringCopy(buffer, nullptr, 1));
    EXPECT_EQ(nullptr, Platform::StringFindFirstOf(nullptr, buffer));
    EXPECT_EQ(nullptr, Platform::StringFindFirstOf(buffer, nullptr));
    EXPECT_EQ((std::vector<std::string>{"str|", "dest|", "src|", "str|", "chars|"}), capture.Texts());
}
