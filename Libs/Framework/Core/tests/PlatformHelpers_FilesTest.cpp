#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/Holder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

using PlatformHelpers::PathInfo;
using TestSupport::LogCapture;
using TestSupport::ScratchFolder;

namespace {

using Texts = std::vector<std::string>;

// Reads the folder's entries, sorted by name.
std::vector<PathInfo> EntriesOf(const std::string& folder, uint32_t mode) {
    std::vector<PathInfo> entries;
    EXPECT_STREQ(PlatformHelpers::EnumerateFolder(folder, mode,
                                                  [&](const PathInfo& entry, bool&) {
                                                      entries.push_back(entry);
                                                      return ResultCode();
                                                  })
                     .Text(),
                 "OK");
    std::ranges::sort(entries, {}, &PathInfo::name);
    return entries;
}

TEST(PlatformHelpersFiles, HeldFileIsTriedForASecond) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("Jörg 太郎.dmp", "x");
    const LogCapture log;
    const auto start = std::chrono::steady_clock::now();
    {
        const TestSupport::Holder holder(path);
        EXPECT_STREQ(PlatformHelpers::RemoveFile(path).Text(), "Failed to delete file");
    }
    const auto ladder = std::chrono::steady_clock::now() - start;
    EXPECT_GE(ladder, std::chrono::milliseconds(Platform::AllRetryPauses));
    EXPECT_STREQ(PlatformHelpers::RemoveFile(path).Text(), "OK");
    EXPECT_STREQ(PlatformHelpers::RemoveFile(path).Text(), "Failed to delete file"); // missing: at once
    EXPECT_LT(std::chrono::steady_clock::now() - start - ladder, std::chrono::milliseconds(500));
    EXPECT_EQ(log.Errors(),
              (Texts{" Failed to delete file \"" + path + "\" with access denied after several retries",
                     " Failed to delete file \"" + path + "\". Error Code=0x00000002"}));
}

TEST(PlatformHelpersFiles, StatusTellsKindSizeAndWritability) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("\xC3\xB6.txt", "");
    constexpr uint64_t Size = (uint64_t{5} << 30) + 1;
    std::filesystem::resize_file(ScratchFolder::FromUtf8(path), Size); // takes no room: nothing is written
    for (const bool readOnly : {true, false}) {
        PlatformHelpers::FileStatus status;
        EXPECT_TRUE(readOnly ? PlatformHelpers::MakeFileReadOnly(path)
                             : PlatformHelpers::MakeFileWritable(path));
        ASSERT_TRUE(PlatformHelpers::QueryFileStatus(path, status));
        EXPECT_EQ(std::tuple(status.isFolder, status.isReadOnly, status.size),
                  std::tuple(false, readOnly, Size));
    }
    PlatformHelpers::FileStatus status;
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(scratch.Path(), status));
    EXPECT_TRUE(status.isFolder);
}

TEST(PlatformHelpersFiles, FailuresHaveTheirTexts) {
    const ScratchFolder scratch;
    const std::string path = scratch.PathOf("none.txt");
    const std::string below = scratch.MakeFile("file", "") + "\\folder";
    const LogCapture log;
    PlatformHelpers::FileStatus status{true, true, 7};
    const char* const rows[][2] = {
        {PlatformHelpers::QueryFileStatus(path, status).Text(), "Failed to query status of file"},
        {PlatformHelpers::QueryFileStatus("a\xFF", status).Text(),
         "Error while converting MBCS to WCS: Invalid Unicode was found in a string."},
        {PlatformHelpers::MakeFileWritable(path).Text(), "Failed to make file writable"},
        {PlatformHelpers::RemoveFile("\xFF").Text(),
         "Failed to remove file because could not convert multi-byte path to wide path!"},
        {PlatformHelpers::CreateFolderTree(below).Text(), "Failed to create directory tree"},
        {PlatformHelpers::CreateFolderTree("\xFF").Text(),
         "Failed to convert file path from multi-byte to wide for directory creation"},
        {PlatformHelpers::EnsureFolderExists(below).Text(),
         "Ensuring folder existence failed! Failed to create folder"},
        {PlatformHelpers::EnsureFolderExists("\xFF").Text(),
         "Ensuring folder existence failed! Failed to convert folder path from multi-byte to wide string!"},
    };
    for (const auto& row : rows) {
        EXPECT_STREQ(row[0], row[1]);
    }
    EXPECT_EQ(status.size, 0u);
    EXPECT_FALSE(PlatformHelpers::PathExists(path)); // silently
    EXPECT_EQ(log.Errors(),
              (Texts{" Failed to query status of file \"" + path + "\", errno=2",
                     " Failed to convert file path from multi-nyte to wide. Input=\"a?\" Error=\"Error "
                     "while converting MBCS to WCS: Invalid Unicode was found in a string.\"",
                     " Failed to set file attributes on file \"" + path +
                         "\" to FFFFFFFE. Error Code=0x00000002"}));
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
    constexpr uint64_t Minute = 600'000'000;
    const uint64_t now = Platform::PreciseSystemTime();
    for (const uint64_t time : {file.creationTime, file.lastWriteTime, file.lastAccessTime}) {
        EXPECT_LT(now > time ? now - time : time - now, Minute);
    }
}

