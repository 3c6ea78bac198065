#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

using PlatformHelpers::PathInfo;
using TestSupport::LogCapture;
using TestSupport::ScratchFolder;

namespace {

std::vector<std::string> NamesIn(const std::string& folder, uint32_t mode) {
    std::vector<std::string> names;
    const ResultCode result =
        PlatformHelpers::EnumerateFolder(folder, mode, [&](const PathInfo& entry, bool&) -> ResultCode {
            names.push_back(entry.name);
            return Platform::Success;
        });
    EXPECT_STREQ(result.Text(), "OK");
    std::ranges::sort(names);
    return names;
}

using Names = std::vector<std::string>;

TEST(EnumerateFolder, ModesAdmitFilesAndFolders) {
    const ScratchFolder scratch;
    scratch.MakeFile("header.json", "{}");
    scratch.MakeFile(".hidden", "");
    scratch.MakeFile("..odd", "");
    scratch.MakeFolder("J\xC3\xB6rg \xE5\xA4\xAA");
    const struct {
        uint32_t mode;
        Names names;
    } rows[] = {
        {0, {}},
        {PlatformHelpers::EnumerateFiles, {"..odd", ".hidden", "header.json"}},
        {PlatformHelpers::EnumerateFolders, {"J\xC3\xB6rg \xE5\xA4\xAA"}},
        {3, {"..odd", ".hidden", "J\xC3\xB6rg \xE5\xA4\xAA", "header.json"}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(NamesIn(scratch.Path(), row.mode), row.names) << "mode " << row.mode;
    }
}

TEST(EnumerateFolder, EntriesCarryAttributesTimesAndSize) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("dump.dmp", "12345");
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(path).Succeeded());
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    PathInfo file;
    ASSERT_TRUE(PlatformHelpers::EnumerateFolder(scratch.Path(), 3, [&](const PathInfo& entry, bool&) {
                    file = entry;
                    return ResultCode();
                }).Succeeded());
    EXPECT_EQ(file.size, 5u);
    EXPECT_TRUE(file.IsReadOnly());
    EXPECT_FALSE(file.IsFolder());
    EXPECT_FALSE(file.IsLink());
    constexpr uint64_t Minute = 600'000'000;
    const uint64_t timeNow = uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    for (const uint64_t time : {file.creationTime, file.lastWriteTime, file.lastAccessTime}) {
        EXPECT_LT(timeNow > time ? timeNow - time : time - timeNow, Minute);
    }
}

TEST(EnumerateFolder, CallbackEndsIt) {
    const ScratchFolder scratch;
    for (const char* name : {"a", "b", "c", "d"}) {
        scratch.MakeFile(name, "");
    }
    int seen = 0;
    const auto stopAtTwo = [&](const PathInfo&, bool& keepGoing) -> ResultCode {
        keepGoing = ++seen < 2;
        return Platform::Success;
    };
    EXPECT_TRUE(PlatformHelpers::EnumerateFolder(scratch.Path(), 1, stopAtTwo).Succeeded());
    EXPECT_EQ(seen, 2);
    const auto failAtThree = [&](const PathInfo&, bool&) -> ResultCode {
        if (++seen == 5) {
            return "Failed for a reason";
        }
        return Platform::Success;
    };
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder(scratch.Path(), 1, failAtThree).Text(),
                 "Failed for a reason");
    EXPECT_EQ(seen, 5);
}

TEST(EnumerateFolder, MissingFolderFails) {
    const ScratchFolder scratch;
    const auto never = [](const PathInfo&, bool&) -> ResultCode { return "called"; };
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder(scratch.Path() + "none\\", 3, never).Text(),
                 "Failed to enumerate files");
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder("\xFF\\", 3, never).Text(),
                 "Error while converting MBCS to WCS: Invalid Unicode was found in a string.");
}

