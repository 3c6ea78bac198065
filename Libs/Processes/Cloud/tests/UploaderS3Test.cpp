#include "Libs/Processes/Cloud/src/UploaderS3.h"

#include <thread>

#include <gtest/gtest.h>

#include "Libs/Processes/Cloud/src/CloudComponent.h"
#include "Libs/Processes/Cloud/src/UploaderThreadS3.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

// Stands in for the watcher: an uploader's configuration asks for the name alone.
class IdleProcess : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Platform::Success; }
    bool ThreadMain() override { return true; }
};

// Counts as every uploader of this class does, but tells.
class TellingUploader : public UploaderS3 {
public:
    using UploaderS3::UploaderS3;
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override {
        s_result = UploaderS3::Initialize(config, argc, argv);
        s_timeBetweenChecks = GetTimeBetweenChecks();
        return s_result;
    }
    inline static ResultCode s_result;
    inline static uint32_t s_timeBetweenChecks = 0;
};

const bool s_registered = [] {
    FactoryInstance<IApplicationComponent>().RegisterMaker<CloudComponent>("CloudComponent");
    FactoryInstance<IApplicationProcess>().RegisterMaker<IdleProcess>("Idle");
    FactoryInstance<IApplicationProcess>().RegisterMaker<TellingUploader>("UploaderS3");
    return true;
}();

class UploaderS3Configuration : public testing::Test {
protected:
    // Takes an application with one watcher ("Packages") and one uploader ("Upload") through its
    // initialisation, and gives the uploader's own result.
    std::string Initialize(const std::string& components, const std::string& section) {
        const std::string config = m_scratch.MakeFile(
            "config.json", R"({"Application": {"Processes": {"Idle": ["Packages"], "UploaderS3": ["Upload"]},
                               "Components": [)" +
                               components + R"(], "ApplicationFolder": ""})" + section + "}");
        const std::string configOption = "-config=" + config;
        const std::string folderOption = "-appFolder=" + m_scratch.Path();
        const char* argv[] = {"agent.exe", configOption.c_str(), folderOption.c_str()};
        TellingUploader::s_result = "Not initialised";
        m_application = std::make_shared<ApplicationBase>();
        EXPECT_STREQ("OK", m_application->Initialize(3, argv).Text());
        return TellingUploader::s_result.Text();
    }

    TestSupport::ScratchFolder m_scratch;
    TestSupport::LogCapture m_log;
    std::shared_ptr<ApplicationBase> m_application;
};

constexpr char Cloud[] = R"("CloudComponent")";
constexpr char Required[] =
    R"("BucketName": "b", "AccessKey": "a", "SecretKey": "s", "WatcherName": "Packages")";

} // namespace

TEST_F(UploaderS3Configuration, DefaultsAreEnough) {
    EXPECT_EQ("OK", Initialize(Cloud, std::string(R"(, "Upload": {)") + Required + "}"));
    EXPECT_EQ(250u, TellingUploader::s_timeBetweenChecks);
    EXPECT_TRUE(m_log.Contains(Platform::InfoLog,
                               " Uploader \"Upload\" is uploading submissions with a file name of "
                               "\"submission.pkg\" as gathered by watcher \"Packages\""));
    const auto process = m_application->GetProcess("Upload");
    ASSERT_TRUE(process);
    EXPECT_EQ(process.get(), Reflection::Query<UploaderS3>(*process));
    EXPECT_EQ(process.get(), Reflection::Query<UploaderBase>(*process));
}

TEST_F(UploaderS3Configuration, FailuresSayWhatIsMissing) {
    const std::string complete = std::string(R"(, "Upload": {)") + Required + "}";
    const struct {
        std::string components, section, expected;
    } rows[] = {
        {"", complete, "UploaderS3 requires CloudComponent for initialization"},
        {"", "", "UploaderS3 requires CloudComponent for initialization"},
        {Cloud, "", "configuration section not found"},
        {Cloud, R"(, "Upload": [])", "configuration section found is not an object"},
        {Cloud,
         R"(, "Upload": {"BucketName": "b", "AccessKey": "a", "SecretKey": "s", "WatcherName": "Nobody"})",
         "No watcher process to provide submissions for uploader"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.components + row.section);
        EXPECT_EQ(row.expected, Initialize(row.components, row.section));
        EXPECT_FALSE(m_application->GetProcess("Upload"));
    }
}

