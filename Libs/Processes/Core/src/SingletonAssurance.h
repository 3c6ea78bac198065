#pragma once

#include <string>
#include <vector>

#include "Libs/Framework/Core/src/Reflected.h"
#include "Libs/Processes/Core/src/SingletonDecision.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"

// Ends the program when another copy of it runs: another process whose image ends in the executable's name.
// Decides once, before any process has started: a copy that ends here has done nothing yet. A copy that
// starts later finds this one. Owned by the application.
class SingletonAssurance : public Reflected<SingletonAssurance> {
public:
    using Reflected::Reflected;
    ~SingletonAssurance() override;

    // Has no section: all it needs is argv[0].
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;

    // Waits while another copy is ending: that may still package or ask, and this one would package the same
    // submission, or ask again.
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
