#include <array>

#include <windows.h>

#include <psapi.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"

namespace PlatformHelpers {

namespace {

constexpr std::size_t MaxProcesses = 4096;
constexpr DWORD MaxImagePath = 4096; // UTF-16 units, far beyond what a program can be started from

// The image's name needs no more than the limited right, which also another user's or a protected game
// grants.
HANDLE OpenForName(uint32_t processId) {
    HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    return process ? process : OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
}

} // namespace

ResultCode EnumerateProcesses(std::vector<uint32_t>& processIds) {
    processIds.clear();
    std::array<DWORD, MaxProcesses> ids;
    DWORD bytes = 0;
    if (!K32EnumProcesses(ids.data(), static_cast<DWORD>(sizeof ids), &bytes)) {
        return "Failed to enumerate processes";
    }
    processIds.assign(ids.begin(), ids.begin() + bytes / sizeof(DWORD));
    return Platform::Success;
}

ResultCode GetProcessImageName(uint32_t processId, std::string& name) {
    name.clear();
    HANDLE process = OpenForName(processId);
    if (!process) {
        return "Failed to open process";
    }
    wchar_t image[MaxImagePath];
    const DWORD length = K32GetProcessImageFileNameW(process, image, MaxImagePath);
    CloseHandle(process);
    if (length == 0 || !WideToUtf8({image, length}, name)) {
        return "Failed get process name";
    }
    return Platform::Success;
}

ResultCode GetProcessCreationTime(uint32_t processId, uint64_t& creationTime) {
    creationTime = 0;
    HANDLE process = OpenForName(processId);
    if (!process) {
        return "Failed to open process";
    }
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME kernel = {};
    FILETIME user = {};
    DWORD exitCode = 0;
    const bool isRunning = GetProcessTimes(process, &created, &ended, &kernel, &user) &&
                           GetExitCodeProcess(process, &exitCode) && exitCode == STILL_ACTIVE;
    CloseHandle(process);
    if (!isRunning) {
        return "Failed to get process creation time";
    }
    creationTime = uint64_t{created.dwHighDateTime} << 32 | created.dwLowDateTime;
    return Platform::Success;
}

bool ImageNameMatches(std::string_view image, std::string_view name) {
    std::wstring wideImage;
    std::wstring wideName;
    if (name.empty() || !Utf8ToWide(image, wideImage) || !Utf8ToWide(name, wideName) ||
        wideImage.size() < wideName.size()) {
        return false;
    }
    const int length = static_cast<int>(wideName.size());
    const wchar_t* end = wideImage.data() + (wideImage.size() - wideName.size());
    return CompareStringOrdinal(end, length, wideName.data(), length, TRUE) == CSTR_EQUAL;
}

ResultCode FindProcessesByName(const std::string& name, std::vector<uint32_t>& processIds) {
    processIds.clear();
    std::vector<uint32_t> all;
    if (const ResultCode result = EnumerateProcesses(all); !result) {
        return result;
    }
    std::string image;
    for (const uint32_t id : all) {
        if (id != 0 && GetProcessImageName(id, image) && ImageNameMatches(image, name)) {
            processIds.push_back(id);
        }
    }
    return Platform::Success;
}

} // namespace PlatformHelpers
