#include <gtest/gtest.h>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "tests/support/ScratchFolder.h"

using Platform::NoError;
using TestSupport::ScratchFolder;

namespace {

// Keeps a file or folder open, so that nobody may delete it meanwhile.
class Holder {
public:
    explicit Holder(const std::string& path)
        : m_file(CreateFileW(ScratchFolder::FromUtf8(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                             OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}

private:
    Platform::KernelHandle m_file;
};

void MakeFileAt(const Platform::SystemPath& path) {
    Platform::File file;
    EXPECT_EQ(file.Open(path, Platform::FileWrite | Platform::FileCreateNew), NoError);
}

TEST(RemoveFolder, RefusesWhatIsNone) {
    const ScratchFolder scratch;
    for (const std::string& path :
         {scratch.PathOf("none"), scratch.MakeFile("file", ""), std::string("\xFF")}) {
        EXPECT_FALSE(PlatformHelpers::RemoveFolder(path)) << path;
    }
    EXPECT_TRUE(scratch.Exists("file"));
}

// More files than one listing takes, and folders below the depth of a stack.
TEST(RemoveFolder, NeitherDepthNorNumberMatters) {
    const ScratchFolder scratch;
    Platform::SystemPath folder(scratch.MakeFolder("s"));
    for (int i = 0; i < 500; ++i) {
        MakeFileAt(folder.Below(L"frame" + std::to_wstring(i)));
    }
    while (folder.Text().size() < 3000) {
        folder = folder.Below(std::wstring(20, L'd'));
        ASSERT_EQ(CreateOneFolder(folder), NoError);
    }
    MakeFileAt(folder.Below(L"bottom"));
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "OK");
    EXPECT_FALSE(scratch.Exists("s"));
}

// A deletion that ends at a file that somebody holds must not leave what looks like a complete submission.
TEST(RemoveFolder, CutShortItLeavesNothingComplete) {
    const ScratchFolder scratch;
    const std::string held = scratch.MakeFile("s\\a-first-by-name.txt", "x");
    const std::string heldReadOnly = scratch.MakeFile("s\\b.txt", "x");
    for (const std::string& path : {heldReadOnly, scratch.MakeFile("s\\header.json", "{}")}) {
        ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(path));
    }
    {
        const Holder first(held);
        const Holder second(heldReadOnly);
        EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "Failed to delete file");
        PlatformHelpers::FileStatus status; // all were made writable before the first was to be deleted
        ASSERT_TRUE(PlatformHelpers::QueryFileStatus(scratch.PathOf("s\\header.json"), status));
        EXPECT_FALSE(status.isReadOnly);
    }
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(scratch.PathOf("s\\header.json")));
    {
        const Holder first(held);
        EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "Failed to delete file");
        EXPECT_FALSE(scratch.Exists("s\\header.json")); // the read-only one was deleted first
    }
    const std::string inner = scratch.MakeFolder("s\\inner");
    std::vector<uint32_t> pauses;
    const Holder holder(inner);
    const auto pause = [&](uint32_t milliseconds) { pauses.push_back(milliseconds); };
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s"), pause).Text(), "Failed to delete folder");
    EXPECT_EQ(pauses, (std::vector<uint32_t>{2, 4, 8, 16, 32, 64, 128, 256, 512}));
}

// Wine makes no links. With those of its host the end-to-end tests see that what they lead to stays.
TEST(RemoveFolder, WhatALinkLeadsToStays) {
    const ScratchFolder scratch;
    scratch.MakeFile("target\\keep.txt", "x");
    const std::wstring link = ScratchFolder::FromUtf8(scratch.MakeFolder("s")).wstring() + L"\\link";
    CreateSymbolicLinkW(link.c_str(), L"..\\target", SYMBOLIC_LINK_FLAG_DIRECTORY);
    if (!scratch.Exists("s/link")) {
        GTEST_SKIP() << "this system, or this user, makes no links";
    }
    EXPECT_STREQ(PlatformHelpers::RemoveFolder(scratch.PathOf("s")).Text(), "OK");
    EXPECT_TRUE(scratch.Exists("target/keep.txt"));
}

} // namespace
