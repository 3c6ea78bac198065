#include <gtest/gtest.h>

#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

namespace fs = std::filesystem;

// A submission of a dump, a log and an attachment in a sub-folder, on its way to a package.
class PackagingTest : public testing::Test {
protected:
    PackagingTest() {
        m_config.packageWorkFolder = m_scratch.PathOf("work");
        m_config.packagedFolder = m_scratch.PathOf("packaged");
        m_config.submissionFilename = "p.pkg";
        for (const char* file : {"d.dmp", "game.log", "logs/note.txt"}) {
            m_scratch.MakeFile(std::string("dumps/太郎 1/") + file, std::string("content of ") + file);
        }
        BugHeader header;
        header.catalog = {
            .dump = {"d.dmp", ""}, .log = {"game.log", ""}, .attachments = {{"logs/note.txt", ""}}};
        EXPECT_TRUE(HeaderFile::Write(m_submission, header));
    }

    ResultCode Pack() {
        std::string name;
        JsonProblem problem;
        RETURN_IF_FAILED(SubmissionPackager(m_config, m_blacklist).Prepare(m_submission, name, problem));
        return PackageWriter(m_config, false).Generate(name);
    }
    std::string Package() const { return m_scratch.ReadFile("packaged/太郎 1/p.pkg"); }
    void SetWritable(bool isWritable) {
        fs::permissions(m_scratch.Folder() / "packaged/太郎 1/p.pkg", fs::perms::owner_write,
                        isWritable ? fs::perm_options::add : fs::perm_options::remove);
    }

    TestSupport::ScratchFolder m_scratch;
    TestSupport::LogCapture m_log;
    PackagerConfig m_config;
    AttachmentBlacklist m_blacklist;
    const std::string m_submission = m_scratch.PathOf("dumps/太郎 1");
};

} // namespace

TEST_F(PackagingTest, AnInterruptedRunsPackageIsReplacedOrGood) {
    ASSERT_STREQ(Pack().Text(), "OK");
    const std::string whole = Package();
    ASSERT_STREQ(Pack().Text(), "OK"); // finished, but its submission was not deleted yet
    EXPECT_EQ(Package(), whole);

    SetWritable(true);
    m_scratch.MakeFile("packaged/太郎 1/p.pkg", whole.substr(0, 70) + std::string(5000, 'x'));
    m_scratch.MakeFile("work/太郎 1/header.json", "{");
    ASSERT_STREQ(Pack().Text(), "OK");
    EXPECT_EQ(Package(), whole);
    EXPECT_TRUE(IsFinishedPackage(m_scratch.PathOf("packaged/太郎 1/p.pkg")));
    EXPECT_FALSE(m_scratch.Exists("work/太郎 1"));
}

TEST_F(PackagingTest, AnotherFinishedPackageIsNotOverwritten) {
    m_scratch.MakeFile("packaged/太郎 1/p.pkg", "other");
    SetWritable(false);
    EXPECT_STREQ(Pack().Text(), "Failed to open package file for writing");
    EXPECT_EQ(Package(), "other");
}

TEST_F(PackagingTest, AFolderExchangedForALinkIsNotFollowed) {
    m_scratch.MakeFile("outside/game.log", "x");
    m_scratch.MakeFile("outside/note.txt", "x");
    const SubmissionFolder submission(m_submission);
    Platform::File file;
    fs::rename(m_submission + "/logs", m_submission + "/logs2");
    fs::create_directory_symlink("../../outside", m_submission + "/logs");
    EXPECT_TRUE(SubmissionFault::Is(submission.OpenFile("logs/note.txt", "", file)));
    fs::rename(m_submission, m_scratch.PathOf("dumps/away"));
    fs::create_directory_symlink("../outside", m_submission);
    // Of the folder that was opened, or none.
    EXPECT_TRUE(!submission.OpenFile("game.log", "", file) || file.GetSize() > 1);
}
