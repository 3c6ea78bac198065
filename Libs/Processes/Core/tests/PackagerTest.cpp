#include "Libs/Processes/Core/src/Packager.h"

#include <algorithm>

#include "Libs/Processes/Core/src/Watcher.h"
#include "tests/support/ProcessFixture.h"

namespace {

using Lines = std::vector<std::string>;

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
        factory.RegisterMaker<Watcher>("Watcher");
        factory.RegisterMaker<StoppingWatcher>("StoppingWatcher");
        factory.RegisterMaker<Packager>("Packager");
    }

    std::string ConfigurePackager(const std::string& settings = "", const char* watcher = "Watcher") {
        return Configure(std::string("\"") + watcher + R"(":["Dumps"],"Packager":["P"])",
                         R"("Dumps":{"TimeBetweenChecks":1,"Folder":"dumps"},)"
                         R"("P":{"TimeBetweenChecks":1,"WatcherName":"Dumps")" +
                             settings + "}");
    }
    Lines NamesIn(const std::string& folder) const {
        Lines names;
        for (const auto& entry : std::filesystem::directory_iterator(
                 TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf(folder)))) {
            names.push_back(TestSupport::ScratchFolder::ToUtf8(entry.path().filename()));
        }
        std::ranges::sort(names);
        return names;
    }
    std::string MakeSubmission(const std::string& name) {
        m_scratch.MakeFile("app/dumps/" + name + "/game.log", "log " + name);
        return MakeComplete("app/dumps/" + name,
                            R"({"Host":"h","Time":"t","Application":"a","SubmissionType":"s",)"
                            R"("Catalog":{"Log":{"File":"game.log","MD5":""},"Attachments":[]},)"
                            R"("Exception":{"Message":"","StackTrace":""},"Callstack":[],"ModuleInfo":[],)"
                            R"("Changelist":1})");
    }
};

} // namespace

TEST_F(PackagerTest, EqualFoldersKeepTheFilesBesideThePackage) {
    const std::string one = m_scratch.PathOf("one");
    for (const std::string& other : {one, m_scratch.PathOf("ONE") + "/"}) {
        SCOPED_TRACE(other);
        m_application.reset();
        m_application = std::make_shared<ApplicationBase>();
        ASSERT_EQ(ConfigurePackager(R"(,"SubmissionFilename":"p","PackagedFolder":)" + Quoted(one) +
                                    R"(,"PackageWorkFolder":)" + Quoted(other)),
                  "");
        const std::string folder = MakeSubmission("a");
        Start("Dumps");
        Start("P");
        EXPECT_TRUE(Await([&] { return !PlatformHelpers::PathExists(folder); }));
        Stop("P");
        EXPECT_EQ(NamesIn("one/a"), (Lines{"game.log.gz", "header.json", "p"}));
    }
    EXPECT_EQ(m_log.Errors(), Lines{});
}

TEST_F(PackagerTest, AStopLeavesTheRestOnDisk) {
    ASSERT_EQ(ConfigurePackager("", "StoppingWatcher"), "");
    StoppingWatcher::s_folder = m_scratch.PathOf("app\\dumps\\");
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        MakeSubmission(name);
    }
    Start("P");
    m_application->GetProcess("P")->GetThread()->Join();
    EXPECT_EQ(NamesIn("app/dumps").size(), 5u);
    EXPECT_EQ(NamesIn("app/PackagedDumps"), Lines{});
}
