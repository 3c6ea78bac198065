#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <exception>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_OpenFile.h"
#include "Libs/Tarnel/Platform/src/Windows/Platform_SystemPath.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

namespace Platform {
namespace {

static_assert(ShareRead == FILE_SHARE_READ && ShareWrite == FILE_SHARE_WRITE &&
              ShareDelete == FILE_SHARE_DELETE);

HANDLE HandleOf(const File& file) {
    return reinterpret_cast<HANDLE>(file.handle); // NOLINT(performance-no-int-to-ptr): no header knows HANDLE
}

DWORD DesiredAccess(uint32_t flags) {
    return ((flags & FileRead) ? GENERIC_READ : 0u) | ((flags & FileWrite) ? GENERIC_WRITE : 0u);
}

HANDLE OpenSystemFile(const File& file, const wchar_t* path) {
    const DWORD disposition = (file.accessFlags & FileCreateAndTruncate) ? CREATE_ALWAYS : OPEN_EXISTING;
    const DWORD pattern =
        (file.accessFlags & FileRandomAccess) ? FILE_FLAG_RANDOM_ACCESS : FILE_FLAG_SEQUENTIAL_SCAN;
    try {
        return CreateFileW(ToSystemPath(path).c_str(), DesiredAccess(file.accessFlags), file.shareMode,
                           nullptr, disposition, FILE_ATTRIBUTE_NORMAL | pattern, nullptr);
    } catch (const std::exception&) { // no memory for the path
        return INVALID_HANDLE_VALUE;
    }
}

} // namespace

OpenOutcome TryOpenFile(File& file, const wchar_t* path) {
    if (file.handle != File::InvalidHandle) {
        return OpenOutcome::AlreadyOpen;
    }
    if (DesiredAccess(file.accessFlags) == 0) {
        return OpenOutcome::NoAccess;
    }
    const HANDLE handle = path ? OpenSystemFile(file, path) : INVALID_HANDLE_VALUE;
    if (handle == INVALID_HANDLE_VALUE) {
        return OpenOutcome::Refused;
    }
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(handle, &size)) {
        CloseHandle(handle);
        return OpenOutcome::NoSize;
    }
    file.handle = reinterpret_cast<intptr_t>(handle);
    file.size = static_cast<uint64_t>(size.QuadPart);
    file.position = 0;
    return OpenOutcome::Done;
}

void ReportOpenOutcome(OpenOutcome outcome) {
    PLATFORM_ASSERT_TEXT_MESSAGE(outcome != OpenOutcome::NoAccess, "false",
                                 "File access flags not specified");
    PLATFORM_ASSERT_TEXT_MESSAGE(outcome != OpenOutcome::NoSize, "false", "Invalid file size, closing file");
}

bool OpenFile(File& file, const wchar_t* path) {
    const OpenOutcome outcome = TryOpenFile(file, path);
    ReportOpenOutcome(outcome);
    return outcome == OpenOutcome::Done;
}

bool CloseFile(File& file) {
    PLATFORM_ASSERT_TEXT_MESSAGE(file.handle != File::InvalidHandle, "file_handle != INVALID_HANDLE_VALUE",
                                 "Invalid File Handle passed into CloseFile");
    if (file.handle == File::InvalidHandle) {
        return false;
    }
    const bool isClosed = CloseHandle(HandleOf(file)) != 0;
    PLATFORM_ASSERT_TEXT_MESSAGE(isClosed, "false", "File close failed");
    if (isClosed) {
        file.handle = File::InvalidHandle;
        file.accessFlags = 0;
        file.position = 0;
        file.size = 0;
    }
    return isClosed;
}

bool WriteFileAt(File& file, uint64_t uiPos, const void* data, uint32_t length) {
    OVERLAPPED where = {};
    where.Offset = static_cast<DWORD>(uiPos & 0xFFFFFFFF);
    where.OffsetHigh = static_cast<DWORD>(uiPos >> 32);
    DWORD nBytesWritten = 0;
    if (!WriteFile(HandleOf(file), data, length, &nBytesWritten, &where)) {
        const auto error = static_cast<unsigned>(GetLastError());
        PLATFORM_ASSERT_MESSAGE(false, "File write failed. Error code is %u", error);
        return false;
    }
    PLATFORM_ASSERT_TEXT(nBytesWritten <= Types::Limits<size_t>::Max - uiPos,
                         "nBytesWritten <= (Types::Limits<size_t>::Max - uiPos)");
    file.position = uiPos + nBytesWritten;
    if (file.position > file.size) {
        file.size = file.position;
    }
    return nBytesWritten == length;
}

} // namespace Platform
