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

// target is relative to the link's folder. Windows makes links for an administrator or in developer mode.
// False when this system makes none.
[[nodiscard]] inline bool MakeLink(const std::string& link, const std::string& target, bool isFolder) {
    constexpr DWORD AllowForEverybody = 2; // where the developer mode is on
    const std::filesystem::path path = ScratchFolder::FromUtf8(link);
    std::filesystem::path targetPath = ScratchFolder::FromUtf8(target);
    const std::wstring arguments =
        L"-s \"" + targetPath.wstring() + L"\" \"" + path.filename().wstring() + L"\"";
    const auto isThere = [&path] { return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES; };
    const DWORD flags = AllowForEverybody | (isFolder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0);
    if (CreateSymbolicLinkW(path.c_str(), targetPath.make_preferred().c_str(), flags) && isThere()) {
        return true;
    }
    return RunOfHost(L"ln", arguments, path.parent_path(), isThere);
}

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
