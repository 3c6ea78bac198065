#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/ScratchFolder.h"

using TestSupport::ScratchFolder;

namespace {

TEST(PlatformHelpersFiles, StatusTellsSizesOver4GiBAndFailures) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("\xC3\xB6.txt", "");
    constexpr uint64_t Size = (uint64_t{5} << 30) + 1;
    std::filesystem::resize_file(ScratchFolder::FromUtf8(path), Size); // takes no room: nothing is written
    PlatformHelpers::FileStatus status;
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(path, status));
    EXPECT_EQ(status.size, Size);
    EXPECT_FALSE(PlatformHelpers::EnsureFolderExists(path + "\\below"));
    for (const std::string& none : {scratch.PathOf("none"), std::string("a\xFF")}) {
        EXPECT_FALSE(PlatformHelpers::QueryFileStatus(none, status));
        EXPECT_EQ(status.size, 0u);
        EXPECT_FALSE(PlatformHelpers::MakeFileWritable(none));
    }
}

// Some characters are longer composed than the system's first estimate may allow for.
TEST(PlatformHelpersText, ComposesTextOfAnyLength) {
    std::wstring text;
    std::wstring composed;
    for (int i = 0; i < 5000; ++i) {
        text += L"o\x0308\xFB2C \xD83C\xDFAE";
        composed += L"\x00F6\x05E9\x05BC\x05C1 \xD83C\xDFAE";
    }
    std::string utf8;
    ASSERT_TRUE(PlatformHelpers::WideToUtf8(text, utf8));
    std::wstring wide;
    ASSERT_TRUE(PlatformHelpers::Utf8ToWide(utf8, wide));
    EXPECT_EQ(wide, composed);
}

TEST(PlatformHelpersProcesses, AreFoundByTheEndOfTheirName) {
    const struct {
        const char* image;
        const char* name;
        bool matches;
    } rows[] = {
        {R"(\Device\HarddiskVolume2\mygame.exe)", "Game.EXE", true},
        {R"(\Device\HarddiskVolume2\game.exe.bak)", "game.exe", false},
        {"\\x\\Jo\xCC\x88RG.exe", "j\xC3\xB6rg.exe", true},
        {"game.exe", "", false},
        {"game.exe", "\xFF", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlatformHelpers::ImageNameMatches(row.image, row.name), row.matches) << row.name;
    }
}

} // namespace
