#include <cstdlib>
#include <new>

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/PackageWriter.h"
#include "Libs/Processes/Core/src/SubmissionFolder.h"
#include "Libs/Processes/Core/src/SubmissionPackager.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

namespace fs = std::filesystem;

// The allocations of this program until one fails; the later ones don't. SIZE_MAX: none is to fail.
std::size_t g_untilFailure = SIZE_MAX;

} // namespace

void* operator new(std::size_t size) {
    void* const block = g_untilFailure == 0 ? nullptr : std::malloc(size);
    g_untilFailure -= g_untilFailure != SIZE_MAX; // past 0 it is SIZE_MAX
    return block ? block : throw std::bad_alloc();
}

// The address sanitizer has one of its own, whose blocks it would not let the operator below free.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept try {
    return operator new(size);
} catch (const std::bad_alloc&) {
    return nullptr;
}

void operator delete(void* block) noexcept {
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

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
        return ExceptionToResult([this] {
            std::string name;
            JsonProblem problem;
            RETURN_IF_FAILED(SubmissionPackager(m_config, m_blacklist).Prepare(m_submission, name, problem));
            return PackageWriter(m_config, false).Generate(name);
        });
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

// A submission that fails for want of memory must be kept, never be sent in part or deleted.
TEST_F(PackagingTest, WithoutMemoryThePackageIsWholeOrNotThere) {
    ASSERT_STREQ(Pack().Text(), "OK");
    const std::string whole = Package();
    m_config.keepFailedSubmissions = true;
    bool hasFailed = true;
    for (std::size_t nth = 0; hasFailed; ++nth) {
        SCOPED_TRACE(nth);
        SetWritable(true);
        fs::remove_all(m_scratch.Folder() / "packaged");
        fs::remove_all(m_scratch.Folder() / "work");
        g_untilFailure = nth;
        const ResultCode result = Pack();
        hasFailed = g_untilFailure == SIZE_MAX;
        g_untilFailure = SIZE_MAX;
        ASSERT_FALSE(SubmissionFault::Is(result)) << result.Text();
        ASSERT_EQ(Package(), result ? whole : "") << result.Text();
        if (!result) {
            ASSERT_FALSE(m_scratch.Exists("packaged/太郎 1")) << result.Text();
            m_scratch.MakeFile("packaged/太郎 1/p.pkg", "to be made writable");
        }
    }
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
