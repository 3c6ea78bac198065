// Fails checks with the dialogs switched on and prints what becomes of them. The end-to-end tests start it,
// answer its dialogs and read its lines.
//
//   AssertDialogProbe [OPTION...]
//     --assert           a failed assert (default)
//     --data             bad data
//     --message TEXT     what the check says
//     --rounds N         reach the failing site N times (default 1)
//     --other-thread     while the dialog is up, fail a check on another thread too
//     --same-thread      while the dialog is up, fail a check in its own message loop too
//     --under-debugger   run as the debuggee of a second copy
//
//   AssertDialogProbe --nameless PROGRAM [ARGUMENT...]
//
// runs another program as its debuggee, with an empty text where a command line has the program's name. That
// makes the agent fail a check.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Encoding.h"
#include "Libs/Tarnel/Platform/tests/DebugLoop.h"

namespace {

struct Options {
    bool isData = false;
    const char* message = "the message";
    int rounds = 1;
    bool onOtherThread = false;
    bool onSameThread = false;
    bool underDebugger = false;
};

std::thread g_otherThread;
UINT_PTR g_timer = 0;

void Say(const char* text) {
    std::printf("probe: %s\n", text);
    std::fflush(stdout);
}

bool Parse(int count, char** arguments, Options& options) {
    for (int i = 1; i < count; ++i) {
        const std::string_view name = arguments[i];
        const auto value = [&] { return i + 1 < count ? arguments[++i] : ""; };
        if (name == "--data") {
            options.isData = true;
        } else if (name == "--assert") {
            options.isData = false;
        } else if (name == "--message") {
            options.message = value();
        } else if (name == "--rounds") {
            options.rounds = static_cast<int>(std::strtol(value(), nullptr, 10));
        } else if (name == "--other-thread") {
            options.onOtherThread = true;
        } else if (name == "--same-thread") {
            options.onSameThread = true;
        } else if (name == "--under-debugger") {
            options.underDebugger = true;
        } else {
            std::printf("probe: unknown option %s\n", arguments[i]);
            return false;
        }
    }
    return true;
}

// The same command line without the option that asks for the debugger.
std::wstring DebuggeeCommandLine() {
    constexpr std::wstring_view Option = L" --under-debugger";
    std::wstring commandLine = GetCommandLineW();
    commandLine.erase(commandLine.find(Option), Option.size());
    return commandLine;
}

int RunNameless(int count, char** arguments) {
    std::wstring program;
    std::wstring commandLine = L"\"\"";
    bool isText = Platform::Utf8ToWide(arguments[0], program) == Platform::EncodingOutcome::Done;
    for (int i = 1; i < count; ++i) {
        std::wstring argument;
        isText &= Platform::Utf8ToWide(arguments[i], argument) == Platform::EncodingOutcome::Done;
        commandLine += L" \"" + argument + L"\"";
    }
    return isText ? RunUnderDebugger(program.c_str(), commandLine) : -1;
}

// Timers run in the message loop of the dialog, so they are a sure sign that it is up.
void CALLBACK OnOtherThread(HWND, UINT, UINT_PTR, DWORD) {
    KillTimer(nullptr, g_timer);
    g_otherThread = std::thread([] {
        Say("other thread asks");
        PLATFORM_ASSERT_MESSAGE(false, "from another thread");
        Say("other thread went on");
    });
}

void CALLBACK OnSameThread(HWND, UINT, UINT_PTR, DWORD) {
    KillTimer(nullptr, g_timer);
    PLATFORM_ASSERT_MESSAGE(false, "from the same thread");
    Say("same thread went on");
}

void FailCheck(const Options& options) {
    for (int round = 0; round < options.rounds; ++round) {
        Say("asks");
        if (options.isData) {
            PLATFORM_DATA_ERROR(round < 0, "%s", options.message);
        } else {
            PLATFORM_ASSERT_MESSAGE(round < 0, "%s", options.message);
        }
        Say("went on");
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count > 2 && std::string_view(arguments[1]) == "--nameless") {
        return RunNameless(count - 2, arguments + 2);
    }
    Options options;
    if (!Parse(count, arguments, options)) {
        return 64;
    }
    if (options.underDebugger) {
        return RunUnderDebugger(nullptr, DebuggeeCommandLine());
    }
    EXP_GetAssertState()->showDialogs = 1;
    if (options.onOtherThread || options.onSameThread) {
        g_timer = SetTimer(nullptr, 0, 50, options.onOtherThread ? OnOtherThread : OnSameThread);
    }
    FailCheck(options);
    if (g_otherThread.joinable()) {
        g_otherThread.join();
    }
    Say("ended");
    return 0;
}
