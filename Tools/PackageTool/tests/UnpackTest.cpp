#include "Tools/PackageTool/src/Unpack.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/ScratchFolder.h"

namespace {

class UnpackFolderTest : public testing::Test {
protected:
    std::string Write(UnpackFolder& folder, const std::string& name, std::string_view content) {
        std::string path;
        const std::span bytes(reinterpret_cast<const uint8_t*>(content.data()), content.size());
        return folder.Write(
            name, [&](const auto& write) { return write(bytes); }, path);
    }

    std::string Content(const std::string& name) {
        std::ifstream file(m_scratch.Folder() / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    TestSupport::ScratchFolder m_scratch{"UnpackFolderTest"};
    std::string m_folder = m_scratch.PathOf("out");
};

} // namespace

TEST_F(UnpackFolderTest, NumbersRepeatedNames) {
    UnpackFolder folder(m_folder, true);
    for (const char* const name : {"game.log", "GAME.LOG", "game.log", "a.b/c", "a.b\\C"}) {
        EXPECT_EQ(Write(folder, name, name), "");
    }
    EXPECT_EQ(Content("out/GAME~2.LOG"), "GAME.LOG");
    EXPECT_EQ(Content("out/game~3.log"), "game.log");
    EXPECT_EQ(Content("out/a.b/C~2"), "a.b\\C");
}

TEST_F(UnpackFolderTest, FilesAndFoldersDoNotReplaceEachOther) {
    UnpackFolder folder(m_folder, true);
    EXPECT_EQ(Write(folder, "a", "1"), "");
    EXPECT_EQ(Write(folder, "a/b", "2"), "Failed to create the folder");
    EXPECT_EQ(Write(folder, "c/d", "3"), "");
    EXPECT_EQ(Write(folder, "c", "4"), "There is already a folder of that name");
    EXPECT_EQ(Content("out/a") + Content("out/c/d"), "13");
}

#if !defined(_WIN32) // making links needs a right on Windows
TEST_F(UnpackFolderTest, LinksAreReplacedAndNotFollowed) {
    m_scratch.MakeFile("outside/file", "mine");
    m_scratch.MakeFile("out/there", "");
    std::filesystem::create_directory_symlink(m_scratch.Folder() / "outside",
                                              m_scratch.Folder() / "out/logs");
    std::filesystem::create_symlink(m_scratch.Folder() / "outside/file", m_scratch.Folder() / "out/file");
    std::filesystem::create_symlink(m_scratch.Folder() / "outside/new", m_scratch.Folder() / "out/dangling");
    for (const bool mayReplace : {false, true}) {
        UnpackFolder folder(m_folder, mayReplace);
        EXPECT_EQ(Write(folder, "logs/a", "x"), "A link lies on the way");
        EXPECT_EQ(Write(folder, "file", "x").empty(), mayReplace);
        EXPECT_EQ(Write(folder, "dangling", "x").empty(), mayReplace);
    }
    EXPECT_EQ(Content("out/file") + Content("outside/file"), "xmine");
    EXPECT_FALSE(m_scratch.Exists("outside/new") || m_scratch.Exists("outside/a"));
}
#endif
