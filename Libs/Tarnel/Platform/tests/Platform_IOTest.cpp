#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

#include <gtest/gtest.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_FileBytes.h"
#include "tests/support/ScratchFolder.h"

using namespace Platform;

TEST(PlatformIO, FailuresHaveTheirOutcomes) {
    const TestSupport::ScratchFolder scratch;
    scratch.MakeFile("empty", "");
    std::vector<uint8_t> bytes;
    EXPECT_STREQ(ReadFileBytes(scratch.PathOf("empty"), bytes).Text(),
                 "Failed to read zero length input file!");
    for (const std::string& path :
         {scratch.PathOf("missing/x"), scratch.Path(), std::string(), scratch.Path() + "\xFF"}) {
        EXPECT_STREQ(ReadFileBytes(path, bytes).Text(), "Failed to open input file") << path;
        EXPECT_EQ(WriteWholeFile(path, std::vector<uint8_t>(1)), WriteOutcome::OpenFailed) << path;
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
