#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Posix/Platform_PosixFile.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

// Share modes have no counterpart here and are not looked at.
namespace Platform {
namespace {

constexpr std::size_t MaxPiece = std::size_t{1} << 20;

// Calls the system again when a signal came between.
template <class Transfer>
ssize_t Repeat(Transfer transfer) {
    ssize_t count = transfer();
    while (count < 0 && errno == EINTR) {
        count = transfer();
    }
    return count;
}

} // namespace

bool CloseKernelHandle(NativeHandle handle) {
    return close(handle) == 0;
}

SystemError QueryInfo(const SystemPath& path, FileInfo& info) noexcept {
    struct stat status = {};
    if (const SystemError error = CallWith(path, [&](const char* name) { return lstat(name, &status); });
        error != NoError) {
        return error;
    }
    const bool isLink = S_ISLNK(status.st_mode);
    if (isLink) { // the rest is that of what it leads to, if anything
        static_cast<void>(stat(path.Get(), &status));
    }
    info = ToFileInfo(status, isLink);
    return NoError;
}

SystemError SetAttributes(const SystemPath& path, uint32_t attributes) noexcept {
    struct stat status = {};
    return CallWith(path, [&](const char* name) {
        if (stat(name, &status) != 0) {
            return -1;
        }
        const bool readOnly = (attributes & ReadOnlyAttribute) != 0;
        return chmod(name, readOnly ? status.st_mode & ~AnyWrite : status.st_mode | S_IWUSR);
    });
}

SystemError RemoveFile(const SystemPath& path) noexcept {
    return CallWith(path, unlink);
}

SystemError RemoveEmptyFolder(const SystemPath& path) noexcept {
    return CallWith(path, rmdir);
}

SystemError CreateOneFolder(const SystemPath& path) noexcept {
    const SystemError error = CallWith(path, [](const char* name) { return mkdir(name, 0777); });
    return error == EEXIST ? NoError : error;
}

SystemError RenameFile(const SystemPath& from, const SystemPath& to) noexcept {
    return to.Error() != NoError
               ? to.Error()
               : CallWith(from, [&](const char* name) { return std::rename(name, to.Get()); });
}

bool IsHeld(SystemError) {
    return false; // no program can lock others out here
}

bool IsMissing(SystemError error) {
    return error == ENOENT || error == ENOTDIR || error == EISDIR || error == ENAMETOOLONG ||
           error == ELOOP || error == EINVAL;
}

SystemError File::Open(const SystemPath& path, uint32_t access, uint32_t, Patience) noexcept {
    if (m_handle) {
        return AlreadyOpen;
    }
    if ((access & (FileRead | FileWrite)) == 0) {
        return NoAccess;
    }
    if (path.Error() != NoError) {
        return path.Error();
    }
    const int flags = ((access & FileWrite) == 0  ? O_RDONLY
                       : (access & FileRead) != 0 ? O_RDWR
                                                  : O_WRONLY) |
                      ((access & FileCreateAndTruncate) != 0 ? O_CREAT | O_TRUNC : 0) |
                      ((access & FileCreateNew) != 0 ? O_CREAT | O_EXCL : 0);
    KernelHandle opened(open(path.Get(), flags | O_CLOEXEC, 0666));
    if (!opened) {
        return LastError();
    }
    struct stat status = {};
    if (fstat(opened.Get(), &status) != 0) {
        return NoSize;
    }
    if (S_ISDIR(status.st_mode)) {
        return EISDIR;
    }
    m_size = static_cast<uint64_t>(status.st_size);
    m_handle = std::move(opened);
    return NoError;
}

SystemError File::Read(uint64_t offset, std::span<uint8_t> buffer, std::size_t& count) noexcept {
    count = 0;
    while (count < buffer.size()) {
        const auto transferred = Repeat([&] {
            return pread(m_handle.Get(), buffer.data() + count, std::min(buffer.size() - count, MaxPiece),
                         static_cast<off_t>(offset + count));
        });
        if (transferred <= 0) {
            return transferred == 0 ? NoError : LastError();
        }
        count += static_cast<std::size_t>(transferred);
    }
    return NoError;
}

SystemError File::Write(uint64_t offset, std::span<const uint8_t> bytes) noexcept {
    while (!bytes.empty()) {
        const auto transferred = Repeat([&] {
            return pwrite(m_handle.Get(), bytes.data(), std::min(bytes.size(), MaxPiece),
                          static_cast<off_t>(offset));
        });
        if (transferred <= 0) {
            return transferred == 0 ? EIO : LastError();
        }
        offset += static_cast<uint64_t>(transferred);
        bytes = bytes.subspan(static_cast<std::size_t>(transferred));
    }
    return NoError;
}

SystemError File::Flush() noexcept {
    return fsync(m_handle.Get()) == 0 ? NoError : LastError();
}

bool WriteFileAt(NativeHandle file, uint64_t uiPos, const void* data, uint32_t length) {
    const ssize_t written = pwrite(file, data, length, static_cast<off_t>(uiPos));
    if (written < 0) {
        PLATFORM_ASSERT_MESSAGE(false, "File write failed. Error code is %u", static_cast<unsigned>(errno));
        return false;
    }
    const auto nBytesWritten = static_cast<uint64_t>(written);
    PLATFORM_ASSERT_TEXT(nBytesWritten <= Types::Limits<size_t>::Max - uiPos,
                         "nBytesWritten <= (Types::Limits<size_t>::Max - uiPos)");
    return nBytesWritten == length;
}

int ErrnoOf(SystemError error) {
    return static_cast<int>(error);
}

uint64_t PreciseSystemTime() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return ToFileTime(now);
}

} // namespace Platform
