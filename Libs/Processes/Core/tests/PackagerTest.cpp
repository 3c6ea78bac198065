#include "Libs/Processes/Core/src/Packager.h"

#include <algorithm>

#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/Watcher.h"
#include "Libs/Processes/Core/tests/PackageReader.h"
#include "tests/support/HostSystem.h"
#include "tests/support/ProcessFixture.h"

namespace {

using Lines = std::vector<std::string>;

std::string Header(const std::string& catalog, const std::string& more = "") {
    return R"({"Host":"h","Time":"t","Application":"a","Source":"INTERNAL","SubmissionType":"s",)" + more +
           R"("Catalog":)" + catalog +
           R"(,"Exception":{"Message":"","StackTrace":""},"Callstack":[],"ModuleInfo":[],"Changelist":1})";
}

// Hands out a number of folders that are there, and asks the whole program to stop with the same call.
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
        if (!factory.FindMaker("Watcher")) {
            factory.RegisterMaker<Watcher>("Watcher");
        }
        factory.RegisterMaker<StoppingWatcher>("StoppingWatcher");
        factory.RegisterMaker<Packager>("Packager");
    }

    std::string ConfigurePackager(const std::string& settings = "", const char* watcher = "Watcher") {
        return Configure(std::string("\"") + watcher + R"(":["Dumps"],"Packager":["P"])",
                         R"("Dumps":{"TimeBetweenChecks":1,"Folder":"dumps"},)"
                         R"("P":{"TimeBetweenChecks":1,"WatcherName":"Dumps")" +
                             settings + "}");
    }
    // Runs until the submissions' folders are gone, then stops.
    void RunUntilGone(const Lines& folders) {
        Start("Dumps");
        Start("P");
        for (const std::string& folder : folders) {
            EXPECT_TRUE(Await([&] { return !PlatformHelpers::PathExists(folder); })) << folder;
        }
        Stop("P");
    }
    // A new run over the same folders.
    void Restart() {
        m_application.reset();
        m_application = std::make_shared<ApplicationBase>();
    }
    std::string Package(const std::string& name) const {
        return m_scratch.ReadFile("app/PackagedDumps/" + name + "/submission.pkg");
    }
    Lines NamesIn(const std::string& folder) const {
        Lines names;
        for (const auto& entry : std::filesystem::directory_iterator(
                 TestSupport::ScratchFolder::FromUtf8(m_scratch.PathOf(folder)))) {
            names.push_back(TestSupport::ScratchFolder::ToUtf8(entry.path().filename()));
        }
        return names;
    }
    std::string MakeSubmission(const std::string& name, const std::string& catalog) {
        m_scratch.MakeFile("app/dumps/" + name + "/game.log", "log " + name);
        m_scratch.MakeFile("app/dumps/" + name + "/key_Minidump.dmp", "dump");
        return MakeComplete("app/dumps/" + name, Header(catalog));
    }
    static constexpr char Usual[] =
        R"({"Dump":{"File":"key_Minidump.dmp","MD5":""},"Log":{"File":"game.log","MD5":""},"Attachments":[]})";
};

} // namespace

TEST_F(PackagerTest, PackagesASubmissionWhole) {
    ASSERT_EQ(ConfigurePackager(R"(,"AttachmentBlacklist":["dxdiag","^x$"],)"
                                R"("AttachmentLimits":[{"Extension":"LOG","MaxSize":8}])"),
              "");
    m_scratch.MakeFile("app/secret.txt", "secret");
    m_scratch.MakeFile("app/dumps/クラッシュ 1/logs/dxdiag.txt", "dropped");
    m_scratch.MakeFile("app/dumps/クラッシュ 1/logs/DxDiag2.txt", "kept");
    m_scratch.MakeFile("app/dumps/クラッシュ 1/shot.png.gz", "ready");
    const std::string folder = MakeSubmission(
        "クラッシュ 1",
        R"({"Dump":{"File":"key_Minidump.dmp","MD5":"old"},"Log":{"File":"game.log","MD5":""},"Attachments":[)"
        R"({"File":"logs/dxdiag.txt","MD5":""},{"File":"missing.txt","MD5":""},{"File":"","MD5":""},)"
        R"({"File":"logs/DxDiag2.txt","MD5":""},{"File":"..\\..\\secret.txt","MD5":""},)"
        R"({"File":"shot.png","MD5":""}]})");
    RunUntilGone({folder});

    const TestSupport::ReadPackage package = TestSupport::TakeApart(Package("クラッシュ 1"));
    ASSERT_EQ(package.entries.size(), 4U);
    EXPECT_NE(TestSupport::Gunzip(package.entries[0]).find("from 21 to 8"), std::string::npos);
    EXPECT_EQ(TestSupport::Gunzip(package.entries[1]), "dump");
    EXPECT_EQ(TestSupport::Gunzip(package.entries[2]), "kept");
    EXPECT_EQ(package.entries[3], "ready");
    const auto entry = [&](const char* file, int i) {
        return R"({"File":")" + std::string(file) + R"(","MD5":")" +
               TestSupport::Digest(package.entries[static_cast<std::size_t>(i)]) + "\"}";
    };
    const std::string catalog = R"({"Dump":)" + entry("key_Minidump.dmp", 1) + R"(,"Log":)" +
                                entry("game.log", 0) + R"(,"Attachments":[{"File":"","MD5":""},)" +
                                entry("logs/DxDiag2.txt", 2) + "," + entry("shot.png", 3) + "]}";
    EXPECT_NE(package.header.find(R"("Catalog":)" + catalog), std::string::npos) << package.header;
    EXPECT_NE(package.header.find(R"("Source":"EXTERNAL")"), std::string::npos);
    EXPECT_NE(package.header.find(R"("InstanceKey":"key")"), std::string::npos);
    EXPECT_EQ(NamesIn("app/PackageTemp"), Lines{});
    EXPECT_TRUE(m_log.Contains(
        Platform::InfoLog,
        " Packager \"P\" is packaging submissions with a file name of \"submission.pkg\" in folder \"" +
            m_scratch.PathOf("app\\PackagedDumps\\") + "\" for items gathered by watcher \"Dumps\""));
    EXPECT_TRUE(m_log.Contains(Platform::InfoLog, " Dropped black listed attachment logs/dxdiag.txt"));
    EXPECT_EQ(
        m_log.Errors(),
        (Lines{
            " Failed to copy or compress attachment missing.txt. Error=Failed to find attachment on disk",
            " Failed to copy or compress attachment ..\\..\\secret.txt. Error=Failed to find attachment on "
            "disk"}));
}

