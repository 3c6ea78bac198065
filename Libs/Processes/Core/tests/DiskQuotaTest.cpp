#include "Libs/Processes/Core/src/DiskQuota.h"

#include <windows.h>

#include <algorithm>

#include "tests/support/HostSystem.h"
#include "tests/support/ProcessFixture.h"

namespace {

const std::string Quota = R"("DiskQuota": ["Quota"])";

class DiskQuotaTest : public ProcessFixture {
protected:
    void TearDown() override {
        if (m_application->GetProcess("Quota")) {
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
        // Where the system keeps no creation time, the last write stands for it.
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
};

TEST_F(DiskQuotaTest, SaysWhichFolderItCannotMake) {
    m_scratch.MakeFile("blocked", "");
    const struct {
        const char* key;
        const char* kind;
        const char* result;
    } rows[] = {
        {"DumpsFolder", "dumps", "Failed to create dumps folder"},
        {"PackagedFolder", "packaged dumps", "Failed to create packaged dumps folder"},
    };
    for (const auto& row : rows) {
        const std::string folder = m_scratch.PathOf("blocked\\inside") + "\\";
        m_application = std::make_shared<ApplicationBase>();
        Configure(Quota, R"("Quota": {")" + std::string(row.key) + "\": " + Quoted(folder) + "}");
        EXPECT_TRUE(m_log.Contains(Platform::ErrorLog, std::string(" Failed to create quota Quota ") +
                                                           row.kind + " folder \"" + folder +
                                                           "\". Error=Failed to create directory tree"));
        EXPECT_TRUE(m_log.Contains(Platform::ErrorLog,
                                   std::string(" Failed to initialize process Quota, Error: ") + row.result));
    }
}

TEST_F(DiskQuotaTest, OfEachAreaTheOldestBeyondTheQuotaGo) {
    MakeAges("dumps", {"1 oldest", "2", "太郎"});
    MakeAges("packagedDumps", {"p1", "p2", "p3"});
    MakeReadOnly("app/dumps/1 oldest/header.json");
    Run(R"(, "DumpsQuota": 20, "PackagedQuota": 19)");
    EXPECT_TRUE(AwaitInfo(Overrun("app\\packagedDumps\\p1")));
    const std::vector<std::string> said = {Overrun("app\\dumps\\1 oldest"), Overrun("app\\packagedDumps\\p2"),
                                           Overrun("app\\packagedDumps\\p1")};
    std::vector<std::string> removed = m_log.Infos();
    std::erase_if(removed, [](const std::string& line) { return line.find("quota") == std::string::npos; });
    EXPECT_EQ(removed, said) << "the dumps first, and of an area the younger ones first";
    EXPECT_TRUE(Exists("dumps/2") && Exists("dumps/太郎") && Exists("packagedDumps/p3"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(DiskQuotaTest, WhatNeverBecameASubmissionGoesAfterItsGraceTime) {
    MakeAges("dumps", {"invalid", "valid", "wrong case", "fresh"});
    MakeAges("packagedDumps", {"package"});
    for (const char* name : {"invalid", "fresh"}) {
        m_scratch.MakeFile(std::string("app/dumps/") + name + "/game.log", "x");
    }
    // Renamed or removed before the times are set: that changes them where they stand for the creation.
    const auto path = [&](const char* name) { return m_scratch.PathOf(std::string("app/dumps/") + name); };
    ASSERT_TRUE(PlatformHelpers::RemoveFile(path("invalid/header.json")));
    ASSERT_TRUE(PlatformHelpers::RemoveFile(path("fresh/header.json")));
    ASSERT_TRUE(PlatformHelpers::RemoveFile(path("wrong case/header.json")));
    m_scratch.MakeFile("app/dumps/wrong case/Header.json", "{}");
    ASSERT_TRUE(PlatformHelpers::RemoveFile(m_scratch.PathOf("app/packagedDumps/package/header.json")));
    for (const char* name : {"dumps/invalid", "dumps/valid", "dumps/wrong case", "packagedDumps/package"}) {
        SetCreation(std::string("app/") + name, 100);
    }
    Run(R"(, "InvalidGraceTime": 60)");
    EXPECT_TRUE(AwaitInfo(" Removed aging invalid dump folder " + m_scratch.PathOf("app\\dumps\\invalid")));
    EXPECT_TRUE(
        AwaitInfo(" Removed aging invalid dump folder " + m_scratch.PathOf("app\\dumps\\wrong case")));
    EXPECT_TRUE(Exists("dumps/valid") && Exists("dumps/fresh") && Exists("packagedDumps/package"));
    EXPECT_TRUE(m_log.Errors().empty());
}

TEST_F(DiskQuotaTest, AFolderThatIsHeldIsTriedAgainInEveryPassAndHoldsNothingUpForLong) {
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

TEST_F(DiskQuotaTest, LinksGoAsLinks) {
    m_scratch.MakeFile("elsewhere/precious.txt", std::string(1000, 'x'));
    m_scratch.MakeFolder("app/dumps/a");
    const TestSupport::Link inside(m_scratch.PathOf("app/dumps/a/link"), "../../../elsewhere", true);
    ASSERT_TRUE(inside);
    Run(R"(, "InvalidGraceTime": 0)");
    // Its creation may be in this very second.
    EXPECT_TRUE(Await([&] { return !m_log.Errors().empty() || !Exists("dumps/a"); }));
    EXPECT_TRUE(m_scratch.Exists("elsewhere/precious.txt"));
}

TEST_F(DiskQuotaTest, AnAreaThatCannotBeReadIsReportedAndTheOtherIsKept) {
    MakeAges("packagedDumps", {"p1", "p2"});
    ASSERT_EQ(Configure(Quota, R"("Quota": {"TimeBetweenChecks": 5, "PackagedQuota": 10})"), "");
    ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("app/dumps")));
    Start("Quota");
    EXPECT_TRUE(AwaitInfo(Overrun("app\\packagedDumps\\p1")));
    EXPECT_TRUE(m_log.Contains(Platform::ErrorLog, " Failed to scan folder " +
                                                       m_scratch.PathOf("app\\dumps") +
                                                       "\\. Error=Failed to enumerate files"));
}

} // namespace
