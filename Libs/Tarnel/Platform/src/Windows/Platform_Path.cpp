#include "Libs/Tarnel/Platform/src/Common/Platform_Path.h"

#include <windows.h>

#include <algorithm>
#include <exception>

namespace Platform {
namespace {

constexpr std::wstring_view LiteralPrefix = L"\\\\?\\";
constexpr std::wstring_view DevicePrefix = L"\\\\.\\"; // leads to the same names
constexpr std::wstring_view SharePrefix = L"\\\\";
constexpr std::wstring_view ShareRoot = L"UNC\\";

bool HasDrive(std::wstring_view path) {
    return path.size() >= 2 && path[1] == L':';
}

// The system's own answer to a question whose answer may be of any length: ask(room, buffer) returns the
// length, or the room that it wants. Empty for no answer.
template <class Ask>
std::wstring Answer(Ask ask) {
    std::wstring answer(MAX_PATH, L'\0');
    for (;;) {
        const auto room = static_cast<DWORD>(answer.size());
        const DWORD length = ask(room, answer.data());
        if (length < room) {
            answer.resize(length);
            return answer;
        }
        answer.resize(std::max<std::size_t>(length, std::size_t{room} * 2));
    }
}

std::wstring CurrentFolder() {
    return Answer([](DWORD room, wchar_t* buffer) { return GetCurrentDirectoryW(room, buffer); });
}

// Each drive has a current folder of its own, which only this call returns.
std::wstring CurrentFolderOf(wchar_t drive) {
    const wchar_t path[] = {drive, L':', L'.', 0};
    return Answer([&](DWORD room, wchar_t* buffer) { return GetFullPathNameW(path, room, buffer, nullptr); });
}

// Where the root of a path without its prefix ends: after C: or after UNC\server\share.
std::size_t EndOfRoot(std::wstring_view path) {
    std::size_t end = 0;
    for (int part = path.starts_with(ShareRoot) ? 3 : 1; part > 0; --part) {
        end = std::min(path.find(L'\\', end + (end > 0 ? 1 : 0)), path.size());
    }
    return end;
}

// The absolute path that follows the prefix. path has backslashes.
std::wstring WithoutPrefix(const std::wstring& path) {
    if (path.starts_with(LiteralPrefix) || path.starts_with(DevicePrefix)) {
        return path.substr(LiteralPrefix.size());
    }
    if (path.starts_with(SharePrefix)) {
        return std::wstring(ShareRoot).append(path, SharePrefix.size());
    }
    if (HasDrive(path)) {
        return path.size() > 2 && path[2] == L'\\' ? path : CurrentFolderOf(path[0]) + L'\\' + path.substr(2);
    }
    const std::wstring current = WithoutPrefix(CurrentFolder() + L'\\');
    return path[0] == L'\\' ? current.substr(0, EndOfRoot(current)) + path : current + path;
}

} // namespace

std::size_t ResolvePath(std::wstring& path) {
    std::ranges::replace(path, L'/', L'\\');
    const std::wstring absolute = WithoutPrefix(path);
    const std::size_t end = EndOfRoot(absolute);
    path.assign(LiteralPrefix).append(absolute, 0, end).append(1, L'\\');
    const std::size_t rootLength = path.size();
    AppendNames(path, std::wstring_view(absolute).substr(end));
    return rootLength;
}

std::string FullPath(const std::string& path) {
    std::string full;
    return ToUtf8(SystemPath(path).Text(), full) == NoError && !full.empty() ? full : path;
}

std::string OwnProgramPath() noexcept try {
    const std::wstring path =
        Answer([](DWORD room, wchar_t* buffer) { return GetModuleFileNameW(nullptr, buffer, room); });
    std::string utf8;
    static_cast<void>(ToUtf8(path, utf8)); // empty after a failure
    return utf8;
} catch (const std::exception&) {
    return {};
}

} // namespace Platform
