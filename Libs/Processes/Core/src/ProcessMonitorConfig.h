#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// A process monitor's section of the configuration file. The list alone is required; it may be empty.
struct ProcessMonitorConfig {
    uint32_t timeBetweenChecks = 2500; // milliseconds
    uint32_t shutdownDelay = 30000;    // milliseconds that all watched programs must stay gone
    std::vector<std::string> watchedApplications;
};
Reflection_DeclareType(ProcessMonitorConfig);
