#include "Libs/Processes/Core/src/ProcessMonitor.h"

#include <algorithm>
#include <chrono>

#include "Libs/Framework/Core/src/CommandLine.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(ProcessMonitor);

ResultCode ProcessMonitor::Initialize(const JsonDocument& config, int argc, const char** argv) {
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config));
    std::vector<std::string>& names = m_config.watchedApplications;
    for (int i = 0; i < argc; ++i) {
        const char* const name = CommandLine::ValueOfArgument(argv[i], "-process");
        if (name && std::ranges::find(names, name) == names.end()) {
            names.emplace_back(name);
        }
    }
    return Platform::Success;
}

bool ProcessMonitor::ThreadMain() {
    return RunRounds(m_config.timeBetweenChecks, [this] { Check(); });
}

void ProcessMonitor::Check() const {
    if (IsAnyRunning() || IsStopRequested()) {
        return;
    }
    PLATFORM_LOG(Platform::InfoLog, " All monitored processes have closed, starting shutdown delay timer...");
    if (WaitOutDelay()) {
        PLATFORM_LOG(Platform::InfoLog, " ProcessMonitor requesting shutting down...");
        RequestApplicationShutdown();
    }
}

bool ProcessMonitor::WaitOutDelay() const {
    using namespace std::chrono;
    const auto end = steady_clock::now() + milliseconds(m_config.shutdownDelay);
    do {
        const auto left = ceil<milliseconds>(end - steady_clock::now()).count();
        const auto pause = std::clamp<int64_t>(left, 0, m_config.timeBetweenChecks);
        if (!Pause(static_cast<uint32_t>(pause))) {
            return false;
        }
        if (IsAnyRunning()) {
            PLATFORM_LOG(Platform::InfoLog,
                         " A monitored processes has reappeared, resuming normal monitoring...");
            return false;
        }
    } while (steady_clock::now() < end);
    return true;
}

// An enumeration that fails counts as nothing running.
bool ProcessMonitor::IsAnyRunning() const {
    const std::vector<std::string>& watched = m_config.watchedApplications;
    std::vector<uint32_t> processIds;
    if (watched.empty() || !PlatformHelpers::EnumerateProcesses(processIds)) {
        return false;
    }
    std::string image;
    return std::ranges::any_of(processIds, [&](uint32_t id) {
        return id != 0 && PlatformHelpers::GetProcessImageName(id, image) &&
               std::ranges::any_of(watched, [&](const std::string& name) {
                   return PlatformHelpers::ImageNameMatches(image, name);
               });
    });
}
