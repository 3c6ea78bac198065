#include "Libs/Processes/Core/src/AttachmentPacker.h"

#include <gtest/gtest.h>

#include <windows.h>

#include "Libs/Processes/Core/tests/PackageReader.h"
#include "tests/support/HostSystem.h"
#include "tests/support/ScratchFolder.h"

namespace {

const std::vector<AttachmentLimit> NoLimits;

class AttachmentPackerTest : public testing::Test {
protected:
    // The result's text; the MD5 is left in m_md5.
    std::string Pack(const std::string& file) {
        Attachment attachment{file, "from the game"};
        const AttachmentPacker packer(m_source, m_work, NoLimits);
        const ResultCode result = packer.Pack(attachment);
        EXPECT_EQ(attachment.file, file);
        m_md5 = attachment.md5;
        return result.Text();
    }
    std::string Stored(const std::string& name) const { return m_scratch.ReadFile("work/" + name); }

    TestSupport::ScratchFolder m_scratch{"添付"};
    std::string m_source = m_scratch.MakeFolder("s");
    std::string m_work = m_scratch.MakeFolder("work");
    std::string m_md5;
};

constexpr char NotOnDisk[] = "Failed to find attachment on disk";

} // namespace

TEST_F(AttachmentPackerTest, PlainFilesAreCompressed) {
    for (const std::string file : {"a.dmp", "logs/太郎.txt", "deep\\er\\b", "trace.gz", "header.json"}) {
        SCOPED_TRACE(file);
        m_scratch.MakeFile("s/" + file, "content of " + file);
        m_scratch.MakeFile("s/" + file + ".gz", "of both the plain one is taken");
        EXPECT_EQ(Pack(file), "OK");
        EXPECT_EQ(TestSupport::Gunzip(Stored(file + ".gz")), "content of " + file);
        EXPECT_EQ(m_md5, TestSupport::Digest(Stored(file + ".gz")));
    }
    EXPECT_FALSE(m_scratch.Exists("work/header.json"));
}

TEST_F(AttachmentPackerTest, CompressedFilesAreCopied) {
    m_scratch.MakeFile("s/extra.txt.gz", "as it came");
    EXPECT_EQ(Pack("extra.txt"), "OK");
    EXPECT_EQ(Stored("extra.txt.gz"), "as it came");
    EXPECT_EQ(m_md5, TestSupport::Digest("as it came"));
    m_scratch.MakeFile("s/data.tgz", "tar");
    EXPECT_EQ(Pack("data.tgz"), "OK");
    EXPECT_EQ(Stored("data.tgz"), "tar");
    EXPECT_FALSE(m_scratch.Exists("work/data.tgz.gz"));
}

TEST_F(AttachmentPackerTest, FailuresHaveTheirTexts) {
    m_scratch.MakeFile("s/empty.txt", "");
    m_scratch.MakeFile("s/empty2.txt.gz", "");
    m_scratch.MakeFolder("s/folder");
    m_scratch.MakeFile("s/sub/deep/a.txt", "x");
    m_scratch.MakeFile("work/sub", "in the way");
    m_scratch.MakeFile("s/b.txt", "x");
    m_scratch.MakeFolder("work/b.txt.gz");
    const struct {
        const char* file;
        const char* error;
    } rows[] = {
        {"missing.txt", NotOnDisk},
        {"missing.tgz", "Failed to open input file"},
        {"empty.txt", "Failed to read zero length input file!"},
        {"empty2.txt", "Failed to read zero length input file!"},
        {"folder", "Failed to open input file"},
        {"sub/deep/a.txt", "Ensuring folder existence failed! Failed to create folder"},
        {"b.txt", "Failed to open input file"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Pack(row.file), row.error) << row.file;
    }
}

TEST_F(AttachmentPackerTest, NamesThatLeadElsewhereAreAsGoodAsMissing) {
    const std::string secret = m_scratch.MakeFile("secret.txt", "x");
    m_scratch.MakeFile("s/a.txt", "x");
    for (const std::string& file : {secret, std::string("..\\secret.txt"), std::string("a.txt:b"),
                                    std::string("./a.txt"), std::string("a.txt "), std::string("a.tx?"),
                                    std::string("NUL"), std::string("a.txt\0", 6), std::string(5000, 'a')}) {
        EXPECT_EQ(Pack(file), NotOnDisk) << file.substr(0, 100);
    }
    m_scratch.MakeFile("secret.tgz", "x");
    EXPECT_EQ(Pack("..\\secret.tgz"), "Failed to open input file");
}

TEST_F(AttachmentPackerTest, FilesBehindLinksAreAsGoodAsMissing) {
    m_scratch.MakeFile("outside/secret.txt", "x");
    const std::string secret = "../outside/secret.txt";
    const TestSupport::Link file(m_source + "\\file.txt", secret, false);
    const TestSupport::Link tar(m_source + "\\file.tgz", secret, false);
    const TestSupport::Link packed(m_source + "\\packed.txt.gz", secret, false);
    const TestSupport::Link folder(m_source + "\\folder", "../outside", true);
    if (!file || !tar || !packed || !folder) {
        GTEST_SKIP() << "this system makes no symbolic links";
    }
    EXPECT_EQ(Pack("file.txt"), NotOnDisk);
    EXPECT_EQ(Pack("packed.txt"), NotOnDisk);
    EXPECT_EQ(Pack("folder/secret.txt"), NotOnDisk);
    EXPECT_EQ(Pack("file.tgz"), "Failed to open input file");
    EXPECT_FALSE(m_scratch.Exists("work/file.tgz"));
}

TEST_F(AttachmentPackerTest, AFileThatTheGameStillWritesIsRead) {
    const std::string path = m_scratch.MakeFile("s/game.log", "so far");
    HANDLE game = CreateFileW(TestSupport::ScratchFolder::FromUtf8(path).c_str(), GENERIC_WRITE,
                              FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(game, INVALID_HANDLE_VALUE);
    EXPECT_EQ(Pack("game.log"), "OK");
    CloseHandle(game);
    EXPECT_EQ(TestSupport::Gunzip(Stored("game.log.gz")), "so far");
}