// A name without a UTF-8 form can't be handed on.
TEST(EnumerateFolder, UnpairedSurrogateInANameFails) {
    const ScratchFolder scratch;
    const std::wstring name = ScratchFolder::FromUtf8(scratch.Path()).wstring() + L"bad\xD800";
    if (!CreateDirectoryW(name.c_str(), nullptr)) {
        GTEST_SKIP() << "this file system keeps such names out";
    }
    const LogCapture log;
    const auto accept = [](const PathInfo&, bool&) { return ResultCode(); };
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder(scratch.Path(), 3, accept).Text(),
                 "Invalid unicode character found");
}

TEST(EnumerateFolder, MisuseIsReportedAndListsNothing) {
    const auto never = [](const PathInfo&, bool&) -> ResultCode { return "called"; };
    const AssertCapture asserts;
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder("", 3, never).Text(), "Failed to enumerate files");
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder(".", 3, never).Text(), "Failed to enumerate files");
    EXPECT_EQ(asserts.Texts(), (std::vector<std::string>{
                                   "!topLevelFolder.empty()|",
                                   R"(topLevelFolder[topLevelFolder.size() -1] == '\\' || )"
                                   R"(topLevelFolder[topLevelFolder.size() -1] == '/'|)",
                               }));
}

TEST(EnsureTrailingFolderSeparator, OnlyTheLastCharacterChanges) {
    const char* const rows[][2] = {
        {"C:\\dumps", "C:\\dumps\\"},
        {"C:\\dumps\\", "C:\\dumps\\"},
        {"C:/dumps/", "C:/dumps\\"},
        {"C:\\dumps//", "C:\\dumps/\\"},
        {"/", "\\"},
        {"x", "x\\"},
    };
    for (const auto& row : rows) {
        std::string path = row[0];
        EXPECT_TRUE(PlatformHelpers::EnsureTrailingFolderSeparator(path).Succeeded());
        EXPECT_EQ(path, row[1]);
    }
    const AssertCapture asserts;
    std::string empty;
    EXPECT_STREQ(PlatformHelpers::EnsureTrailingFolderSeparator(empty).Text(),
                 "Unexpected empty string passed to PlatformHelpers::EnsureTrailingFolderSeparator");
    EXPECT_EQ(asserts.Texts(), std::vector<std::string>{"!\"!folderPath.empty()\"|"});
    EXPECT_TRUE(empty.empty());
}

TEST(CreateFolders, TreesAreMadeAndFoundAgain) {
    const ScratchFolder scratch;
    const std::string deep = scratch.PathOf("a\\J\xC3\xB6rg\\c");
    EXPECT_TRUE(PlatformHelpers::CreateFolderTree(deep).Succeeded());
    EXPECT_TRUE(PlatformHelpers::CreateFolderTree(deep).Succeeded());
    EXPECT_TRUE(PlatformHelpers::EnsureFolderExists(scratch.PathOf("x/y") + "/").Succeeded());
    EXPECT_TRUE(scratch.Exists("a\\J\xC3\xB6rg\\c"));
    EXPECT_TRUE(scratch.Exists("x\\y"));
}

TEST(CreateFolders, FailuresHaveTheirTexts) {
    const ScratchFolder scratch;
    const std::string below = scratch.MakeFile("file", "") + "\\folder";
    EXPECT_STREQ(PlatformHelpers::CreateFolderTree(below).Text(), "Failed to create directory tree");
    EXPECT_STREQ(PlatformHelpers::EnsureFolderExists(below).Text(),
                 "Ensuring folder existence failed! Failed to create folder");
    EXPECT_STREQ(PlatformHelpers::CreateFolderTree("\xFF").Text(),
                 "Failed to convert file path from multi-byte to wide for directory creation");
    EXPECT_STREQ(
        PlatformHelpers::EnsureFolderExists("\xFF").Text(),
        "Ensuring folder existence failed! Failed to convert folder path from multi-byte to wide string!");
}

} // namespace
