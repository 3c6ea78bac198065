#pragma once

#include "Tools/PackageTool/src/ConfigSections.h"

// Reports what the agent accepts, but hardly anybody means: values left over from the template,
// names that match nothing, quotas that keep nothing. May throw std::bad_alloc.
void CheckWarnings(const JsonDocument& document, const ConfigSections& sections, const ConfigReport& warn);
