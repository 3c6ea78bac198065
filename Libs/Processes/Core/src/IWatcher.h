#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// What a watcher shares with other processes: its two views, the folders it hands over, and the metrics it
// sets.

// One complete submission folder, as a watcher hands it to its consumer.
class TaskData {
public:
    // The folder's full path without a trailing separator; neither null nor empty.
    explicit TaskData(const char* hash);

    const std::string& GetInstanceHash() const { return m_instanceHash; }

private:
    std::string m_instanceHash;
    std::string m_context; // left empty by the watcher
};

// Where a watcher looks and for what. Main thread only.
class IFileStoreWatcher {
public:
    virtual void GetFolder(std::string& folder) const = 0;
    virtual void GetSentinelFileName(std::string& fileName) const = 0;
    virtual const Reflection::TypeDescriptor& GetObjectType() const = 0;
    virtual ResultCode Flush() = 0; // nothing to flush; succeeds

protected:
    ~IFileStoreWatcher() = default; // owned as a process, never through this view
};

// Hands found folders over, each one once. Any thread.
class ITaskSubscriber {
public:
    virtual void* QuerySubscriber(const Reflection::TypeDescriptor& type) = 0;
    virtual const char* GetSubscriberName() const = 0;

    // Exchanges the caller's vector (an empty one) with the pending list. The caller owns what it gets; no
    // folder is offered twice in a run.
    virtual ResultCode TakeTasks(std::vector<TaskData>& tasks) = 0;
    virtual const Reflection::TypeDescriptor& GetSubscriberType() const = 0;
    virtual ResultCode FlushSubscriber() = 0;

protected:
    ~ITaskSubscriber() = default;
};

class IWatcher : public IFileStoreWatcher, public ITaskSubscriber {
protected:
    ~IWatcher() = default;
};

// One number under a name and labels. Any thread.
class IMetric {
public:
    virtual ~IMetric() = default;
    virtual void SetLabel(const char* key, const char* value) = 0;
    virtual void SetValue(double value) = 0;
};

// Offered by a process that publishes the numbers of other processes. Any thread.
class IMetricsAggregator {
public:
    // Metrics of one name differ by their labels. Never null; shared with the aggregator.
    virtual std::shared_ptr<IMetric> MakeMetric(const char* name, const char* help) = 0;

protected:
    ~IMetricsAggregator() = default; // owned as a process, never through this view
};

Reflection_DeclarePolymorphicType(IFileStoreWatcher);
Reflection_DeclarePolymorphicType(ITaskSubscriber);
Reflection_DeclarePolymorphicType(IWatcher);
Reflection_DeclarePolymorphicType(IMetricsAggregator);
