#include "Libs/Framework/Core/src/ThreadWait.h"

#include <windows.h>

#include <algorithm>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

ResultCode WaitForThreads(const std::vector<void*>& handles) {
    // One wait takes so many handles at most. All have to end, so the groups may wait one after the other.
    constexpr std::size_t groupSize = MAXIMUM_WAIT_OBJECTS;
    for (std::size_t first = 0; first < handles.size(); first += groupSize) {
        const auto count = static_cast<DWORD>(std::min(groupSize, handles.size() - first));
        if (WaitForMultipleObjects(count, handles.data() + first, TRUE, INFINITE) == WAIT_FAILED) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to wait for threads. Error Code=0x%08X",
                         static_cast<unsigned>(GetLastError()));
            return "Failed to wait for threads";
        }
    }
    return Platform::Success;
}
