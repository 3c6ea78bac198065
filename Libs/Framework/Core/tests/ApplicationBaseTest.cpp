#include "Libs/Framework/Core/src/ApplicationBase.h"

#include <atomic>
#include <stdexcept>
#include <utility>

#include "Libs/Framework/Core/src/CommonMain.h"
#include "tests/support/ProcessFixture.h"

namespace {

using Lines = std::vector<std::string>;

// What happened to the fakes, in order. Most of it on the main thread, which joins the other ones.
Lines g_diary;
std::atomic<int> g_rounds = 0;
std::atomic<int> g_threadsEnded = 0;
std::shared_ptr<ApplicationBase> g_next; // what CommonMain takes

// Fails or throws in the step that its own name ends in. The one called "Loops" throws in its first round and
// pauses in the second until it is stopped.
class FakeProcess : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    ~FakeProcess() override { g_diary.push_back(Name() + " destroyed"); }

    ResultCode PreInitialize() override { return Step("pre-initialize"); }
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Step("initialize"); }
    ResultCode PostInitialize() override { return Step("post-initialize"); }
    ResultCode Start() override {
        RETURN_IF_FAILED(Step("start"));
        return ApplicationProcessBase::Start();
    }
    ResultCode Shutdown() override { return Step("shutdown"); }
    bool ThreadMain() override {
        if (Name() == "Loops") {
            RunRounds(0, [this] { ++g_rounds > 1 ? Pause(4294967295) : throw std::runtime_error("thrown"); });
        }
        ++g_threadsEnded;
        return Name() == "throws" ? throw std::runtime_error("thrown") : IsStopRequested();
    }

private:
    std::string Name() const { return GetName(); }
    ResultCode Step(const std::string& step) const {
        g_diary.push_back(Name() + " " + step);
        if (Name() == "throws in " + step) {
            throw std::runtime_error("thrown");
        }
        return Name() == "Z fails to " + step ? ResultCode("Failed") : Platform::Success;
    }
};

class ApplicationBaseTest : public ProcessFixture {
protected:
    static void SetUpTestSuite() {
        RegisterApplicationDisplayName("TestApplication");
        FactoryInstance<IApplicationProcess>().RegisterMaker<FakeProcess>("Fake");
        FactoryInstance<IApplicationProcess>().RegisterMaker<FakeProcess>("OtherFake");
    }
    ApplicationBaseTest() { g_diary.clear(); }
};

TEST_F(ApplicationBaseTest, TakesTheStepsInOrderWithoutWhatFails) {
    WriteConfiguration(R"("Fake": ["Z fails to post-initialize", "A", "throws in initialize"])");
    const auto registered = m_application->RegisterProcess<FakeProcess>("Early");
    ASSERT_TRUE(Initialize());
    ASSERT_TRUE(m_application->Run());
    ASSERT_TRUE(m_application->Shutdown());
    EXPECT_EQ(m_application->GetProcess("Early"), registered);
    EXPECT_EQ(m_application->GetProcess("a"), nullptr);
    EXPECT_EQ(g_diary,
              (Lines{"Early pre-initialize", "A initialize", "Early initialize",
                     "Z fails to post-initialize initialize", "throws in initialize initialize",
                     "throws in initialize destroyed", "A post-initialize", "Early post-initialize",
                     "Z fails to post-initialize post-initialize", "Z fails to post-initialize destroyed",
                     "A start", "Early start", "A shutdown", "Early shutdown"}));
}

TEST_F(ApplicationBaseTest, OfOneNameUnderTwoMakersTheLaterStays) {
    WriteConfiguration(R"("OtherFake": ["A"], "Fake": ["A", "A"])");
    ASSERT_TRUE(Initialize());
    EXPECT_EQ(g_diary, (Lines{"A destroyed", "A destroyed", "A initialize", "A post-initialize"}));
}

TEST_F(ApplicationBaseTest, WaitsForMoreThreadsThanOneWaitTakes) {
    std::string names = R"("Loops","throws")";
    for (int i = 0; i < 70; ++i) {
        names += R"(,"P)" + std::to_string(i) + '"';
    }
    WriteConfiguration(R"("Fake": [)" + names + "]");
    ASSERT_TRUE(Initialize());
    g_threadsEnded = 0;
    std::thread stopper([this] { m_application->RequestShutdown(); });
    EXPECT_TRUE(m_application->Run());
    stopper.join();
    EXPECT_EQ(g_threadsEnded, 72);
}

TEST_F(ApplicationBaseTest, ARoundMayThrowAndAStopEndsAPause) {
    FakeProcess process(m_application.get(), "Loops");
    g_rounds = 0;
    ASSERT_TRUE(process.Start());
    ASSERT_TRUE(Await([] { return g_rounds == 2; }));
    const auto asked = std::chrono::steady_clock::now();
    process.RequestShutdown();
    process.GetThread()->Join();
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::milliseconds(250));
}

TEST_F(ApplicationBaseTest, FailuresHaveTheirExitCodesAndLeaveNoThread) {
    for (const auto& [processes, exitCode] : {std::pair(R"("Fake": ["Loops", "Z fails to start"])", 3),
                                              std::pair(R"("Fake": ["Z fails to shutdown"])", 4)}) {
        WriteConfiguration(processes);
        g_next = std::make_shared<ApplicationBase>();
        g_threadsEnded = 0;
        EXPECT_EQ(WithArguments(&CommonMain), exitCode);
        EXPECT_EQ(g_threadsEnded, 1);
    }
}

} // namespace

std::shared_ptr<ApplicationBase> CreateApplication(int, const char**) {
    return std::exchange(g_next, nullptr);
}
