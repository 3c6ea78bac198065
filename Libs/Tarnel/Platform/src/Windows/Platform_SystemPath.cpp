#include "Libs/Tarnel/Platform/src/Windows/Platform_SystemPath.h"

#include <exception>

#include <windows.h>

namespace Platform {
namespace {

// CreateDirectoryW leaves room for a file name of the old form behind the folder.
constexpr std::size_t ShortPathLimit = MAX_PATH - 12;

bool StartsWith(std::wstring_view text, std::wstring_view start) {
    return text.substr(0, start.size()) == start;
}

std::wstring FullPath(const std::wstring& path) {
    const DWORD room = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(room, L'\0');
    const DWORD length = GetFullPathNameW(path.c_str(), room, full.data(), nullptr);
    if (length == 0 || length >= room) { // not to be resolved: let the file call say why
        return path;
    }
    full.resize(length);
    return full;
}

} // namespace

std::wstring ToSystemPath(std::wstring_view wide) {
    std::wstring path(wide);
    if (path.empty() || StartsWith(path, L"\\\\?\\") || StartsWith(path, L"\\\\.\\")) {
        return path;
    }
    // A relative path counts with the folder it starts from.
    if (GetFullPathNameW(path.c_str(), 0, nullptr, nullptr) <= ShortPathLimit) {
        return path;
    }
    std::wstring full = FullPath(path);
    if (full.size() < ShortPathLimit || StartsWith(full, L"\\\\?\\") || StartsWith(full, L"\\\\.\\")) {
        return full;
    }
    return StartsWith(full, L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

EncodingOutcome ToSystemPath(std::string_view utf8, std::wstring& path) {
    path.clear();
    if (utf8.find('\0') != std::string_view::npos) {
        return EncodingOutcome::InvalidCharacter;
    }
    std::wstring wide;
    const EncodingOutcome outcome = Utf8ToWide(utf8, wide);
    if (outcome != EncodingOutcome::Done) {
        return outcome;
    }
    try {
        path = ToSystemPath(wide);
    } catch (const std::exception&) { // no memory
        return EncodingOutcome::OtherFailure;
    }
    return EncodingOutcome::Done;
}

} // namespace Platform
