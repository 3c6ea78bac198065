#include <gtest/gtest.h>

#include <algorithm>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/LogCapture.h"

using PlatformHelpers::ModuleVersion;

namespace {

TEST(PlatformHelpersText, ConversionsComposeBothWays) {
    std::wstring wide;
    ASSERT_TRUE(PlatformHelpers::Utf8ToWide("Jo\xCC\x88rg \xF0\x9F\x8E\xAE", wide));
    EXPECT_EQ(wide, L"J\x00F6rg \xD83C\xDFAE");
    std::string utf8;
    ASSERT_TRUE(PlatformHelpers::WideToUtf8(L"Jo\x0308rg", utf8));
    EXPECT_EQ(utf8, "J\xC3\xB6rg");
}

// Some characters are longer composed than the system's first estimate may allow for.
TEST(PlatformHelpersText, ComposesTextOfAnyLength) {
    std::wstring text;
    std::wstring composed;
    for (int i = 0; i < 5000; ++i) {
        text += L"o\x0308\xFB2C";
        composed += L"\x00F6\x05E9\x05BC\x05C1";
    }
    std::wstring normalized;
    ASSERT_TRUE(PlatformHelpers::NormalizeWide(text, normalized));
    EXPECT_EQ(normalized, composed);
}

TEST(PlatformHelpersText, IllFormedTextIsRefused) {
    const TestSupport::LogCapture log;
    std::wstring wide = L"old";
    EXPECT_STREQ(PlatformHelpers::Utf8ToWide("a\xC3", wide).Text(),
                 "Error while converting MBCS to WCS: Invalid Unicode was found in a string.");
    EXPECT_TRUE(wide.empty());
    std::string text = "old";
    EXPECT_STREQ(PlatformHelpers::WideToUtf8(L"ab\xD800x", text).Text(), "Invalid unicode character found");
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(log.Errors(), std::vector<std::string>{
                                " Failed to normalize string \"ab\xEF\xBF\xBDx\" because of invalid unicode "
                                "found at input character 3. Error Code=0x00000459"});
}

TEST(PlatformHelpersProcesses, AreFoundByTheEndOfTheirName) {
    for (const char* name : {"PlatformHelpersTest.exe", "HELPERSTEST.EXE"}) {
        std::vector<uint32_t> ids;
        ASSERT_TRUE(PlatformHelpers::FindProcessesByName(name, ids));
        EXPECT_EQ(std::ranges::count(ids, GetCurrentProcessId()), 1) << name;
    }
    std::string image = "old";
    EXPECT_STREQ(PlatformHelpers::GetProcessImageName(0xFFFFFFF0, image).Text(), "Failed to open process");
    EXPECT_TRUE(image.empty());
    const struct {
        const char* image;
        const char* name;
        bool matches;
    } rows[] = {
        {R"(\Device\HarddiskVolume2\mygame.exe)", "Game.EXE", true},
        {R"(\Device\HarddiskVolume2\game.exe.bak)", "game.exe", false},
        {"\\x\\Jo\xCC\x88RG.exe", "j\xC3\xB6rg.exe", true},
        {"\\x\\\xE5\xA4\xAA\xE9\x83\x8E.exe", "\xE9\x83\x8F.exe", false},
        {"game.exe", "", false},
        {"game.exe", "\xFF", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlatformHelpers::ImageNameMatches(row.image, row.name), row.matches)
            << row.image << row.name;
    }
}

TEST(GetModuleVersion, ReadsWhatTheResourceSays) {
    const std::string own = Platform::OwnProgramPath();
    const std::string folder = own.substr(0, own.rfind('\\') + 1);
    const struct {
        std::string path;
        const char* result;
        std::vector<uint32_t> numbers; // the last one is the changelist
    } rows[] = {
        {folder + "VersionWithChangelist.exe", "OK", {2, 0, 65535, 8, 1234}},
        {folder + "VersionWithoutChangelist.exe",
         "Failed to find changelist in resources for localized version info",
         {2, 0, 0, 8, 0}},
        {folder + "none.exe", "File version info size was incorrect", {0, 0, 0, 0, 0}},
        {"\xFF",
         "GetModuleVersion failed! Failed to convert module path from multi-byte to wide string!",
         {9, 9, 9, 9, 9}},
    };
    for (const auto& row : rows) {
        ModuleVersion version{9, 9, 9, 9};
        uint32_t changelist = 9;
        EXPECT_STREQ(PlatformHelpers::GetModuleVersion(row.path, version, changelist).Text(), row.result);
        EXPECT_EQ((std::vector<uint32_t>{version.major, version.minor, version.build, version.revision,
                                         changelist}),
                  row.numbers);
    }
}

TEST(GetUserFolder, NamesAFolderUnderDocuments) {
    std::string folder;
    EXPECT_STREQ(PlatformHelpers::GetUserFolder("", folder).Text(), "Application data folder is not set");
    ASSERT_STREQ(PlatformHelpers::GetUserFolder("My Ga\xCC\x88me", folder).Text(), "OK");
    EXPECT_TRUE(folder.ends_with("\\My Ga\xCC\x88me")) << folder;
    EXPECT_TRUE(PlatformHelpers::PathExists(folder.substr(0, folder.rfind('\\'))));
}

} // namespace
