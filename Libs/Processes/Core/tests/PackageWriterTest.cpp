#include "Libs/Processes/Core/src/PackageWriter.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/tests/PackageReader.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

using Lines = std::vector<std::string>;

class PackageWriterTest : public testing::Test {
protected:
    PackageWriterTest() {
        m_config.packageWorkFolder = m_scratch.PathOf("work");
        m_config.packagedFolder = m_scratch.PathOf("packaged") + "\\";
        m_config.submissionFilename = "p.pkg";
    }

    // A work folder as it stands when the submission has been prepared.
    void Prepare(const Catalog& catalog, const Lines& files) {
        BugHeader header;
        header.catalog = catalog;
        ASSERT_TRUE(HeaderFile::Write(m_scratch.MakeFolder("work/太郎 1"), header));
        for (const std::string& file : files) {
            m_scratch.MakeFile("work/太郎 1/" + file, "<" + file + ">");
        }
    }
    std::string Generate() { return PackageWriter(m_config, false).Generate("太郎 1").Text(); }
    std::string Package() const { return m_scratch.ReadFile("packaged/太郎 1/p.pkg"); }
    bool IsFinished() const {
        PlatformHelpers::FileStatus status;
        const std::string path = m_scratch.PathOf("packaged/太郎 1/p.pkg");
        return PlatformHelpers::PathExists(path) &&
               PlatformHelpers::QueryFileStatus(path, status).Succeeded() && status.isReadOnly;
    }

    TestSupport::ScratchFolder m_scratch;
    TestSupport::LogCapture m_log;
    PackagerConfig m_config;
};

const Catalog ThreeFiles{.dump = {"d.dmp", ""}, .log = {"l.log", ""}, .attachments = {{"", ""}, {"a/b", ""}}};
const Lines ThreeStored = {"d.dmp.gz", "l.log.gz", "a/b.gz"};

} // namespace

TEST_F(PackageWriterTest, TheLogComesFirst) {
    Prepare(ThreeFiles, ThreeStored);
    const std::string header = m_scratch.ReadFile("work/太郎 1/header.json");
    EXPECT_EQ(Generate(), "OK");
    const TestSupport::ReadPackage package = TestSupport::TakeApart(Package());
    EXPECT_EQ(package.header, header);
    EXPECT_EQ(package.entries, (Lines{"<l.log.gz>", "<d.dmp.gz>", "<a/b.gz>"}));
    EXPECT_TRUE(IsFinished());
    EXPECT_FALSE(m_scratch.Exists("work/太郎 1"));
    EXPECT_TRUE(m_scratch.Exists("work"));
    EXPECT_EQ(m_log.Infos(), Lines{" Starting packaging of file 太郎 1..."});
}

TEST_F(PackageWriterTest, EveryPreparedFileMustBeThere) {
    EXPECT_EQ(Generate(), "Failed to open input file"); // no header
    Prepare({.dump = {"data.tgz", ""}, .log = {}, .attachments = {}}, {"data.tgz"});
    EXPECT_EQ(Generate(), "Failed to open input file"); // only the name with ".gz" is looked for
    m_scratch.MakeFile("work/太郎 1/data.tgz.gz", "");
    EXPECT_EQ(Generate(), "Failed to read zero length input file!");
    EXPECT_FALSE(m_scratch.Exists("packaged/太郎 1/p.pkg"));
    m_scratch.MakeFile("work/太郎 1/header.json", "{");
    EXPECT_EQ(Generate(), "Failed to parse json header data in dump folder!");
    EXPECT_EQ(m_log.Errors(), Lines{});
}

TEST_F(PackageWriterTest, WhatAnInterruptedRunLeftIsReplacedOrGood) {
    Prepare(ThreeFiles, ThreeStored);
    EXPECT_EQ(Generate(), "OK");
    const std::string first = Package();
    Prepare(ThreeFiles, ThreeStored); // finished, but its source was not yet deleted
    EXPECT_EQ(Generate(), "OK");
    EXPECT_EQ(Package(), first);
    EXPECT_TRUE(IsFinished());

    ASSERT_TRUE(PlatformHelpers::MakeFileWritable(m_scratch.PathOf("packaged/太郎 1/p.pkg")));
    m_scratch.MakeFile("packaged/太郎 1/p.pkg", first.substr(0, 70) + std::string(5000, 'x')); // half written
    Prepare(ThreeFiles, ThreeStored);
    EXPECT_EQ(Generate(), "OK");
    EXPECT_EQ(Package(), first);
    EXPECT_TRUE(IsFinished());
}

TEST_F(PackageWriterTest, AnotherFinishedPackageIsNotOverwritten) {
    m_scratch.MakeFile("packaged/太郎 1/p.pkg", "other");
    ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(m_scratch.PathOf("packaged/太郎 1/p.pkg")));
    Prepare(ThreeFiles, ThreeStored);
    EXPECT_EQ(Generate(), "Failed to open package file for writing");
    EXPECT_EQ(Package(), "other");
}
