#include "Libs/Processes/Core/src/SingletonAssurance.h"

#include <windows.h>

#include <cstdint>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(SingletonAssurance);

ResultCode SingletonAssurance::Initialize(const JsonDocument&, int argc, const char** argv) {
    auto name = SingletonDecision::ExecutableName(argc > 0 && argv[0] ? argv[0] : "");
    if (!name) {
        return "Invalid executable name passed through argv[0]!";
    }
    m_executableName = std::move(*name);
    return Platform::Success;
}

bool SingletonAssurance::ThreadMain() {
    std::vector<SingletonDecision::Copy> copies;
    if (const ResultCode result = ExceptionToResult([&] { return FindCopies(copies); }); !result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to get process IDs for SigletonAssurance. Error=%s",
                     result.Text());
        return IsStopRequested();
    }
    if (SingletonDecision::MustStop(copies, GetCurrentProcessId())) {
        PLATFORM_LOG(Platform::InfoLog, " Process already running requesting shutdown...");
        if (ApplicationBase* application = GetApplication()) {
            application->RequestShutdown();
        }
    }
    return IsStopRequested();
}

// The right to ask for the name is the right to ask for the time: a process without a time has ended since.
ResultCode SingletonAssurance::FindCopies(std::vector<SingletonDecision::Copy>& copies) const {
    std::vector<uint32_t> processIds;
    if (const ResultCode result = PlatformHelpers::FindProcessesByName(m_executableName, processIds);
        !result) {
        return result;
    }
    for (const uint32_t id : processIds) {
        uint64_t creationTime = 0;
        if (PlatformHelpers::GetProcessCreationTime(id, creationTime)) {
            copies.push_back({id, creationTime});
        }
    }
    return Platform::Success;
}
