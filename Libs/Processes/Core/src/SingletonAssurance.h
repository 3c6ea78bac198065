#pragma once

#include <string>
#include <vector>

#include "Libs/Framework/Core/src/ReflectedProcess.h"
#include "Libs/Processes/Core/src/SingletonDecision.h"

// Ends the program when an older copy of it runs: another process whose image ends in the executable's name.
// Looks once, shortly after the start, and is finished then; a copy that starts later finds this one. Owned
// by the application.
class SingletonAssurance : public Reflected<SingletonAssurance> {
public:
    using Reflected::Reflected;

    // Has no section: all it needs is argv[0].
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

private:
    ResultCode FindCopies(std::vector<SingletonDecision::Copy>& copies) const;

    std::string m_executableName; // constant after Initialize
};
Reflection_DeclarePolymorphicType(SingletonAssurance);
