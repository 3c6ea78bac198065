#pragma once

#include <string>
#include <vector>

#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Processes/Core/src/SingletonDecision.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"

// Ends the program when another copy of it runs: another process whose image ends in the executable's name.
// Decides once, before any process has started: a copy that goes has done nothing. A copy that starts later
// finds this one. Owned by the application.
class SingletonAssurance : public Reflected<SingletonAssurance> {
public:
    using Reflected::Reflected;

    // Has no section: all it needs is argv[0].
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;

    // Waits up to a minute for a copy that is already ending, which may still be sending, and then stays.
    ResultCode PostInitialize() override;
    bool ThreadMain() override { return IsStopRequested(); }
    void RequestShutdown() override;

private:
    bool MayStay() const;
    ResultCode FindCopies(std::vector<SingletonDecision::Copy>& copies) const;

    std::string m_executableName; // constant after Initialize

    // An event that other copies find by this process's id. It is set while this copy stays.
    Platform::KernelHandle m_stays;
};
Reflection_DeclarePolymorphicType(SingletonAssurance);
