#include "Libs/Processes/Core/src/Watcher.h"

#include <utility>

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ThreadId.h"

Reflection_DefinePolymorphicType(Watcher);

void* Watcher::QueryObj(const Reflection::TypeDescriptor& type) {
    if (&type == &Reflection::TypeOf<IWatcher>()) {
        return static_cast<IWatcher*>(this);
    }
    if (&type == &Reflection::TypeOf<IFileStoreWatcher>()) {
        return static_cast<IFileStoreWatcher*>(this);
    }
    if (&type == &Reflection::TypeOf<ITaskSubscriber>()) {
        return static_cast<ITaskSubscriber*>(this);
    }
    return nullptr;
}

ResultCode Watcher::Initialize(const JsonDocument& config, int, const char**) {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    if (const ResultCode result = ReadConfigSection(config, GetName(), m_config); !result) {
        return result;
    }
    if (const ResultCode result = ResolveFolder(); !result) {
        return result;
    }
    if (!m_config.metricsCollectorName.empty()) {
        if (const ResultCode result = MakeMetrics(); !result) {
            return result;
        }
    }
    PLATFORM_LOG(Platform::InfoLog,
                 " Watcher \"%s\" is watching folder \"%s\" for submissions with a file name of \"%s\"",
                 GetName(), m_config.folder.c_str(), m_config.sentinelFile.c_str());
    return Platform::Success;
}

ResultCode Watcher::ResolveFolder() {
    std::string folder = m_config.folder;
    if (FolderPath::IsRelative(folder)) {
        const ApplicationBase* application = GetApplication();
        folder = FolderPath::Join(application ? application->GetApplicationFolder() : std::string(), folder);
    }
    if (const ResultCode result = PlatformHelpers::EnsureTrailingFolderSeparator(folder); !result) {
        return result;
    }
    if (!PlatformHelpers::EnsureFolderExists(folder).Succeeded()) {
        return "Failed to create watcher folder";
    }
    m_config.folder = std::move(folder);
    return m_listed.Set(PlatformHelpers::PathOnDisk(m_config.folder));
}

ResultCode Watcher::MakeMetrics() {
    PLATFORM_LOG(Platform::InfoLog, " watcher \"%s\" is collecting metrics from \"%s\"", GetName(),
                 m_config.metricsCollectorName.c_str());
    const ApplicationBase* application = GetApplication();
    const auto process = application ? application->GetProcess(m_config.metricsCollectorName) : nullptr;
    if (!process) {
        return "No metrics process to provide metrics collection for watcher";
    }
    auto* aggregator = Reflection::Query<IMetricsAggregator>(*process);
    if (!aggregator) {
        return "Metrics process could not provide required MetricsAggregator interface";
    }
    m_metrics.Make(*aggregator, GetName());
    return Platform::Success;
}

bool Watcher::ThreadMain() {
    return RunRounds(m_config.timeBetweenChecks, [this] {
        if (const ResultCode result = ScanOnce(); !result) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to scan dumps folder \"%s\", error: \"%s\"",
                         m_config.folder.c_str(), result.Text());
        }
        if (m_config.shutdownAfterCheck && Pause(m_config.timeBetweenChecks)) {
            RequestApplicationShutdown();
        }
    });
}

ResultCode Watcher::ScanOnce() {
    std::vector<std::string> names;
    if (m_listed.MustList(PlatformHelpers::PreciseSystemTime)) {
        if (const ResultCode result = FindNew(names); !result) {
            return result;
        }
    }
    m_metrics.SetKnown(m_known.Size());
    AddToPending(names);
    return Platform::Success;
}

ResultCode Watcher::FindNew(std::vector<std::string>& names) {
    FolderScan scan(m_config, m_known);
    if (const ResultCode result = scan.Run(); !result) {
        return result;
    }
    names = scan.GetNewNames();
    for (const std::string& name : names) {
        m_known.Add(name);
    }
    if (!scan.HasLeftOvers()) {
        m_listed.SetListed();
    }
    return Platform::Success;
}

void Watcher::AddToPending(const std::vector<std::string>& names) {
    std::vector<TaskData> added;
    added.reserve(names.size());
    for (const std::string& name : names) {
        added.emplace_back((m_config.folder + name).c_str());
    }
    m_metrics.SetPendingNew(names.size());
    std::size_t pending = 0;
    {
        const std::lock_guard lock(m_pendingLock);
        m_pending.insert(m_pending.end(), added.begin(), added.end());
        pending = m_pending.size();
    }
    m_metrics.SetPendingExisting(pending);
    for (const TaskData& task : added) {
        PLATFORM_LOG(Platform::InfoLog, " Added %s to pending folder list", task.GetInstanceHash().c_str());
    }
}

ResultCode Watcher::TakeTasks(std::vector<TaskData>& tasks) {
    const std::lock_guard lock(m_pendingLock);
    m_pending.swap(tasks);
    return Platform::Success;
}

void Watcher::GetFolder(std::string& folder) const {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    folder = m_config.folder;
}

void Watcher::GetSentinelFileName(std::string& fileName) const {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    fileName = m_config.sentinelFile;
}

const Reflection::TypeDescriptor& Watcher::GetObjectType() const {
    return Reflection::TypeOf<Watcher>();
}
