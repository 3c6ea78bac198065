#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <exception>
#include <new>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

// Share modes have no counterpart here and are not looked at.
namespace Platform {
namespace {

constexpr std::size_t MaxPiece = std::size_t{1} << 20;
constexpr mode_t AnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

SystemError LastError() {
    return static_cast<SystemError>(errno);
}

// Makes a call that returns 0 for success, with the path's text.
template <class Call>
SystemError CallWith(const SystemPath& path, Call call) noexcept {
    return path.Error() != NoError ? path.Error() : call(path.Get()) == 0 ? NoError : LastError();
}

uint64_t ToFileTime(const timespec& time) {
    constexpr int64_t SecondsFrom1601 = 11'644'473'600;
    return static_cast<uint64_t>((time.tv_sec + SecondsFrom1601) * 10'000'000 + time.tv_nsec / 100);
}

FileInfo ToFileInfo(const struct stat& status, bool isLink) {
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
    info = ToFileInfo(status, S_ISLNK(status.st_mode));
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

bool IsLink(const SystemPath& path) noexcept {
    FileInfo info;
    return QueryInfo(path, info) == NoError && info.IsLink();
}

SystemError QueryIdentity(const SystemPath& path, FileIdentity& identity) noexcept {
    struct stat status = {};
    const SystemError error = CallWith(path, [&](const char* name) { return stat(name, &status); });
    identity = {status.st_dev, status.st_ino};
    return error;
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

SystemError File::Read(std::span<uint8_t> buffer, std::size_t& count) noexcept {
    count = 0;
    while (count < buffer.size()) {
        const auto transferred = Repeat([&] {
            return read(m_handle.Get(), buffer.data() + count, std::min(buffer.size() - count, MaxPiece));
        });
        if (transferred <= 0) {
            return transferred == 0 ? NoError : LastError();
        }
        count += static_cast<std::size_t>(transferred);
    }
    return NoError;
}

SystemError File::Write(std::span<const uint8_t> bytes) noexcept {
    while (!bytes.empty()) {
        const auto transferred =
            Repeat([&] { return write(m_handle.Get(), bytes.data(), std::min(bytes.size(), MaxPiece)); });
        if (transferred <= 0) {
            return transferred == 0 ? EIO : LastError();
        }
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

SystemError Folder::Open(SystemPath path) noexcept {
    m_path = std::move(path);
    if (m_path.Error() != NoError) {
        return m_path.Error();
    }
    m_handle = KernelHandle(open(m_path.Get(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    return m_handle ? NoError : IsLink(m_path) ? NotInside : LastError();
}

// Opens name by name, each without following a link. A pipe must not keep the opening waiting.
SystemError Folder::OpenFile(std::string_view name, Patience, File& file) const noexcept try {
    const SystemPath path = m_path.Within(name);
    if (path.Error() != NoError || !m_handle) {
        return path.Error() != NoError ? path.Error() : ENOENT;
    }
    std::string names = path.Text().substr(m_path.Text().size() + (m_path.IsRoot() ? 0 : 1));
    KernelHandle folder;
    for (std::size_t end = names.find('/'); end != std::string::npos; end = names.find('/')) {
        const int above = folder ? folder.Get() : m_handle.Get();
        folder = KernelHandle(
            openat(above, names.substr(0, end).c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        if (!folder) {
            return LastError() == ENOTDIR ? NotInside : LastError();
        }
        names.erase(0, end + 1);
    }
    const int above = folder ? folder.Get() : m_handle.Get();
    KernelHandle opened(openat(above, names.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!opened || fstat(opened.Get(), &status) != 0) {
        return LastError() == ELOOP ? NotInside : LastError();
    }
    if (!S_ISREG(status.st_mode)) {
        return NotInside;
    }
    file.m_handle = std::move(opened);
    file.m_size = static_cast<uint64_t>(status.st_size);
    return NoError;
} catch (const std::exception&) {
    return NoMemory;
}

struct FolderListing::Search {
    DIR* folder = nullptr;
    ~Search() {
        if (folder) {
            closedir(folder);
        }
    }
};

FolderListing::FolderListing(const SystemPath& folder) noexcept {
    m_search.reset(new (std::nothrow) Search);
    m_error = !m_search ? NoMemory : folder.Error();
    if (m_error == NoError) {
        m_search->folder = opendir(folder.Get());
        m_error = m_search->folder ? NoError : LastError();
    }
}

FolderListing::~FolderListing() = default;

bool FolderListing::Next() noexcept try {
    while (m_error == NoError) {
        errno = 0;
        const dirent* const entry = readdir(m_search->folder);
        if (!entry) {
            m_error = LastError();
            return false;
        }
        m_name = entry->d_name;
        struct stat status = {};
        if (m_name == "." || m_name == ".." ||
            fstatat(dirfd(m_search->folder), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            continue; // gone meanwhile
        }
        m_info = ToFileInfo(status, S_ISLNK(status.st_mode));
        return true;
    }
    return false;
} catch (const std::exception&) {
    m_error = NoMemory;
    return false;
}

uint64_t PreciseSystemTime() {
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    return ToFileTime(now);
}

} // namespace Platform
