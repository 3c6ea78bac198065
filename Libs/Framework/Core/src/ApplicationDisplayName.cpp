#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace {

const char* g_ApplicationDisplayName = nullptr;

} // namespace

void RegisterApplicationDisplayName(const char* displayName) {
    PLATFORM_ASSERT(displayName);
    g_ApplicationDisplayName = displayName;
}

const char* GetApplicationDisplayName() {
    PLATFORM_ASSERT_MESSAGE(g_ApplicationDisplayName,
                            "Application client code must call RegisterApplicationDisplayName(aName)");
    return g_ApplicationDisplayName ? g_ApplicationDisplayName : "Bad Application Display Name!";
}
