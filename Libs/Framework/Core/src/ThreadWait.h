#pragma once

#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Blocks until every one of the threads has ended. Any number of handles; each one once.
ResultCode WaitForThreads(const std::vector<void*>& handles);
