#pragma once

#include <string>

namespace Platform {

// Root and file name joined as EXP_GetLogPath joins them; empty without a root. Throws only std::bad_alloc.
std::wstring LogPath(const wchar_t* fileName);

} // namespace Platform
