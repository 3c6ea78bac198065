#include "Libs/Framework/Core/src/ApplicationBase.h"

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/CommonMain.h"
#include "Libs/Framework/Core/tests/FakeProcess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

using Lines = std::vector<std::string>;

// Made by CommonMain; knows its version unless told otherwise.
class TestApplication : public ApplicationBase {
public:
    ~TestApplication() override {
        StopProcesses();
        Diary::Write("Application", "destroyed");
    }
    ResultCode GetVersion(PlatformHelpers::ModuleVersion& version, uint32_t& changelist) override {
        version = {1, 2, 3, 4};
        changelist = 5;
        return s_hasVersion ? Platform::Success : ApplicationBase::GetVersion(version, changelist);
    }
    inline static bool s_hasVersion = true;
    inline static bool s_canBeMade = true;
};

class RegisterMakers : public testing::Environment {
    void SetUp() override {
        FactoryInstance<IApplicationProcess>().RegisterMaker<FakeProcess>("Fake");
        FactoryInstance<IApplicationProcess>().RegisterMaker<FakeProcess>("OtherFake");
        FactoryInstance<IApplicationComponent>().RegisterMaker<FakeComponent>("FakeComponent");
        FactoryInstance<IApplicationComponent>().RegisterMaker<FailingComponent>("FailingComponent");
    }
};
[[maybe_unused]] const auto* g_makers = testing::AddGlobalTestEnvironment(new RegisterMakers);

class ApplicationBaseTest : public testing::Test {
protected:
    ApplicationBaseTest() {
        RegisterApplicationDisplayName("TestApplication");
        TestApplication::s_hasVersion = true;
        TestApplication::s_canBeMade = true;
        Diary::Take();
    }

    // Configures an application of these processes and components, and whatever sections.
    void Configure(const std::string& processes, const std::string& components = "",
                   const std::string& sections = "") {
        WriteConfig(R"({"Application": {"Processes": {)" + processes + R"(}, "Components": [)" + components +
                    R"(], "ApplicationFolder": ""})" + sections + "}");
    }
    void WriteConfig(const std::string& text) {
        m_config = "-config=" + m_scratch.MakeFile("agent.json", text);
    }

    ResultCode Initialize(ApplicationBase& application) {
        const auto argv = Arguments();
        return application.Initialize(static_cast<int>(argv.size()), const_cast<const char**>(argv.data()));
    }

    // The exit code; the log callback of before is back afterwards.
    int RunProgram() {
        const auto argv = Arguments();
        const auto callback = EXP_GetLogEventCallback();
        s_callback = callback;
        const int exitCode = CommonMain(static_cast<int>(argv.size()), const_cast<const char**>(argv.data()));
        EXP_SetLogEventCallback(callback);
        return exitCode;
    }

    std::vector<const char*> Arguments() const {
        return {"C:\\x\\agent.exe", m_config.c_str(), m_appFolder.c_str()};
    }

    TestSupport::ScratchFolder m_scratch{"scratch Jörg"};
    TestSupport::LogCapture m_log;
    std::string m_config;
    std::string m_appFolder = "-appFolder=" + m_scratch.PathOf("a\\b\\");

public:
    inline static Platform::LogEventCallback s_callback = nullptr;
};

TEST_F(ApplicationBaseTest, TakesTheStepsInOrder) {
    Configure(R"("Fake": ["B", "A"])", R"("FakeComponent")");
    {
        ApplicationBase application;
        const auto registered = application.RegisterProcess<FakeProcess>("Early");
        ASSERT_TRUE(Initialize(application));
        ASSERT_TRUE(application.Run());
        ASSERT_TRUE(application.Shutdown());
        EXPECT_EQ(application.GetProcess("Early"), registered);
        EXPECT_EQ(application.GetProcess("a"), nullptr);
        EXPECT_EQ(Diary::Take(), (Lines{"Early pre-initialize", "Component initialize", "A initialize",
                                        "B initialize", "Early initialize", "A post-initialize",
                                        "B post-initialize", "Early post-initialize", "A shutdown",
                                        "B shutdown", "Early shutdown", "Component shutdown"}));
    }
    EXPECT_EQ(m_log.Errors(), Lines{});
    EXPECT_TRUE(m_scratch.Exists("a\\b"));
}

