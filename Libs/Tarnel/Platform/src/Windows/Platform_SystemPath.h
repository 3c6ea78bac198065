#pragma once

#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

namespace Platform {

inline std::wstring ToSystemPath(std::wstring_view wide) {
    std::wstring path = SystemPath(wide).Text();
    return wide.ends_with(L'\\') || wide.ends_with(L'/') ? path + L'\\' : path;
}

} // namespace Platform
