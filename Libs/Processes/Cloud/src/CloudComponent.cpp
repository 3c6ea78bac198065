#include "Libs/Processes/Cloud/src/CloudComponent.h"

#include "Libs/Processes/Cloud/src/ObjectStore.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

Reflection_DefinePolymorphicType(CloudComponent);

CloudComponent::~CloudComponent() {
    static_cast<void>(ShutdownObjectStores()); // does nothing after Shutdown
}

ResultCode CloudComponent::Initialize(int, const char**) {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    return InitializeObjectStores();
}

ResultCode CloudComponent::Shutdown() {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    return ShutdownObjectStores();
}
