#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Libs/Framework/Core/src/Thread.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_QueryObject.h"

class ApplicationBase;

// A named object with a thread of its own, made by its maker's name from the configuration. Owned by the
// application. The life of a process: constructed (thread suspended), pre-initialised, initialised and
// post-initialised on the main thread, started, asked to stop, ended, shut down, destroyed.
class IApplicationProcess : public Reflection::IQueryObject {
public:
    virtual const char* GetName() const = 0;

    // A failure of any of these three is logged by the application, which continues without the process.
    virtual ResultCode PreInitialize() = 0;
    virtual ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) = 0;
    virtual ResultCode PostInitialize() = 0;

    // The body of the thread; returns the stop flag when the process has come to its end.
    virtual bool ThreadMain() = 0;

    // Sets the stop flag. Any thread, also before Start.
    virtual void RequestShutdown() = 0;

    // Never called by the framework.
    virtual ResultCode SpareHook() = 0;

    virtual ResultCode Start() = 0;

    // Called after the thread has ended; suspends a thread that has not.
    virtual ResultCode Shutdown() = 0;

    virtual std::shared_ptr<Thread>& GetThread() = 0;
};

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

    // Of the owner; empty and null without one.
    std::string GetApplicationFolder() const;
    std::shared_ptr<IApplicationProcess> FindProcess(const std::string& name) const;

    bool IsStopRequested() const { return m_stop.load(std::memory_order_acquire); }

    // Waits for that time; 4294967295 waits for ever. A stop ends the wait at once. False after a stop.
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
    Platform::KernelHandle m_stopped; // an event, set after m_stop: it ends pauses
    std::string m_name;
};
