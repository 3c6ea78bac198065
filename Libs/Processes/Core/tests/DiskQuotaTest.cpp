#include "Libs/Processes/Core/src/DiskQuota.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <thread>

#include "Libs/Processes/Core/src/AreaScan.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/Link.h"
#include "tests/support/ProcessFixture.h"

namespace {

const std::string Quota = R"("DiskQuota": ["Quota"])";

class DiskQuotaTest : public ProcessFixture {
protected:
    void TearDown() override {
        if (m_isStarted) {
            Stop("Quota");
        }
    }
    static void SetUpTestSuite() {
        auto& makers = FactoryInstance<IApplicationProcess>();
        if (!makers.FindMaker("DiskQuota")) {
            makers.RegisterMaker<DiskQuota>("DiskQuota");
        }
    }

    void Run(const std::string& keys) {
        ASSERT_EQ(Configure(Quota, R"("Quota": {"TimeBetweenChecks": 5)" + keys + "}"), "");
        EXPECT_TRUE(Exists("dumps") && Exists("packagedDumps"));
        StartQuota();
    }
    void StartQuota() {
        m_isStarted = true;
        Start("Quota");
    }

    // Folders of one area, the oldest first, each one so large.
    void MakeAges(const std::string& area, const std::vector<std::string>& oldestFirst,
                  std::size_t size = 10) {
        uint64_t seconds = 10 * oldestFirst.size();
        for (const std::string& name : oldestFirst) {
            const std::string path = std::string("app/").append(area).append(1, '/').append(name);
            m_scratch.MakeFile(path + "/header.json", std::string(size, 'x'));
            SetCreation(path, seconds);
            seconds -= 10;
        }
    }

    void SetCreation(const std::string& path, uint64_t secondsAgo) const {
        FILETIME now = {};
        GetSystemTimeAsFileTime(&now);
        const uint64_t time =
            (uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime) - secondsAgo * 10'000'000;
        HANDLE folder = CreateFileW(TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf(path)).c_str(),
                                    FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        const FILETIME written = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
        // A system that keeps no creation time shows the last write instead.
        EXPECT_TRUE(SetFileTime(folder, &written, nullptr, &written));
        CloseHandle(folder);
    }

    bool AwaitInfo(const std::string& text) const {
        return Await([&] { return m_log.Contains(Platform::InfoLog, text); });
    }
    std::string Overrun(const std::string& path) const {
        return " Removed aging folder " + m_scratch.PathOf(path) + " that puts us over our quota";
    }
    bool Exists(const std::string& name) const { return m_scratch.Exists("app/" + name); }

