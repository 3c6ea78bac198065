#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Libs/Framework/Core/src/IApplicationProcess.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

class ApplicationBase;

// What all processes share: the way back to the application, the thread, the stop flag and the name. A
// process adds Initialize (main thread) and ThreadMain (its own thread), which is made of RunRounds.
class ApplicationProcessBase : public IApplicationProcess {
public:
    ApplicationProcessBase(ApplicationBase* application, const char* name);
    ~ApplicationProcessBase() override;

    void* QueryObj(const Reflection::TypeDescriptor& type) override;
    const char* GetName() const override { return m_name.c_str(); }
    ResultCode PreInitialize() override { return Platform::Success; }
    ResultCode PostInitialize() override { return Platform::Success; }
    void RequestShutdown() override;
    ResultCode SpareHook() override { return Platform::Success; }
    ResultCode Start() override;
    ResultCode Shutdown() override;
    std::shared_ptr<Thread>& GetThread() override { return m_thread; }

protected:
    // The owner, which outlives every process. Null only in tests of a process on its own.
    ApplicationBase* GetApplication() const {
        PLATFORM_ASSERT(m_application);
        return m_application;
    }

    bool IsStopRequested() const { return m_stop.load(std::memory_order_acquire); }

    // Waits for that time; 4294967295 is without end. A stop ends the wait at once. False after a stop.
    bool Pause(uint32_t milliseconds) const;

    // Pauses and does a round, over and over, until the stop; none begins after it. A round that throws, out
    // of memory for example, is logged and the next one comes as usual. Returns the stop flag.
    bool RunRounds(uint32_t pauseMilliseconds, const std::function<void()>& round) const;

    // Asks the application to end the program.
    void RequestApplicationShutdown() const;

private:
    ApplicationBase* m_application;
    std::shared_ptr<Thread> m_thread;
    std::shared_ptr<Platform::Receipt> m_backgroundMode;
    std::atomic<bool> m_stop = false;
    std::shared_ptr<void> m_stopped; // an event, set after m_stop: it ends pauses
    std::string m_name;
};
