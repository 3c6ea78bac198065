#include "Libs/Tarnel/Platform/src/Common/Platform_RawFile.h"

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"

namespace Platform {
namespace {

// The system would take any bytes; paths are refused here as they are on Windows.
bool IsUsablePath(const std::string& path) {
    std::wstring wide;
    return path.find('\0') == std::string::npos && Utf8ToWide(path, wide) == EncodingOutcome::Done;
}

intptr_t Open(const std::string& path, int flags) {
    return IsUsablePath(path) ? open(path.c_str(), flags | O_CLOEXEC, 0666) : -1;
}

bool IsFolder(intptr_t handle) {
    struct stat status = {};
    return fstat(static_cast<int>(handle), &status) == 0 && S_ISDIR(status.st_mode);
}

template <class Transfer>
bool Repeat(uint32_t& transferred, Transfer transfer) {
    ssize_t count = -1;
    do {
        count = transfer();
    } while (count < 0 && errno == EINTR);
    transferred = count < 0 ? 0 : static_cast<uint32_t>(count);
    return count >= 0;
}

} // namespace

// Files are not locked against writers here: DenyWriters opens like Everything.
bool RawFile::OpenForReading(const std::string& path, ReadSharing) {
    m_handle = Open(path, O_RDONLY);
    if (m_handle >= 0 && IsFolder(m_handle)) {
        static_cast<void>(Close());
    }
    return m_handle >= 0;
}

bool RawFile::CreateForWriting(const std::string& path) {
    m_handle = Open(path, O_WRONLY | O_CREAT | O_TRUNC);
    return m_handle >= 0;
}

bool RawFile::CreateNew(const std::string& path) {
    m_handle = Open(path, O_WRONLY | O_CREAT | O_EXCL);
    return m_handle >= 0;
}

bool RawFile::GetSize(uint64_t& size) const {
    struct stat status = {};
    if (fstat(static_cast<int>(m_handle), &status) != 0) {
        return false;
    }
    size = static_cast<uint64_t>(status.st_size);
    return true;
}

bool RawFile::Read(void* data, uint32_t length, uint32_t& transferred) {
    return Repeat(transferred, [&] { return read(static_cast<int>(m_handle), data, length); });
}

bool RawFile::Write(const void* data, uint32_t length, uint32_t& transferred) {
    return Repeat(transferred, [&] { return write(static_cast<int>(m_handle), data, length); });
}

bool RawFile::Flush() {
    return fsync(static_cast<int>(m_handle)) == 0;
}

bool RawFile::Close() {
    const auto descriptor = static_cast<int>(m_handle);
    m_handle = -1;
    return descriptor < 0 || close(descriptor) == 0;
}

bool RenameFile(const std::string& path, const std::string& newPath) {
    return IsUsablePath(path) && IsUsablePath(newPath) && std::rename(path.c_str(), newPath.c_str()) == 0;
}

} // namespace Platform
