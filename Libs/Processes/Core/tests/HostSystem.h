#pragma once

#include <windows.h>

#include <filesystem>
#include <functional>
#include <string>

#include "Libs/Framework/Core/tests/TestSupport.h"

// What Wine can't do to a folder, a program of its host can; Windows needs none.
namespace TestSupport {

// Runs Z:\bin\<name> with one line of arguments in the folder and waits until it has done its work: Wine
// gives no process to wait for. False when there is no such program.
[[nodiscard]] inline bool RunOfHost(const std::wstring& name, const std::wstring& arguments,
                                    const std::filesystem::path& folder,
                                    const std::function<bool()>& isDone) {
    std::wstring command = name + L" " + arguments;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW((L"Z:\\bin\\" + name).c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        folder.c_str(), &startup, &process)) {
        return false;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    for (int i = 0; i < 500 && !isDone(); ++i) {
        Sleep(10);
    }
    return isDone();
}

// A symbolic link for one test. Windows makes links for an administrator or in developer mode; a link that
// could not be made tests as false.
class Link {
public:
    // target is relative to the link's folder.
    Link(const std::string& link, const std::string& target, bool isFolder)
        : m_path(ScratchFolder::FromUtf8(link)), m_isFolder(isFolder) {
        constexpr DWORD AllowForEverybody = 2; // where the developer mode is on
        std::filesystem::path targetPath = ScratchFolder::FromUtf8(target);
        const std::wstring arguments = L"-s \"" + targetPath.wstring() + L"\" " + QuotedName();
        const DWORD flags = AllowForEverybody | (isFolder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0);
        m_isMade =
            (CreateSymbolicLinkW(m_path.c_str(), targetPath.make_preferred().c_str(), flags) && IsThere()) ||
            RunOfHost(L"ln", arguments, m_path.parent_path(), [this] { return IsThere(); });
    }
    ~Link() {
        if (!RunOfHost(L"rm", L"-f " + QuotedName(), m_path.parent_path(), [this] { return !IsThere(); })) {
            m_isFolder ? RemoveDirectoryW(m_path.c_str()) : DeleteFileW(m_path.c_str());
        }
    }
    Link(const Link&) = delete; // it stands for what is on disk
    Link& operator=(const Link&) = delete;

    explicit operator bool() const { return m_isMade; }

private:
    bool IsThere() const { return GetFileAttributesW(m_path.c_str()) != INVALID_FILE_ATTRIBUTES; }
    std::wstring QuotedName() const { return L"\"" + m_path.filename().wstring() + L"\""; }

    std::filesystem::path m_path;
    bool m_isFolder;
    bool m_isMade = false;
};

// Gives or takes the folder's own read-only attribute, of which Wine changes only that of files.
[[nodiscard]] inline bool SetFolderReadOnly(const std::string& folder, bool isReadOnly) {
    const std::filesystem::path path = ScratchFolder::FromUtf8(folder);
    const auto isDone = [&] {
        return ((GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY) != 0) == isReadOnly;
    };
    SetFileAttributesW(path.c_str(), isReadOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    return isDone() ||
           RunOfHost(L"chmod", (isReadOnly ? L"a-w \"" : L"u+w \"") + path.filename().wstring() + L"\"",
                     path.parent_path(), isDone);
}

} // namespace TestSupport
