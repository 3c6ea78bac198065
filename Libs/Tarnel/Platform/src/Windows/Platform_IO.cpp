#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <windows.h>

#include <initguid.h> // the folder's id gets its value in this unit

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"
#include "Libs/Tarnel/Platform/src/Windows/Platform_WindowsFile.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

namespace Platform {
namespace {

static_assert(ReadOnlyAttribute == FILE_ATTRIBUTE_READONLY && FolderAttribute == FILE_ATTRIBUTE_DIRECTORY &&
              ReparseAttribute == FILE_ATTRIBUTE_REPARSE_POINT);
static_assert(ShareRead == FILE_SHARE_READ && ShareWrite == FILE_SHARE_WRITE &&
              ShareDelete == FILE_SHARE_DELETE);

constexpr std::size_t MaxPiece = std::size_t{1} << 20; // of one call, whose lengths are of 32 bits

// Calls change with the path's text, unless it leads elsewhere.
template <class Change>
SystemError ChangeEntry(const SystemPath& path, Change change) noexcept {
    if (path.Error() != NoError) {
        return path.Error();
    }
    const SystemError error = CheckForHostLink(path);
    return error == NoError             ? ErrorUnless(change(path.Get()))
           : error == Folder::NotInside ? ERROR_SYMLINK_NOT_SUPPORTED
                                        : error;
}

SystemError OpenFile(const SystemPath& path, uint32_t access, uint32_t share, KernelHandle& handle,
                     uint64_t& size) {
    const DWORD desired =
        ((access & FileRead) != 0 ? GENERIC_READ : 0u) | ((access & FileWrite) != 0 ? GENERIC_WRITE : 0u);
    const DWORD disposition = (access & FileCreateNew) != 0           ? CREATE_NEW
                              : (access & FileCreateAndTruncate) != 0 ? CREATE_ALWAYS
                                                                      : OPEN_EXISTING;
    // Opens folders too: the system would deny access to them as to a file that another program holds.
    const DWORD flags =
        ((access & FileRandomAccess) != 0 ? FILE_FLAG_RANDOM_ACCESS : FILE_FLAG_SEQUENTIAL_SCAN) |
        (desired == GENERIC_READ ? FILE_FLAG_BACKUP_SEMANTICS : 0u);
    KernelHandle opened(CreateFileW(path.Get(), desired, share, nullptr, disposition,
                                    FILE_ATTRIBUTE_NORMAL | flags, nullptr));
    if (!opened) {
        return LastError();
    }
    BY_HANDLE_FILE_INFORMATION data = {};
    if (!GetFileInformationByHandle(opened.Get(), &data)) {
        return File::NoSize;
    }
    if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return ERROR_DIRECTORY;
    }
    size = Join(data.nFileSizeHigh, data.nFileSizeLow);
    handle = std::move(opened);
    return NoError;
}

// Names the place of one transfer, which need not be where the one before it ended.
OVERLAPPED At(uint64_t offset) {
    OVERLAPPED where = {};
    where.Offset = static_cast<DWORD>(offset & 0xFFFFFFFF);
    where.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return where;
}

} // namespace

bool CloseKernelHandle(NativeHandle handle) {
    return CloseHandle(handle) != 0;
}

SystemError QueryInfo(const SystemPath& path, FileInfo& info) noexcept {
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (path.Error() != NoError || !GetFileAttributesExW(path.Get(), GetFileExInfoStandard, &data)) {
        return path.Error() != NoError ? path.Error() : LastError();
    }
    info = ToFileInfo(data);
    return NoError;
}

SystemError SetAttributes(const SystemPath& path, uint32_t attributes) noexcept {
    return ChangeEntry(path, [=](const wchar_t* name) { return SetFileAttributesW(name, attributes); });
}

SystemError RemoveFile(const SystemPath& path) noexcept {
    return ChangeEntry(path, DeleteFileW);
}

SystemError RemoveEmptyFolder(const SystemPath& path) noexcept {
    return ChangeEntry(path, RemoveDirectoryW);
}

SystemError CreateOneFolder(const SystemPath& path) noexcept {
    const SystemError error =
        path.Error() != NoError ? path.Error() : ErrorUnless(CreateDirectoryW(path.Get(), nullptr));
    return error == ERROR_ALREADY_EXISTS ? NoError : error;
}

