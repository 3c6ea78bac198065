#include "Libs/Processes/Core/src/IWatcher.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

Reflection_DefinePolymorphicType(IFileStoreWatcher);
Reflection_DefinePolymorphicType(ITaskSubscriber);
Reflection_DefinePolymorphicType(IWatcher);
Reflection_DefinePolymorphicType(IMetricsAggregator);

TaskData::TaskData(const char* hash) {
    PLATFORM_ASSERT(hash);
    if (hash) {
        m_instanceHash = hash;
    }
    PLATFORM_ASSERT(!m_instanceHash.empty());
}
