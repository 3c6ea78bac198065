#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

#include <windows.h>

#include <algorithm>
#include <exception>
#include <new>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

namespace Platform {
namespace {

static_assert(ReadOnlyAttribute == FILE_ATTRIBUTE_READONLY && FolderAttribute == FILE_ATTRIBUTE_DIRECTORY &&
              ReparseAttribute == FILE_ATTRIBUTE_REPARSE_POINT);
static_assert(ShareRead == FILE_SHARE_READ && ShareWrite == FILE_SHARE_WRITE &&
              ShareDelete == FILE_SHARE_DELETE);

constexpr std::size_t MaxPiece = std::size_t{1} << 20; // of one call, whose lengths are of 32 bits

// Of a call that failed: never 0.
SystemError LastError() {
    const DWORD error = GetLastError();
    return error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error;
}

SystemError ErrorUnless(bool succeeded) {
    return succeeded ? NoError : LastError();
}

uint64_t Join(DWORD high, DWORD low) {
    return uint64_t{high} << 32 | low;
}

uint64_t ToNumber(const FILETIME& time) {
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

// linkFlag: FILE_FLAG_OPEN_REPARSE_POINT opens a link itself.
KernelHandle OpenToAsk(const SystemPath& path, DWORD linkFlag) {
    return KernelHandle(CreateFileW(path.Get(), FILE_READ_ATTRIBUTES, ShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_BACKUP_SEMANTICS | linkFlag, nullptr));
}

bool AskWhatItIs(const KernelHandle& handle, FileInfo& info) {
    FILE_ATTRIBUTE_TAG_INFO tag = {};
    if (!GetFileInformationByHandleEx(handle.Get(), FileAttributeTagInfo, &tag, sizeof(tag))) {
        return false;
    }
    info.attributes = tag.FileAttributes;
    info.reparseTag = tag.ReparseTag;
    return true;
}

// What the system calls the opened file, after all links and without its volume. Empty if there is no answer.
std::wstring NameOf(NativeHandle handle) {
    constexpr std::size_t MaxPathUnits = 32768;
    struct {
        DWORD bytes;
        wchar_t name[MaxPathUnits];
    } answer;
    const bool answered = GetFileInformationByHandleEx(handle, FileNameInfo, &answer, sizeof(answer)) != 0;
    return answered ? std::wstring(answer.name, answer.bytes / sizeof(wchar_t)) : std::wstring();
}

DWORD VolumeOf(NativeHandle handle) {
    BY_HANDLE_FILE_INFORMATION data = {};
    return GetFileInformationByHandle(handle, &data) ? data.dwVolumeSerialNumber : 0;
}

// Without the dots and blanks at the end of every name: some layers report names without them.
std::wstring WithoutNameTails(std::wstring_view path) {
    std::wstring plain;
    for (const wchar_t unit : path) {
        while (unit == L'\\' && !plain.empty() && (plain.back() == L'.' || plain.back() == L' ')) {
            plain.pop_back();
        }
        plain.push_back(unit);
    }
    plain.resize(plain.find_last_not_of(L". ") + 1);
    return plain;
}

// Whether the opened file is the one of that name below the opened folder, and no other that a link leads to.
bool IsNamedBelow(NativeHandle file, NativeHandle folder, std::wstring_view name) {
    std::wstring expected = NameOf(folder);
    if (expected.empty() || VolumeOf(file) != VolumeOf(folder)) {
        return false;
    }
    expected.append(expected.back() == L'\\' ? L"" : L"\\").append(name);
    expected = WithoutNameTails(expected);
    const std::wstring actual = WithoutNameTails(NameOf(file));
    return CompareStringOrdinal(actual.c_str(), static_cast<int>(actual.size()), expected.c_str(),
                                static_cast<int>(expected.size()), TRUE) == CSTR_EQUAL;
}

// Wine resolves links of its host without being asked, so a call meant for the link would reach its target.
// On Windows this is never true.
bool IsHostLink(const SystemPath& path) noexcept try {
    static const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    if (!isWine || path.IsRoot()) {
        return false;
    }
    const SystemPath parent = path.Parent();
    const KernelHandle opened = OpenToAsk(path, FILE_FLAG_OPEN_REPARSE_POINT);
    const KernelHandle folder = OpenToAsk(parent, 0);
    return opened && folder &&
           !IsNamedBelow(opened.Get(), folder.Get(), path.Text().substr(path.Text().rfind(L'\\') + 1));
} catch (const std::exception&) {
    return true; // unknown: treat it as a link, never follow it
}

// Calls change with the path's text, unless it leads elsewhere.
template <class Change>
SystemError ChangeEntry(const SystemPath& path, Change change) noexcept {
    if (path.Error() != NoError) {
        return path.Error();
    }
    return IsHostLink(path) ? ERROR_SYMLINK_NOT_SUPPORTED : ErrorUnless(change(path.Get()));
}

} // namespace

bool CloseKernelHandle(NativeHandle handle) {
    return CloseHandle(handle) != 0;
}

bool CloseChangeHandle(NativeHandle handle) {
    return FindCloseChangeNotification(handle) != 0;
}

bool CloseSearchHandle(NativeHandle handle) {
    return FindClose(handle) != 0;
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

bool IsLink(const SystemPath& path) noexcept {
    const KernelHandle handle = OpenToAsk(path, FILE_FLAG_OPEN_REPARSE_POINT);
    FileInfo info;
    return handle && AskWhatItIs(handle, info) && (info.IsLink() || IsHostLink(path));
}

SystemError QueryIdentity(const SystemPath& path, FileIdentity& identity) noexcept {
    const KernelHandle handle = OpenToAsk(path, 0);
    BY_HANDLE_FILE_INFORMATION data = {};
    if (!handle || !GetFileInformationByHandle(handle.Get(), &data)) {
        return LastError();
    }
    identity = {data.dwVolumeSerialNumber, Join(data.nFileIndexHigh, data.nFileIndexLow)};
    return NoError;
}

namespace {

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

} // namespace

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

SystemError File::Read(std::span<uint8_t> buffer, std::size_t& count) noexcept {
    count = 0;
    DWORD transferred = 1;
    while (count < buffer.size() && transferred != 0) {
        const auto wanted = static_cast<DWORD>(std::min(buffer.size() - count, MaxPiece));
        if (!ReadFile(m_handle.Get(), buffer.data() + count, wanted, &transferred, nullptr)) {
            return LastError();
        }
        count += transferred;
    }
    return NoError;
}

SystemError File::Write(std::span<const uint8_t> bytes) noexcept {
    while (!bytes.empty()) {
        DWORD transferred = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), MaxPiece));
        if (!WriteFile(m_handle.Get(), bytes.data(), wanted, &transferred, nullptr) || transferred == 0) {
            return LastError();
        }
        bytes = bytes.subspan(transferred);
    }
    return NoError;
}

