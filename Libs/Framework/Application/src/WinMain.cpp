#include <windows.h>

#include <shellapi.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "Libs/Framework/Application/src/UsageText.h"
#include "Libs/Framework/Application/src/WindowsApplication.h"
#include "Libs/Framework/Core/src/CommonMain.h"
#include "Libs/Framework/Core/src/ExceptionToResult.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_System.h"

namespace {

constexpr std::size_t BufferSize = 4096; // with the terminator

// An argument that does not fit leaves its beginning, without a terminator, in the buffer.
std::string ToUtf8(const wchar_t* argument) {
    std::array<char, BufferSize> buffer = {};
    WideCharToMultiByte(CP_UTF8, 0, argument, -1, buffer.data(), BufferSize, nullptr, nullptr);
    return {buffer.data(), strnlen(buffer.data(), BufferSize - 1)};
}

std::vector<std::string> Arguments() {
    std::vector<std::string> arguments;
    int count = 0;
    wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 0; wide && i < count; ++i) {
        arguments.push_back(ToUtf8(wide[i]));
    }
    LocalFree(wide);
    return arguments;
}

int RunWithArguments() {
    const std::vector<std::string> arguments = Arguments();
    std::vector<const char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(argument.c_str());
    }
    pointers.push_back(nullptr); // as main's arguments end
    const int count = static_cast<int>(arguments.size());
    if (const std::string answer = UsageText::Answer(count, pointers.data()); !answer.empty()) {
        UsageText::Show(answer);
        return Done;
    }
    return CommonMain(count, pointers.data());
}

} // namespace

std::shared_ptr<ApplicationBase> CreateApplication(int argc, const char** argv) {
    return std::make_shared<WindowsApplication>(argc, argv);
}

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
    PLATFORM_ASSERT(GetMainThreadId() == GetCurrentThreadIdImpl());
    // A drive without a medium fails its call instead of asking the player for one.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    int exitCode = NoApplication;
    const ResultCode result = ExceptionToResult([&] {
        exitCode = RunWithArguments();
        return Platform::Success;
    });
    if (!result) {
        PLATFORM_LOG(Platform::ErrorLog, " The application could not be made. Error=%s", result.Text());
    }
    return exitCode;
}
