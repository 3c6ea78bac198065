#pragma once

#include <cstddef>

#include "Libs/Tarnel/Platform/src/Common/Platform_Printf.h"

namespace String {

bool IsNullOrEmpty(const char* text);

// Formats by printf rules into the buffer, cut to its size and always terminated. Returns the length that the
// whole text has, which may be more than the buffer took, or a negative number when the format can't be
// followed.
int FormatText(char* szBuffer, std::size_t uiSize, const char* szFormat, ...) PLATFORM_PRINTF(3, 4);

} // namespace String
