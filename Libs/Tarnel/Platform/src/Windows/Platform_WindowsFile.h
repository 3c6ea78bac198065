#pragma once

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// What the Windows half of Platform_IO and Platform_Folder share.
namespace Platform {

// Of a call that failed: never 0.
inline SystemError LastError() {
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

inline SystemError ErrorUnless(bool succeeded) {
    return succeeded ? NoError : LastError();
}

inline uint64_t Join(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

inline uint64_t ToNumber(const FILETIME& time) {
    return Join(time.dwHighDateTime, time.dwLowDateTime);
}

// WIN32_FIND_DATAW, WIN32_FILE_ATTRIBUTE_DATA
template <class SystemInfo>
FileInfo ToFileInfo(const SystemInfo& from) {
    return {.attributes = from.dwFileAttributes,
            .creationTime = ToNumber(from.ftCreationTime),
            .lastAccessTime = ToNumber(from.ftLastAccessTime),
            .lastWriteTime = ToNumber(from.ftLastWriteTime),
            .size = Join(from.nFileSizeHigh, from.nFileSizeLow)};
}

// Wine resolves links of its host without being asked, so a call meant for the link would reach its target.
// Folder::NotInside for such a link, and the system's error if it can't tell. On Windows never a failure.
[[nodiscard]] SystemError CheckForHostLink(const SystemPath& path) noexcept;

} // namespace Platform
