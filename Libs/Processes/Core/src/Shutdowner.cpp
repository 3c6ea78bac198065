#include "Libs/Processes/Core/src/Shutdowner.h"

#include <windows.h>

#include "Libs/Tarnel/Platform/src/Common/Platform_Handle.h"

namespace {

constexpr DWORD TimeBetweenChecks = 250; // milliseconds

// Takes the waiting keys off the console, up to the first Q. A key's character tells an "à" from the keys
// that have none, such as Page Down, whose codes look like "à" and "Q".
bool IsStopKeyPressed() {
    const Platform::KernelHandle console(CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                     OPEN_EXISTING, 0, nullptr));
    DWORD waiting = 0;
    while (GetNumberOfConsoleInputEvents(console.Get(), &waiting) && waiting > 0) {
        INPUT_RECORD input = {};
        DWORD count = 0;
        if (!ReadConsoleInputW(console.Get(), &input, 1, &count) || count == 0) {
            return false;
        }
        const KEY_EVENT_RECORD& key = input.Event.KeyEvent;
        if (input.EventType == KEY_EVENT && key.bKeyDown &&
            (key.uChar.UnicodeChar == L'q' || key.uChar.UnicodeChar == L'Q')) {
            return true;
        }
    }
    return false;
}

} // namespace

ResultCode Shutdowner::Initialize(const JsonDocument&, int, const char**) {
    return Platform::Success;
}

bool Shutdowner::ThreadMain() {
    return RunRounds(TimeBetweenChecks, [this] {
        if (IsStopKeyPressed()) {
            RequestApplicationShutdown();
        }
    });
}
