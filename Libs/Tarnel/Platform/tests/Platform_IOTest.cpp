#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_DirectoryTree.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ThreadId.h"
#include "tests/support/AssertCapture.h"
#include "tests/support/ScratchFolder.h"

using namespace Platform;

TEST(File, RecordFollowsWritesAndIsResetByClose) {
    const TestSupport::ScratchFolder folder("File");
    const std::wstring path = folder.Wide() + L"/file";
    File file;
    file.accessFlags = FileWrite | FileCreateAndTruncate;
    ASSERT_TRUE(OpenFile(file, path.c_str()));
    EXPECT_EQ(0u, file.size);
    EXPECT_FALSE(OpenFile(file, path.c_str())); // open already
    EXPECT_TRUE(WriteFileAt(file, 4, "5678", 4));
    EXPECT_TRUE(WriteFileAt(file, 0, "1234", 4));
    EXPECT_EQ(4u, file.position);
    EXPECT_EQ(8u, file.size);
    EXPECT_TRUE(CloseFile(file));
    EXPECT_EQ(File::InvalidHandle, file.handle);
    EXPECT_EQ(0u, file.accessFlags + file.position + file.size);
    std::string text;
    std::ifstream(folder.Folder() / "file") >> text;
    EXPECT_EQ("12345678", text);
    file.accessFlags = FileRead;
    EXPECT_TRUE(OpenFile(file, path.c_str()));
    EXPECT_EQ(8u, file.size);
    EXPECT_TRUE(CloseFile(file));
}

TEST(File, MisuseIsReported) {
    const TestSupport::ScratchFolder folder("FileMisuse");
    const std::wstring path = folder.Wide() + L"/file";
    const AssertCapture capture;
    File file;
    EXPECT_FALSE(OpenFile(file, path.c_str()));
    EXPECT_FALSE(CloseFile(file));
    file.accessFlags = FileRead;
    EXPECT_FALSE(OpenFile(file, path.c_str())); // there is no such file, which is no misuse
    EXPECT_EQ((std::vector<std::string>{
                  "false|File access flags not specified",
                  "file_handle != INVALID_HANDLE_VALUE|Invalid File Handle passed into CloseFile"}),
              capture.Texts());
}

TEST(File, WriteTheSystemRefusesIsReported) {
    const TestSupport::ScratchFolder folder("FileRefused");
    std::ofstream(folder.Folder() / "file") << "text";
    File file;
    file.accessFlags = FileRead;
    ASSERT_TRUE(OpenFile(file, (folder.Wide() + L"/file").c_str()));
    {
        const AssertCapture capture;
        EXPECT_FALSE(WriteFileAt(file, 0, "x", 1));
        ASSERT_EQ(1u, capture.Failures().size());
        EXPECT_EQ(0u, capture.Failures()[0].message.find("File write failed. Error code is "));
    }
    EXPECT_EQ(0u, file.position);
    EXPECT_TRUE(CloseFile(file));
}

TEST(DirectoryTree, NarrowAndWideCreateTheSame) {
    const TestSupport::ScratchFolder folder("Tree");
    const std::string narrow = folder.PathOf("n/J\xC3\xB6rg/\xE5\xA4\xAA");
    const std::wstring wide = folder.Wide() + L"/w/J\u00F6rg/\u592A/";
    EXPECT_FALSE(CreateOneDirectory(narrow.c_str())); // no parent
    for (int i = 0; i < 2; ++i) {                     // the second time all is there
        EXPECT_TRUE(CreateDirectoryTree(narrow.c_str()));
        EXPECT_TRUE(CreateDirectoryTree(wide.c_str()));
    }
    EXPECT_TRUE(CreateOneDirectory(narrow.c_str()));
    EXPECT_TRUE(std::filesystem::is_directory(folder.Folder() / u8"n/Jörg/太"));
    EXPECT_TRUE(std::filesystem::is_directory(folder.Folder() / u8"w/Jörg/太"));
}

TEST(DirectoryTree, StopsAtTheFirstFolderThatFails) {
    const TestSupport::ScratchFolder folder("TreeBlocked");
    std::ofstream(folder.Folder() / "file") << "in the way";
    EXPECT_FALSE(CreateDirectoryTree(folder.PathOf("file/below/deeper").c_str()));
    const AssertCapture capture;
    EXPECT_FALSE(CreateDirectoryTree(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(CreateDirectoryTree(static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ((std::vector<std::string>{"szCompleteFilePath|", "szCompleteFilePath|"}), capture.Texts());
}

// The order of the calls, with a file system that knows only the folders listed.
TEST(DirectoryTree, AsksForTheWholePathThenFromTheSecondSeparatorOn) {
    const struct {
        const char* path;
        std::vector<std::string> calls;
        bool result;
    } rows[] = {
        {"X:/a", {"X:/a"}, false}, // the part before the first separator is never created
        {"name", {"name"}, false},
        {"X:/a/b", {"X:/a/b", "X:/a", "X:/a/b"}, true},
        {"X:/a/b/", {"X:/a/b/", "X:/a", "X:/a/b"}, true},
        {"X:/bad/b/c", {"X:/bad/b/c", "X:/bad"}, false},
    };
    for (const auto& row : rows) {
        std::vector<std::string> calls;
        const bool result = CreateTree(row.path, [&calls](const char* path) {
            std::string text(path);
            for (char& c : text) {
                c = c == '\\' ? '/' : c;
            }
            calls.push_back(text);
            return calls.size() > 1 && text != "X:/bad";
        });
        EXPECT_EQ(row.result, result) << row.path;
        EXPECT_EQ(row.calls, calls) << row.path;
    }
}

TEST(ThreadId, MainThreadIsTheFirstCaller) {
    const uint32_t mainThread = GetMainThreadId();
    EXPECT_EQ(GetCurrentThreadIdImpl(), mainThread);
    uint32_t seen = 0;
    uint32_t own = 0;
    std::thread([&] {
        seen = GetMainThreadId();
        own = GetCurrentThreadIdImpl();
    }).join();
    EXPECT_EQ(mainThread, seen);
    EXPECT_NE(mainThread, own);
}