SystemError RenameFile(const SystemPath& from, const SystemPath& to) noexcept {
    const SystemError error = from.Error() != NoError ? from.Error() : to.Error();
    return error != NoError ? error
                            : ErrorUnless(MoveFileExW(from.Get(), to.Get(),
                                                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}

bool IsHeld(SystemError error) {
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
}

bool IsMissing(SystemError error) {
    constexpr SystemError Errors[] = {ERROR_FILE_NOT_FOUND,       ERROR_PATH_NOT_FOUND, ERROR_INVALID_NAME,
                                      ERROR_FILENAME_EXCED_RANGE, ERROR_BAD_PATHNAME,   ERROR_DIRECTORY,
                                      ERROR_CANT_RESOLVE_FILENAME};
    return std::ranges::find(Errors, error) != std::end(Errors);
}

SystemError File::Open(const SystemPath& path, uint32_t access, uint32_t share, Patience patience) noexcept {
    if (m_handle) {
        return AlreadyOpen;
    }
    if ((access & (FileRead | FileWrite)) == 0) {
        return NoAccess;
    }
    if (path.Error() != NoError) {
        return path.Error();
    }
    const auto attempt = [&] { return OpenFile(path, access, share, m_handle, m_size); };
    return patience == Patience::WhileHeld ? RetryWhileHeld(attempt) : attempt();
}

SystemError File::Read(uint64_t offset, std::span<uint8_t> buffer, std::size_t& count) noexcept {
    count = 0;
    DWORD transferred = 1;
    while (count < buffer.size() && transferred != 0) {
        OVERLAPPED where = At(offset + count);
        const auto wanted = static_cast<DWORD>(std::min(buffer.size() - count, MaxPiece));
        if (!ReadFile(m_handle.Get(), buffer.data() + count, wanted, &transferred, &where)) {
            return GetLastError() == ERROR_HANDLE_EOF ? NoError : LastError();
        }
        count += transferred;
    }
    return NoError;
}

SystemError File::Write(uint64_t offset, std::span<const uint8_t> bytes) noexcept {
    while (!bytes.empty()) {
        OVERLAPPED where = At(offset);
        DWORD transferred = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), MaxPiece));
        if (!WriteFile(m_handle.Get(), bytes.data(), wanted, &transferred, &where) || transferred == 0) {
            return LastError();
        }
        offset += transferred;
        bytes = bytes.subspan(transferred);
    }
    return NoError;
}

SystemError File::Flush() noexcept {
    return ErrorUnless(FlushFileBuffers(m_handle.Get()));
}

bool WriteFileAt(NativeHandle file, uint64_t uiPos, const void* data, uint32_t length) {
    OVERLAPPED where = At(uiPos);
    DWORD nBytesWritten = 0;
    if (!WriteFile(file, data, length, &nBytesWritten, &where)) {
        const auto error = static_cast<unsigned>(GetLastError());
        PLATFORM_ASSERT_MESSAGE(false, "File write failed. Error code is %u", error);
        return false;
    }
    PLATFORM_ASSERT_TEXT(nBytesWritten <= Types::Limits<size_t>::Max - uiPos,
                         "nBytesWritten <= (Types::Limits<size_t>::Max - uiPos)");
    return nBytesWritten == length;
}

// All that the C runtime says of a path that it can't read.
int ErrnoOf(SystemError) {
    return ENOENT;
}

uint32_t VersionResourceSize(const SystemPath& path) {
    DWORD unused = 0;
    return GetFileVersionInfoSizeW(path.Get(), &unused);
}

bool ReadVersionResource(const SystemPath& path, std::span<uint8_t> block) {
    return GetFileVersionInfoW(path.Get(), 0, static_cast<DWORD>(block.size()), block.data()) != 0;
}

uint32_t FindDocumentsFolder(std::wstring& folder) {
    wchar_t* text = nullptr;
    const HRESULT answer = SHGetKnownFolderPath(FOLDERID_Documents, KF_FLAG_CREATE, nullptr, &text);
    // To be freed after a failure too.
    const std::unique_ptr<wchar_t, void (*)(void*)> owner(text, CoTaskMemFree);
    folder = text ? text : L"";
    return static_cast<uint32_t>(answer);
}

uint64_t PreciseSystemTime() {
    FILETIME time = {};
    GetSystemTimePreciseAsFileTime(&time);
    return ToNumber(time);
}

} // namespace Platform
