#include "Libs/Tarnel/Platform/src/Common/Platform_ThreadId.h"

uint32_t GetMainThreadId() {
    static const uint32_t mainThreadId = GetCurrentThreadIdImpl();
    return mainThreadId;
}
