#include "Libs/Framework/Application/src/WindowsApplication.h"

#include <thread>

#include <gtest/gtest.h>

#include "tests/support/AssertCapture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

namespace {

const char* g_arguments[] = {"agent.exe", "-console=1"}; // no console: the flag has no value

std::shared_ptr<WindowsApplication> MakeApplication() {
    return std::make_shared<WindowsApplication>(2, g_arguments);
}

// With the pump as its only process.
ResultCode InitializeAlone(WindowsApplication& application, const TestSupport::ScratchFolder& scratch) {
    RegisterApplicationDisplayName("WindowsApplicationTest");
    const std::string config = "-config=" + scratch.MakeFile("agent.json", R"({"Application": {
        "Processes": {}, "Components": [], "ApplicationFolder": ""}})");
    const std::string folder = "-appFolder=" + scratch.Path();
    const char* argv[] = {"agent.exe", config.c_str(), folder.c_str()};
    return application.Initialize(3, argv);
}

TEST(WindowsApplication, PassesWholeLinesOnWhileItLives) {
    const TestSupport::LogCapture log;
    {
        const auto application = MakeApplication();
        Platform::LogWrite(Platform::InfoLog, (std::string(22, 't') + " one\ntwo").c_str(), 30);
        PLATFORM_LOG(Platform::ErrorLog, " three");
    }
    PLATFORM_LOG(Platform::InfoLog, " four");
    EXPECT_EQ(log.Infos(), (std::vector<std::string>{" one\r\ntwo\r\n", " four"}));
    EXPECT_EQ(log.Errors(), std::vector<std::string>{" three\r\n"});
}

TEST(WindowsApplication, EntriesOfManyThreadsStayWhole) {
    const TestSupport::LogCapture log;
    const auto application = MakeApplication();
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int j = 0; j < 100; ++j) {
                PLATFORM_LOG(Platform::InfoLog, " %s", std::string(500, 'x').c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(log.Infos(), std::vector<std::string>(400, " " + std::string(500, 'x') + "\r\n"));
}

TEST(WindowsApplication, ThereIsOneAtATime) {
    const TestSupport::LogCapture log;
    const AssertCapture assertions;
    {
        const auto first = MakeApplication();
        MakeApplication();
        PLATFORM_LOG(Platform::InfoLog, " still here");
    }
    MakeApplication();
    EXPECT_EQ(assertions.Texts(), std::vector<std::string>{"s_this == nullptr|"});
    EXPECT_TRUE(log.Contains(Platform::InfoLog, " still here\r\n"));
}

TEST(WindowsApplication, RunsItsPumpAloneUntilToldToStop) {
    const TestSupport::LogCapture log;
    const TestSupport::ScratchFolder scratch;
    const auto application = MakeApplication();
    ASSERT_TRUE(InitializeAlone(*application, scratch));
    const auto pump = application->GetProcess("MessagePump");
    ASSERT_TRUE(pump);
    EXPECT_EQ(Reflection::Query<WindowsApplicationPump>(*pump), pump.get());

    std::thread stopper([&] { application->RequestShutdown(); });
    EXPECT_TRUE(application->Run());
    stopper.join();
    EXPECT_EQ(pump->GetThread()->GetStatus(), Thread::Status::EndedNormally);
    EXPECT_TRUE(application->Shutdown());
    EXPECT_EQ(log.Errors(), std::vector<std::string>());
}

TEST(WindowsApplication, PermissionIsRefusedWithoutAPump) {
    const TestSupport::LogCapture log;
    const AssertCapture assertions;
    UploadPermission answer = UploadPermission::Allowed;
    EXPECT_STREQ(MakeApplication()->AskUploadPermission(answer).Text(),
                 "No message pump to show the permission dialog");
    EXPECT_EQ(answer, UploadPermission::Refused);
    EXPECT_EQ(assertions.Texts(), (std::vector<std::string>{"m_messagePumpProc|", "pWndProc|"}));
}

TEST(WindowsApplication, PermissionIsRefusedWhenTheDialogFails) {
    const TestSupport::LogCapture log;
    const TestSupport::ScratchFolder scratch;
    const auto application = MakeApplication();
    ASSERT_TRUE(InitializeAlone(*application, scratch));
    UploadPermission answer = UploadPermission::Allowed;
    const ResultCode result = application->AskUploadPermission(answer); // this test program has no dialog
    EXPECT_STREQ(result.Text(), "Failed to show the permission dialog");
    EXPECT_EQ(answer, UploadPermission::Refused);
}

} // namespace
