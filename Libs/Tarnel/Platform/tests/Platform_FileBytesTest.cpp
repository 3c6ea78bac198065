#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"

#include <cstdlib>
#include <new>
#include <numeric>

#include <gtest/gtest.h>
#if defined(_WIN32)
#include <windows.h>
#endif

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"
#include "tests/support/ScratchFolder.h"

using namespace Platform;

namespace {

std::vector<uint8_t> Pattern(std::size_t size) {
    std::vector<uint8_t> bytes(size);
    std::iota(bytes.begin(), bytes.end(), uint8_t{0});
    return bytes;
}

// The folder's own removal does not reach beyond the old limit.
void RemoveUpTo(const std::filesystem::path& top, std::filesystem::path path) {
    for (path.make_preferred(); path != top; path = path.parent_path()) {
#if defined(_WIN32)
        const std::wstring unlimited = L"\\\\?\\" + path.native();
        EXPECT_TRUE(DeleteFileW(unlimited.c_str()) || RemoveDirectoryW(unlimited.c_str())) << path;
#else
        EXPECT_TRUE(std::filesystem::remove(path)) << path;
#endif
    }
}

} // namespace

TEST(FileBytes, WrittenBytesComeBack) {
    const TestSupport::ScratchFolder folder("FileBytes");
    for (const auto durability : {WriteDurability::Buffered, WriteDurability::FlushToDisk}) {
        for (const std::size_t size : {std::size_t{3} << 20, std::size_t{1}}) { // the second one truncates
            const std::string path = folder.PathOf("J\xC3\xB6rg \xE5\xA4\xAA\xE9\x83\x8E.bin");
            ASSERT_EQ(WriteOutcome::Done, WriteWholeFile(path, Pattern(size), durability));
            std::vector<uint8_t> bytes = {9, 9, 9};
            EXPECT_EQ(ReadOutcome::Done, ReadWholeFile(path, bytes));
            EXPECT_TRUE(bytes == Pattern(size)) << bytes.size();
        }
    }
    EXPECT_TRUE(std::filesystem::exists(folder.Folder() / u8"Jörg 太郎.bin"));
}

TEST(FileBytes, FailuresAreToldApart) {
    const TestSupport::ScratchFolder folder("FileBytesFailures");
    ASSERT_EQ(WriteOutcome::Done, WriteWholeFile(folder.PathOf("empty"), {}));
    ASSERT_EQ(WriteOutcome::Done, WriteWholeFile(folder.PathOf("full"), Pattern(4)));
    const struct {
        std::string path;
        ReadOutcome outcome;
        const char* text;
    } rows[] = {
        {folder.PathOf("full"), ReadOutcome::Done, "OK"},
        {folder.PathOf("missing"), ReadOutcome::OpenFailed, "Failed to open input file"},
        {folder.Path(), ReadOutcome::OpenFailed, "Failed to open input file"},
        {"", ReadOutcome::OpenFailed, "Failed to open input file"},
        {folder.PathOf("full") + std::string("\0x", 2), ReadOutcome::OpenFailed, "Failed to open input file"},
        {folder.Path() + "\xFF", ReadOutcome::OpenFailed, "Failed to open input file"},
        {folder.PathOf("empty"), ReadOutcome::Empty, "Failed to read zero length input file!"},
    };
    for (const auto& row : rows) {
        std::vector<uint8_t> bytes = {9};
        EXPECT_EQ(row.outcome, ReadWholeFile(row.path, bytes)) << row.path;
        EXPECT_EQ(row.outcome == ReadOutcome::Done ? Pattern(4) : std::vector<uint8_t>{}, bytes) << row.path;
        EXPECT_STREQ(row.text, ReadFileBytes(row.path, bytes).Text()) << row.path;
    }
    EXPECT_EQ(WriteOutcome::OpenFailed, WriteWholeFile(folder.PathOf("missing/file"), Pattern(1)));
    EXPECT_EQ(WriteOutcome::OpenFailed,
              WriteWholeFile(folder.PathOf("a") + std::string("\0b", 2), Pattern(1)));
    EXPECT_FALSE(std::filesystem::exists(folder.Folder() / "a"));
}

TEST(FileBytes, PathsBeyondTheOldLimitWork) {
    const TestSupport::ScratchFolder folder("FileBytesLong");
    std::string path = TestSupport::ScratchFolder::ToUtf8(folder.Folder());
    while (path.size() < 400) {
        path += "/a-folder-with-a-fairly-long-name";
        ASSERT_TRUE(CreateOneDirectory(path.c_str())) << path;
    }
    path += "/file.bin";
    EXPECT_EQ(WriteOutcome::Done, WriteWholeFile(path, Pattern(10)));
    std::vector<uint8_t> bytes;
    EXPECT_EQ(ReadOutcome::Done, ReadWholeFile(path, bytes));
    EXPECT_EQ(Pattern(10), bytes);
    RemoveUpTo(folder.Folder(), path);
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

TEST(FileBytes, FileLargerThanMemoryIsAReadFailure) {
    const TestSupport::ScratchFolder folder("FileBytesHuge");
    File file;
    file.accessFlags = FileWrite | FileCreateAndTruncate;
    ASSERT_TRUE(OpenFile(file, (folder.Wide() + L"/huge").c_str()));
    ASSERT_TRUE(WriteFileAt(file, std::uint64_t{5} << 30, "x", 1)); // nothing before it takes room
    EXPECT_EQ((std::uint64_t{5} << 30) + 1, file.size);
    ASSERT_TRUE(CloseFile(file));
    std::vector<uint8_t> bytes = {9};
    EXPECT_EQ(ReadOutcome::ReadFailed, ReadWholeFile(folder.PathOf("huge"), bytes));
    EXPECT_TRUE(bytes.empty());
}

TEST(FileBytes, OpenWriterIsCopedWithOrRefused) {
    const TestSupport::ScratchFolder folder("FileBytesSharing");
    const std::string path = folder.PathOf("log");
    File writer;
    writer.accessFlags = FileWrite | FileCreateAndTruncate;
    writer.shareMode = ShareRead | ShareWrite;
    ASSERT_TRUE(OpenFile(writer, (folder.Wide() + L"/log").c_str()));
    ASSERT_TRUE(WriteFileAt(writer, 0, "abc", 3));
    std::vector<uint8_t> bytes;
    EXPECT_EQ(ReadOutcome::Done, ReadWholeFile(path, bytes, ReadSharing::Everything));
    EXPECT_EQ(3u, bytes.size());
    EXPECT_EQ(ReadOutcome::OpenFailed, ReadWholeFile(path, bytes, ReadSharing::DenyWriters));
    ASSERT_TRUE(CloseFile(writer));
    EXPECT_EQ(ReadOutcome::Done, ReadWholeFile(path, bytes, ReadSharing::DenyWriters));
}
#endif
