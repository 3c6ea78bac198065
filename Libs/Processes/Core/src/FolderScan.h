#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

struct NameHash : std::hash<std::string_view> {
    using is_transparent = void; // looking up a view makes no string
};

// The names that a watcher has accepted in its folder, compared byte by byte. A look-up costs the same
// however many there are.
using KnownFolders = std::unordered_set<std::string, NameHash, std::equal_to<>>;

// One pass over a watched folder: finds the sub-folders that are complete and not yet known. A sub-folder is
// complete if its sentinel, plain or with ".gz", is there and read-only. A known one costs no call of the
// file system. Lives for one pass on the scanning thread; configuration (its folder resolved) and known
// folders outlive it.
class FolderScan {
public:
    FolderScan(const WatcherConfig& config, const KnownFolders& known) : m_config(config), m_known(known) {}

    // The names found, in the order of the file system. After a failure they must not be used.
    ResultCode Run();
    const std::vector<std::string>& GetNewNames() const { return m_newNames; }

    // Whether the pass saw nothing but known folders. Any other may be complete in the next pass.
    bool IsAllKnown() const { return m_isAllKnown; }

    // Whether the folder's sentinel, or else the one with ".gz" added, is there and read-only.
    static bool IsComplete(const std::string& folder, const std::string& sentinelFile);

private:
    static constexpr uint32_t EntriesBetweenYields = 1000;

    void Visit(const PlatformHelpers::PathInfo& entry, bool& keepGoing);
    bool VisitUnknown(const std::string& name);
    bool Accept(const std::string& name);

    const WatcherConfig& m_config;
    const KnownFolders& m_known;
    std::vector<std::string> m_newNames;
    bool m_isAllKnown = true;
    uint32_t m_visited = 0;
    int32_t m_accepted = 0;
};
