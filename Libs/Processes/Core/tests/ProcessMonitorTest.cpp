#include "Libs/Processes/Core/src/ProcessMonitor.h"

#include <windows.h>

#include <chrono>
#include <thread>

#include "Libs/Processes/Core/tests/WatchedGame.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"
#include "tests/support/ProcessFixture.h"

namespace {

using Lines = std::vector<std::string>;
const std::string Closed = " All monitored processes have closed, starting shutdown delay timer...";
const std::string Reappeared = " A monitored processes has reappeared, resuming normal monitoring...";
const std::string Requesting = " ProcessMonitor requesting shutting down...";

// A program that really runs, under a name of its own, until it is told to quit.
class Game {
public:
    explicit Game(const std::string& path)
        : m_quit(CreateEventW(nullptr, TRUE, FALSE, WatchedGameQuitEvent)) {
        const auto program = TestSupport::ScratchFolder::FromUtf8(path);
        std::filesystem::copy_file(OwnFolder() / "WatchedGame.exe", program);
        STARTUPINFOW startup = {};
        startup.cb = sizeof(startup);
        EXPECT_TRUE(CreateProcessW(program.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &m_process));
    }
    ~Game() {
        SetEvent(m_quit);
        WaitForSingleObject(m_process.hProcess, 30000);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
        CloseHandle(m_quit);
    }

private:
    static std::filesystem::path OwnFolder() {
        wchar_t self[1024] = {};
        GetModuleFileNameW(nullptr, self, 1024);
        return std::filesystem::path(self).parent_path();
    }

    HANDLE m_quit;
    PROCESS_INFORMATION m_process = {};
};

class ProcessMonitorTest : public ProcessFixture {
protected:
    static void SetUpTestSuite() {
        FactoryInstance<IApplicationProcess>().RegisterMaker<ProcessMonitor>("ProcessMonitor");
    }

    // An application that runs a monitor alone, with this section for it.
    void Run(const std::string& section, const char* argument = "") {
        Configure(R"("ProcessMonitor":["Monitor"])", section, argument);
        m_main = std::thread([this] { EXPECT_TRUE(m_application->Run()); });
    }

    // What the monitor has said, once it has ended.
    Lines SaidUntilTheEnd() {
        m_main.join();
        return Said();
    }

    Lines Said() const {
        Lines said;
        for (const std::string& text : m_log.Infos()) {
            if (text.find(" Using") != 0) {
                said.push_back(text);
            }
        }
        return said;
    }

    std::thread m_main;
};

TEST_F(ProcessMonitorTest, WithNothingToWatchAsksForTheEndAfterTheDelay) {
    const auto start = std::chrono::steady_clock::now();
    Run(R"("Monitor": {"TimeBetweenChecks": 20, "ShutdownDelay": 100, "WatchedApplications": []})");
    EXPECT_EQ(SaidUntilTheEnd(), (Lines{Closed, Requesting}));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(115));
}

TEST_F(ProcessMonitorTest, GoesOnWhileAWatchedProgramRuns) {
    const Game game(m_scratch.PathOf("Watched Gäme.exe"));
    // The configured name never runs; the one from the command line does.
    Run(R"("Monitor": {"TimeBetweenChecks": 5, "ShutdownDelay": 5,
                         "WatchedApplications": ["NoSuchProgram.exe"]})",
        "-PROCESS=watched gäme.EXE");
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    m_application->RequestShutdown();
    EXPECT_EQ(SaidUntilTheEnd(), Lines{});
}

TEST_F(ProcessMonitorTest, AProgramThatComesBackEndsTheDelay) {
    Run(R"("Monitor": {"TimeBetweenChecks": 20, "ShutdownDelay": 1500,
                         "WatchedApplications": ["RestartedGame.exe"]})");
    EXPECT_TRUE(Await([&] { return Said() == Lines{Closed}; }));
    {
        const Game game(m_scratch.PathOf("RestartedGame.exe"));
        EXPECT_TRUE(Await([&] { return Said() == Lines{Closed, Reappeared}; }));
    }
    EXPECT_EQ(SaidUntilTheEnd(), (Lines{Closed, Reappeared, Closed, Requesting}));
}

TEST_F(ProcessMonitorTest, NeedsItsSection) {
    const struct {
        const char* section;
        const char* error;
    } rows[] = {
        {R"("Other": {})", "configuration section not found"},
        {R"("Monitor": [])", "configuration section found is not an object"},
        {R"("Monitor": {"TimeBetweenChecks": 20, "ShutdownDelay": 100})", "Field not found in json"},
    };
    for (const auto& row : rows) {
        m_application = std::make_shared<ApplicationBase>();
        Run(row.section);
        m_main.join();
        EXPECT_EQ(m_application->GetProcess("Monitor"), nullptr);
        EXPECT_EQ(m_log.Errors().back(),
                  std::string(" Failed to initialize process Monitor, Error: ") + row.error);
    }
}

TEST(ProcessMonitorConfig, OnlyTheListIsRequired) {
    JsonDocument document;
    ASSERT_TRUE(JsonSerialization::ParseText(R"({"WatchedApplications": ["Game.exe"]})", document));
    ProcessMonitorConfig config;
    ASSERT_STREQ(JsonSerialization::ReadRecord(document, config).Text(), "OK");
    EXPECT_EQ(config.timeBetweenChecks, 2500u);
    EXPECT_EQ(config.shutdownDelay, 30000u);
    EXPECT_EQ(config.watchedApplications, Lines{"Game.exe"});
}

} // namespace
