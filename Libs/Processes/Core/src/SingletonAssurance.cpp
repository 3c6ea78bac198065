#include "Libs/Processes/Core/src/SingletonAssurance.h"

#include <windows.h>

#include <cstdint>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(SingletonAssurance);

namespace {

using SingletonDecision::State;

constexpr uint32_t TimeBetweenLooks = 250; // milliseconds

// Global: the copies of one user may run in several sessions.
std::wstring EventName(uint32_t processId) {
    return L"Global\\MorvaneCrashReporter." + std::to_wstring(processId);
}

State StateOf(uint32_t processId) {
    const Platform::KernelHandle event(OpenEventW(SYNCHRONIZE, FALSE, EventName(processId).c_str()));
    if (!event) {
        return GetLastError() == ERROR_ACCESS_DENIED ? State::Staying : State::Deciding;
    }
    return WaitForSingleObject(event.Get(), 0) == WAIT_OBJECT_0 ? State::Staying : State::Ending;
}

} // namespace

// Leaves the event open until the process has ended, which may still wait for a reader of its outputs.
// Without the event another copy would think that this one has just started, and would end.
SingletonAssurance::~SingletonAssurance() {
    static_cast<void>(m_stays.Release());
}

ResultCode SingletonAssurance::Initialize(const JsonDocument&, int argc, const char** argv) {
    auto name = SingletonDecision::ExecutableName(argc > 0 && argv[0] ? argv[0] : "");
    if (!name) {
        return "Invalid executable name passed through argv[0]!";
    }
    m_executableName = std::move(*name);
    return Platform::Success;
}

ResultCode SingletonAssurance::PostInitialize() {
    const bool stays = MayStay();
    m_stays =
        Platform::KernelHandle(CreateEventW(nullptr, TRUE, stays, EventName(GetCurrentProcessId()).c_str()));
    if (!stays) {
        PLATFORM_LOG(Platform::InfoLog, " Process already running requesting shutdown...");
        RequestApplicationShutdown();
    }
    return Platform::Success;
}

bool SingletonAssurance::MayStay() const {
    using SingletonDecision::Verdict;
    do {
        std::vector<SingletonDecision::Copy> copies;
        if (const ResultCode result = FindCopies(copies); !result) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to get process IDs for SigletonAssurance. Error=%s",
                         result.Text());
            return true;
        }
        const Verdict verdict = SingletonDecision::Decide(copies, GetCurrentProcessId());
        if (verdict != Verdict::Wait) {
            return verdict == Verdict::Stay;
        }
    } while (Pause(TimeBetweenLooks));
    return true; // asked to stop, but not because of another copy
}

void SingletonAssurance::RequestShutdown() {
    Reflected::RequestShutdown();
    ResetEvent(m_stays.Get());
}

// The same right is needed for the name and for the time: a process that has no time has ended meanwhile.
ResultCode SingletonAssurance::FindCopies(std::vector<SingletonDecision::Copy>& copies) const {
    std::vector<uint32_t> processIds;
    RETURN_IF_FAILED(PlatformHelpers::FindProcessesByName(m_executableName, processIds));
    for (const uint32_t id : processIds) {
        uint64_t creationTime = 0;
        if (PlatformHelpers::GetProcessCreationTime(id, creationTime)) {
            copies.push_back({id, creationTime, StateOf(id)});
        }
    }
    return Platform::Success;
}