TEST_F(PackagerTest, TheSameFolderGivesTheSameBytes) {
    std::string packages[2];
    for (std::string& package : packages) {
        Restart();
        ASSERT_EQ(ConfigurePackager(), "");
        RunUntilGone({MakeSubmission("a", Usual)});
        package = Package("a");
        ASSERT_TRUE(PlatformHelpers::RemoveFolder(m_scratch.PathOf("app/PackagedDumps/a")));
    }
    EXPECT_FALSE(packages[0].empty());
    EXPECT_EQ(packages[0], packages[1]);
}

TEST_F(PackagerTest, WhatAKilledRunLeftIsReplaced) {
    ASSERT_EQ(ConfigurePackager(), "");
    m_scratch.MakeFile("app/PackageTemp/a/stale.gz", "of a killed run");
    m_scratch.MakeFile("app/PackageTemp/other/file", "somebody's");
    m_scratch.MakeFile("app/PackagedDumps/a/submission.pkg", "half");
    RunUntilGone({MakeSubmission("a", Usual)});
    EXPECT_EQ(TestSupport::TakeApart(Package("a")).entries.size(), 2U);
    EXPECT_EQ(NamesIn("app/PackageTemp"), Lines{"other"});
    EXPECT_EQ(m_log.Errors(), Lines{});
}

TEST_F(PackagerTest, AFailedSubmissionGoesAndLeavesNothing) {
    ASSERT_EQ(ConfigurePackager(), "");
    const std::string bad = MakeComplete("app/dumps/bad", "{");
    m_scratch.MakeFile("app/dumps/tgz/data.tgz", "x");
    const std::string tgz =
        MakeComplete("app/dumps/tgz", Header(R"({"Attachments":[{"File":"data.tgz","MD5":""}]})"));
    RunUntilGone({bad, tgz});
    EXPECT_EQ(NamesIn("app/PackageTemp"), Lines{});
    EXPECT_EQ(NamesIn("app/PackagedDumps"), Lines{});
    EXPECT_TRUE(m_log.Contains(Platform::ErrorLog,
                               " Failed to package dump folder \"" + bad +
                                   "\", error: \"Failed to parse json header data in dump folder!\""));
    EXPECT_TRUE(m_log.Contains(
        Platform::ErrorLog,
        " Failed to generate package file for submission \"tgz\", error: \"Failed to open input file\""));
}

TEST_F(PackagerTest, MissingFilesLeaveTheHeader) {
    ASSERT_EQ(ConfigurePackager(R"(,"Source":"UNKNOWN")"), "");
    const std::string folder = MakeComplete(
        "app/dumps/a",
        Header(R"({"Dump":{"File":"d.dmp","MD5":"x"},"Log":{"File":"NUL","MD5":"y"},"Attachments":[]})"));
    RunUntilGone({folder});
    const TestSupport::ReadPackage package = TestSupport::TakeApart(Package("a"));
    EXPECT_TRUE(package.entries.empty());
    EXPECT_NE(package.header.find(R"("Dump":{"File":"","MD5":""},"Log":{"File":"","MD5":""})"),
              std::string::npos);
    EXPECT_NE(package.header.find(R"("InstanceKey":"")"), std::string::npos);
    EXPECT_NE(package.header.find(R"("Source":"UNKNOWN")"), std::string::npos);
}

