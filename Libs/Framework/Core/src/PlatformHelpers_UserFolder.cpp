#include <memory>

#include <windows.h>

#include <initguid.h> // the folder's id gets its value in this unit

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include "Libs/Framework/Core/src/PlatformHelpers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace PlatformHelpers {

namespace {

struct TaskMemoryDeleter {
    void operator()(wchar_t* text) const { CoTaskMemFree(text); }
};
using TaskMemoryText = std::unique_ptr<wchar_t, TaskMemoryDeleter>;

HRESULT AskForDocuments(TaskMemoryText& path) {
    wchar_t* text = nullptr;
    const HRESULT answer = SHGetKnownFolderPath(FOLDERID_Documents, KF_FLAG_CREATE, nullptr, &text);
    path.reset(text); // to be freed after a failure too
    return answer;
}

} // namespace

ResultCode GetUserFolder(const std::string& applicationFolderName, std::string& folder) {
    if (applicationFolderName.empty()) {
        return "Application data folder is not set";
    }
    TaskMemoryText documents;
    HRESULT answer = AskForDocuments(documents);
    if (answer == HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)) {
        answer = AskForDocuments(documents);
    }
    if (FAILED(answer)) {
        PLATFORM_LOG(Platform::ErrorLog, " Failed to create user's folder! Error=0x%08X",
                     static_cast<unsigned>(GetLastError()));
        return "Failed to get user folder";
    }
    // Paths are UTF-8 throughout, which is also the program's narrow code page.
    std::string path;
    if (!documents || !WideToUtf8(documents.get(), path)) {
        return "Failed to translate user folder to MBCS";
    }
    folder = path + '\\' + applicationFolderName;
    return Platform::Success;
}

} // namespace PlatformHelpers
