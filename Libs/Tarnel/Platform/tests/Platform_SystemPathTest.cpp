#include "Libs/Tarnel/Platform/src/Windows/Platform_SystemPath.h"

#include <gtest/gtest.h>

using Platform::EncodingOutcome;
using Platform::ToSystemPath;

TEST(SystemPath, LongPathsGetTheFormWithoutALimit) {
    const std::wstring longName(250, L'n');
    const struct {
        std::wstring path;
        std::wstring systemPath;
    } rows[] = {
        {L"", L""},
        {L"C:/a/b", L"C:/a/b"},
        {L"relative/name", L"relative/name"},
        {L"C:/a/" + longName + L"/./x/../b", L"\\\\?\\C:\\a\\" + longName + L"\\b"},
        {L"//server/share/" + longName, L"\\\\?\\UNC\\server\\share\\" + longName},
        {L"\\\\?\\C:\\a\\" + longName, L"\\\\?\\C:\\a\\" + longName},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.systemPath, ToSystemPath(std::wstring_view(row.path)));
    }
}

TEST(SystemPath, RefusesWhatIsNoPath) {
    std::wstring path;
    EXPECT_EQ(EncodingOutcome::InvalidCharacter, ToSystemPath(std::string_view("a\0b", 3), path));
    EXPECT_EQ(EncodingOutcome::InvalidCharacter, ToSystemPath(std::string_view("\xC3("), path));
    EXPECT_EQ(EncodingOutcome::Done, ToSystemPath(std::string_view("J\xC3\xB6rg"), path));
    EXPECT_EQ(L"J\u00F6rg", path);
}
