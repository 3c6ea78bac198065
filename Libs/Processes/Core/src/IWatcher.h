#pragma once

#include <string>
#include <vector>

#include "Libs/Processes/Core/src/TaskData.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

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

Reflection_DeclarePolymorphicType(IFileStoreWatcher);
Reflection_DeclarePolymorphicType(ITaskSubscriber);
Reflection_DeclarePolymorphicType(IWatcher);
