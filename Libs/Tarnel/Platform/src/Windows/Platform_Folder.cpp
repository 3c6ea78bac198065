#include "Libs/Tarnel/Platform/src/Common/Platform_Folder.h"

#include <windows.h>

#include <exception>
#include <new>
#include <utility>

#include "Libs/Tarnel/Platform/src/Windows/Platform_WindowsFile.h"

namespace Platform {
namespace {

// linkFlag: FILE_FLAG_OPEN_REPARSE_POINT opens a link itself.
KernelHandle OpenToAsk(const SystemPath& path, DWORD linkFlag) {
    if (path.Error() != NoError) {
        SetLastError(path.Error());
        return {};
    }
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

// Where an opened file really is: its name after all links, without the volume.
struct Place {
    DWORD volume = 0;
    std::wstring name;
};

SystemError FindPlace(NativeHandle handle, Place& place) {
    constexpr std::size_t MaxPathUnits = 32768;
    struct {
        DWORD bytes;
        wchar_t name[MaxPathUnits];
    } answer;
    BY_HANDLE_FILE_INFORMATION data = {};
    if (!GetFileInformationByHandleEx(handle, FileNameInfo, &answer, sizeof(answer)) ||
        !GetFileInformationByHandle(handle, &data)) {
        return LastError();
    }
    place = {data.dwVolumeSerialNumber, std::wstring(answer.name, answer.bytes / sizeof(wchar_t))};
    return NoError;
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

// NotInside if the opened file is not the one of that name below the opened folder: a link led to it.
SystemError CheckPlace(NativeHandle file, NativeHandle folder, std::wstring_view name) {
    Place expected;
    Place actual;
    SystemError error = FindPlace(folder, expected);
    error = error == NoError ? FindPlace(file, actual) : error;
    if (error != NoError) {
        return error;
    }
    expected.name.append(expected.name.ends_with(L'\\') ? L"" : L"\\").append(name);
    expected.name = WithoutNameTails(expected.name);
    actual.name = WithoutNameTails(actual.name);
    const bool isSame =
        actual.volume == expected.volume &&
        CompareStringOrdinal(actual.name.c_str(), static_cast<int>(actual.name.size()), expected.name.c_str(),
                             static_cast<int>(expected.name.size()), TRUE) == CSTR_EQUAL;
    return isSame ? NoError : Folder::NotInside;
}

} // namespace

SystemError CheckForHostLink(const SystemPath& path) noexcept try {
    static const bool isWine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    if (!isWine || path.IsRoot()) {
        return NoError;
    }
    const SystemPath parent = path.Parent();
    const KernelHandle opened = OpenToAsk(path, FILE_FLAG_OPEN_REPARSE_POINT);
    if (!opened) {
        return LastError();
    }
    const KernelHandle folder = OpenToAsk(parent, 0);
    return folder ? CheckPlace(opened.Get(), folder.Get(), path.Text().substr(path.Text().rfind(L'\\') + 1))
                  : LastError();
} catch (const std::exception&) {
    return NoMemory;
}

// What the system can't tell counts as a link, which nobody follows.
bool IsLink(const SystemPath& path) noexcept {
    bool isLink = false;
    const SystemError error = RetryWhileHeld([&] {
        const KernelHandle handle = OpenToAsk(path, FILE_FLAG_OPEN_REPARSE_POINT);
        FileInfo info;
        if (!handle || !AskWhatItIs(handle, info)) {
            return LastError();
        }
        const SystemError hostLink = CheckForHostLink(path);
        isLink = info.IsLink() || hostLink == Folder::NotInside;
        return isLink ? NoError : hostLink;
    });
    return isLink || (error != NoError && !IsMissing(error));
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

SystemError Folder::Open(SystemPath path) noexcept {
    m_path = std::move(path);
    m_handle = OpenToAsk(m_path, FILE_FLAG_OPEN_REPARSE_POINT);
    FileInfo info;
    if (!m_handle || !AskWhatItIs(m_handle, info)) {
        return LastError();
    }
    const SystemError error = info.IsLink() ? NotInside : CheckForHostLink(m_path);
    return error != NoError || info.IsFolder() ? error : ERROR_DIRECTORY;
}

SystemError Folder::OpenFile(std::string_view name, Patience patience, File& file) const noexcept try {
    const SystemPath path = m_path.Within(name);
    if (!m_handle) {
        return ERROR_INVALID_HANDLE;
    }
    File opened;
    const std::size_t start = m_path.Text().size() + (m_path.IsRoot() ? 0 : 1);
    SystemError error = opened.Open(path, FileRead, ShareAll, patience);
    if (error == NoError) {
        error = CheckPlace(opened.Get(), m_handle.Get(), std::wstring_view(path.Text()).substr(start));
    }
    if (error == NoError) {
        file = std::move(opened);
    }
    return error;
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
            // Any other end hides entries.
            m_error = GetLastError() == ERROR_NO_MORE_FILES ? NoError : LastError();
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

bool CloseChangeHandle(NativeHandle handle) {
    return FindCloseChangeNotification(handle) != 0;
}

bool CloseSearchHandle(NativeHandle handle) {
    return FindClose(handle) != 0;
}

bool FolderChanges::NeedPass(const std::string& folder) noexcept {
    if (!Any(folder) && m_nothingLeft) {
        return false;
    }
    m_nothingLeft = false;
    return true;
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
    const SystemPath path(folder);
    m_notification = path.Error() == NoError
                         ? ChangeHandle(FindFirstChangeNotificationW(path.Get(), TRUE, Changes))
                         : ChangeHandle();
    return true;
}

} // namespace Platform