    bool m_isStarted = false;
};

TEST_F(DiskQuotaTest, MeasuresTheFilesDirectlyInside) {
    m_scratch.MakeFile("area/file beside", "12345");
    m_scratch.MakeFolder("area/empty");
    m_scratch.MakeFile("area/nested/a", "1");
    m_scratch.MakeFile("area/nested/b", "23");
    m_scratch.MakeFile("area/nested/logs/header.json", "1234567");
    m_scratch.MakeFile("area/太郎/header.json", "{}");
    m_scratch.MakeFile("area/wrong case/Header.json", "{}");
    m_scratch.MakeFile("elsewhere/header.json", std::string(1000, 'x'));
    const TestSupport::Link link(m_scratch.PathOf("area/link"), "../elsewhere");
    ASSERT_TRUE(link);
    const std::string area = m_scratch.PathOf("area") + "\\";
    std::vector<QuotaDecision::FolderRecord> records;
    ASSERT_TRUE(ScanArea(area, records));
    std::map<std::string, std::string> measured;
    for (const auto& record : records) {
        EXPECT_LT(record.age, 60u);
        measured[record.path.substr(area.size())] = std::to_string(record.size) + (record.valid ? "v" : "");
    }
    EXPECT_EQ(measured,
              (std::map<std::string, std::string>{
                  {"empty", "0"}, {"link", "0"}, {"nested", "3"}, {"wrong case", "2"}, {"太郎", "2v"}}));
}

// Taken for one of the future it would be removed while the game still writes it.
TEST_F(DiskQuotaTest, AFolderThatIsMadeDuringAScanIsYoung) {
    m_scratch.MakeFolder("area");
    std::atomic<bool> isDone = false;
    std::thread game([&] {
        for (int i = 0; i < 60; ++i) {
            m_scratch.MakeFile("area/" + std::to_string(i) + "/game.log", "x");
        }
        isDone = true;
    });
    while (!isDone) {
        std::vector<QuotaDecision::FolderRecord> records;
        EXPECT_TRUE(ScanArea(m_scratch.PathOf("area") + "\\", records));
        EXPECT_TRUE(records.empty() || records.back().age < 1000);
    }
    game.join();
}

TEST_F(DiskQuotaTest, OfEachAreaTheOldestBeyondTheQuotaGo) {
    MakeAges("dumps", {"1 oldest", "2", "太郎"});
    MakeAges("packagedDumps", {"p1", "p2", "p3"});
    MakeReadOnly("app/dumps/1 oldest/header.json");
    Run(R"(, "DumpsQuota": 20, "PackagedQuota": 19)");
    EXPECT_TRUE(AwaitInfo(Overrun("app\\packagedDumps\\p1")));
    EXPECT_TRUE(AwaitInfo(Overrun("app\\packagedDumps\\p2")));
    EXPECT_TRUE(AwaitInfo(Overrun("app\\dumps\\1 oldest")));
    EXPECT_TRUE(Exists("dumps/2") && Exists("dumps/太郎") && Exists("packagedDumps/p3"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(DiskQuotaTest, SeesWhatGrowsAndAnAreaThatWasReplaced) {
    namespace fs = std::filesystem;
    const fs::path dumps = TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf("app/dumps"));
    MakeAges("dumps", {"old", "young"});
    Run(R"(, "DumpsQuota": 20)");
    m_scratch.MakeFile("app/dumps/young/header.json", "12345678901"); // the folder's own time stays
    EXPECT_TRUE(AwaitInfo(Overrun("app\\dumps\\old")));

    fs::rename(dumps, dumps.parent_path() / "before");
    MakeAges("dumps", {"older", "younger"}, 11);
    EXPECT_TRUE(AwaitInfo(Overrun("app\\dumps\\older")));
    EXPECT_TRUE(Exists("dumps/younger"));
}

TEST_F(DiskQuotaTest, WhatIsNoSubmissionGoesAfterItsGraceTime) {
    m_scratch.MakeFile("app/dumps/invalid/game.log", "x");
    m_scratch.MakeFile("app/dumps/wrong case/Header.json", "{}");
    m_scratch.MakeFile("app/dumps/valid/header.json", "{}");
    m_scratch.MakeFile("app/dumps/fresh/game.log", "x");
    m_scratch.MakeFile("app/packagedDumps/package/submission.pkg", "x");
    for (const char* name : {"dumps/invalid", "dumps/valid", "dumps/wrong case", "packagedDumps/package"}) {
        SetCreation(std::string("app/") + name, 100);
    }
    SetCreation("app/dumps/fresh", 58);
    Run(R"(, "InvalidGraceTime": 60)");
    EXPECT_TRUE(AwaitInfo(" Removed aging invalid dump folder " + m_scratch.PathOf("app\\dumps\\invalid")));
    EXPECT_TRUE(
        AwaitInfo(" Removed aging invalid dump folder " + m_scratch.PathOf("app\\dumps\\wrong case")));
    EXPECT_TRUE(Exists("dumps/fresh"));
    // It ages although nothing changes.
    EXPECT_TRUE(AwaitInfo(" Removed aging invalid dump folder " + m_scratch.PathOf("app\\dumps\\fresh")));
    EXPECT_TRUE(Exists("dumps/valid") && Exists("packagedDumps/package"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(DiskQuotaTest, AHeldFolderIsTriedAgainAndHoldsNothingUp) {
    const std::vector<std::string> names = {"held0", "held1", "held2", "held3",
                                            "held4", "held5", "held6", "held7"};
    std::vector<HANDLE> held;
    MakeAges("dumps", names);
    MakeAges("packagedDumps", {"package"});
    for (const std::string& name : names) {
        held.push_back(CreateFileW(
            TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf("app/dumps/" + name + "/header.json"))
                .c_str(),
            GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_NE(held.back(), INVALID_HANDLE_VALUE);
    }
    const auto start = std::chrono::steady_clock::now();
    Run(R"(, "DumpsQuota": 0, "PackagedQuota": 0)");
    EXPECT_TRUE(AwaitInfo(Overrun("app\\packagedDumps\\package")));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6))
        << "eight would pause eight seconds";
    EXPECT_TRUE(m_log.Contains(Platform::ErrorLog,
                               " Failed to remove aging folder " + m_scratch.PathOf("app\\dumps\\held0") +
                                   " that puts us over our quota. Error=Failed to delete file"));
    for (HANDLE file : held) {
        CloseHandle(file);
    }
    EXPECT_TRUE(AwaitInfo(Overrun("app\\dumps\\held0")));
    EXPECT_TRUE(Await([&] { return !Exists("dumps/held7"); }));
}

// Each time another allocation of the process fails, every third in turn. A list in disorder would cost the
// youngest.
TEST_F(DiskQuotaTest, WithoutMemoryTheYoungestStillStay) {
    constexpr std::size_t AllocationsOfAPass = 100; // and more
    for (std::size_t nth = 0; nth < AllocationsOfAPass; nth += 3) {
        SCOPED_TRACE(nth);
        m_application = std::make_shared<ApplicationBase>();
        MakeAges("dumps", {"z", "b", "a"});
        Configure(Quota, R"("Quota": {"TimeBetweenChecks": 1, "DumpsQuota": 20})");
        std::thread stopper([this] {
            // The rest of a half-deleted folder has no size, and is deleted after its grace time.
            EXPECT_TRUE(Await([this] { return !Exists("dumps/z/header.json"); }));
            m_application->RequestShutdown();
        });
        {
            const TestSupport::FailingMemory memory(nth);
            EXPECT_TRUE(m_application->GetProcess("Quota")->ThreadMain());
        }
        stopper.join();
        EXPECT_TRUE(Exists("dumps/a") && Exists("dumps/b"));
    }
}

TEST_F(DiskQuotaTest, AnAreaThatCannotBeReadIsReported) {
    MakeAges("packagedDumps", {"p1", "p2"});
    ASSERT_EQ(Configure(Quota, R"("Quota": {"TimeBetweenChecks": 5, "PackagedQuota": 10})"), "");
    ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("app/dumps")));
    StartQuota();
    EXPECT_TRUE(AwaitInfo(Overrun("app\\packagedDumps\\p1")));
    EXPECT_TRUE(m_log.Contains(Platform::ErrorLog, " Failed to scan folder " +
                                                       m_scratch.PathOf("app\\dumps") +
                                                       "\\. Error=Failed to enumerate files"));
}

} // namespace
