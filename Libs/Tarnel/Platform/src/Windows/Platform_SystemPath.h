#pragma once

#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"

// Paths as the wide calls of Windows take them. Paths of 248 units and more get the "\\?\" form, made
// absolute and with backslashes, so that the old length limit does not bind: C:/a/.../b becomes
// \\?\C:\a\...\b and
// //server/share/... becomes \\?\UNC\server\share\...; shorter ones stay as they are.
namespace Platform {

// InvalidCharacter for ill-formed UTF-8 and for a NUL inside the path.
[[nodiscard]] EncodingOutcome ToSystemPath(std::string_view utf8, std::wstring& path);

// The same for a path that is wide already. Throws only std::bad_alloc.
std::wstring ToSystemPath(std::wstring_view wide);

} // namespace Platform
