#include "Libs/Framework/Core/src/PlatformHelpers_Version.h"

#include <charconv>
#include <cstdio>
#include <cstring>

#include <windows.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Framework/Core/src/PlatformHelpers_Encoding.h"

namespace PlatformHelpers {

namespace {

// A value of the block: its bytes, or its characters with the terminator. No data when the block lacks it.
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

ResultCode LoadBlock(const std::wstring& path, std::vector<uint8_t>& block) {
    DWORD unused = 0;
    const DWORD size = GetFileVersionInfoSizeW(path.c_str(), &unused);
    if (size == 0) {
        return "File version info size was incorrect";
    }
    block.resize(size);
    if (!GetFileVersionInfoW(path.c_str(), 0, size, block.data())) {
        return "Failed to get file version info";
    }
    return Platform::Success;
}

ResultCode ReadNumbers(const std::vector<uint8_t>& block, ModuleVersion& version) {
    const Value root = Query(block, "\\");
    if (!root.data || root.size < sizeof(VS_FIXEDFILEINFO)) {
        return "Failed to query resources for version info";
    }
    VS_FIXEDFILEINFO fixed;
    std::memcpy(&fixed, root.data, sizeof fixed);
    version = {HIWORD(fixed.dwFileVersionMS), LOWORD(fixed.dwFileVersionMS), HIWORD(fixed.dwFileVersionLS),
               LOWORD(fixed.dwFileVersionLS)};
    return Platform::Success;
}

ResultCode ReadChangelist(const std::vector<uint8_t>& block, uint32_t& changelist) {
    const Value translation = Query(block, R"(\VarFileInfo\Translation)");
    if (!translation.data) {
        return "Failed to query resources for localization";
    }
    uint16_t languageAndCodePage[2];
    if (translation.size < sizeof languageAndCodePage) {
        return "Failed to query resources for localized code pages";
    }
    std::memcpy(languageAndCodePage, translation.data, sizeof languageAndCodePage);
    char name[512];
    std::snprintf(name, sizeof name, R"(\StringFileInfo\%04x%04x\FileVersion)", languageAndCodePage[0],
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

std::optional<uint32_t> ParseChangelist(std::string_view fileVersion) {
    const std::size_t bracket = fileVersion.find('(');
    if (bracket == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view number = fileVersion.substr(bracket + 1);
    uint32_t changelist = 0;
    if (std::from_chars(number.data(), number.data() + number.size(), changelist).ec != std::errc()) {
        return std::nullopt;
    }
    return changelist;
}

ResultCode GetModuleVersion(const std::string& modulePath, ModuleVersion& version, uint32_t& changelist) {
    std::wstring path;
    if (!ToSystemPath(modulePath, path)) {
        return "GetModuleVersion failed! Failed to convert module path from multi-byte to wide string!";
    }
    version = {};
    changelist = 0;
    std::vector<uint8_t> block;
    ResultCode result = LoadBlock(path, block);
    if (result) {
        result = ReadNumbers(block, version);
    }
    if (result) {
        result = ReadChangelist(block, changelist);
    }
    return result;
}

} // namespace PlatformHelpers
