#pragma once

#include <cstdarg>
#include <cstddef>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

namespace String {

// As FormatText, with the arguments as a list.
int FormatList(char* szBuffer, std::size_t uiSize, const char* szFormat, va_list arguments)
    PLATFORM_PRINTF(3, 0);

} // namespace String
