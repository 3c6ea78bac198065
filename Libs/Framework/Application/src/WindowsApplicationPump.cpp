#include "Libs/Framework/Application/src/WindowsApplicationPump.h"

#include <windows.h>

Reflection_DefinePolymorphicType(WindowsApplicationPump);

ResultCode WindowsApplicationPump::Initialize(const JsonDocument&, int, const char**) {
    HINSTANCE instance = GetModuleHandleA(nullptr);
    m_instance = instance;

    WNDCLASSEXA windowClass = {};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = CS_VREDRAW | CS_HREDRAW;
    windowClass.lpfnWndProc = &DefWindowProcA;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = "BugHelperClass";
    if (!RegisterClassExA(&windowClass)) {
        return "Failed to register window class";
    }
    m_window = CreateWindowExA(0, "BugHelperClass", "BugHelper", 0, 0, 0, 1, 1, HWND_MESSAGE, nullptr,
                               instance, nullptr);
    return Platform::Success;
}

bool WindowsApplicationPump::ThreadMain() {
    return RunRounds(m_pollInterval, [window = static_cast<HWND>(m_window)] {
        MSG message;
        while (PeekMessageA(&message, window, 0, 0, PM_NOREMOVE)) {
            if (GetMessageA(&message, window, 0, 0)) {
                TranslateMessage(&message);
                DispatchMessageA(&message);
            }
        }
    });
}
