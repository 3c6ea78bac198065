#pragma once

#include <cstdint>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"

// Tells debuggers and crash dumps what a thread of this process is called. The name is UTF-8.
ResultCode NameThread(void* threadHandle, const char* name);
