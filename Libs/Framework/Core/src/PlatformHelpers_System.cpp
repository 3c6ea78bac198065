#include <array>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <system_error>

#include <windows.h>

#include <psapi.h>

#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Windows/Platform_WindowsFile.h"

using Platform::KernelHandle;

namespace PlatformHelpers {

namespace {

constexpr std::size_t MaxProcesses = 4096;
constexpr DWORD MaxImagePath = 4096; // UTF-16 units; no program starts from a longer path

// The limited right is enough for the image's name. Protected games, and those of other users, grant no
// other.
KernelHandle OpenForName(uint32_t processId) {
    HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId);
    return KernelHandle(process ? process : OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
}

// A value of a version resource: its bytes, or its characters with the terminator. No data if it is not
// there.
struct Value {
    const void* data = nullptr;
    UINT size = 0;
};

Value Query(const std::vector<uint8_t>& block, const char* name) {
    void* data = nullptr;
    UINT size = 0;
    if (!VerQueryValueA(block.data(), name, &data, &size)) {
        return {};
    }
    return {data, size};
}

ResultCode LoadBlock(const Platform::SystemPath& path, std::vector<uint8_t>& block) {
    block.resize(Platform::VersionResourceSize(path));
    if (block.empty()) {
        return "File version info size was incorrect";
    }
    return Platform::ReadVersionResource(path, block) ? Platform::Success
                                                      : ResultCode("Failed to get file version info");
}

ResultCode ReadNumbers(const std::vector<uint8_t>& block, ModuleVersion& version) {
    const Value root = Query(block, "\\");
    if (!root.data || root.size < sizeof(VS_FIXEDFILEINFO)) {
        return "Failed to query resources for version info";
    }
    VS_FIXEDFILEINFO fixed;
    std::memcpy(&fixed, root.data, sizeof(fixed));
    version = {HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS), HIWORD(fixed.dwFileVersionLS),
               LOWORD(fixed.dwFileVersionLS)};
    return Platform::Success;
}

// 1234 for "2.0.0.8 (1234)": the decimal number after the first "(".
std::optional<uint32_t> ParseChangelist(std::string_view fileVersion) {
    const std::size_t bracket = fileVersion.find('(');
    if (bracket == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view number = fileVersion.substr(bracket + 1);
    uint32_t changelist = 0;
    const auto parsed = std::from_chars(number.data(), number.data() + number.size(), changelist);
    return parsed.ec == std::errc() ? std::optional(changelist) : std::nullopt;
}

ResultCode ReadChangelist(const std::vector<uint8_t>& block, uint32_t& changelist) {
    const Value translation = Query(block, R"(\VarFileInfo\Translation)");
    if (!translation.data) {
        return "Failed to query resources for localization";
    }
    uint16_t languageAndCodePage[2];
    if (translation.size < sizeof(languageAndCodePage)) {
        return "Failed to query resources for localized code pages";
    }
    std::memcpy(languageAndCodePage, translation.data, sizeof(languageAndCodePage));
    char name[512];
    std::snprintf(name, sizeof(name), R"(\StringFileInfo\%04x%04x\FileVersion)", languageAndCodePage[0],
                  languageAndCodePage[1]);
    const Value fileVersion = Query(block, name);
    if (!fileVersion.data) {
        return "Failed to query resources for localized version info";
    }
    const auto parsed = ParseChangelist({static_cast<const char*>(fileVersion.data), fileVersion.size});
    if (!parsed) {
        return "Failed to find changelist in resources for localized version info";
    }
    changelist = *parsed;
    return Platform::Success;
}

} // namespace

ResultCode EnumerateProcesses(std::vector<uint32_t>& processIds) {
    return ExceptionToResult([&]() -> ResultCode {
        processIds.clear();
        std::array<DWORD, MaxProcesses> ids;
        DWORD bytes = 0;
        if (!K32EnumProcesses(ids.data(), static_cast<DWORD>(sizeof(ids)), &bytes)) {
            return "Failed to enumerate processes";
        }
        processIds.assign(ids.begin(), ids.begin() + bytes / sizeof(DWORD));
        return Platform::Success;
    });
}

ResultCode GetProcessImageName(uint32_t processId, std::string& name) {
    return ExceptionToResult([&]() -> ResultCode {
        name.clear();
        const KernelHandle process = OpenForName(processId);
        if (!process) {
            return "Failed to open process";
        }
        wchar_t image[MaxImagePath];
        const DWORD length = K32GetProcessImageFileNameW(process.Get(), image, MaxImagePath);
        if (length == 0 || Platform::ToUtf8(std::wstring(image, length), name) != Platform::NoError) {
            return "Failed get process name";
        }
        return Platform::Success;
    });
}

ResultCode GetProcessCreationTime(uint32_t processId, uint64_t& creationTime) {
    creationTime = 0;
    const KernelHandle process = OpenForName(processId);
    if (!process) {
        return "Failed to open process";
    }
    FILETIME created = {};
    FILETIME ended = {};
    FILETIME kernel = {};
    FILETIME user = {};
    DWORD exitCode = 0;
    if (!GetProcessTimes(process.Get(), &created, &ended, &kernel, &user) ||
        !GetExitCodeProcess(process.Get(), &exitCode) || exitCode != STILL_ACTIVE) {
        return "Failed to get process creation time";
    }
    creationTime = Platform::ToNumber(created);
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
    return ExceptionToResult([&]() -> ResultCode {
        processIds.clear();
        std::vector<uint32_t> all;
        RETURN_IF_FAILED(EnumerateProcesses(all));
        std::string image;
        for (const uint32_t id : all) {
            if (id != 0 && GetProcessImageName(id, image) && ImageNameMatches(image, name)) {
                processIds.push_back(id);
            }
        }
        return Platform::Success;
    });
}

ResultCode GetModuleVersion(const std::string& modulePath, ModuleVersion& version, uint32_t& changelist) {
    const Platform::SystemPath path(modulePath);
    if (path.Error() != Platform::NoError) {
        return "GetModuleVersion failed! Failed to convert module path from multi-byte to wide string!";
    }
    version = {};
    changelist = 0;
    return ExceptionToResult([&]() -> ResultCode {
        std::vector<uint8_t> block;
        RETURN_IF_FAILED(LoadBlock(path, block));
        RETURN_IF_FAILED(ReadNumbers(block, version));
        return ReadChangelist(block, changelist);
    });
}

ResultCode GetUserFolder(const std::string& applicationFolderName, std::string& folder) {
    if (applicationFolderName.empty()) {
        return "Application data folder is not set";
    }
    return ExceptionToResult([&]() -> ResultCode {
        std::wstring documents;
        uint32_t answer = Platform::FindDocumentsFolder(documents);
        if (answer == static_cast<uint32_t>(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND))) {
            answer = Platform::FindDocumentsFolder(documents);
        }
        if (FAILED(answer)) {
            PLATFORM_LOG(Platform::ErrorLog, " Failed to create user's folder! Error=0x%08X",
                         static_cast<unsigned>(GetLastError()));
            return "Failed to get user folder";
        }
        // Paths are UTF-8 throughout, which is also the program's narrow code page.
        std::string path;
        if (documents.empty() || Platform::ToUtf8(documents, path) != Platform::NoError) {
            return "Failed to translate user folder to MBCS";
        }
        folder = path + '\\' + applicationFolderName;
        return Platform::Success;
    });
}

} // namespace PlatformHelpers
