#include "Libs/Processes/Core/src/Shutdowner.h"

#include <conio.h>
#include <windows.h>

#include "Libs/Framework/Core/src/ApplicationBase.h"

namespace {

constexpr DWORD TimeBetweenChecks = 250; // milliseconds

// Takes one waiting key off the console.
bool IsStopKeyPressed() {
    if (!_kbhit()) {
        return false;
    }
    const int key = _getch();
    return key == 'Q' || key == 'q';
}

} // namespace

ResultCode Shutdowner::Initialize(const JsonDocument&, int, const char**) {
    return Platform::Success;
}

bool Shutdowner::ThreadMain() {
    while (!IsStopRequested()) {
        Sleep(TimeBetweenChecks);
        if (IsStopKeyPressed()) {
            if (ApplicationBase* application = GetApplication()) {
                application->RequestShutdown();
            }
        }
    }
    return IsStopRequested();
}
