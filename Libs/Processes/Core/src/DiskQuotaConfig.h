#pragma once

#include <cstdint>
#include <string>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// A disk quota's section of the configuration file. All keys are optional.
struct DiskQuotaConfig {
    uint32_t invalidGraceTime = 3600; // seconds
    uint32_t timeBetweenChecks = 500; // milliseconds
    std::string dumpsFolder;          // empty becomes dumps in the application's folder
    uint64_t dumpsQuota = 512ULL << 20;
    std::string packagedFolder; // empty becomes packagedDumps in the application's folder
    uint64_t packagedQuota = 256ULL << 20;
};
Reflection_DeclareType(DiskQuotaConfig);
