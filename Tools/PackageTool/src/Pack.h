#pragma once

#include "Libs/Processes/Core/src/AttachmentBlacklist.h"
#include "Libs/Processes/Core/src/ProcessConfigs.h"
#include "Tools/PackageTool/src/Arguments.h"
#include "Tools/PackageTool/src/Console.h"

// What --config and --packager say about a packager and its watcher; the defaults without --config.
struct PackagerSettings {
    PackagerConfig config;
    AttachmentBlacklist blacklist; // of config
    WatcherConfig watcher;

    // False after an error, which is printed. Throws std::bad_alloc.
    bool Read(const Arguments& arguments);
};

// A package from each submission folder, made by the agent's own packager. May throw std::bad_alloc.
ExitCode RunPack(const Arguments& arguments);

// Says of each submission folder what keeps the agent from taking it, and what of it would not arrive.
// Nothing is changed. May throw std::bad_alloc.
ExitCode RunCheckDump(const Arguments& arguments);