TEST(EnumerateFolder, EndsWhenTheCallbackSaysSo) {
    const ScratchFolder scratch;
    scratch.MakeFile("a", "");
    scratch.MakeFile("b", "");
    int seen = 0;
    const auto run = [&](const std::string& folder, const PlatformHelpers::EnumerationCallback& callback) {
        return PlatformHelpers::EnumerateFolder(folder, 3, callback);
    };
    const auto stop = [&](const PathInfo&, bool& keepGoing) {
        ++seen;
        keepGoing = false;
        return ResultCode();
    };
    EXPECT_STREQ(run(scratch.Path(), stop).Text(), "OK");
    EXPECT_EQ(seen, 1);
    EXPECT_STREQ(run(scratch.Path(), [](const PathInfo&, bool&) -> ResultCode { return "Failed"; }).Text(),
                 "Failed");
    const auto throws = [](const PathInfo&, bool&) -> ResultCode { throw std::bad_alloc(); };
    EXPECT_STREQ(run(scratch.Path(), throws).Text(), "Out of memory");
    EXPECT_STREQ(run(scratch.Path() + "none\\", stop).Text(), "Failed to enumerate files");
    const AssertCapture asserts;
    EXPECT_STREQ(run("", stop).Text(), "Failed to enumerate files");
    EXPECT_STREQ(run(".", stop).Text(), "Failed to enumerate files");
    EXPECT_EQ(asserts.Texts(),
              (Texts{"!topLevelFolder.empty()|", R"(topLevelFolder[topLevelFolder.size() -1] == '\\' || )"
                                                 R"(topLevelFolder[topLevelFolder.size() -1] == '/'|)"}));
}

TEST(EnumerateFolder, SkipsNamesWithoutAUtf8Form) {
    const ScratchFolder scratch;
    scratch.MakeFolder("good");
    const std::wstring bad = ScratchFolder::FromUtf8(scratch.Path()).wstring() + L"bad\xD800";
    if (!CreateDirectoryW(bad.c_str(), nullptr)) {
        GTEST_SKIP() << "this file system keeps such names out";
    }
    const LogCapture log;
    EXPECT_EQ(EntriesOf(scratch.Path(), 3).size(), 1u);
    EXPECT_EQ(EntriesOf(scratch.Path(), 3).size(), 1u);
    EXPECT_EQ(log.Errors().size(), 1u); // not again and again
}

TEST(EnsureTrailingFolderSeparator, ChangesTheLastCharacterAlone) {
    const char* const rows[][2] = {{"C:\\dumps", "C:\\dumps\\"},
                                   {"C:/dumps/", "C:/dumps\\"},
                                   {"C:\\dumps//", "C:\\dumps/\\"},
                                   {"/", "\\"}};
    for (const auto& row : rows) {
        std::string path = row[0];
        EXPECT_TRUE(PlatformHelpers::EnsureTrailingFolderSeparator(path));
        EXPECT_EQ(path, row[1]);
    }
    const AssertCapture asserts;
    std::string empty;
    EXPECT_STREQ(PlatformHelpers::EnsureTrailingFolderSeparator(empty).Text(),
                 "Unexpected empty string passed to PlatformHelpers::EnsureTrailingFolderSeparator");
    EXPECT_EQ(asserts.Texts(), Texts{"!\"!folderPath.empty()\"|"});
}

} // namespace
