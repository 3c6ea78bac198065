#include <gtest/gtest.h>

#include <iostream>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_LiteralPath.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/Holder.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

using TestSupport::Holder;
using TestSupport::LogCapture;
using TestSupport::ScratchFolder;

namespace {

using Texts = std::vector<std::string>;

std::wstring Literal(const std::string& path) {
    return LR"(\\?\)" + ScratchFolder::FromUtf8(path).wstring();
}

bool MakeFileNamed(const std::wstring& path) {
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    return file != INVALID_HANDLE_VALUE && CloseHandle(file);
}

TEST(RemoveFolder, RemovesReadOnlyFilesAndFoldersBelow) {
    const ScratchFolder scratch;
    for (const char* name :
         {"s/header.json", "s/a.txt", "s/logs/deep/b.txt", "s\\J\xC3\xB6rg\\\xE5\xA4\xAA.dmp"}) {
        ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(scratch.MakeFile(name, "x")).Succeeded());
    }
    SetFileAttributesW(Literal(scratch.MakeFolder("s\\logs")).c_str(), FILE_ATTRIBUTE_READONLY);
    scratch.MakeFile("beside.txt", "x");
    const LogCapture log;
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "OK");
    EXPECT_FALSE(scratch.Exists("s"));
    EXPECT_TRUE(scratch.Exists("beside.txt"));
    EXPECT_TRUE(log.Entries().empty());
}

TEST(RemoveFolder, TakesPathsAsTheyAreWritten) {
    const ScratchFolder scratch;
    for (const std::string written : {"s", "s\\", "s/", "t\\..\\s", "t/..\\.//s\\"}) {
        scratch.MakeFile("s\\file", "");
        scratch.MakeFolder("t");
        EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.Path() + written).Text(), "OK") << written;
        EXPECT_FALSE(scratch.Exists("s")) << written;
        EXPECT_TRUE(scratch.Exists("t")) << written;
    }
}

// What Windows would rather read as something else, and what has no composed or no UTF-8 form at all.
TEST(RemoveFolder, RemovesNamesThatOtherCallsMisread) {
    const ScratchFolder scratch;
    const std::wstring folder = Literal(scratch.MakeFolder("s")) + L"\\";
    for (const wchar_t* name : {L"ends in a dot.", L"ends in a blank ", L"nul", L"Jo\x0308rg"}) {
        ASSERT_TRUE(MakeFileNamed(folder + name));
        ASSERT_TRUE(CreateDirectoryW((folder + L"in " + name).c_str(), nullptr));
    }
    if (!MakeFileNamed(folder + L"lone \xD800 surrogate")) {
        std::cout << "This file system keeps lone surrogates out of names: not tested.\n";
    }
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "OK");
    EXPECT_FALSE(scratch.Exists("s"));
}

TEST(RemoveFolder, ManyFilesAndDeepFolders) {
    const ScratchFolder scratch;
    std::wstring folder = Literal(scratch.MakeFolder("s"));
    for (int i = 0; i < 2000; ++i) {
        ASSERT_TRUE(MakeFileNamed(folder + L"\\frame" + std::to_wstring(i)));
    }
    while (folder.size() < 3000) {
        folder += L"\\" + std::wstring(20, L'd');
        ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    }
    ASSERT_TRUE(MakeFileNamed(folder + L"\\bottom"));
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "OK");
    EXPECT_FALSE(scratch.Exists("s"));
}

// A deletion that ends at a file somebody holds open must not leave what looks like a complete submission.
TEST(RemoveFolder, ReadOnlyFilesGoFirst) {
    const ScratchFolder scratch;
    const std::string held = scratch.MakeFile("s\\a-first-by-name.txt", "x");
    const std::string sentinel = scratch.MakeFile("s\\header.json", "{}");
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(sentinel).Succeeded());
    {
        const Holder holder(held);
        const LogCapture log;
        EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "Failed to delete file");
        EXPECT_FALSE(scratch.Exists("s\\header.json"));
        EXPECT_EQ(log.Errors(),
                  Texts{" Failed to delete file \"" + held + "\" with access denied after several retries"});
    }
    EXPECT_TRUE(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Succeeded());
}

// Held read-only files still end up writable, all of them, before the first one is deleted.
TEST(RemoveFolder, EveryFileIsWritableBeforeTheFirstGoes) {
    const ScratchFolder scratch;
    const std::string held = scratch.MakeFile("s\\a.txt", "x");
    const std::string sentinel = scratch.MakeFile("s\\header.json", "{}");
    for (const std::string& path : {held, sentinel}) {
        ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(path).Succeeded());
    }
    const Holder first(held);
    const Holder second(sentinel);
    const LogCapture log;
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "Failed to delete file");
    PlatformHelpers::FileStatus status;
    ASSERT_TRUE(PlatformHelpers::QueryFileStatus(sentinel, status).Succeeded());
    EXPECT_FALSE(status.isReadOnly);
}