TEST_F(ApplicationBaseTest, DropsProcessesThatFailAStep) {
    Configure(
        R"("Fake": ["Bad1", "Bad2", "Bad3", "Good"])", "",
        R"(, "Bad1": {"Fail": "initialize"}, "Bad2": {"Fail": "post-initialize"}, "Bad3": {"Fail": "throw"})");
    ApplicationBase application;
    application.RegisterProcess<FakeProcess>("FailsEarly");
    ASSERT_TRUE(Initialize(application));
    EXPECT_EQ(Diary::Take(),
              (Lines{"FailsEarly pre-initialize", "FailsEarly destroyed", "Bad1 initialize", "Bad1 destroyed",
                     "Bad2 initialize", "Bad3 initialize", "Bad3 destroyed", "Good initialize",
                     "Bad2 post-initialize", "Bad2 destroyed", "Good post-initialize"}));
    EXPECT_EQ(m_log.Errors(),
              (Lines{" Failed pre-initialize step for process FailsEarly, Error: Too early",
                     " Failed to initialize process Bad1, Error: No section", " Unexpected exception: thrown",
                     " Failed to initialize process Bad3, Error: Unexpected exception",
                     " Failed post initialize step for process Bad2, Error: Too late"}));
    EXPECT_EQ(application.GetProcess("Bad1"), nullptr);
    EXPECT_TRUE(application.Run());
    EXPECT_TRUE(application.Shutdown());
}

TEST_F(ApplicationBaseTest, OfOneNameUnderTwoMakersTheLaterStays) {
    Configure(R"("OtherFake": ["A"], "Fake": ["A", "A"])");
    ApplicationBase application;
    ASSERT_TRUE(Initialize(application));
    EXPECT_EQ(Diary::Take(), (Lines{"A destroyed", "A destroyed", "A initialize", "A post-initialize"}));
    EXPECT_TRUE(application.Run());
}

TEST_F(ApplicationBaseTest, ReportsWhatStopsTheInitialisation) {
    const struct {
        const char* config;
        const char* error;
        Lines log;
    } rows[] = {
        {"", "Failed to read zero length json config file", {}},
        {"{",
         "Failed to decode json header data!",
         {" Failed to parse file \"" + m_scratch.PathOf("agent.json") +
          "\" at position 1. Missing a name for object member."}},
        {"{}", "configuration section not found", {}},
        {"[]", "configuration section not found", {}},
        {R"({"Application": []})", "configuration section found is not an object", {}},
        {R"({"Application": {"Processes": {"fake": ["A"]}, "Components": [], "ApplicationFolder": ""}})",
         "Failed to find maker for process",
         {" Failed to find maker for process A"}},
        {R"({"Application": {"Processes": {}, "Components": ["Fake"], "ApplicationFolder": ""}})",
         "Failed to find maker for component",
         {" Failed to find maker for component Fake"}},
        {R"({"Application": {"Processes": {}, "Components": ["FailingComponent"], "ApplicationFolder": ""}})",
         "Component failed",
         {}},
    };
    std::size_t errorsBefore = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.config);
        WriteConfig(row.config);
        ApplicationBase application;
        EXPECT_STREQ(Initialize(application).Text(), row.error);
        const Lines errors = m_log.Errors();
        EXPECT_EQ(Lines(errors.begin() + static_cast<std::ptrdiff_t>(errorsBefore), errors.end()), row.log);
        errorsBefore = errors.size();
    }
    m_config = "-config=" + m_scratch.PathOf("missing.json");
    ApplicationBase application;
    EXPECT_STREQ(Initialize(application).Text(), "Failed to find config file on disk!");
}

TEST_F(ApplicationBaseTest, WaitsForMoreThreadsThanOneWaitTakes) {
    std::string names;
    for (int i = 0; i < 70; ++i) {
        names += (i ? R"(,"P)" : R"("P)") + std::to_string(i) + '"';
    }
    Configure(R"("Fake": [)" + names + R"(, "Loops"])");
    FakeProcess::s_threadsEnded = 0;
    ApplicationBase application;
    ASSERT_TRUE(Initialize(application));
    std::thread stopper([&] { application.RequestShutdown(); });
    EXPECT_TRUE(application.Run());
    stopper.join();
    EXPECT_EQ(FakeProcess::s_threadsEnded, 71);
}

