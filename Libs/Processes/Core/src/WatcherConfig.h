#pragma once

#include <cstdint>
#include <string>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// A watcher's section of the configuration file. All keys but Folder are optional.
struct WatcherConfig {
    uint32_t timeBetweenChecks = 250; // milliseconds
    std::string folder;               // relative to the application's folder; empty is that folder itself
    std::string sentinelFile = "header.json";
    std::string metricsCollectorName; // a process; empty for no metrics
    int32_t maxFolderScans = -1;      // folders accepted in one scan; negative for no limit
    bool ignoreReadOnlyFolders = false;
    bool shutdownAfterCheck = false;
};
Reflection_DeclareType(WatcherConfig);
