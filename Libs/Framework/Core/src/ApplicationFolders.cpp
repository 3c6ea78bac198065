#include "Libs/Framework/Core/src/ApplicationFolders.h"

#include "Libs/Framework/Core/src/ApplicationBase.h"
#include "Libs/Framework/Core/src/CommandLine.h"
#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

namespace {

std::string ProgramPath(int argc, const char** argv) {
    const bool hasPath = argc > 0 && argv && argv[0];
    PLATFORM_ASSERT_TEXT(hasPath, "argv[0]");
    PLATFORM_ASSERT_TEXT(hasPath && argv[0][0], "argv[0][0]");
    return hasPath ? argv[0] : "";
}

std::string DocumentsFolder(const std::string& name) {
    std::string folder;
    const ResultCode result = PlatformHelpers::GetUserFolder(name, folder);
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to determine OS specified application data folder! Error=%s", result.Text());
        return {};
    }
    return folder;
}

} // namespace

std::string ResolveConfigPath(int argc, const char** argv) {
    const std::string fallback = ProgramPath(argc, argv) + ".json";
    return CommandLine::FindOption(argc, argv, "-config").value_or(fallback);
}

std::string ResolveApplicationFolder(int argc, const char** argv, const std::string& configuredName) {
    std::string folder = CommandLine::FindOption(argc, argv, "-appFolder").value_or("");
    if (folder.empty() && !configuredName.empty()) {
        folder = DocumentsFolder(configuredName);
    }
    if (folder.empty()) {
        folder = DocumentsFolder(GetApplicationDisplayName());
    }
    return folder;
}

std::string ResolveLogFolder(int argc, const char** argv, const std::string& fallback) {
    return CommandLine::FindOption(argc, argv, "-log").value_or(fallback);
}

ResultCode CreateMissingFolder(const std::string& folder) {
    if (!PlatformHelpers::PathExists(folder)) {
        return PlatformHelpers::CreateFolderTree(folder);
    }
    PlatformHelpers::FileStatus status;
    RETURN_IF_FAILED(PlatformHelpers::QueryFileStatus(folder, status));
    return status.isFolder ? Platform::Success : ResultCode("A file has the name of the folder");
}

ResultCode SetLogRootFolder(const std::string& folder) {
    std::wstring wide;
    if (Platform::ConvertString(folder, wide) != Platform::ConvertString_Done) {
        return "Failed to translate log folder encoding";
    }
    EXP_SetLogRoot(wide.c_str());
    return Platform::Success;
}