TEST_F(UploaderS3Configuration, EveryRequiredKeyIsMissed) {
    static constexpr const char* keys[] = {"BucketName", "AccessKey", "SecretKey", "WatcherName"};
    for (const std::string missing : keys) {
        std::string section;
        for (const std::string key : keys) {
            if (key != missing) {
                section += (section.empty() ? R"(")" : R"(, ")") + key + R"(": "Packages")";
            }
        }
        SCOPED_TRACE(missing);
        EXPECT_NE("OK", Initialize(Cloud, R"(, "Upload": {)" + section + "}"));
    }
}

TEST(UploaderS3Config, EveryKeyArrives) {
    JsonDocument document;
    ASSERT_TRUE(JsonSerialization::ParseText(
        R"({"TimeBetweenChecks": 7, "TimeBetweenRetries": 8, "WatcherName": "w", "SubmissionFilename": "f",
            "BucketName": "b", "AccessKey": "a", "SecretKey": "s", "AskPermission": true,
            "EndpointOverride": "http://127.0.0.1:1", "Region": "eu-west-1", "UseVirtualAddressing": false})",
        document));
    UploaderS3Config config;
    ASSERT_STREQ("OK", JsonSerialization::ReadRecord(document, config).Text());
    EXPECT_EQ(7u, config.timeBetweenChecks);
    EXPECT_EQ(8u, config.timeBetweenRetries);
    EXPECT_EQ("w f b a s", config.watcherName + " " + config.submissionFilename + " " + config.bucketName +
                               " " + config.accessKey + " " + config.secretKey);
    EXPECT_TRUE(config.askPermission);
    EXPECT_EQ("http://127.0.0.1:1", config.endpointOverride);
    EXPECT_EQ("eu-west-1", config.region);
    EXPECT_FALSE(config.useVirtualAddressing);
}

TEST(UploaderThreadS3, AStoreThatIsNotThereFailsTheUploadAlone) {
    const TestSupport::ScratchFolder scratch;
    const TestSupport::LogCapture log;
    scratch.MakeFile("one/submission.pkg", "pkg");
    UploaderS3Config config;
    config.submissionFilename = "submission.pkg";
    config.timeBetweenRetries = 8;
    config.bucketName = config.accessKey = config.secretKey = "x";
    config.endpointOverride = "http://127.0.0.1:1"; // refused at once
    config.useVirtualAddressing = false;
    CloudComponent component;
    EXPECT_TRUE(component.Initialize(0, nullptr));
    {
        UploaderThreadS3 upload(UploadPermission::Allowed, scratch.PathOf("one"), config);
        EXPECT_EQ(8u, upload.GetTimeBetweenRetries());
        EXPECT_EQ(10u, upload.GetMaxAttempts());
        EXPECT_TRUE(upload.Start());
    }
    EXPECT_TRUE(component.Shutdown());
    EXPECT_EQ(std::vector{" Failed to upload package in folder " + scratch.PathOf("one") +
                          ". Error=Failed to put stream in S3 bucket"},
              log.Errors());
    EXPECT_TRUE(scratch.Exists("one/submission.pkg"));
}

TEST(CloudComponent, OtherThreadsAreReported) {
    GetMainThreadId();
    EXP_GetAssertState()->showDialogs = 0;
    const Platform::BugState& bugs = *EXP_GetBugState();
    const uint32_t before = bugs.failedCount[0];
    CloudComponent component;
    std::thread([&] {
        EXPECT_TRUE(component.Initialize(0, nullptr));
        EXPECT_TRUE(component.Shutdown());
    }).join();
    EXPECT_EQ(before + 2, bugs.failedCount[0]);
    EXPECT_STREQ("GetMainThreadId() == GetCurrentThreadIdImpl()", bugs.lastExpression);
    EXPECT_STREQ("Libs/Processes/Cloud/src/CloudComponent", bugs.lastSourceUnit);
}
