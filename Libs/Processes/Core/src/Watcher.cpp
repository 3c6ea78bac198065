#include "Libs/Processes/Core/src/Watcher.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Shared/src/JsonConfig.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"
#include "Libs/Tarnel/String/src/String_Ascii.h"

Reflection_DefinePolymorphicType(IFileStoreWatcher);
Reflection_DefinePolymorphicType(ITaskSubscriber);
Reflection_DefinePolymorphicType(IWatcher);
Reflection_DefinePolymorphicType(IMetricsAggregator);
Reflection_DefinePolymorphicType(Watcher);

TaskData::TaskData(const char* hash) {
    PLATFORM_ASSERT(hash);
    if (hash) {
        m_instanceHash = hash;
    }
    PLATFORM_ASSERT(!m_instanceHash.empty());
}

namespace {

// Lower-case letters, digits and "_" for every other byte.
std::string MetricLabel(std::string_view name) {
    std::string label = String::LowerAscii(name);
    std::ranges::replace_if(
        label, [](char c) { return !String::IsAlphanumeric(c); }, '_');
    return label;
}

std::shared_ptr<IMetric> MakePendingMetric(IMetricsAggregator& aggregator, const char* status,
                                           const std::string& watcher) {
    auto metric =
        aggregator.MakeMetric("kestrix_pending_folders", "Number of folders waiting to be processed");
    metric->SetLabel("status", status);
    metric->SetLabel("watcher", watcher.c_str());
    return metric;
}

void SetMetric(const std::shared_ptr<IMetric>& metric, std::size_t count) {
    if (metric) {
        metric->SetValue(static_cast<double>(count));
    }
}

} // namespace

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
    RETURN_IF_FAILED(ReadConfigSection(config, GetName(), m_config));
    RETURN_IF_FAILED(ResolveFolder());
    if (!m_config.metricsCollectorName.empty()) {
        RETURN_IF_FAILED(MakeMetrics());
    }
    PLATFORM_LOG(Platform::InfoLog,
                 " Watcher \"%s\" is watching folder \"%s\" for submissions with a file name of \"%s\"",
                 GetName(), m_config.folder.c_str(), m_config.sentinelFile.c_str());
    return Platform::Success;
}

ResultCode Watcher::ResolveFolder() {
    std::string folder = m_config.folder;
    if (FolderPath::IsRelative(folder)) {
        folder = FolderPath::Join(GetApplicationFolder(), folder);
    }
    RETURN_IF_FAILED(PlatformHelpers::EnsureTrailingFolderSeparator(folder));
    if (!PlatformHelpers::EnsureFolderExists(folder).Succeeded()) {
        return "Failed to create watcher folder";
    }
    m_config.folder = std::move(folder);
    return Platform::Success;
}

ResultCode Watcher::MakeMetrics() {
    PLATFORM_LOG(Platform::InfoLog, " watcher \"%s\" is collecting metrics from \"%s\"", GetName(),
                 m_config.metricsCollectorName.c_str());
    const auto process = FindProcess(m_config.metricsCollectorName);
    if (!process) {
        return StartFailure::NoCollector;
    }
    auto* aggregator = Reflection::Query<IMetricsAggregator>(*process);
    if (!aggregator) {
        return StartFailure::NoCollectorInterface;
    }
    const std::string label = MetricLabel(GetName());
    m_pendingExisting = MakePendingMetric(*aggregator, "existing", label);
    m_pendingNew = MakePendingMetric(*aggregator, "new", label);
    m_knownCount = aggregator->MakeMetric(
        "kestrix_known_folders",
        "Number of known folders that will be ignored because they have already been processed");
    m_knownCount->SetLabel("watcher", label.c_str());
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
    FolderScan scan(m_config, m_known);
    if (m_changes.NeedPass(m_config.folder)) {
        RETURN_IF_FAILED(scan.Run());
        m_changes.EndPass(scan.IsAllKnown());
    }
    Accept(scan.GetNewNames()); // the metrics follow the consumer, too
    return Platform::Success;
}

// Makes the folders pending and known: all of them, or, if memory runs out, none, so that the next scan finds
// them again. Therefore everything that allocates comes before the first change.
void Watcher::Accept(const std::vector<std::string>& names) {
    std::vector<TaskData> added;
    added.reserve(names.size());
    for (const std::string& name : names) {
        added.emplace_back((m_config.folder + name).c_str());
    }
    KnownFolders newlyKnown(names.begin(), names.end());
    m_known.reserve(m_known.size() + newlyKnown.size());
    std::size_t pending = 0;
    {
        const std::lock_guard lock(m_pendingLock);
        m_pending.insert(m_pending.end(), std::make_move_iterator(added.begin()),
                         std::make_move_iterator(added.end()));
        pending = m_pending.size();
    }
    m_known.merge(newlyKnown);
    SetMetric(m_knownCount, m_known.size());
    SetMetric(m_pendingNew, names.size());
    SetMetric(m_pendingExisting, pending);
    for (const std::string& name : names) {
        PLATFORM_LOG(Platform::InfoLog, " Added %s%s to pending folder list", m_config.folder.c_str(),
                     name.c_str());
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
