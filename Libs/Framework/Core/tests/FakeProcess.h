#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Shared/src/JsonConfig.h"

// What happened to the fakes, in order: "A initialize", "A destroyed" and so on.
class Diary {
public:
    static void Write(const std::string& who, const char* what) {
        const std::lock_guard lock(s_lock);
        s_entries.push_back(who + " " + what);
    }
    static std::vector<std::string> Take() {
        const std::lock_guard lock(s_lock);
        return std::exchange(s_entries, {});
    }

private:
    inline static std::mutex s_lock;
    inline static std::vector<std::string> s_entries;
};

// A process that writes down what happens to it. Where its section of the configuration holds "Fail" it fails
// the step named there: PreInitialize can't be named, no section is read by then.
class FakeProcess : public ApplicationProcessBase {
public:
    using ApplicationProcessBase::ApplicationProcessBase;
    ~FakeProcess() override { Diary::Write(GetName(), "destroyed"); }

    ResultCode PreInitialize() override {
        Diary::Write(GetName(), "pre-initialize");
        return GetName() == std::string("FailsEarly") ? ResultCode("Too early") : Platform::Success;
    }
    ResultCode Initialize(const JsonDocument& config, int, const char**) override {
        Diary::Write(GetName(), "initialize");
        const JsonValue* section = nullptr;
        if (FindConfigSection(config, GetName(), section)) {
            m_fail = (*section)["Fail"].GetString();
        }
        if (m_fail == "throw") {
            throw std::runtime_error("thrown");
        }
        return m_fail == "initialize" ? ResultCode("No section") : Platform::Success;
    }
    ResultCode PostInitialize() override {
        Diary::Write(GetName(), "post-initialize");
        return m_fail == "post-initialize" ? ResultCode("Too late") : Platform::Success;
    }
    ResultCode Start() override {
        return m_fail == "start" ? ResultCode("Won't start") : ApplicationProcessBase::Start();
    }
    ResultCode Shutdown() override {
        Diary::Write(GetName(), "shutdown");
        return m_fail == "shutdown" ? ResultCode("Won't shut down") : ApplicationProcessBase::Shutdown();
    }

    // Each ends by itself, but for the one named "Loops", which waits to be stopped.
    bool ThreadMain() override {
        while (GetName() == std::string("Loops") && !IsStopRequested()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        s_threadsEnded.fetch_add(1);
        return IsStopRequested();
    }

    inline static std::atomic<int> s_threadsEnded = 0;

private:
    std::string m_fail;
};

class FakeComponent : public IApplicationComponent {
public:
    ~FakeComponent() override { Diary::Write("Component", "destroyed"); }
    ResultCode Initialize(int, const char**) override {
        Diary::Write("Component", "initialize");
        return Platform::Success;
    }
    ResultCode Shutdown() override {
        Diary::Write("Component", "shutdown");
        return Platform::Success;
    }
};

class FailingComponent : public FakeComponent {
public:
    ResultCode Initialize(int, const char**) override { return "Component failed"; }
};
