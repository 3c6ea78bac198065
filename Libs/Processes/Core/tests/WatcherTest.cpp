#include "Libs/Processes/Core/src/Watcher.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>

#include "tests/support/ProcessFixture.h"

namespace {

using Lines = std::vector<std::string>;

// Holds what was made and set, as "name{key=value,...}".
class FakeMetric : public IMetric {
public:
    FakeMetric(const char* name, const char* help) : m_name(name), m_help(help) {}
    void SetLabel(const char* key, const char* value) override {
        m_labels += std::string(m_labels.empty() ? "" : ",") + key + "=" + value;
    }
    void SetValue(double value) override { m_value = value; }

    std::string Describe() const { return m_name + "{" + m_labels + "}: " + m_help; }
    std::atomic<double> m_value = -1;

private:
    std::string m_name, m_labels, m_help;
};

class FakeAggregator : public ApplicationProcessBase, public IMetricsAggregator {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    void* QueryObj(const Reflection::TypeDescriptor& type) override {
        return &type == &Reflection::TypeOf<IMetricsAggregator>() ? static_cast<IMetricsAggregator*>(this)
                                                                  : nullptr;
    }
    ResultCode Initialize(const JsonDocument&, int, const char**) override { return Platform::Success; }
    bool ThreadMain() override { return true; }
    std::shared_ptr<IMetric> MakeMetric(const char* name, const char* help) override {
        return m_metrics.emplace_back(std::make_shared<FakeMetric>(name, help));
    }
    std::vector<std::shared_ptr<FakeMetric>> m_metrics;
};

class WatcherTest : public ProcessFixture {
protected:
    static void SetUpTestSuite() {
        if (!FactoryInstance<IApplicationProcess>().FindMaker("Watcher")) {
            FactoryInstance<IApplicationProcess>().RegisterMaker<Watcher>("Watcher");
        }
        FactoryInstance<IApplicationProcess>().RegisterMaker<FakeAggregator>("FakeAggregator");
    }

    std::string ConfigureWatcher(const std::string& section, const std::string& more = "") {
        return Configure(R"("Watcher":["Dumps 1"])" + more, R"("Dumps 1":)" + section);
    }
    IWatcher& TheWatcher() { return *Reflection::Query<IWatcher>(*m_application->GetProcess("Dumps 1")); }
    std::string Folder() {
        std::string folder;
        TheWatcher().GetFolder(folder);
        return folder;
    }
    Lines Take() {
        std::vector<TaskData> tasks;
        EXPECT_TRUE(TheWatcher().TakeTasks(tasks));
        Lines folders;
        for (const TaskData& task : tasks) {
            folders.push_back(task.GetInstanceHash());
        }
        return folders;
    }
    Lines AwaitTasks(std::size_t count) {
        Lines folders;
        EXPECT_TRUE(Await([&] {
            const Lines more = Take();
            folders.insert(folders.end(), more.begin(), more.end());
            return folders.size() >= count;
        }));
        std::sort(folders.begin(), folders.end());
        return folders;
    }
};

} // namespace

TEST_F(WatcherTest, ResolvesAndMakesItsFolder) {
    const struct {
        std::string folder, resolved;
    } rows[] = {{"", m_scratch.PathOf("app\\")},
                {"dumps\\ダンプ", m_scratch.PathOf("app\\dumps\\ダンプ\\")},
                {m_scratch.PathOf("abs/deep/"), m_scratch.PathOf("abs\\deep") + "\\"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.folder);
        m_application = std::make_shared<ApplicationBase>();
        EXPECT_EQ(ConfigureWatcher(R"({"TimeBetweenChecks":1,"Folder":)" + Quoted(row.folder) + "}"), "");
        EXPECT_EQ(Folder(), row.resolved);
        EXPECT_TRUE(PlatformHelpers::PathExists(row.resolved));
        EXPECT_EQ(m_log.Infos().back(), " Watcher \"Dumps 1\" is watching folder \"" + row.resolved +
                                            "\" for submissions with a file name of \"header.json\"");
    }
}

TEST_F(WatcherTest, InitialisationFailuresHaveTheirTexts) {
    m_scratch.MakeFile("app/file", "in the way");
    const struct {
        const char* section;
        const char* error;
    } rows[] = {
        {"[]", "configuration section found is not an object"},
        {"{}", "Field not found in json"},
        {R"({"Folder":"file/sub"})", "Failed to create watcher folder"},
        {R"({"Folder":"d","MetricsCollectorName":"Nobody"})",
         "No metrics process to provide metrics collection for watcher"},
        {R"({"Folder":"d","MetricsCollectorName":"Dumps 1"})",
         "Metrics process could not provide required MetricsAggregator interface"},
    };
    for (const auto& row : rows) {
        m_application = std::make_shared<ApplicationBase>();
        ConfigureWatcher(row.section);
        EXPECT_EQ(m_log.Errors().back(),
                  std::string(" Failed to initialize process Dumps 1, Error: ") + row.error);
    }
}

TEST_F(WatcherTest, AnswersForItsViewsAlone) {
    ConfigureWatcher(R"({"Folder":"dumps","SentinelFile":"s"})");
    const auto process = m_application->GetProcess("Dumps 1");
    IWatcher& watcher = TheWatcher();
    EXPECT_EQ(Reflection::Query<IFileStoreWatcher>(*process), &watcher);
    EXPECT_EQ(Reflection::Query<ITaskSubscriber>(*process), &watcher);
    EXPECT_EQ(watcher.QuerySubscriber(Reflection::TypeOf<IWatcher>()), &watcher);
    EXPECT_EQ(Reflection::Query<IMetricsAggregator>(*process), nullptr);
    EXPECT_EQ(Reflection::Query<Watcher>(*process), nullptr);
    std::string sentinel;
    watcher.GetSentinelFileName(sentinel);
    EXPECT_EQ(sentinel, "s");
}

