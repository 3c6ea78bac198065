#include "Libs/Processes/Core/src/Watcher.h"

#include <algorithm>
#include <atomic>

#include "tests/support/ProcessFixture.h"

namespace {

using Lines = std::vector<std::string>;

struct FakeMetric : IMetric {
    explicit FakeMetric(const char* text) : name(text) {}
    void SetLabel(const char* key, const char* text) override { name += std::string(",") + key + "=" + text; }
    void SetValue(double number) override { value = number; }
    std::string name; // with the labels
    std::atomic<double> value = -1;
};

class FakeAggregator : public Watcher, public IMetricsAggregator {
public:
    using Watcher::Watcher;
    void* QueryObj(const Reflection::TypeDescriptor&) override {
        return static_cast<IMetricsAggregator*>(this);
    }
    std::shared_ptr<IMetric> MakeMetric(const char* name, const char*) override {
        return m_metrics.emplace_back(std::make_shared<FakeMetric>(name));
    }
    std::vector<std::shared_ptr<FakeMetric>> m_metrics;
};

class WatcherTest : public ProcessFixture {
protected:
    WatcherTest() { m_config.folder = m_scratch.Path(); }

    static void SetUpTestSuite() {
        FactoryInstance<IApplicationProcess>().RegisterMaker<Watcher>("Watcher");
        FactoryInstance<IApplicationProcess>().RegisterMaker<FakeAggregator>("FakeAggregator");
    }

    void ConfigureWatcher(const std::string& section, const std::string& more = "") {
        static_cast<void>(Configure(R"("Watcher":["Dumps 1"])" + more, // errors are a test's subject
                                    R"("Dumps 1":{"TimeBetweenChecks":1,)" + section + "}"));
        ASSERT_NE(m_application->GetProcess("Dumps 1"), nullptr);
    }
    // The names that one more pass accepts.
    Lines Pass() {
        FolderScan scan(m_config, m_known);
        EXPECT_TRUE(scan.Run());
        Lines names = scan.GetNewNames();
        m_known.insert(names.begin(), names.end());
        std::ranges::sort(names);
        return names;
    }

    WatcherConfig m_config;
    KnownFolders m_known;
};

} // namespace

TEST_F(WatcherTest, AcceptsFoldersWithAReadOnlySentinel) {
    MakeComplete("太郎");
    MakeComplete("packed", "gz", "header.json.gz");
    m_scratch.MakeFile("writing/header.json", "{}");
    MakeComplete("writing", "gz", "header.json.gz"); // the plain one decides
    MakeComplete("other", "{}", "submission.pkg");
    m_scratch.MakeFile("header.json", "{}");
    MakeReadOnly("header.json");
    m_known = {"TARO", "packe", "packed2", "Packed"};
    EXPECT_EQ(Pass(), (Lines{"packed", "太郎"}));
    EXPECT_EQ(Pass(), Lines{});
    m_config.sentinelFile = "submission.pkg";
    EXPECT_EQ(Pass(), Lines{"other"});
}

TEST_F(WatcherTest, ALimitSpreadsFoldersOverPasses) {
    m_config.maxFolderScans = 2;
    m_scratch.MakeFolder("0 incomplete"); // does not count
    for (const char* name : {"a", "b", "c"}) {
        MakeComplete(name);
    }
    EXPECT_EQ(Pass().size(), 2u);
    EXPECT_EQ(Pass().size(), 1u);
    MakeComplete("d");
    m_config.maxFolderScans = 0;
    EXPECT_EQ(Pass(), Lines{});
    m_config.maxFolderScans = -5;
    EXPECT_EQ(Pass(), Lines{"d"});
}

TEST_F(WatcherTest, ShutsDownAfterOneCheckIfAsked) {
    ConfigureWatcher(R"("Folder":"d","ShutdownAfterCheck":true)");
    const std::string a = MakeComplete("app/d/a");
    ASSERT_TRUE(m_application->Run()); // returns by itself
    std::vector<TaskData> tasks;
    EXPECT_TRUE(Reflection::Query<IWatcher>(*m_application->GetProcess("Dumps 1"))->TakeTasks(tasks));
    ASSERT_EQ(tasks.size(), 1u);
    EXPECT_EQ(tasks[0].GetInstanceHash(), a);
}

TEST_F(WatcherTest, PublishesItsNumbers) {
    ConfigureWatcher(R"("Folder":"d","MaxFolderScans":1,"MetricsCollectorName":"M"},"M":{"Folder":"m")",
                     R"(,"FakeAggregator":["M"])");
    const auto& metrics =
        std::dynamic_pointer_cast<FakeAggregator>(m_application->GetProcess("M"))->m_metrics;
    ASSERT_EQ(metrics.size(), 3u);
    EXPECT_EQ(metrics[0]->name, "kestrix_pending_folders,status=existing,watcher=dumps_1");
    EXPECT_EQ(metrics[1]->name, "kestrix_pending_folders,status=new,watcher=dumps_1");
    EXPECT_EQ(metrics[2]->name, "kestrix_known_folders,watcher=dumps_1");
    MakeComplete("app/d/a");
    MakeComplete("app/d/b");
    Start("Dumps 1");
    // Two passes of one folder each, then passes that find nothing; nobody takes.
    EXPECT_TRUE(Await([&] { return metrics[0]->value == 2.0 && metrics[1]->value == 0.0; }));
    EXPECT_EQ(metrics[2]->value, 2.0);
}