TEST(RemoveFolder, HeldFolderFailsWithItsText) {
    const ScratchFolder scratch;
    const std::string inner = scratch.MakeFolder("s\\inner");
    const Holder holder(inner);
    const LogCapture log;
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "Failed to delete folder");
    EXPECT_EQ(log.Errors(),
              Texts{" Failed to delete folder \"" + inner + "\\\" with access denied after several retries"});
}

TEST(RemoveFolder, MissingAndImpossiblePathsFail) {
    const ScratchFolder scratch;
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("none")).Text(), "Failed to enumerate files");
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.MakeFile("file", "")).Text(),
                 "Failed to enumerate files");
    EXPECT_TRUE(scratch.Exists("file"));
    EXPECT_STREQ(PlatformHelpers::RemoveFolder("\xFF").Text(),
                 "Removing folder failed! Failed to convert folder path from multi-byte to wide string!");
    const AssertCapture asserts;
    EXPECT_STREQ(PlatformHelpers::RemoveFolder("").Text(),
                 "Unexpected empty string passed to PlatformHelpers::EnsureTrailingFolderSeparator");
}

// Wine makes no symbolic links from inside; there, links made from outside show that their targets stay.
bool MakeLink(const std::string& link, const std::string& target, DWORD flags) {
    constexpr DWORD AllowForEverybody = 2; // where the developer mode is on
    return CreateSymbolicLinkW(Literal(link).c_str(), ScratchFolder::FromUtf8(target).c_str(),
                               flags | AllowForEverybody) &&
           GetFileAttributesW(Literal(link).c_str()) != INVALID_FILE_ATTRIBUTES;
}

TEST(RemoveFolder, LinksGoAloneAndTheirTargetsStay) {
    const ScratchFolder scratch;
    const std::string target = scratch.MakeFolder("target");
    const std::string file = scratch.MakeFile("target\\keep.txt", "x");
    const std::string folder = scratch.MakeFolder("s");
    if (!MakeLink(folder + "\\to-folder", target, SYMBOLIC_LINK_FLAG_DIRECTORY) ||
        !MakeLink(folder + "\\to-file", file, 0) ||
        !MakeLink(scratch.PathOf("top"), target, SYMBOLIC_LINK_FLAG_DIRECTORY)) {
        GTEST_SKIP() << "this system makes no symbolic links: error " << GetLastError();
    }
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(folder).Text(), "OK");
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("top")).Text(), "OK");
    EXPECT_FALSE(scratch.Exists("s"));
    EXPECT_FALSE(scratch.Exists("top"));
    EXPECT_EQ(scratch.ReadFile("target\\keep.txt"), "x");
}

TEST(LinkEntry, PlaceholdersOfCloudDrivesAreNone) {
    const struct {
        uint32_t attributes;
        uint32_t tag;
        bool isLink;
    } rows[] = {
        {0x10, 0, false},           {0x410, 0xA0000003, true}, // junction
        {0x420, 0xA000000C, true},                             // symbolic link
        {0x410, 0x9000001A, false},                            // kept by a cloud drive
        {0x410, 0, true},                                      // a layer that knows no tags
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlatformHelpers::IsLinkEntry(row.attributes, row.tag), row.isLink)
            << row.attributes << row.tag;
    }
}

TEST(LiteralPath, KeepsNamesAndResolvesTheRest) {
    const wchar_t* const rows[][2] = {
        {L"C:\\dumps\\", L"\\\\?\\C:\\dumps"},
        {L"C:/dumps/a.\\", L"\\\\?\\C:\\dumps\\a."},
        {L"C:\\dumps\\.\\b\\..\\c\\", L"\\\\?\\C:\\dumps\\c"},
        {L"\\\\server\\share\\dumps\\", L"\\\\?\\UNC\\server\\share\\dumps"},
        {L"\\\\?\\C:\\dumps\\", L"\\\\?\\C:\\dumps"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PlatformHelpers::ToLiteralPath(row[0]), row[1]);
    }
    EXPECT_TRUE(PlatformHelpers::IsDrive(PlatformHelpers::ToLiteralPath(L"C:\\")));
    EXPECT_FALSE(PlatformHelpers::IsDrive(PlatformHelpers::ToLiteralPath(L"C:\\dumps")));
}

} // namespace
