#include "Libs/Processes/Core/src/FolderScan.h"

#include <algorithm>

#include "tests/support/HostSystem.h"
#include "tests/support/ProcessFixture.h"

namespace {

using Names = std::vector<std::string>;

class FolderScanTest : public ProcessFixture {
protected:
    FolderScanTest() { m_config.folder = m_scratch.Path(); }

    // The names that one more pass finds, which are known from then on; sorted, for the file system has no
    // order.
    Names Pass() {
        FolderScan scan(m_config, m_known);
        EXPECT_TRUE(scan.Run());
        Names names = scan.GetNewNames();
        for (const std::string& name : names) {
            m_known.Add(name);
        }
        std::sort(names.begin(), names.end());
        m_hasLeftOvers = scan.HasLeftOvers();
        return names;
    }

    WatcherConfig m_config;
    KnownFolders m_known;
    bool m_hasLeftOvers = false; // of the last pass
};

} // namespace

TEST_F(FolderScanTest, AFolderCountsOnceItsSentinelIsReadOnly) {
    m_scratch.MakeFile("writing/header.json", "{}");
    m_scratch.MakeFolder("empty");
    m_scratch.MakeFile("header.json", "{}");
    m_scratch.MakeFile("plain.txt", "x");
    MakeReadOnly("plain.txt");
    MakeComplete("太郎");
    MakeComplete("packed", "gz", "header.json.gz");
    EXPECT_EQ(Pass(), (Names{"packed", "太郎"}));
    EXPECT_TRUE(m_hasLeftOvers);
    ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("empty")));
    MakeReadOnly("writing/header.json");
    EXPECT_EQ(Pass(), Names{"writing"});
    EXPECT_FALSE(m_hasLeftOvers);
    EXPECT_EQ(Pass(), Names{});
    EXPECT_FALSE(m_hasLeftOvers);
}

TEST_F(FolderScanTest, ThePlainSentinelDecidesWhenBothAreThere) {
    MakeComplete("a", "gz", "header.json.gz");
    m_scratch.MakeFile("a/header.json", "{}");
    EXPECT_EQ(Pass(), Names{});
}

TEST_F(FolderScanTest, TheSentinelIsConfigured) {
    m_config.sentinelFile = "submission.pkg";
    MakeComplete("header");
    MakeComplete("package", "p", "submission.pkg");
    EXPECT_EQ(Pass(), Names{"package"});
}

TEST_F(FolderScanTest, ALimitSpreadsFoldersOverPasses) {
    m_config.maxFolderScans = 2;
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        MakeComplete(name);
    }
    EXPECT_EQ(Pass().size(), 2U);
    EXPECT_EQ(Pass().size(), 2U);
    EXPECT_TRUE(m_hasLeftOvers);
    EXPECT_EQ(Pass().size(), 1U);
    EXPECT_FALSE(m_hasLeftOvers);
    EXPECT_EQ(Pass().size(), 0U);
    EXPECT_EQ(m_known.Size(), 5U);
}

TEST_F(FolderScanTest, OnlyAcceptedFoldersCountForTheLimit) {
    m_config.maxFolderScans = 1;
    m_scratch.MakeFolder("a");
    m_scratch.MakeFile("b/header.json", "{}");
    MakeComplete("c");
    EXPECT_EQ(Pass(), Names{"c"});
    m_config.maxFolderScans = 0;
    MakeComplete("d");
    EXPECT_EQ(Pass(), Names{});
    m_config.maxFolderScans = -5;
    EXPECT_EQ(Pass(), Names{"d"});
}

TEST_F(FolderScanTest, ReadOnlyFoldersAreIgnoredWhenAsked) {
    MakeComplete("marked");
    ASSERT_TRUE(TestSupport::SetFolderReadOnly(m_scratch.PathOf("marked"), true));
    MakeComplete("plain");
    m_config.ignoreReadOnlyFolders = true;
    EXPECT_EQ(Pass(), Names{"plain"});
    EXPECT_TRUE(m_hasLeftOvers);
    m_config.ignoreReadOnlyFolders = false;
    EXPECT_EQ(Pass(), Names{"marked"});
    ASSERT_TRUE(TestSupport::SetFolderReadOnly(m_scratch.PathOf("marked"), false));
}

TEST_F(FolderScanTest, KnownNamesAreComparedExactly) {
    MakeComplete("Crash");
    m_known.Add("crash");
    m_known.Add("Crash2");
    EXPECT_EQ(Pass(), Names{"Crash"});
}
