#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/KnownFolders.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// One pass over a watched folder: finds the sub-folders that are complete and not yet known. A sub-folder is
// complete when its sentinel, plain or with ".gz", is there and read-only; any other is met again in the next
// pass. What is known is passed over before anything is asked of the file system. Lives for one pass on the
// scanning thread; configuration (its folder resolved) and known folders outlive it.
class FolderScan {
public:
    FolderScan(const WatcherConfig& config, const KnownFolders& known) : m_config(config), m_known(known) {}

    // The names found, in the order of the file system. After a failure they are to be dropped.
    ResultCode Run();
    const std::vector<std::string>& GetNewNames() const { return m_newNames; }

    // Whether the pass left something that another pass may find without an entry having come: a sub-folder
    // that is not complete, is passed over or was too many.
    bool HasLeftOvers() const { return m_hasLeftOvers; }

private:
    static constexpr uint32_t EntriesBetweenYields = 1000;

    void Visit(const PlatformHelpers::PathInfo& entry, bool& keepGoing);
    bool VisitUnknown(const std::string& name);
    bool IsComplete(std::string_view name);
    bool IsSentinelReadOnly() const;
    bool Accept(const std::string& name);

    const WatcherConfig& m_config;
    const KnownFolders& m_known;
    std::vector<std::string> m_newNames;
    std::string m_sentinel; // re-used from entry to entry
    uint32_t m_visited = 0;
    int32_t m_accepted = 0;
    bool m_hasLeftOvers = false;
};
