#include "Libs/Tarnel/String/src/String_PlatformFunctions.h"

#include <cstdio>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace String {

int FormatList(char* szBuffer, std::size_t uiSize, const char* szFormat, va_list arguments) {
    PLATFORM_ASSERT(szBuffer && szFormat);
    if (!szBuffer || !szFormat) {
        return -1;
    }
    return std::vsnprintf(szBuffer, uiSize, szFormat, arguments);
}

} // namespace String
