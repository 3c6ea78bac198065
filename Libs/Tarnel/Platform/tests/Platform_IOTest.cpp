#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "tests/support/ScratchFolder.h"

using namespace Platform;

namespace {

std::vector<uint8_t> Bytes(std::size_t size) {
    return std::vector<uint8_t>(size, uint8_t{'x'});
}

} // namespace

TEST(PlatformIO, FailuresHaveTheirOutcomes) {
    const TestSupport::ScratchFolder scratch;
    scratch.MakeFile("empty", "");
    std::vector<uint8_t> bytes;
    EXPECT_STREQ(ReadFileBytes(scratch.PathOf("empty"), bytes).Text(),
                 "Failed to read zero length input file!");
    for (const std::string& path :
         {scratch.PathOf("missing/x"), scratch.Path(), std::string(), scratch.Path() + "\xFF"}) {
        EXPECT_STREQ(ReadFileBytes(path, bytes).Text(), "Failed to open input file") << path;
        EXPECT_EQ(WriteWholeFile(path, Bytes(1)), WriteOutcome::OpenFailed) << path;
        EXPECT_FALSE(FolderListing(path + "none").Next());
    }
}

TEST(PlatformIO, TreesBeginBelowTheRoot) {
    const TestSupport::ScratchFolder scratch;
    scratch.MakeFile("file", "in the way");
    const struct {
        std::string path;
        bool isMade;
    } rows[] = {
        {scratch.PathOf("a/b/c") + "/", true},
        {scratch.PathOf("file/below/deeper"), false},
        {"first-part/is/never/made", false},
#if defined(_WIN32)
        {R"(\\?\)" + scratch.PathOf("d\\e\\f"), true},
        {R"(\\?\Q:\no\such\drive)", false},
#endif
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CreateDirectoryTree(row.path.c_str()), row.isMade) << row.path;
        EXPECT_EQ(Exists(row.path), row.isMade) << row.path;
    }
}

#if defined(_WIN32)
// This program's memory ends at 1 GiB a block: the system might promise more than it can give.
void* operator new(std::size_t size) {
    void* const block = size > (std::size_t{1} << 30) ? nullptr : std::malloc(size);
    if (!block) {
        throw std::bad_alloc();
    }
    return block;
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

TEST(PlatformIO, FileBeyondMemoryIsAReadFailure) {
    const TestSupport::ScratchFolder scratch;
    const std::string path = scratch.PathOf("huge");
    File file;
    ASSERT_EQ(file.Open(path, FileWrite | FileCreateNew, ShareAll), NoError);
    ASSERT_TRUE(WriteFileAt(file.Get(), uint64_t{5} << 30, "x", 1)); // nothing before it takes room
    std::vector<uint8_t> bytes = {9};
    EXPECT_EQ(ReadWholeFile(path, bytes), ReadOutcome::ReadFailed);
    EXPECT_TRUE(bytes.empty());
}
#endif
