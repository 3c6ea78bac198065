#include "Libs/Tarnel/String/src/String_Functions.h"

#include <cstdarg>

#include "Libs/Tarnel/String/src/String_PlatformFunctions.h"

namespace String {

bool IsNullOrEmpty(const char* text) {
    return !text || !*text;
}

int FormatText(char* szBuffer, std::size_t uiSize, const char* szFormat, ...) {
    va_list arguments = {};
    va_start(arguments, szFormat);
    const int length = FormatList(szBuffer, uiSize, szFormat, arguments);
    va_end(arguments);
    return length;
}

} // namespace String
