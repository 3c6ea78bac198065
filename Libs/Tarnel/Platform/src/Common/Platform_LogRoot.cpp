#include "Libs/Tarnel/Platform/src/Common/Platform_LogRoot.h"

#include <cwchar>
#include <mutex>

#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace Platform {
namespace {

// A "/" and the terminator fit behind the longest copy.
constexpr std::size_t RootCapacity = 260;
constexpr std::size_t MaxRootCopy = RootCapacity - 2;

struct LogRoot {
    wchar_t path[RootCapacity] = {};
    std::size_t length = 0;
};

constinit SpinLock g_rootLock; // guards g_root
constinit LogRoot g_root;

wchar_t WithForwardSlash(wchar_t c) {
    return c == L'\\' ? L'/' : c;
}

LogRoot MakeRoot(const wchar_t* path) {
    LogRoot root;
    if (!path || !*path) {
        return root;
    }
    while (root.length < MaxRootCopy && path[root.length]) {
        root.path[root.length] = WithForwardSlash(path[root.length]);
        ++root.length;
    }
    if (root.path[root.length - 1] != L'/') {
        root.path[root.length++] = L'/';
    }
    return root;
}

LogRoot CurrentRoot() {
    const std::lock_guard guard(g_rootLock);
    return g_root;
}

const wchar_t* WithoutLeadingSlash(const wchar_t* fileName) {
    if (!fileName) {
        return L"";
    }
    return WithForwardSlash(*fileName) == L'/' ? fileName + 1 : fileName;
}

} // namespace

std::wstring LogPath(const wchar_t* fileName) {
    const LogRoot root = CurrentRoot();
    std::wstring path(root.path, root.length);
    if (root.length != 0) {
        for (const wchar_t* c = WithoutLeadingSlash(fileName); *c; ++c) {
            path.push_back(WithForwardSlash(*c));
        }
    }
    return path;
}

} // namespace Platform

void EXP_SetLogRoot(const wchar_t* path) {
    const Platform::LogRoot root = Platform::MakeRoot(path);
    const std::lock_guard guard(Platform::g_rootLock);
    Platform::g_root = root;
}

uint32_t EXP_GetLogPath(wchar_t* output, const wchar_t* fileName) {
    const Platform::LogRoot root = Platform::CurrentRoot();
    if (root.length == 0) {
        return 1;
    }
    std::wmemcpy(output, root.path, root.length);
    std::size_t length = root.length;
    for (const wchar_t* c = Platform::WithoutLeadingSlash(fileName); *c; ++c) {
        output[length++] = Platform::WithForwardSlash(*c);
    }
    output[length] = 0;
    return static_cast<uint32_t>(length);
}