TEST_F(WatcherTest, HandsEachFolderOverOnce) {
    ASSERT_EQ(ConfigureWatcher(R"({"TimeBetweenChecks":1,"Folder":"d"})"), "");
    const std::string a = MakeComplete("app/d/a");
    const std::string b = MakeComplete("app/d/太郎");
    Start("Dumps 1");
    EXPECT_EQ(AwaitTasks(2), (Lines{a, b}));
    const std::string c = MakeComplete("app/d/c");
    EXPECT_EQ(AwaitTasks(1), Lines{c});
    EXPECT_EQ(Take(), Lines{});
    for (const std::string& folder : {a, b, c}) {
        EXPECT_TRUE(m_log.Contains(Platform::InfoLog, " Added " + folder + " to pending folder list"));
    }
    EXPECT_EQ(m_log.Errors(), Lines{});
}

TEST_F(WatcherTest, TakingExchangesTheLists) {
    ASSERT_EQ(ConfigureWatcher(R"({"Folder":"d"})"), "");
    std::vector<TaskData> tasks = {TaskData("mine")};
    ASSERT_TRUE(TheWatcher().TakeTasks(tasks));
    EXPECT_TRUE(tasks.empty());
    EXPECT_EQ(Take(), Lines{"mine"});
}

TEST_F(WatcherTest, AVanishedFolderIsReportedUntilItIsBack) {
    ASSERT_EQ(ConfigureWatcher(R"({"TimeBetweenChecks":1,"Folder":"d"})"), "");
    ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("app\\d")));
    Start("Dumps 1");
    const std::string line = " Failed to scan dumps folder \"" + m_scratch.PathOf("app\\d") +
                             R"(\", error: "Failed to enumerate files")";
    ASSERT_TRUE(Await([&] { return m_log.Errors().size() >= 2; }));
    EXPECT_EQ(m_log.Errors().front(), line);
    const std::string a = MakeComplete("app/d/a");
    EXPECT_EQ(AwaitTasks(1), Lines{a});
}

TEST_F(WatcherTest, ShutsDownAfterOneCheckWhenAsked) {
    ASSERT_EQ(ConfigureWatcher(R"({"TimeBetweenChecks":1,"Folder":"d","ShutdownAfterCheck":true})"), "");
    const std::string a = MakeComplete("app/d/a");
    ASSERT_TRUE(m_application->Run()); // comes back by itself
    EXPECT_EQ(Take(), Lines{a});
}

TEST_F(WatcherTest, PublishesItsNumbers) {
    ASSERT_EQ(
        ConfigureWatcher(
            R"({"TimeBetweenChecks":1,"Folder":"d","MaxFolderScans":1,"MetricsCollectorName":"Metrics"})",
            R"(,"FakeAggregator":["Metrics"])"),
        "");
    EXPECT_TRUE(
        m_log.Contains(Platform::InfoLog, " watcher \"Dumps 1\" is collecting metrics from \"Metrics\""));
    const auto& metrics =
        std::dynamic_pointer_cast<FakeAggregator>(m_application->GetProcess("Metrics"))->m_metrics;
    ASSERT_EQ(metrics.size(), 3U);
    EXPECT_EQ(metrics[0]->Describe(), "kestrix_pending_folders{status=existing,watcher=dumps_1}: "
                                      "Number of folders waiting to be processed");
    EXPECT_EQ(metrics[1]->Describe(), "kestrix_pending_folders{status=new,watcher=dumps_1}: "
                                      "Number of folders waiting to be processed");
    EXPECT_EQ(
        metrics[2]->Describe(),
        "kestrix_known_folders{watcher=dumps_1}: Number of known folders that will be ignored because they "
        "have already been processed");
    MakeComplete("app/d/a");
    MakeComplete("app/d/b");
    Start("Dumps 1");
    // Two passes of one folder each, then passes that find nothing; nobody takes.
    EXPECT_TRUE(Await([&] { return metrics[0]->m_value == 2.0 && metrics[1]->m_value == 0.0; }));
    EXPECT_EQ(metrics[2]->m_value, 2.0);
}

TEST(WatcherMetrics, LabelNamesAreLowerCaseLettersDigitsAndLines) {
    EXPECT_EQ(WatcherMetrics::LabelName("Dumps-Watcher 2"), "dumps_watcher_2");
    EXPECT_EQ(WatcherMetrics::LabelName("\xC3\x84"
                                        "a_Z9"),
              "__a_z9");
    EXPECT_EQ(WatcherMetrics::LabelName(""), "");
}

TEST(TaskData, NeedsAFolder) {
    AssertCapture asserts;
    EXPECT_EQ(TaskData("C:\\dumps\\a").GetInstanceHash(), "C:\\dumps\\a");
    EXPECT_TRUE(asserts.Failures().empty());
    EXPECT_EQ(TaskData("").GetInstanceHash(), "");
    EXPECT_EQ(TaskData(nullptr).GetInstanceHash(), "");
    EXPECT_EQ(asserts.Texts(), (Lines{"!m_instanceHash.empty()|", "hash|", "!m_instanceHash.empty()|"}));
}
