#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

#include <cwchar>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Platform {

std::size_t StringLength(const wchar_t* str) {
    PLATFORM_ASSERT(str);
    return str ? std::wcslen(str) : 0;
}

wchar_t* StringCopy(wchar_t* dest, const wchar_t* src, std::size_t count) {
    PLATFORM_ASSERT(dest);
    PLATFORM_ASSERT(src);
    if (!dest || !src) {
        return nullptr;
    }
    return std::wmemmove(dest, src, count);
}

const wchar_t* StringFindFirstOf(const wchar_t* str, const wchar_t* chars) {
    PLATFORM_ASSERT(str);
    PLATFORM_ASSERT(chars);
    if (!str || !chars) {
        return nullptr;
    }
    return std::wcspbrk(str, chars);
}

} // namespace Platform
