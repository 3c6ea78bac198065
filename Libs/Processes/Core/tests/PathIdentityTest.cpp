#include "Libs/Processes/Core/src/PathIdentity.h"

#include <gtest/gtest.h>

#include "tests/support/HostSystem.h"
#include "tests/support/ScratchFolder.h"

using TestSupport::ScratchFolder;

TEST(PathIdentity, FilesAndFoldersThatAreThereLieInside) {
    const ScratchFolder scratch("太郎");
    scratch.MakeFile("s/logs/ログ.txt", "x");
    scratch.MakeFile("s2", "x");
    EXPECT_TRUE(PathIdentity::LiesInside(scratch.PathOf("s"), "logs\\ログ.txt"));
    EXPECT_TRUE(PathIdentity::LiesInside(scratch.PathOf("s") + "\\", "logs/ログ.txt"));
    EXPECT_TRUE(PathIdentity::LiesInside(scratch.PathOf("s"), "logs"));
    EXPECT_FALSE(PathIdentity::LiesInside(scratch.PathOf("s"), "logs\\missing.txt"));
    EXPECT_FALSE(PathIdentity::LiesInside(scratch.PathOf("s"), "..\\s2")); // a neighbour of a longer name
    EXPECT_FALSE(PathIdentity::LiesInside(scratch.PathOf("missing"), "a"));
    EXPECT_FALSE(PathIdentity::LiesInside(scratch.PathOf("s"), ""));
}

TEST(PathIdentity, NothingBehindALinkLiesInside) {
    const ScratchFolder scratch;
    scratch.MakeFile("outside/secret.txt", "x");
    const std::string folder = scratch.MakeFolder("s");
    const TestSupport::Link toFile(folder + "\\file", "../outside/secret.txt", false);
    const TestSupport::Link toFolder(folder + "\\folder", "../outside", true);
    if (!toFile || !toFolder) {
        GTEST_SKIP() << "this system makes no symbolic links";
    }
    EXPECT_FALSE(PathIdentity::LiesInside(folder, "file"));
    EXPECT_FALSE(PathIdentity::LiesInside(folder, "folder\\secret.txt"));
    EXPECT_FALSE(PathIdentity::LiesInside(folder, "folder"));
    EXPECT_TRUE(PathIdentity::IsLink(folder + "\\folder"));
    EXPECT_FALSE(PathIdentity::IsLink(folder));
    EXPECT_FALSE(PathIdentity::IsLink(folder + "\\missing"));
    // Links on the way to the folder are the user's own.
    EXPECT_TRUE(PathIdentity::LiesInside(folder + "\\folder", "secret.txt"));
}

TEST(PathIdentity, AFolderIsTheSameHoweverItIsWritten) {
    const ScratchFolder scratch;
    scratch.MakeFolder("work/sub");
    const std::string work = scratch.PathOf("work");
    EXPECT_TRUE(PathIdentity::IsSameFolder(work + "\\", scratch.PathOf("WORK/")));
    EXPECT_TRUE(PathIdentity::IsSameFolder(work, work + "\\sub\\.."));
    EXPECT_FALSE(PathIdentity::IsSameFolder(work, work + "\\sub"));
    EXPECT_FALSE(PathIdentity::IsSameFolder(scratch.PathOf("missing"), scratch.PathOf("missing")));
}
