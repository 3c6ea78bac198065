#include "Libs/Processes/Core/src/Packager.h"

#include "Libs/Processes/Core/src/Watcher.h"
#include "tests/support/ProcessFixture.h"

namespace {

// Hands out five folders, and asks the whole program to stop with the same call.
class StoppingWatcher : public Watcher {
public:
    using Watcher::Watcher;
    bool ThreadMain() override { return true; }
    ResultCode TakeTasks(std::vector<TaskData>& tasks) override {
        for (const char* name : {"1", "2", "3", "4", "5"}) {
            tasks.emplace_back((s_folder + name).c_str());
        }
        GetApplication()->RequestShutdown();
        return Platform::Success;
    }
    inline static std::string s_folder;
};

class PackagerTest : public ProcessFixture {
protected:
    static void SetUpTestSuite() {
        auto& factory = FactoryInstance<IApplicationProcess>();
        factory.RegisterMaker<StoppingWatcher>("StoppingWatcher");
        factory.RegisterMaker<Packager>("Packager");
    }
};

} // namespace

TEST_F(PackagerTest, AStopLeavesTheRestOnDisk) {
    ASSERT_EQ(Configure(R"("StoppingWatcher":["Dumps"],"Packager":["P"])",
                        R"("Dumps":{"Folder":"dumps"},"P":{"TimeBetweenChecks":1,"WatcherName":"Dumps"})"),
              "");
    StoppingWatcher::s_folder = m_scratch.PathOf("app\\dumps\\");
    const char* const names[] = {"1", "2", "3", "4", "5"};
    for (const std::string name : names) {
        MakeComplete("app/dumps/" + name);
    }
    Start("P");
    m_application->GetProcess("P")->GetThread()->Join();
    for (const std::string name : names) {
        EXPECT_TRUE(m_scratch.Exists("app/dumps/" + name));
    }
}
