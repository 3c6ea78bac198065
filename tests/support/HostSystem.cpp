#include "tests/support/HostSystem.h"

#include <windows.h>

#include <functional>

#include "tests/support/ScratchFolder.h"

namespace TestSupport {

namespace {

// Runs Z:\bin\<name> in the folder and polls until its work is done. False if there is no such program. The
// handles that Wine returns for a program of its host are invalid: they can't be waited for and must not be
// closed.
bool RunOfHost(const std::wstring& name, const std::wstring& arguments, const std::filesystem::path& folder,
               const std::function<bool()>& isDone) {
    std::wstring command = name + L" " + arguments;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW((L"Z:\\bin\\" + name).c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        folder.c_str(), &startup, &process)) {
        return false;
    }
    for (int i = 0; i < 500 && !isDone(); ++i) {
        Sleep(10);
    }
    return isDone();
}

bool IsThere(const std::filesystem::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::wstring QuotedName(const std::filesystem::path& path) {
    return L"\"" + path.filename().wstring() + L"\"";
}

} // namespace

Link::Link(const std::string& link, const std::string& target, bool isFolder)
    : m_path(ScratchFolder::FromUtf8(link)), m_isFolder(isFolder) {
    constexpr DWORD AllowForEverybody = 2; // where the developer mode is on
    std::filesystem::path targetPath = ScratchFolder::FromUtf8(target);
    const std::wstring arguments = L"-s \"" + targetPath.wstring() + L"\" " + QuotedName(m_path);
    const DWORD flags = AllowForEverybody | (isFolder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0);
    m_isMade = (CreateSymbolicLinkW(m_path.c_str(), targetPath.make_preferred().c_str(), flags) &&
                IsThere(m_path)) ||
               RunOfHost(L"ln", arguments, m_path.parent_path(), [this] { return IsThere(m_path); });
}

Link::~Link() {
    if (!RunOfHost(L"rm", L"-f " + QuotedName(m_path), m_path.parent_path(),
                   [this] { return !IsThere(m_path); })) {
        m_isFolder ? RemoveDirectoryW(m_path.c_str()) : DeleteFileW(m_path.c_str());
    }
}

bool SetFolderReadOnly(const std::string& folder, bool isReadOnly) {
    const std::filesystem::path path = ScratchFolder::FromUtf8(folder);
    const auto isDone = [&] {
        return ((GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY) != 0) == isReadOnly;
    };
    SetFileAttributesW(path.c_str(), isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    return isDone() || RunOfHost(L"chmod", (isReadOnly ? L"a-w " : L"u+w ") + QuotedName(path),
                                 path.parent_path(), isDone);
}

} // namespace TestSupport
