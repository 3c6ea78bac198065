#include <gtest/gtest.h>

#include <algorithm>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

using PlatformHelpers::PathInfo;
using TestSupport::ScratchFolder;

namespace {

// Reads the folder's entries, sorted by name.
std::vector<PathInfo> EntriesOf(const std::string& folder, uint32_t mode) {
    std::vector<PathInfo> entries;
    const ResultCode result =
        PlatformHelpers::EnumerateFolder(folder, mode, [&](const PathInfo& entry, bool&) {
            entries.push_back(entry);
            return ResultCode();
        });
    EXPECT_STREQ(result.Text(), "OK");
    std::ranges::sort(entries, {}, &PathInfo::name);
    return entries;
}

TEST(PlatformHelpersFiles, StatusTellsKindSizeAndWritability) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("\xC3\xB6.txt", "");
    constexpr uint64_t Size = (uint64_t{5} << 30) + 1;
    std::filesystem::resize_file(ScratchFolder::FromUtf8(path), Size); // takes no room: nothing is written
    PlatformHelpers::FileStatus status;
    for (const bool readOnly : {true, false}) {
        EXPECT_TRUE(readOnly ? PlatformHelpers::MakeFileReadOnly(path)
                             : PlatformHelpers::MakeFileWritable(path));
        ASSERT_TRUE(PlatformHelpers::QueryFileStatus(path, status));
        EXPECT_EQ(std::tuple(status.isFolder, status.isReadOnly, status.size),
                  std::tuple(false, readOnly, Size));
    }
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(scratch.Path(), status));
    EXPECT_TRUE(status.isFolder);
    for (const std::string& none : {scratch.PathOf("none"), std::string("a\xFF")}) {
        EXPECT_FALSE(PlatformHelpers::QueryFileStatus(none, status));
        EXPECT_EQ(status.size, 0u);
        EXPECT_FALSE(PlatformHelpers::MakeFileWritable(none));
        EXPECT_FALSE(PlatformHelpers::PathExists(none));
        EXPECT_FALSE(PlatformHelpers::EnsureFolderExists(path + "\\" + none));
    }
}

TEST(EnumerateFolder, GivesWhatTheModeAdmits) {
    const ScratchFolder scratch;
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(scratch.MakeFile("..odd", "12345")));
    scratch.MakeFolder("Jo\xCC\x88rg \xE5\xA4\xAA");
    EXPECT_TRUE(EntriesOf(scratch.Path(), 0).empty());
    EXPECT_EQ(EntriesOf(scratch.Path(), 3).size(), 2u);
    EXPECT_EQ(EntriesOf(scratch.Path(), PlatformHelpers::EnumerateFolders).at(0).name,
              "Jo\xCC\x88rg \xE5\xA4\xAA");
    const PathInfo file = EntriesOf(scratch.Path(), PlatformHelpers::EnumerateFiles).at(0);
    EXPECT_EQ(file.name, "..odd");
    EXPECT_TRUE(file.size == 5 && file.IsReadOnly() && !file.IsFolder() && !file.IsLink());
}

TEST(EnumerateFolder, EndsWhenTheCallbackSaysSo) {
    const ScratchFolder scratch;
    scratch.MakeFile("a", "");
    scratch.MakeFile("b", "");
    int seen = 0;
    const auto run = [&](const std::string& folder, const PlatformHelpers::EnumerationCallback& callback) {
        return std::string(PlatformHelpers::EnumerateFolder(folder, 3, callback).Text());
    };
    const auto stop = [&](const PathInfo&, bool& keepGoing) {
        ++seen;
        keepGoing = false;
        return ResultCode();
    };
    EXPECT_EQ(run(scratch.Path(), stop), "OK");
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(run(scratch.Path(), [](auto&, bool&) -> ResultCode { return "Failed"; }), "Failed");
    EXPECT_EQ(run(scratch.Path(), [](auto&, bool&) -> ResultCode { throw std::bad_alloc(); }),
              "Out of memory");
    EXPECT_EQ(run(scratch.Path() + "none\\", stop), "Failed to enumerate files");
}

TEST(EnumerateFolder, SkipsNamesWithoutAUtf8Form) {
    const ScratchFolder scratch;
    scratch.MakeFolder("good");
    const std::wstring bad = ScratchFolder::FromUtf8(scratch.Path()).wstring() + L"bad\xD800";
    if (!CreateDirectoryW(bad.c_str(), nullptr)) {
        GTEST_SKIP() << "this file system keeps such names out";
    }
    const TestSupport::LogCapture log;
    EXPECT_EQ(EntriesOf(scratch.Path(), 3).size(), 1u);
    EXPECT_EQ(EntriesOf(scratch.Path(), 3).size(), 1u);
    EXPECT_EQ(log.Errors().size(), 1u); // not again and again
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

TEST(PlatformHelpersText, IllFormedTextIsRefused) {
    std::wstring wide = L"old";
    EXPECT_FALSE(PlatformHelpers::Utf8ToWide("a\xC3", wide));
    EXPECT_TRUE(wide.empty());
    std::string text = "old";
    EXPECT_FALSE(PlatformHelpers::WideToUtf8(L"ab\xD800x", text));
    EXPECT_TRUE(text.empty());
}

TEST(PlatformHelpersProcesses, AreFoundByTheEndOfTheirName) {
    std::vector<uint32_t> ids;
    ASSERT_TRUE(PlatformHelpers::FindProcessesByName("HELPERSTEST.EXE", ids));
    EXPECT_EQ(std::ranges::count(ids, GetCurrentProcessId()), 1);
    std::string image = "old";
    EXPECT_FALSE(PlatformHelpers::GetProcessImageName(0xFFFFFFF0, image));
    EXPECT_TRUE(image.empty());
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
