#include "Libs/Processes/Core/src/UploaderThreadBase.h"

#include <filesystem>
#include <fstream>
#include <regex>

#include <gtest/gtest.h>

#include "Libs/Processes/Core/src/UploadPackageFile.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Keeps what it was given to send in a place that outlives it.
class RecordingUpload final : public UploaderThreadBase {
public:
    RecordingUpload(UploadPermission permission, const std::string& folder, ResultCode result,
                    std::vector<Bytes>& sent)
        : UploaderThreadBase(permission, folder, "submission.pkg", 30000), m_result(result), m_sent(sent) {}
    ~RecordingUpload() override { WaitForEnd(); }

    ResultCode UploadPackage(const Bytes& package) override {
        m_sent.push_back(package);
        return m_result;
    }

private:
    const ResultCode m_result;
    std::vector<Bytes>& m_sent;
};

class UploaderThread : public testing::Test {
protected:
    // Runs one upload to its end.
    void Upload(const std::string& folder, UploadPermission permission = UploadPermission::Allowed,
                ResultCode result = Platform::Success) {
        RecordingUpload upload(permission, folder, result, m_sent);
        EXPECT_FALSE(upload.IsRunning());
        EXPECT_STREQ("OK", upload.Start().Text());
    }

    // As the packager leaves one.
    std::string MakeSubmission(const std::string& name, std::string_view package) {
        namespace fs = std::filesystem;
        const std::string path = m_scratch.MakeFile(name + "/submission.pkg", package);
        fs::permissions(TestSupport::ScratchFolder::FromUtf8(path), fs::perms::owner_write,
                        fs::perm_options::remove);
        return m_scratch.PathOf(name);
    }

    TestSupport::ScratchFolder m_scratch{"Jörg 太郎"};
    TestSupport::LogCapture m_log;
    std::vector<Bytes> m_sent;
};

} // namespace

TEST_F(UploaderThread, SendsThePackageAndDeletesItsFolder) {
    Upload(MakeSubmission("one", std::string_view("pk\0g", 4)));
    EXPECT_EQ((std::vector<Bytes>{{'p', 'k', 0, 'g'}}), m_sent);
    EXPECT_FALSE(m_scratch.Exists("one"));
    ASSERT_EQ(1u, m_log.Infos().size());
    const std::string line = m_log.Infos()[0];
    const std::string start =
        " Uploaded package for submission folder \"" + m_scratch.PathOf("one") + "\" in ";
    ASSERT_TRUE(line.starts_with(start)) << line;
    EXPECT_TRUE(std::regex_match(line.substr(start.size()), std::regex(R"(\d+\.\d{3} seconds)"))) << line;
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(UploaderThread, AFolderThatEndsInABackslashGetsNoSecondOne) {
    EXPECT_EQ("C:\\dumps\\1\\a.pkg", UploadPackagePath("C:\\dumps\\1", "a.pkg"));
    EXPECT_EQ("C:\\dumps\\1\\a.pkg", UploadPackagePath("C:\\dumps\\1\\", "a.pkg"));
    EXPECT_EQ("C:/dumps/1/\\a.pkg", UploadPackagePath("C:/dumps/1/", "a.pkg"));
    Upload(MakeSubmission("one", "pkg") + "\\");
    EXPECT_EQ(1u, m_sent.size());
    EXPECT_FALSE(m_scratch.Exists("one"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(UploaderThread, WhatCantBeLoadedStays) {
    const std::string empty = MakeSubmission("empty", "");
    const std::string missing = m_scratch.MakeFolder("missing");
    const std::string written = m_scratch.MakeFolder("written");
    std::ofstream writer(TestSupport::ScratchFolder::FromUtf8(written + "\\submission.pkg"));
    writer << "pkg" << std::flush;
    const struct {
        std::string folder;
        const char* error;
    } rows[] = {{empty, "Failed to read package file of invalid size"},
                {missing, "Failed to open package file"},
                {written, "Failed to open package file"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.folder);
        Upload(row.folder);
        EXPECT_EQ(" Failed to load package in \"" + row.folder + "\" for upload . Error=" + row.error,
                  m_log.Errors().empty() ? "" : m_log.Errors().back());
    }
    EXPECT_TRUE(m_sent.empty());
    EXPECT_TRUE(m_scratch.Exists("empty/submission.pkg"));
    EXPECT_TRUE(m_scratch.Exists("missing"));
    EXPECT_TRUE(m_scratch.Exists("written/submission.pkg"));
}

TEST_F(UploaderThread, AFailedUploadKeepsItsFolder) {
    const std::string folder = MakeSubmission("one", "pkg");
    Upload(folder, UploadPermission::Allowed, "The store is closed");
    EXPECT_EQ(std::vector{" Failed to upload package in folder " + folder + ". Error=The store is closed"},
              m_log.Errors());
    EXPECT_TRUE(m_scratch.Exists("one/submission.pkg"));
    EXPECT_TRUE(m_log.Infos().empty());
}

TEST_F(UploaderThread, ARefusedFolderIsDeletedUnread) {
    Upload(MakeSubmission("one", "pkg"), UploadPermission::Refused);
    Upload(m_scratch.MakeFolder("no package"), UploadPermission::Refused);
    EXPECT_TRUE(m_sent.empty());
    EXPECT_FALSE(m_scratch.Exists("one"));
    EXPECT_FALSE(m_scratch.Exists("no package"));
    EXPECT_TRUE(m_log.Entries().empty());
}

TEST_F(UploaderThread, AFolderThatCantBeDeletedIsLogged) {
    const std::string folder = m_scratch.PathOf("never there");
    Upload(folder, UploadPermission::Refused);
    const std::string start = " Failed to delete submission folder \"" + folder + "\". Error=";
    ASSERT_FALSE(m_log.Errors().empty());
    EXPECT_EQ(start, m_log.Errors().back().substr(0, start.size()));
}

TEST_F(UploaderThread, OneThatNeverStartedSendsNothingAndWaitsForNothing) {
    { const RecordingUpload upload(UploadPermission::Allowed, MakeSubmission("one", "pkg"), {}, m_sent); }
    EXPECT_TRUE(m_sent.empty());
    EXPECT_TRUE(m_scratch.Exists("one/submission.pkg"));
}
