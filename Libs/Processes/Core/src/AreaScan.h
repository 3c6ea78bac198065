#pragma once

#include <string>
#include <vector>

#include "Libs/Processes/Core/src/QuotaDecision.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Measures every sub-folder of one area, youngest first. One that can't be read is left out. A link is not
// followed: it has no size and is not valid. folder ends in a separator. A failure leaves what was measured
// until then. May throw std::bad_alloc: the records are in no order then.
ResultCode ScanArea(const std::string& folder, std::vector<QuotaDecision::FolderRecord>& records);
