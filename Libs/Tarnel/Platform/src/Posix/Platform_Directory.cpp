#include <cerrno>
#include <string>

#include <sys/stat.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_DirectoryTree.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_IO.h"

namespace Platform {

bool CreateOneDirectory(const char* szCompleteFilePath) {
    PLATFORM_ASSERT(szCompleteFilePath);
    return szCompleteFilePath && (mkdir(szCompleteFilePath, 0777) == 0 || errno == EEXIST);
}

bool CreateOneDirectory(const wchar_t* szCompleteFilePath) {
    PLATFORM_ASSERT(szCompleteFilePath);
    std::string path;
    return szCompleteFilePath && WideToUtf8(szCompleteFilePath, path) == EncodingOutcome::Done &&
           CreateOneDirectory(path.c_str());
}

bool CreateDirectoryTree(const wchar_t* path) {
    return CreateTree(path, [](const wchar_t* prefix) { return CreateOneDirectory(prefix); });
}

bool CreateDirectoryTree(const char* path) {
    return CreateTree(path, [](const char* prefix) { return CreateOneDirectory(prefix); });
}

} // namespace Platform
