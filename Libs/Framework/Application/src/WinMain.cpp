#include <windows.h>

#include "Libs/Framework/Application/src/Utf8Arguments.h"
#include "Libs/Framework/Core/src/CommonMain.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ThreadId.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    // A drive without a medium fails its call instead of asking the player for one.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    const std::vector<std::string> arguments = Utf8Arguments(GetCommandLineW());
    std::vector<const char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(argument.c_str());
    }
    pointers.push_back(nullptr); // as main's arguments end
    return CommonMain(static_cast<int>(arguments.size()), pointers.data());
}
