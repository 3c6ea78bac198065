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
        keepGoing = VisitUnknown(entry.name);
    }
    if (++m_visited % EntriesBetweenYields == 0) {
        std::this_thread::yield();
    }
}

bool FolderScan::VisitUnknown(const std::string& name) {
    if (!IsComplete(name)) {
        return true;
    }
    return Accept(name);
}

bool FolderScan::IsComplete(std::string_view name) {
    m_sentinel.assign(m_config.folder).append(name).append(1, FolderPath::Separator);
    m_sentinel.append(m_config.sentinelFile);
    if (!PlatformHelpers::PathExists(m_sentinel)) {
        m_sentinel.append(".gz");
        if (!PlatformHelpers::PathExists(m_sentinel)) {
            return false;
        }
    }
    return IsSentinelReadOnly();
}

bool FolderScan::IsSentinelReadOnly() const {
    PlatformHelpers::FileStatus status;
    if (const ResultCode result = PlatformHelpers::QueryFileStatus(m_sentinel, status); !result) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to query file \"%s\" for readonly status. Error=%s",
                     m_sentinel.c_str(), result.Text());
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