SystemError File::Flush() noexcept {
    return ErrorUnless(FlushFileBuffers(m_handle.Get()));
}

bool WriteFileAt(NativeHandle file, uint64_t uiPos, const void* data, uint32_t length) {
    OVERLAPPED where = {};
    where.Offset = static_cast<DWORD>(uiPos & 0xFFFFFFFF);
    where.OffsetHigh = static_cast<DWORD>(uiPos >> 32);
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

SystemError Folder::Open(SystemPath path) noexcept {
    m_path = std::move(path);
    m_handle = OpenToAsk(m_path, FILE_FLAG_OPEN_REPARSE_POINT);
    FileInfo info;
    if (!m_handle || !AskWhatItIs(m_handle, info)) {
        return m_path.Error() != NoError ? m_path.Error() : LastError();
    }
    return info.IsLink() || IsHostLink(m_path) ? NotInside : info.IsFolder() ? NoError : ERROR_DIRECTORY;
}

SystemError Folder::OpenFile(std::string_view name, Patience patience, File& file) const noexcept try {
    const SystemPath path = m_path.Within(name);
    if (!m_handle) {
        return ERROR_INVALID_HANDLE;
    }
    File opened;
    const SystemError error = opened.Open(path, FileRead, ShareAll, patience);
    if (error != NoError) {
        return error;
    }
    const std::size_t start = m_path.Text().size() + (m_path.IsRoot() ? 0 : 1);
    if (!IsNamedBelow(opened.Get(), m_handle.Get(), std::wstring_view(path.Text()).substr(start))) {
        return NotInside;
    }
    file = std::move(opened);
    return NoError;
} catch (const std::exception&) {
    return NoMemory;
}

struct FolderListing::Search {
    SearchHandle handle;
    WIN32_FIND_DATAW entry = {};
    bool isFirst = true;
};

FolderListing::FolderListing(const SystemPath& folder) noexcept {
    const SystemPath all = folder.Below(L"*");
    m_search.reset(new (std::nothrow) Search);
    m_error = !m_search ? NoMemory : all.Error();
    if (m_error == NoError) {
        m_search->handle =
            SearchHandle(FindFirstFileExW(all.Get(), FindExInfoBasic, &m_search->entry, FindExSearchNameMatch,
                                          nullptr, FIND_FIRST_EX_LARGE_FETCH));
        m_error = ErrorUnless(static_cast<bool>(m_search->handle));
    }
}

FolderListing::~FolderListing() = default;

bool FolderListing::Next() noexcept try {
    while (m_error == NoError) {
        const WIN32_FIND_DATAW& entry = m_search->entry;
        if (!std::exchange(m_search->isFirst, false) &&
            !FindNextFileW(m_search->handle.Get(), &m_search->entry)) {
            m_error =
                GetLastError() == ERROR_NO_MORE_FILES ? NoError : LastError(); // any other end hides entries
            return false;
        }
        m_name = entry.cFileName;
        m_info = ToFileInfo(entry);
        m_info.reparseTag = (m_info.attributes & ReparseAttribute) != 0 ? entry.dwReserved0 : 0;
        if (m_name != L"." && m_name != L"..") {
            return true;
        }
    }
    return false;
} catch (const std::exception&) {
    m_error = NoMemory;
    return false;
}

// Asks for the next change before the caller lists the folder: no change falls between the two.
bool FolderChanges::Any(const std::string& folder) noexcept {
    if (m_notification && WaitForSingleObject(m_notification.Get(), 0) == WAIT_OBJECT_0) {
        m_quietCalls = 0;
        if (!FindNextChangeNotification(m_notification.Get())) { // the folder was deleted
            static_cast<void>(m_notification.Close());
        }
        return true;
    }
    if (m_notification && ++m_quietCalls <= MostQuietCalls) {
        return false;
    }
    constexpr DWORD Changes = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_DIR_NAME |
                              FILE_NOTIFY_CHANGE_ATTRIBUTES | FILE_NOTIFY_CHANGE_SIZE |
                              FILE_NOTIFY_CHANGE_LAST_WRITE;
    m_quietCalls = 0;
    m_notification = ChangeHandle(FindFirstChangeNotificationW(SystemPath(folder).Get(), TRUE, Changes));
    return true;
}

uint64_t PreciseSystemTime() {
    FILETIME time = {};
    GetSystemTimePreciseAsFileTime(&time);
    return ToNumber(time);
}

} // namespace Platform
