#pragma once

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

// What the Posix half of Platform_IO and Platform_Folder share.
namespace Platform {

inline constexpr mode_t AnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

inline SystemError LastError() {
    return static_cast<SystemError>(errno);
}

// Makes a call that returns 0 for success, with the path's text.
template <class Call>
SystemError CallWith(const SystemPath& path, Call call) noexcept {
    return path.Error() != NoError ? path.Error() : call(path.Get()) == 0 ? NoError : LastError();
}

inline uint64_t ToFileTime(const timespec& time) {
    constexpr int64_t SecondsFrom1601 = 11'644'473'600;
    return static_cast<uint64_t>((time.tv_sec + SecondsFrom1601) * 10'000'000 + time.tv_nsec / 100);
}

inline FileInfo ToFileInfo(const struct stat& status, bool isLink) {
    const uint32_t attributes = ((status.st_mode & AnyWrite) == 0 ? ReadOnlyAttribute : 0u) |
                                (S_ISDIR(status.st_mode) ? FolderAttribute : 0u) |
                                (isLink ? ReparseAttribute : 0u);
    const uint64_t written = ToFileTime(status.st_mtim);
    return {.attributes = attributes,
            .creationTime = std::min(written, ToFileTime(status.st_ctim)),
            .lastAccessTime = ToFileTime(status.st_atim),
            .lastWriteTime = written,
            .size = static_cast<uint64_t>(status.st_size)};
}

} // namespace Platform
