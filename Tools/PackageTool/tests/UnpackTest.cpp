#include "Tools/PackageTool/src/Unpack.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/ScratchFolder.h"

namespace {

std::string Content(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A folder with something beside it that must stay as it is.
class UnpackFolderTest : public testing::Test {
protected:
    std::string Write(UnpackFolder& folder, const std::string& name, const std::string& content) {
        std::string path;
        return folder.Write(
            name,
            [&](const auto& write) {
                return write({reinterpret_cast<const uint8_t*>(content.data()), content.size()});
            },
            path);
    }

    TestSupport::ScratchFolder m_scratch{"UnpackFolderTest"};
    std::filesystem::path m_root = m_scratch.Folder() / "out";
    std::string m_folder = m_scratch.PathOf("out");
};

TEST_F(UnpackFolderTest, MakesFoldersAndFiles) {
    UnpackFolder folder(m_folder, false);
    EXPECT_EQ(Write(folder, "game.log", "one"), "");
    EXPECT_EQ(Write(folder, "logs\\deep/a.txt", "two"), "");
    EXPECT_EQ(Content(m_root / "game.log"), "one");
    EXPECT_EQ(Content(m_root / "logs" / "deep" / "a.txt"), "two");
}

TEST_F(UnpackFolderTest, RefusesNamesThatLeadElsewhere) {
    UnpackFolder folder(m_folder, true);
    for (const char* const name : {"../evil", "a/../../evil", "/evil", "C:\\evil", "NUL", "a:b", ""}) {
        EXPECT_EQ(Write(folder, name, "x"), "The name is not safe") << name;
    }
    EXPECT_FALSE(std::filesystem::exists(m_scratch.Folder() / "evil"));
}

TEST_F(UnpackFolderTest, NumbersWhatHasOneName) {
    UnpackFolder folder(m_folder, true);
    EXPECT_EQ(Write(folder, "game.log", "1"), "");
    EXPECT_EQ(Write(folder, "GAME.LOG", "2"), "");
    EXPECT_EQ(Write(folder, "game.log", "3"), "");
    EXPECT_EQ(Write(folder, "a.b/c", "4"), "");
    EXPECT_EQ(Write(folder, "a.b\\C", "5"), "");
    EXPECT_EQ(Content(m_root / "game.log"), "1");
    EXPECT_EQ(Content(m_root / "GAME~2.LOG"), "2");
    EXPECT_EQ(Content(m_root / "game~3.log"), "3");
    EXPECT_EQ(Content(m_root / "a.b" / "C~2"), "5");
}

TEST_F(UnpackFolderTest, ReplacesOnlyWhenItMay) {
    UnpackFolder first(m_folder, false);
    ASSERT_EQ(Write(first, "a", "old"), "");
    std::filesystem::permissions(m_root / "a", std::filesystem::perms::owner_read);
    UnpackFolder second(m_folder, false);
    EXPECT_EQ(Write(second, "a", "new"), "There is already a file of that name");
    EXPECT_EQ(Content(m_root / "a"), "old");
    UnpackFolder third(m_folder, true);
    EXPECT_EQ(Write(third, "a", "new"), "");
    EXPECT_EQ(Content(m_root / "a"), "new");
}

TEST_F(UnpackFolderTest, FilesAndFoldersDoNotReplaceEachOther) {
    UnpackFolder folder(m_folder, true);
    EXPECT_EQ(Write(folder, "a", "1"), "");
    EXPECT_EQ(Write(folder, "a/b", "2"), "Failed to create the folder");
    EXPECT_EQ(Write(folder, "c/d", "3"), "");
    EXPECT_EQ(Write(folder, "c", "4"), "There is already a folder of that name");
    EXPECT_EQ(Content(m_root / "a"), "1");
    EXPECT_EQ(Content(m_root / "c" / "d"), "3");
}

TEST_F(UnpackFolderTest, LeavesNothingOfAFileThatIsNotWhole) {
    UnpackFolder folder(m_folder, false);
    std::string path;
    const uint8_t part[] = {1, 2, 3};
    const std::string reason = folder.Write(
        "a",
        [&](const auto& write) {
            EXPECT_TRUE(write(part));
            return false;
        },
        path);
    EXPECT_EQ(reason, "It can't be unpacked whole");
    EXPECT_EQ(path, "");
    EXPECT_FALSE(std::filesystem::exists(m_root / "a"));
}

#if !defined(_WIN32) // making links needs a right on Windows
TEST_F(UnpackFolderTest, FollowsNoLinks) {
    const std::filesystem::path outside = m_scratch.Folder() / "outside";
    std::filesystem::create_directories(outside);
    std::filesystem::create_directories(m_root);
    std::ofstream(outside / "file") << "mine";
    std::filesystem::create_directory_symlink(outside, m_root / "logs");
    std::filesystem::create_symlink(outside / "file", m_root / "file");
    std::filesystem::create_symlink(outside / "new", m_root / "dangling");
    for (const bool mayReplace : {false, true}) {
        UnpackFolder folder(m_folder, mayReplace);
        EXPECT_EQ(Write(folder, "logs/a", "x"), "A link lies on the way");
        EXPECT_EQ(Write(folder, "file", "x").empty(), mayReplace);
        EXPECT_EQ(Write(folder, "dangling", "x").empty(), mayReplace);
        EXPECT_EQ(Content(outside / "file"), "mine");
        EXPECT_FALSE(std::filesystem::exists(outside / "new"));
        EXPECT_FALSE(std::filesystem::exists(outside / "a"));
    }
    EXPECT_EQ(Content(m_root / "file"), "x"); // in place of the link
}
#endif

} // namespace
