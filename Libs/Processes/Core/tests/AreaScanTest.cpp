#include "Libs/Processes/Core/src/AreaScan.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "tests/support/ProcessFixture.h"

namespace {

constexpr uint64_t Second = 10'000'000; // in file time

class AreaScanTest : public ProcessFixture {
protected:
    AreaScanTest() { EXPECT_TRUE(m_scan.SetFolder(m_scratch.Path())); }

    static uint64_t Now() {
        FILETIME now = {};
        GetSystemTimePreciseAsFileTime(&now);
        return uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    }

    // One pass as if it took place so much later: what was just written then counts as settled.
    void Pass(uint64_t secondsAhead = 0) {
        EXPECT_TRUE(m_scan.Run([=] { return Now() + secondsAhead * Second; }));
    }

    void Rename(const std::string& from, const std::string& to) const {
        ASSERT_TRUE(MoveFileW(TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf(from)).c_str(),
                              TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf(to)).c_str()));
    }

    // Gives the folder the last-write time that it had before the change.
    template <class Change>
    static void ChangeUnnoticed(const std::string& folder, Change&& change) {
        HANDLE handle =
            CreateFileW(TestSupport::ScratchFolder::FromUtf8(folder).c_str(),
                        FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE,
                        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        FILETIME time = {};
        ASSERT_TRUE(GetFileTime(handle, nullptr, nullptr, &time));
        change();
        ASSERT_TRUE(SetFileTime(handle, nullptr, nullptr, &time));
        CloseHandle(handle);
    }

    // The record of a sub-folder: its size, "v" when valid; "-" when there is none.
    std::string Measured(const std::string& name) {
        for (const auto& record : m_scan.GetRecords()) {
            if (record.path == m_scratch.PathOf(name)) {
                return std::to_string(record.size) + (record.valid ? "v" : "");
            }
        }
        return "-";
    }

    AreaScan m_scan;
};

TEST_F(AreaScanTest, AddsUpTheFilesDirectlyInside) {
    m_scratch.MakeFile("file beside", "12345");
    m_scratch.MakeFolder("empty");
    m_scratch.MakeFile("plain/a", "12345");
    m_scratch.MakeFile("plain/b", "123");
    m_scratch.MakeFile("nested/a", "1");
    m_scratch.MakeFile("nested/logs/header.json", "1234567");
    m_scratch.MakeFile("太郎/header.json", "{}");
    m_scratch.MakeFile("Wrong case/Header.json", "{}");
    m_scratch.MakeFile("packed/header.json.gz", "{}");
    Pass();
    EXPECT_EQ(m_scan.GetRecords().size(), 6U);
    EXPECT_EQ(Measured("empty"), "0");
    EXPECT_EQ(Measured("plain"), "8");
    EXPECT_EQ(Measured("nested"), "1");
    EXPECT_EQ(Measured("太郎"), "2v");
    EXPECT_EQ(Measured("Wrong case"), "2");
    EXPECT_EQ(Measured("packed"), "2");
}

TEST_F(AreaScanTest, SeesEveryChangeWhateverItRemembers) {
    m_scratch.MakeFile("a/game.log", "1");
    m_scratch.MakeFile("many/0", "1");
    for (const char* name : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        m_scratch.MakeFile(std::string("many/") + name, "1");
    }
    for (const uint64_t ahead : {0U, 0U, 60U, 61U}) { // unsettled twice, then remembered, then from memory
        Pass(ahead);
        EXPECT_EQ(Measured("a"), "1");
        EXPECT_EQ(Measured("many"), "9");
    }
    m_scratch.MakeFile("a/game.log", "12345"); // grows: the folder's own time stays
    m_scratch.MakeFile("many/8", "12345");
    Pass(62);
    EXPECT_EQ(Measured("a"), "5");
    EXPECT_EQ(Measured("many"), "13");
    m_scratch.MakeFile("a/header.json", "{}"); // comes
    Pass(63);
    EXPECT_EQ(Measured("a"), "7v");
    Pass(120);
    ASSERT_TRUE(PlatformHelpers::RemoveFile(m_scratch.PathOf("a/game.log"))); // goes
    Pass(121);
    EXPECT_EQ(Measured("a"), "2v");
    Pass(180);
    Rename("a/header.json", "a/head");
    Rename("a/head", "a/HEADER.json");
    Pass(181);
    EXPECT_EQ(Measured("a"), "2");
    Pass(240);
    ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("a")));
    m_scratch.MakeFile("b/x", "123");
    Pass(241);
    EXPECT_EQ(Measured("a"), "-");
    EXPECT_EQ(Measured("b"), "3");
}

// What its signs don't tell of, it finds out all the same.
TEST_F(AreaScanTest, SeesEvenUnlikelyChangesSoon) {
    constexpr uint64_t SoonPasses = 16;
    m_scratch.MakeFile("a/game.dmp", "1");
    MakeReadOnly("a/game.dmp");
    Pass(60);
    ChangeUnnoticed(m_scratch.Path(), [this] { m_scratch.MakeFile("b/x", "1"); });
    ASSERT_TRUE(PlatformHelpers::MakeFileWritable(m_scratch.PathOf("a/game.dmp")));
    m_scratch.MakeFile("a/game.dmp", "12345");
    for (uint64_t pass = 0; pass < SoonPasses; ++pass) {
        Pass(61 + pass);
    }
    EXPECT_EQ(Measured("a"), "5");
    EXPECT_EQ(Measured("b"), "1");
}

TEST_F(AreaScanTest, AnAreaThatVanishesLeavesNothing) {
    m_scratch.MakeFile("area/a/x", "1");
    AreaScan scan;
    ASSERT_TRUE(scan.SetFolder(m_scratch.PathOf("area") + "\\"));
    ASSERT_TRUE(scan.Run(Now));
    EXPECT_EQ(scan.GetRecords().size(), 1U);
    ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("area")));
    EXPECT_STREQ(scan.Run(Now).Text(), "Failed to enumerate files");
    EXPECT_TRUE(scan.GetRecords().empty());
    m_scratch.MakeFile("area/b/x", "12");
    ASSERT_TRUE(scan.Run(Now));
    EXPECT_EQ(scan.GetRecords().size(), 1U);
}

TEST_F(AreaScanTest, AgesComeFromTheFoldersCreation) {
    m_scratch.MakeFile("a/x", "1");
    Pass(100);
    ASSERT_EQ(m_scan.GetRecords().size(), 1U);
    EXPECT_GE(m_scan.GetRecords()[0].age, 100U);
    EXPECT_LE(m_scan.GetRecords()[0].age, 130U);
    ASSERT_TRUE(m_scan.Run([] { return uint64_t{1}; })); // long before it was created
    EXPECT_GT(m_scan.GetRecords()[0].age, UINT32_MAX);
}

// Taken for one of the future it would be removed while the game still writes it.
TEST_F(AreaScanTest, AFolderThatIsMadeDuringAPassIsYoung) {
    std::atomic<bool> isDone = false;
    std::thread game([&] {
        for (int i = 0; i < 200; ++i) {
            m_scratch.MakeFile(std::to_string(i) + "/game.log", "x");
        }
        isDone = true;
    });
    uint64_t oldest = 0;
    while (!isDone) {
        Pass();
        for (const auto& record : m_scan.GetRecords()) {
            oldest = std::max(oldest, record.age);
        }
    }
    game.join();
    EXPECT_LT(oldest, 1000U);
}

} // namespace