// Wine can't remove the link itself, so only what it stands for is looked at.
TEST_F(PackagerTest, ALinkedFolderIsNotPackaged) {
    m_scratch.MakeFile("elsewhere/game.log", "x");
    MakeComplete("elsewhere", Header(Usual));
    m_scratch.MakeFolder("app/dumps");
    const std::string path = m_scratch.PathOf("app/dumps/link");
    const TestSupport::Link link(path, "../../elsewhere", true);
    if (!link) {
        GTEST_SKIP() << "this system makes no symbolic links";
    }
    ASSERT_EQ(ConfigurePackager(), "");
    Start("Dumps");
    Start("P");
    EXPECT_TRUE(Await([this] { return !m_log.Errors().empty(); }));
    Stop("P");
    EXPECT_EQ(m_log.Errors().front(), " Failed to package dump folder \"" + path +
                                          "\", error: \"Failed to open json header data in dump folder!\"");
    EXPECT_TRUE(m_scratch.Exists("elsewhere/header.json"));
    EXPECT_TRUE(m_scratch.Exists("elsewhere/game.log"));
    EXPECT_EQ(NamesIn("app/PackagedDumps"), Lines{});
    EXPECT_EQ(NamesIn("app/PackageTemp"), Lines{});
}

TEST_F(PackagerTest, EqualFoldersKeepTheFilesBesideThePackage) {
    const std::string one = m_scratch.PathOf("one");
    for (const std::string& other : {one, m_scratch.PathOf("ONE") + "/"}) {
        SCOPED_TRACE(other);
        Restart();
        ASSERT_EQ(ConfigurePackager(R"(,"SubmissionFilename":"p","PackagedFolder":)" + Quoted(one) +
                                    R"(,"PackageWorkFolder":)" + Quoted(other)),
                  "");
        RunUntilGone({MakeSubmission("a", Usual)});
        Lines names = NamesIn("one/a");
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, (Lines{"game.log.gz", "header.json", "key_Minidump.dmp.gz", "p"}));
    }
    EXPECT_EQ(m_log.Errors(), Lines{});
}

TEST_F(PackagerTest, AStopLeavesTheRestOnDisk) {
    ASSERT_EQ(ConfigurePackager("", "StoppingWatcher"), "");
    StoppingWatcher::s_folder = m_scratch.PathOf("app\\dumps\\");
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        MakeSubmission(name, Usual);
    }
    Start("P");
    m_application->GetProcess("P")->GetThread()->Join();
    EXPECT_EQ(NamesIn("app/dumps").size(), 5U);
    EXPECT_EQ(NamesIn("app/PackagedDumps"), Lines{});
}

TEST_F(PackagerTest, InitialisationFailuresHaveTheirTexts) {
    m_scratch.MakeFile("file", "in the way");
    const std::string folder = m_scratch.PathOf("file\\sub");
    const auto notMade = [&](const char* kind) {
        return std::string(R"( Packager "P" failed to create package )") + kind + "folder \"" + folder +
               "\\\" for items gathered by watcher \"Dumps\". Error=Ensuring folder existence failed! "
               "Failed to create folder";
    };
    const struct {
        std::string settings;
        Lines logged; // before the failure itself
        const char* error;
    } rows[] = {
        {R"("WatcherName":"Dumps","PackagedFolder":)" + Quoted(folder),
         {notMade("")},
         "Failed to create packaged dumps folder"},
        {R"("WatcherName":"Dumps","PackageWorkFolder":)" + Quoted(folder),
         {notMade("work ")},
         "Failed to create package work folder"},
        {R"("WatcherName":"Nobody")", {}, "No watcher process to provide submission for packager"},
        {R"("WatcherName":"Dumps","Source":"NOWHERE")", {}, "Unknown enum value found in data"},
    };
    Lines expected;
    for (const auto& row : rows) {
        Restart();
        Configure(R"("Watcher":["Dumps"],"Packager":["P"])",
                  R"("Dumps":{"Folder":"dumps"},"P":{)" + row.settings + "}");
        expected.insert(expected.end(), row.logged.begin(), row.logged.end());
        expected.push_back(std::string(" Failed to initialize process P, Error: ") + row.error);
    }
    EXPECT_EQ(m_log.Errors(), expected);
}

TEST_F(PackagerTest, ABadPatternIsReportedWithItsFault) {
    const std::string first = ConfigurePackager(R"(,"AttachmentBlacklist":["ok","(open"])");
    EXPECT_TRUE(first.starts_with(
        " Invalid regular expression \"(open\" in black list for Packager \"P\". Message=\""))
        << first;
    EXPECT_EQ(m_log.Errors().back(),
              " Failed to initialize process P, Error: Invalid regular expression in attachment black list");
}
