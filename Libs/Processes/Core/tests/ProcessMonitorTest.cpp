#include "Libs/Processes/Core/src/ProcessMonitor.h"

#include "tests/support/FailingMemory.h"
#include "tests/support/ProcessFixture.h"

namespace {

using ProcessMonitorTest = ProcessFixture;

TEST_F(ProcessMonitorTest, WithoutMemoryItStillAsksForTheEnd) {
    FactoryInstance<IApplicationProcess>().RegisterMaker<ProcessMonitor>("ProcessMonitor");
    bool hasFailed = true;
    for (std::size_t nth = 0; hasFailed; ++nth) {
        m_application = std::make_shared<ApplicationBase>();
        Configure(
            R"("ProcessMonitor":["Monitor"])",
            R"("Monitor":{"TimeBetweenChecks":1,"ShutdownDelay":1,"WatchedApplications":["None.exe"]})");
        const TestSupport::FailingMemory memory(nth);
        EXPECT_TRUE(m_application->GetProcess("Monitor")->ThreadMain());
        hasFailed = memory.HasFailed();
    }
}

} // namespace
