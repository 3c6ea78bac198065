#include "Libs/Processes/Core/src/TaskData.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

TaskData::TaskData(const char* hash) {
    PLATFORM_ASSERT(hash);
    if (hash) {
        m_instanceHash = hash;
    }
    PLATFORM_ASSERT(!m_instanceHash.empty());
}
