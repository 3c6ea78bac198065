#include "Libs/Processes/Core/src/ProcessMonitor.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/WatchedApplications.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

Reflection_DefinePolymorphicType(ProcessMonitor);

ResultCode ProcessMonitor::Initialize(const JsonDocument& config, int argc, const char** argv) {
    m_config.watchedApplications.clear();
    if (const ResultCode result = ReadConfigSection(config, GetName(), m_config); !result) {
        return result;
    }
    m_config.watchedApplications =
        CollectWatchedApplications(std::move(m_config.watchedApplications), argc, argv);
    return Platform::Success;
}

// An enumeration that fails counts as nothing running.
bool ProcessMonitor::IsAnyRunning() const {
    const std::vector<std::string>& watched = m_config.watchedApplications;
    std::vector<uint32_t> processIds;
    if (watched.empty() || !PlatformHelpers::EnumerateProcesses(processIds)) {
        return false;
    }
    std::string image;
    return std::any_of(processIds.begin(), processIds.end(), [&](uint32_t id) {
        return id != 0 && PlatformHelpers::GetProcessImageName(id, image) &&
               std::any_of(watched.begin(), watched.end(), [&](const std::string& name) {
                   return PlatformHelpers::ImageNameMatches(image, name);
               });
    });
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
