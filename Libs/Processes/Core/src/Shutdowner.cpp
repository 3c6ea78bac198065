#include "Libs/Processes/Core/src/Shutdowner.h"

#include <windows.h>

#include <memory>

namespace {

constexpr DWORD TimeBetweenChecks = 250; // milliseconds

HANDLE OpenConsoleInput() {
    return CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, 0, nullptr);
}

// Takes the waiting keys off the console, up to the first Q. A key's character tells an "à" from the keys
// that have none, such as Page Down, whose codes look like "à" and "Q".
bool IsStopKeyPressed() {
    const std::unique_ptr<void, decltype(&CloseHandle)> console(OpenConsoleInput(), &CloseHandle);
    DWORD waiting = 0;
    while (GetNumberOfConsoleInputEvents(console.get(), &waiting) && waiting > 0) {
        INPUT_RECORD input = {};
        DWORD count = 0;
        if (!ReadConsoleInputW(console.get(), &input, 1, &count) || count == 0) {
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
