#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

#include <exception>
#include <new>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Posix/Platform_PosixFile.h"

namespace Platform {

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

} // namespace Platform
