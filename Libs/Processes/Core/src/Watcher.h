#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Processes/Core/src/FolderScan.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

// Scans one folder for complete submission folders and hands each to its consumer once. A folder is found on
// the watcher's own thread, is known for the rest of the run, and is pending until a consumer takes it (any
// thread). The consumer removes it: a watcher never changes what is on disk.
class Watcher : public ApplicationProcessBase, public IWatcher {
public:
    using ApplicationProcessBase::ApplicationProcessBase;

    // The three views of a watcher, and nothing else.
    void* QueryObj(const Reflection::TypeDescriptor& type) override;
    ResultCode Initialize(const JsonDocument& config, int argc, const char** argv) override;
    bool ThreadMain() override;

    void GetFolder(std::string& folder) const override;
    void GetSentinelFileName(std::string& fileName) const override;
    const Reflection::TypeDescriptor& GetObjectType() const override;
    ResultCode Flush() override { return Platform::Success; }

    void* QuerySubscriber(const Reflection::TypeDescriptor& type) override { return QueryObj(type); }
    const char* GetSubscriberName() const override { return ""; }
    ResultCode TakeTasks(std::vector<TaskData>& tasks) override;
    const Reflection::TypeDescriptor& GetSubscriberType() const override { return GetObjectType(); }
    ResultCode FlushSubscriber() override { return Flush(); }

private:
    ResultCode ResolveFolder();
    ResultCode MakeMetrics();
    ResultCode ScanOnce();
    void Accept(const std::vector<std::string>& names);

    // Constant after Initialize. The metrics are null without a collector.
    WatcherConfig m_config;
    std::shared_ptr<IMetric> m_pendingExisting;
    std::shared_ptr<IMetric> m_pendingNew;
    std::shared_ptr<IMetric> m_knownCount;

    // The watcher's thread alone, once it runs.
    KnownFolders m_known;
    Platform::FolderChanges m_changes;

    std::mutex m_pendingLock;
    std::vector<TaskData> m_pending; // guarded by m_pendingLock
};
Reflection_DeclarePolymorphicType(Watcher);
