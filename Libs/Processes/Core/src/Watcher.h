#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "Libs/Framework/Core/src/ApplicationProcessBase.h"
#include "Libs/Processes/Core/src/FolderScan.h"
#include "Libs/Processes/Core/src/IWatcher.h"
#include "Libs/Processes/Core/src/ListedFolder.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Processes/Core/src/WatcherMetrics.h"

// Scans one folder for complete submission folders and hands each to its consumer once. The way of a folder:
// found by a scan on the watcher's own thread, known from then on for the rest of the run, pending until a
// consumer takes it (any thread), and from there the consumer's to remove: a watcher never changes what is on
// disk.
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
    ResultCode FindNew(std::vector<std::string>& names);
    void AddToPending(const std::vector<std::string>& names);

    // Constant after Initialize.
    WatcherConfig m_config;
    WatcherMetrics m_metrics;

    // The watcher's thread alone, once it runs.
    KnownFolders m_known;
    ListedFolder m_listed; // counts as listed when all in it is known

    std::mutex m_pendingLock;
    std::vector<TaskData> m_pending; // guarded by m_pendingLock
};
Reflection_DeclarePolymorphicType(Watcher);
