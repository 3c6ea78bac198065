#include "Libs/Processes/Core/src/DiskQuota.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <thread>

#include "tests/support/ProcessFixture.h"

namespace {

const std::string Quota = R"("DiskQuota": ["Quota"])";

class DiskQuotaTest : public ProcessFixture {
protected:
    static void SetUpTestSuite() {
        FactoryInstance<IApplicationProcess>().RegisterMaker<DiskQuota>("DiskQuota");
    }

    void Run(const std::string& keys) {
        ASSERT_EQ(Configure(Quota, R"("Quota": {"TimeBetweenChecks": 5)" + keys + "}"), "");
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

    bool Exists(const std::string& name) const { return m_scratch.Exists("app/" + name); }
    bool AwaitGone(const std::string& name) const {
        return Await([&] { return !Exists(name); });
    }
};

TEST_F(DiskQuotaTest, MeasuresTheFilesDirectlyInside) {
    m_scratch.MakeFile("area/file beside", "12345");
    m_scratch.MakeFolder("area/empty");
    m_scratch.MakeFile("area/nested/a", "1");
    m_scratch.MakeFile("area/nested/b", "23");
    m_scratch.MakeFile("area/nested/logs/header.json", "1234567");
    m_scratch.MakeFile("area/太郎/header.json", "{}");
    m_scratch.MakeFile("area/wrong case/Header.json", "{}");
    const std::string area = m_scratch.PathOf("area") + "\\";
    std::vector<QuotaDecision::FolderRecord> records;
    ASSERT_TRUE(ScanArea(area, records));
    std::map<std::string, std::string> measured;
    for (const auto& record : records) {
        EXPECT_LT(record.age, 60u);
        measured[record.path.substr(area.size())] = std::to_string(record.size) + (record.valid ? "v" : "");
    }
    EXPECT_EQ(measured, (std::map<std::string, std::string>{
                            {"empty", "0"}, {"nested", "3"}, {"wrong case", "2"}, {"太郎", "2v"}}));
}

// Taken for one of the future it would be removed while the game still writes it.
TEST_F(DiskQuotaTest, AFolderThatIsMadeDuringAScanIsYoung) {
    m_scratch.MakeFolder("area");
    std::jthread game([&] {
        for (int i = 0; i < 60; ++i) {
            m_scratch.MakeFile("area/" + std::to_string(i) + "/game.log", "x");
        }
    });
    std::vector<QuotaDecision::FolderRecord> records;
    while (records.size() < 60) {
        EXPECT_TRUE(ScanArea(m_scratch.PathOf("area") + "\\", records));
        EXPECT_TRUE(records.empty() || records.back().age < 1000);
    }
}

TEST_F(DiskQuotaTest, OfEachAreaTheOldestBeyondTheQuotaGo) {
    MakeAges("dumps", {"1 oldest", "2", "太郎"});
    MakeAges("packagedDumps", {"p1", "p2", "p3"});
    MakeReadOnly("app/dumps/1 oldest/header.json");
    Run(R"(, "DumpsQuota": 20, "PackagedQuota": 19)");
    EXPECT_TRUE(AwaitGone("packagedDumps/p1") && AwaitGone("packagedDumps/p2"));
    EXPECT_TRUE(AwaitGone("dumps/1 oldest"));
    EXPECT_TRUE(Exists("dumps/2") && Exists("dumps/太郎") && Exists("packagedDumps/p3"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(DiskQuotaTest, SeesWhatGrowsAndAnAreaThatWasReplaced) {
    namespace fs = std::filesystem;
    const fs::path dumps = TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf("app/dumps"));
    MakeAges("dumps", {"old", "young"});
    Run(R"(, "DumpsQuota": 20)");
    m_scratch.MakeFile("app/dumps/young/header.json", "12345678901"); // the folder's own time stays
    EXPECT_TRUE(AwaitGone("dumps/old"));

    fs::rename(dumps, dumps.parent_path() / "before");
    MakeAges("dumps", {"older", "younger"}, 11);
    EXPECT_TRUE(AwaitGone("dumps/older"));
    EXPECT_TRUE(Exists("dumps/younger"));
}

TEST_F(DiskQuotaTest, WhatIsNoSubmissionGoesAfterItsGraceTime) {
    m_scratch.MakeFile("app/dumps/invalid/game.log", "x");
    m_scratch.MakeFile("app/dumps/valid/header.json", "{}");
    m_scratch.MakeFile("app/dumps/fresh/game.log", "x");
    m_scratch.MakeFile("app/packagedDumps/package/submission.pkg", "x");
    for (const char* name : {"app/dumps/invalid", "app/dumps/valid", "app/packagedDumps/package"}) {
        SetCreation(name, 100);
    }
    SetCreation("app/dumps/fresh", 58);
    Run(R"(, "InvalidGraceTime": 60)");
    EXPECT_TRUE(AwaitGone("dumps/invalid") && Exists("dumps/fresh"));
    EXPECT_TRUE(AwaitGone("dumps/fresh")); // it ages although nothing changes
    EXPECT_TRUE(Exists("dumps/valid") && Exists("packagedDumps/package"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(DiskQuotaTest, AHeldFolderIsTriedAgainAndHoldsNothingUp) {
    const std::vector<std::string> names = {"0", "1", "2", "3", "4", "5", "6", "7"};
    std::vector<std::ifstream> held; // an open file can't be deleted
    MakeAges("dumps", names);
    MakeAges("packagedDumps", {"package"});
    for (const std::string& name : names) {
        held.emplace_back(
            TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf("app/dumps/" + name + "/header.json")));
    }
    const auto start = std::chrono::steady_clock::now();
    Run(R"(, "DumpsQuota": 0, "PackagedQuota": 0)");
    EXPECT_TRUE(AwaitGone("packagedDumps/package"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(6))
        << "eight would pause eight seconds";
    EXPECT_FALSE(m_log.Errors().empty());
    held.clear();
    EXPECT_TRUE(AwaitGone("dumps/0") && AwaitGone("dumps/7"));
}

} // namespace
