#include "Libs/Processes/Core/src/Shutdowner.h"

#include <conio.h>
#include <windows.h>

#include "Libs/Framework/Core/src/ApplicationBase.h"

namespace {

constexpr DWORD TimeBetweenChecks = 250; // milliseconds

// Takes one waiting key off the console. Keys without a character come in two parts, of which the second may
// look like a letter: that of Page Down is a Q.
bool IsStopKeyPressed() {
    if (!_kbhit()) {
        return false;
    }
    const int key = _getch();
    if ((key == 0 || key == 0xE0) && _kbhit()) {
        static_cast<void>(_getch());
        return false;
    }
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
