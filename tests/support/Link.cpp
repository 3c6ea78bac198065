#include "tests/support/Link.h"

#include <windows.h>

#include "tests/support/ScratchFolder.h"

namespace TestSupport {

namespace {

bool Exists(const std::filesystem::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Runs a program of Wine's host in the path's folder and polls until the path exists, or does not. The
// handles that Wine returns for such a program are invalid: they can't be waited for and must not be closed.
void RunOnHost(std::wstring command, const std::filesystem::path& path, bool exists) {
    const std::wstring program = L"Z:\\bin\\" + command.substr(0, command.find(L' '));
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                       path.parent_path().c_str(), &startup, &process)) {
        for (int i = 0; i < 500 && Exists(path) != exists; ++i) {
            Sleep(10);
        }
    }
}

} // namespace

Link::Link(const std::string& link, const std::string& target, bool isFolder)
    : m_path(ScratchFolder::FromUtf8(link)), m_isFolder(isFolder) {
    // 2: without being administrator
    const DWORD flags = (isFolder ? DWORD{SYMBOLIC_LINK_FLAG_DIRECTORY} : 0u) | 2u;
    const std::filesystem::path to = ScratchFolder::FromUtf8(target);
    CreateSymbolicLinkW(m_path.c_str(), std::filesystem::path(to).make_preferred().c_str(), flags);
    if (!Exists(m_path)) {
        RunOnHost(L"ln -s \"" + to.wstring() + L"\" \"" + m_path.filename().wstring() + L"\"", m_path, true);
    }
}

Link::~Link() {
    RunOnHost(L"rm -f \"" + m_path.filename().wstring() + L"\"", m_path, false);
    if (Exists(m_path)) {
        (m_isFolder ? RemoveDirectoryW : DeleteFileW)(m_path.c_str());
    }
}

Link::operator bool() const {
    return Exists(m_path);
}

} // namespace TestSupport
