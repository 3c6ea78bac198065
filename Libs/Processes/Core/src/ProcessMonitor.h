#pragma once

#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"

// Ends the program when none of the watched programs has been seen for the whole shutdown delay, counted from
// the first check that saw none. Owned by the application.
class ProcessMonitor : public Reflected<ProcessMonitor> {
public:
    using Reflected::Reflected;

    // Each -process=NAME argument adds a name to the configured ones.
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

private:
    void Check() const;

    // False if a watched program appeared or a stop came meanwhile.
    bool WaitOutDelay() const;
    bool IsAnyRunning() const;

    ProcessMonitorConfig m_config; // constant after Initialize
};
Reflection_DeclarePolymorphicType(ProcessMonitor);
