#pragma once

#include "Libs/Framework/Core/src/ReflectedProcess.h"
#include "Libs/Processes/Core/src/ProcessMonitorConfig.h"

// Ends the program once none of the watched programs has been running for the whole shutdown delay. With
// nothing to watch that is the first check. A shutdown that others ask for during the delay waits for its
// end. Owned by the application.
class ProcessMonitor : public Reflected<ProcessMonitor> {
public:
    using Reflected::Reflected;

    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

private:
    bool IsAnyRunning() const;
    void WaitOutDelay();

    ProcessMonitorConfig m_config; // constant after Initialize
};
Reflection_DeclarePolymorphicType(ProcessMonitor);
