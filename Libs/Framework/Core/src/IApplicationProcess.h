#pragma once

#include <memory>

#include "Libs/Framework/Core/src/Thread.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_QueryObject.h"

// A named object with a thread of its own, made by its maker's name from the configuration. Owned by the
// application. The life of a process: constructed (thread suspended), pre-initialised, initialised and
// post-initialised on the main thread, started, asked to stop, ended, shut down, destroyed.
class IApplicationProcess : public Reflection::IQueryObject {
public:
    virtual const char* GetName() const = 0;

    // A failure of any of these three is logged by the application, which then goes on without the process.
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
