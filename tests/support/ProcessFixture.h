#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScratchFolder.h"

// A real application with real folders, whose processes a test configures, starts and looks at. Its end stops
// them.
class ProcessFixture : public testing::Test {
protected:
    // Writes the configuration: the members of "Processes" and further sections.
    void WriteConfiguration(const std::string& processes, const std::string& sections = R"("None":{})") {
        m_scratch.MakeFile("agent.json", R"({"Application":{"Processes":{)" + processes +
                                             R"(},"Components":[],"ApplicationFolder":""},)" + sections +
                                             "}");
    }

    // Calls what takes the arguments of a command line.
    auto WithArguments(const auto& call) const {
        const std::string config = "-config=" + m_scratch.PathOf("agent.json");
        const std::string folder = "-appFolder=" + m_scratch.PathOf("app");
        const char* argv[] = {"agent.exe", config.c_str(), folder.c_str()};
        return call(3, argv);
    }

    ResultCode Initialize() {
        return WithArguments([this](int c, const char** v) { return m_application->Initialize(c, v); });
    }

    // Both; returns the first error that was logged, or nothing.
    std::string Configure(const std::string& processes, const std::string& sections) {
        WriteConfiguration(processes, sections);
        EXPECT_TRUE(Initialize());
        const auto errors = m_log.Errors();
        return errors.empty() ? "" : errors.front();
    }

    void Start(const char* process) {
        const auto found = m_application->GetProcess(process);
        ASSERT_NE(found, nullptr);
        ASSERT_STREQ(found->Start().Text(), "OK");
    }

    // Polls for at most ten seconds.
    [[nodiscard]] static bool Await(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end) {
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return true;
    }

    void MakeReadOnly(const std::string& name) const {
        ASSERT_TRUE(PlatformHelpers::MakeFileReadOnly(m_scratch.PathOf(name)));
    }

    // Makes a folder whose sentinel is read-only; returns its path.
    std::string MakeComplete(const std::string& name, const std::string& header = "{}",
                             const std::string& sentinel = "header.json") const {
        m_scratch.MakeFile(name + "/" + sentinel, header);
        MakeReadOnly(name + "/" + sentinel);
        return m_scratch.PathOf(name);
    }

    TestSupport::ScratchFolder m_scratch{"scratch 太郎"};
    TestSupport::LogCapture m_log;
    std::shared_ptr<ApplicationBase> m_application = std::make_shared<ApplicationBase>();
};
