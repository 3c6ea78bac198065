#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Processes/Core/src/BugHeader.h"
#include "Libs/Processes/Core/src/SizeLimit.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// A packager's section of the configuration file. All keys but WatcherName are optional. A folder that is
// given is used as given; one left empty becomes a folder under the application's.
struct PackagerConfig {
    uint32_t timeBetweenChecks = 250; // milliseconds
    std::vector<AttachmentLimit> attachmentLimits;
    std::vector<std::string> attachmentBlacklist; // regular expressions
    std::string watcherName;
    std::string packagedFolder;     // empty becomes PackagedDumps
    std::string packageWorkFolder;  // empty becomes PackageTemp
    std::string submissionFilename; // empty becomes submission.pkg
    BugSource source = BugSource::External;
};
Reflection_DeclareType(PackagerConfig);
