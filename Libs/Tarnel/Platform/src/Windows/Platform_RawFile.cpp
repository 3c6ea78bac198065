#include "Libs/Tarnel/Platform/src/Common/Platform_RawFile.h"

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Windows/Platform_SystemPath.h"

namespace Platform {
namespace {

HANDLE HandleOf(intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle); // NOLINT(performance-no-int-to-ptr): no header knows HANDLE
}

intptr_t Open(const std::string& path, DWORD access, DWORD share, DWORD disposition) {
    std::wstring systemPath;
    if (ToSystemPath(path, systemPath) != EncodingOutcome::Done) {
        return reinterpret_cast<intptr_t>(INVALID_HANDLE_VALUE);
    }
    return reinterpret_cast<intptr_t>(CreateFileW(systemPath.c_str(), access, share, nullptr, disposition,
                                                  FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN,
                                                  nullptr));
}

} // namespace

bool RawFile::OpenForReading(const std::string& path, ReadSharing sharing) {
    const DWORD share = sharing == ReadSharing::DenyWriters
                            ? FILE_SHARE_READ
                            : FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    m_handle = Open(path, GENERIC_READ, share, OPEN_EXISTING);
    return HandleOf(m_handle) != INVALID_HANDLE_VALUE;
}

bool RawFile::CreateForWriting(const std::string& path) {
    m_handle = Open(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
    return HandleOf(m_handle) != INVALID_HANDLE_VALUE;
}

bool RawFile::CreateNew(const std::string& path) {
    m_handle = Open(path, GENERIC_WRITE, FILE_SHARE_READ, CREATE_NEW);
    return HandleOf(m_handle) != INVALID_HANDLE_VALUE;
}

bool RawFile::GetSize(uint64_t& size) const {
    LARGE_INTEGER value = {};
    if (!GetFileSizeEx(HandleOf(m_handle), &value)) {
        return false;
    }
    size = static_cast<uint64_t>(value.QuadPart);
    return true;
}

bool RawFile::Read(void* data, uint32_t length, uint32_t& transferred) {
    DWORD count = 0;
    const bool isRead = ReadFile(HandleOf(m_handle), data, length, &count, nullptr) != 0;
    transferred = count;
    return isRead;
}

bool RawFile::Write(const void* data, uint32_t length, uint32_t& transferred) {
    DWORD count = 0;
    const bool isWritten = WriteFile(HandleOf(m_handle), data, length, &count, nullptr) != 0;
    transferred = count;
    return isWritten;
}

bool RawFile::Flush() {
    return FlushFileBuffers(HandleOf(m_handle)) != 0;
}

bool RawFile::Close() {
    const HANDLE handle = HandleOf(m_handle);
    m_handle = reinterpret_cast<intptr_t>(INVALID_HANDLE_VALUE);
    return handle == INVALID_HANDLE_VALUE || CloseHandle(handle) != 0;
}

bool RenameFile(const std::string& path, const std::string& newPath) {
    std::wstring from;
    std::wstring to;
    return ToSystemPath(path, from) == EncodingOutcome::Done &&
           ToSystemPath(newPath, to) == EncodingOutcome::Done &&
           MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

} // namespace Platform