TEST_F(ApplicationBaseTest, StopRequestBeforeTheStartEndsTheThreadAtOnce) {
    Configure(R"("Fake": ["Loops"])");
    ApplicationBase application;
    ASSERT_TRUE(Initialize(application));
    application.RequestShutdown();
    EXPECT_TRUE(application.Run());
}

// Each round throws something else; the process pauses without end after the last.
class ThrowingProcess : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Platform::Success; }
    bool ThreadMain() override {
        return RunRounds(0, [this] {
            switch (++m_rounds) {
            case 1:
                throw std::bad_alloc();
            case 2:
                throw std::runtime_error("thrown");
            default:
                m_paused = true;
                Pause(4294967295);
            }
        });
    }
    std::atomic<bool> m_paused = false;

private:
    int m_rounds = 0;
};

TEST_F(ApplicationBaseTest, ARoundMayThrowAndAStopEndsAPause) {
    ApplicationBase application;
    ThrowingProcess process(&application, "P");
    ASSERT_TRUE(process.Start());
    while (!process.m_paused) {
        std::this_thread::yield();
    }
    const auto asked = std::chrono::steady_clock::now();
    process.RequestShutdown();
    process.GetThread()->Join();
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(250));
    EXPECT_EQ(m_log.Errors(),
              (Lines{" Failed a round of process P. Error=Out of memory", " Unexpected exception: thrown",
                     " Failed a round of process P. Error=Unexpected exception"}));
}

TEST_F(ApplicationBaseTest, MainSequenceEndsWithZero) {
    Configure(R"("Fake": ["A"])");
    TestApplication::s_hasVersion = false;
    EXPECT_EQ(RunProgram(), 0);
    EXPECT_EQ(m_log.Infos()[0], " Failed to get version information. Error=The program has no version");
    EXPECT_EQ(m_log.Errors(), Lines{});
    EXPECT_EQ(Diary::Take(), (Lines{"A initialize", "A post-initialize", "A shutdown",
                                    "Application destroyed", "A destroyed"}));
}

TEST_F(ApplicationBaseTest, FailuresHaveTheirExitCodes) {
    const struct {
        const char* section;
        int exitCode;
        const char* error;
        const char* lastInfo;
    } rows[] = {
        {R"(, "Application": [])", 2,
         " Initialization failure. Error=configuration section found is not an object", nullptr},
        {R"(, "Zed": {"Fail": "start"})", 3, " Run failure. Error=Won't start",
         " running application processes..."},
        {R"(, "Zed": {"Fail": "shutdown"})", 4, " Shutdown failure. Error=Won't shut down",
         " shutting down application processes..."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.error);
        if (row.exitCode == 2) {
            WriteConfig(R"({"Application": []})");
        } else {
            Configure(R"("Fake": ["A", "Zed"])", "", row.section);
        }
        EXPECT_EQ(RunProgram(), row.exitCode);
        EXPECT_EQ(m_log.Errors().back(), row.error);
        if (row.lastInfo) {
            EXPECT_EQ(m_log.Infos().back(), row.lastInfo);
        }
    }
    TestApplication::s_canBeMade = false;
    const std::size_t entries = m_log.Entries().size();
    EXPECT_EQ(RunProgram(), 1);
    EXPECT_EQ(m_log.Entries().size(), entries);
}

TEST_F(ApplicationBaseTest, AFailedRunLeavesNoThreadBehind) {
    Configure(R"("Fake": ["Loops", "Zed"])", "", R"(, "Zed": {"Fail": "start"})");
    FakeProcess::s_threadsEnded = 0;
    EXPECT_EQ(RunProgram(), 3);
    EXPECT_EQ(FakeProcess::s_threadsEnded, 1); // the one that was started
    EXPECT_EQ(Diary::Take(),
              (Lines{"Loops initialize", "Zed initialize", "Loops post-initialize", "Zed post-initialize",
                     "Application destroyed", "Zed destroyed", "Loops destroyed"}));
}

} // namespace

// Puts the capture back in front: the main sequence has just installed its own sink.
std::shared_ptr<ApplicationBase> CreateApplication(int, const char**) {
    EXP_SetLogEventCallback(ApplicationBaseTest::s_callback);
    return TestApplication::s_canBeMade ? std::make_shared<TestApplication>() : nullptr;
}
