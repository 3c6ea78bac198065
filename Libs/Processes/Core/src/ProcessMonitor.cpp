#include "Libs/Processes/Core/src/ProcessMonitor.h"

#include <windows.h>

#include <algorithm>
#include <utility>

#include "Libs/Framework/Core/src/ApplicationBase.h"
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
    while (!IsStopRequested()) {
        Sleep(m_config.timeBetweenChecks);
        if (!IsAnyRunning()) {
            WaitOutDelay();
        }
    }
    return IsStopRequested();
}

void ProcessMonitor::WaitOutDelay() {
    PLATFORM_LOG(Platform::InfoLog, " All monitored processes have closed, starting shutdown delay timer...");
    Sleep(m_config.shutdownDelay);
    if (IsAnyRunning()) {
        PLATFORM_LOG(Platform::InfoLog,
                     " A monitored processes has reappeared, resuming normal monitoring...");
        return;
    }
    PLATFORM_LOG(Platform::InfoLog, " ProcessMonitor requesting shutting down...");
    if (ApplicationBase* application = GetApplication()) {
        application->RequestShutdown();
    }
}
