#include "Libs/Processes/Core/src/FolderScan.h"

#include <thread>

#include "Libs/Processes/Core/src/FolderPath.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

ResultCode FolderScan::Run() {
    return PlatformHelpers::EnumerateFolder(m_config.folder, PlatformHelpers::EnumerateFolders,
                                            [this](const PlatformHelpers::PathInfo& entry, bool& keepGoing) {
                                                Visit(entry, keepGoing);
                                                return Platform::Success;
                                            });
}

void FolderScan::Visit(const PlatformHelpers::PathInfo& entry, bool& keepGoing) {
    if (m_config.ignoreReadOnlyFolders && entry.IsReadOnly()) {
        return;
    }
    if (!m_known.contains(entry.name)) {
        m_isAllKnown = false;
        keepGoing = VisitUnknown(entry.name);
    }
    if (++m_visited % EntriesBetweenYields == 0) {
        std::this_thread::yield();
    }
}

bool FolderScan::VisitUnknown(const std::string& name) {
    if (!IsComplete(m_config.folder + name, m_config.sentinelFile)) {
        return true;
    }
    return Accept(name);
}

bool FolderScan::IsComplete(const std::string& folder, const std::string& sentinelFile) {
    std::string sentinel = FolderPath::Join(folder, sentinelFile);
    if (!PlatformHelpers::PathExists(sentinel)) {
        sentinel += ".gz";
        if (!PlatformHelpers::PathExists(sentinel)) {
            return false;
        }
    }
    PlatformHelpers::FileStatus status;
    if (const ResultCode result = PlatformHelpers::QueryFileStatus(sentinel, status); !result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to query file \"%s\" for readonly status. Error=%s",
                     sentinel.c_str(), result.Text());
        return false;
    }
    return status.isReadOnly;
}

// False if the limit is reached: the entry over it ends the pass.
bool FolderScan::Accept(const std::string& name) {
    if (m_config.maxFolderScans >= 0) {
        if (m_accepted >= m_config.maxFolderScans) {
            return false;
        }
        ++m_accepted;
    }
    m_newNames.push_back(name);
    return true;
}
