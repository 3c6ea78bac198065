#include <gtest/gtest.h>

#include <algorithm>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"

namespace {

TEST(Processes, ThisOneIsListedUnderItsName) {
    std::vector<uint32_t> ids;
    ASSERT_TRUE(PlatformHelpers::EnumerateProcesses(ids).Succeeded());
    EXPECT_EQ(std::ranges::count(ids, GetCurrentProcessId()), 1);
    std::string image;
    ASSERT_TRUE(PlatformHelpers::GetProcessImageName(GetCurrentProcessId(), image).Succeeded());
    EXPECT_TRUE(image.ends_with("\\PlatformHelpersTest.exe")) << image;
}

TEST(Processes, UnknownProcessCannotBeOpened) {
    std::string image = "old";
    EXPECT_STREQ(PlatformHelpers::GetProcessImageName(0, image).Text(), "Failed to open process");
    EXPECT_STREQ(PlatformHelpers::GetProcessImageName(0xFFFFFFF0, image).Text(), "Failed to open process");
    EXPECT_TRUE(image.empty());
}

TEST(Processes, FoundByTheEndOfTheirNameInAnyCase) {
    std::vector<uint32_t> ids;
    for (const char* name : {"PlatformHelpersTest.exe", "HELPERSTEST.EXE"}) {
        ASSERT_TRUE(PlatformHelpers::FindProcessesByName(name, ids).Succeeded());
        EXPECT_EQ(std::ranges::count(ids, GetCurrentProcessId()), 1) << name;
    }
    for (const char* name : {"PlatformHelpersTest", "no such game.exe", ""}) {
        ASSERT_TRUE(PlatformHelpers::FindProcessesByName(name, ids).Succeeded());
        EXPECT_EQ(ids.size(), 0u) << name;
    }
}

TEST(Processes, NamesMatchAsASuffixIgnoringCase) {
    const struct {
        const char* image;
        const char* name;
        bool matches;
    } rows[] = {
        {R"(\Device\HarddiskVolume2\Games\Game.exe)", "game.EXE", true},
        {R"(\Device\HarddiskVolume2\mygame.exe)", "game.exe", true},
        {R"(\Device\HarddiskVolume2\game.exe.bak)", "game.exe", false},
        {"game.exe", "mygame.exe", false},
        {"\\x\\J\xC3\x96RG.exe", "j\xC3\xB6rg.exe", true},
        {"\\x\\\xE5\xA4\xAA\xE9\x83\x8E.exe", "\xE5\xA4\xAA\xE9\x83\x8E.EXE", true},
        {"\\x\\\xE5\xA4\xAA\xE9\x83\x8E.exe", "\xE9\x83\x8F.exe", false},
        {"game.exe", "", false},
        {"", "game.exe", false},
        {"game.exe", "\xFF", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlatformHelpers::ImageNameMatches(row.image, row.name), row.matches)
            << row.image << row.name;
    }
}

} // namespace
