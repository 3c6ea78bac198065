#include <gtest/gtest.h>

#include <chrono>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/Holder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

using TestSupport::LogCapture;
using TestSupport::ScratchFolder;

namespace {

using Texts = std::vector<std::string>;

TEST(RemoveFile, MissingFileFailsAtOnce) {
    const ScratchFolder scratch;
    const std::string path = scratch.PathOf("none.txt");
    const LogCapture log;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_STREQ(PlatformHelpers::RemoveFile(path).Text(), "Failed to delete file");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    EXPECT_EQ(log.Errors(), Texts{" Failed to delete file \"" + path + "\". Error Code=0x00000002"});
    EXPECT_STREQ(PlatformHelpers::RemoveFile("\xFF").Text(),
                 "Failed to remove file because could not convert multi-byte path to wide path!");
}

TEST(RemoveFile, HeldFileIsTriedForASecond) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("Jörg 太郎.dmp", "x");
    const LogCapture log;
    const auto start = std::chrono::steady_clock::now();
    {
        const TestSupport::Holder holder(path);
        EXPECT_STREQ(PlatformHelpers::RemoveFile(path).Text(), "Failed to delete file");
    }
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1000));
    EXPECT_EQ(log.Errors(),
              Texts{" Failed to delete file \"" + path + "\" with access denied after several retries"});
    EXPECT_TRUE(PlatformHelpers::RemoveFile(path).Succeeded());
    EXPECT_FALSE(scratch.Exists("Jörg 太郎.dmp"));
}

TEST(MakeFileReadOnly, IsUndoneByMakeFileWritable) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("header.json", "{}");
    const auto attributes = [&] { return GetFileAttributesW(ScratchFolder::FromUtf8(path).c_str()); };
    const DWORD before = attributes();
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(path).Succeeded());
    EXPECT_EQ(attributes(), before | FILE_ATTRIBUTE_READONLY);
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(path).Succeeded());
    ASSERT_TRUE(PlatformHelpers::MakeFileWritable(path).Succeeded());
    EXPECT_EQ(attributes(), before);
}

TEST(QueryFileStatus, TellsKindSizeAndWritability) {
    const ScratchFolder scratch;
    PlatformHelpers::FileStatus status;
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(scratch.MakeFolder("folder"), status).Succeeded());
    EXPECT_TRUE(status.isFolder);
    const std::string path = scratch.MakeFile("\xC3\xB6.txt", "12345");
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(path, status).Succeeded());
    EXPECT_EQ(std::tuple(status.isFolder, status.isReadOnly, status.size), std::tuple(false, false, 5u));
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(path).Succeeded());
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(path, status).Succeeded());
    EXPECT_TRUE(status.isReadOnly);
}

TEST(QueryFileStatus, FilesBeyond4GiBHaveTheirSize) {
    const ScratchFolder scratch;
    const std::string path = scratch.MakeFile("large.dmp", "");
    constexpr uint64_t Size = (uint64_t{5} << 30) + 1;
    std::filesystem::resize_file(ScratchFolder::FromUtf8(path), Size); // takes no room: nothing is written
    PlatformHelpers::FileStatus status;
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(path, status).Succeeded());
    EXPECT_EQ(status.size, Size);
}

TEST(FileStatus, FailuresAreLogged) {
    const ScratchFolder scratch;
    const std::string path = scratch.PathOf("none.txt");
    const LogCapture log;
    PlatformHelpers::FileStatus status{true, true, 7};
    EXPECT_FALSE(PlatformHelpers::QueryFileStatus(path, status).Succeeded());
    EXPECT_EQ(status.size, 0u);
    EXPECT_FALSE(PlatformHelpers::QueryFileStatus("a\xFF", status).Succeeded());
    EXPECT_STREQ(PlatformHelpers::MakeFileWritable(path).Text(), "Failed to make file writable");
    EXPECT_EQ(log.Errors(),
              (Texts{" Failed to query status of file \"" + path + "\", errno=2",
                     " Failed to convert file path from multi-nyte to wide. Input=\"a\xFF\" Error=\"Error "
                     "while converting MBCS to WCS: Invalid Unicode was found in a string.\"",
                     " Failed to set file attributes on file \"" + path +
                         "\" to FFFFFFFE. Error Code=0x00000002"}));
}

TEST(PathExists, IsSilent) {
    const ScratchFolder scratch;
    const LogCapture log;
    EXPECT_TRUE(PlatformHelpers::PathExists(scratch.Path()));
    EXPECT_TRUE(PlatformHelpers::PathExists(scratch.MakeFile("file", "")));
    EXPECT_FALSE(PlatformHelpers::PathExists(scratch.PathOf("none")));
    EXPECT_FALSE(PlatformHelpers::PathExists(""));
    EXPECT_FALSE(PlatformHelpers::PathExists("\xFF"));
    EXPECT_TRUE(log.Entries().empty());
}

// The old limit of 260 characters binds none of the file calls.
TEST(LongPaths, EveryFileCallTakesThem) {
    const ScratchFolder scratch;
    std::string folder = scratch.Path();
    while (folder.size() < 400) {
        folder += std::string(50, 'x') + '\\';
    }
    ASSERT_TRUE(PlatformHelpers::CreateFolderTree(folder).Succeeded());
    const std::string path = folder + "header.json";
    {
        HANDLE file = CreateFileW((L"\\\\?\\" + ScratchFolder::FromUtf8(path).wstring()).c_str(),
                                  GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        CloseHandle(file);
    }
    EXPECT_TRUE(PlatformHelpers::PathExists(path));
    EXPECT_TRUE(PlatformHelpers::MakeFileReadOnly(path).Succeeded());
    PlatformHelpers::FileStatus status;
    EXPECT_TRUE(PlatformHelpers::QueryFileStatus(path, status).Succeeded());
    EXPECT_TRUE(status.isReadOnly);
    int entries = 0;
    const auto count = [&](const PlatformHelpers::PathInfo&, bool&) {
        ++entries;
        return ResultCode();
    };
    EXPECT_TRUE(PlatformHelpers::EnumerateFolder(folder, 3, count).Succeeded());
    EXPECT_EQ(entries, 1);
    EXPECT_TRUE(PlatformHelpers::MakeFileWritable(path).Succeeded());
    EXPECT_TRUE(PlatformHelpers::RemoveFile(path).Succeeded());
    EXPECT_TRUE(PlatformHelpers::RemoveFolder(scratch.PathOf(std::string(50, 'x'))).Succeeded());
}

} // namespace
