#pragma once

#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

namespace Platform {

inline std::wstring ToSystemPath(std::wstring_view wide) {
    const SystemPath system(wide);
    if (system.Error() == NoMemory) {
        throw std::bad_alloc(); // an empty path would lead to the current drive's root
    }
    std::wstring path = system.Text();
    return wide.ends_with(L'\\') || wide.ends_with(L'/') ? path + L'\\' : path;
}

} // namespace Platform
