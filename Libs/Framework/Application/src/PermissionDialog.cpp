#include "Libs/Framework/Application/src/PermissionDialog.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <bit>
#include <string>

#include "Libs/Framework/Application/src/AnswerGuard.h"
#include "Libs/Framework/Application/src/DialogLayout.h"
#include "Libs/Framework/Application/src/PermissionResources.h"
#include "Libs/Framework/Application/src/PermissionTexts.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

using DialogLayout::Box;

constexpr UINT_PTR KeyboardTimer = 1;
constexpr UINT KeyboardInterval = 250; // milliseconds

// While it lives, the dialogs of its thread see only those presses of keys and mouse buttons that the guard
// accepts, and can't activate themselves until they may: showing a dialog would take the keyboard. What does
// not come from keyboard and mouse (a screen reader's press of a button) passes.
class InputHooks {
public:
    explicit InputHooks(AnswerGuard& guard) : m_guard(guard) {
        TlsSetValue(s_slot, this);
        m_messageHook = SetWindowsHookExW(WH_MSGFILTER, &FilterMessage, nullptr, GetCurrentThreadId());
        m_activationHook = SetWindowsHookExW(WH_CBT, &FilterActivation, nullptr, GetCurrentThreadId());
        if (!m_messageHook || !m_activationHook) {
            PLATFORM_LOG(Platform::ErrorLog,
                         " Failed to guard the permission dialog against stray keys. Error=%d",
                         static_cast<int>(GetLastError()));
        }
    }
    ~InputHooks() {
        UnhookWindowsHookEx(m_messageHook); // one that is not installed is refused
        UnhookWindowsHookEx(m_activationHook);
        TlsSetValue(s_slot, nullptr);
    }
    InputHooks(const InputHooks&) = delete; // the hooks know its address
    InputHooks& operator=(const InputHooks&) = delete;

    void AllowActivation() { m_mayActivate = true; }

private:
    static LRESULT CALLBACK FilterMessage(int code, WPARAM wParam, LPARAM lParam) {
        InputHooks* const hooks = OfThread();
        if (code == MSGF_DIALOGBOX && hooks && hooks->Drops(*std::bit_cast<const MSG*>(lParam))) {
            return TRUE;
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    static LRESULT CALLBACK FilterActivation(int code, WPARAM wParam, LPARAM lParam) {
        const InputHooks* const hooks = OfThread();
        if (code == HCBT_ACTIVATE && hooks && !hooks->m_mayActivate) {
            return TRUE;
        }
        return CallNextHookEx(nullptr, code, wParam, lParam);
    }

    bool Drops(const MSG& input) {
        const auto age = static_cast<int32_t>(GetTickCount() - input.time);
        const uint64_t pressed = GetTickCount64() - static_cast<uint64_t>(std::max(age, 0));
        switch (input.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            // The first key may come before the message that says that the dialog has the keyboard.
            m_guard.SetKeyboard(GetForegroundWindow() == GetAncestor(input.hwnd, GA_ROOT), GetTickCount64());
            return !m_guard.AcceptsKey((HIWORD(input.lParam) & KF_REPEAT) != 0, pressed);
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_NCLBUTTONDOWN:
        case WM_NCLBUTTONDBLCLK:
            return !m_guard.AcceptsClick(pressed);
        default:
            return false;
        }
    }

    static InputHooks* OfThread() { return static_cast<InputHooks*>(TlsGetValue(s_slot)); }

    // A hook gets no argument of its own. The first use of a thread_local allocates, and crashes without
    // memory.
    inline static const DWORD s_slot = TlsAlloc();

    AnswerGuard& m_guard;
    bool m_mayActivate = false;
    HHOOK m_messageHook = nullptr;
    HHOOK m_activationHook = nullptr;
};

// What one dialog remembers while it is up.
struct DialogState {
    AnswerGuard guard;
    InputHooks hooks{guard};
    bool noticed = false; // has had the keyboard
    int unownedTicks = 0; // of the timer, in a row, during which no program had the keyboard
};

void SetTexts(HWND dialog, HINSTANCE instance) {
    const uint16_t language = PermissionTexts::LanguageFor(GetUserDefaultUILanguage());
    const auto set = [&](HWND window, unsigned id) {
        std::wstring text;
        if (PermissionTexts::Load(instance, language, id, text)) {
            SetWindowTextW(window, text.c_str());
        } // else the template's text stays
    };
    set(GetDlgItem(dialog, PERMISSION_MESSAGE), PERMISSION_TEXT_MESSAGE);
    set(GetDlgItem(dialog, IDYES), PERMISSION_TEXT_YES);
    set(GetDlgItem(dialog, IDCANCEL), PERMISSION_TEXT_NO);
    set(dialog, PERMISSION_TEXT_TITLE);
}

Box ToBox(const RECT& rect) {
    return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

Box WindowBox(HWND window) {
    RECT rect = {};
    GetWindowRect(window, &rect);
    return ToBox(rect);
}

Box ControlBox(HWND dialog, int control) {
    RECT rect = {};
    GetWindowRect(GetDlgItem(dialog, control), &rect);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
    return ToBox(rect);
}

void MoveControl(HWND dialog, int control, const Box& box) {
    SetWindowPos(GetDlgItem(dialog, control), nullptr, box.x, box.y, box.width, box.height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

// The size of a control's text in its font: broken into lines of `width`, or on one line.
Box MeasureText(HWND dialog, int control, int width, UINT format) {
    HWND window = GetDlgItem(dialog, control);
    std::array<wchar_t, 4096> text = {};
    GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    RECT rect = {0, 0, width, 0};
    if (HDC context = GetDC(window)) {
        HGDIOBJ previous =
            SelectObject(context, std::bit_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)));
        DrawTextW(context, text.data(), -1, &rect, DT_CALCRECT | format);
        SelectObject(context, previous);
        ReleaseDC(window, context);
    }
    return ToBox(rect);
}

int NeededButtonWidth(HWND dialog) {
    RECT padding = {0, 0, 12, 0}; // dialog units, both sides
    MapDialogRect(dialog, &padding);
    const int yes = MeasureText(dialog, IDYES, 0, DT_SINGLELINE).width;
    const int no = MeasureText(dialog, IDCANCEL, 0, DT_SINGLELINE).width;
    return std::max(yes, no) + padding.right;
}

// Gives the controls the room that their texts need, and puts the message first for screen readers.
void FitToTexts(HWND dialog) {
    RECT client = {};
    GetClientRect(dialog, &client);
    const DialogLayout::Layout layout = {client.right, client.bottom, ControlBox(dialog, PERMISSION_MESSAGE),
                                         ControlBox(dialog, IDYES), ControlBox(dialog, IDCANCEL)};
    const int messageHeight =
        MeasureText(dialog, PERMISSION_MESSAGE, layout.message.width, DT_WORDBREAK | DT_EXPANDTABS).height;
    const DialogLayout::Layout fitted = DialogLayout::Fit(layout, messageHeight, NeededButtonWidth(dialog));

    const Box frame = WindowBox(dialog);
    SetWindowPos(dialog, nullptr, 0, 0, frame.width + fitted.width - layout.width,
                 frame.height + fitted.height - layout.height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    MoveControl(dialog, PERMISSION_MESSAGE, fitted.message);
    MoveControl(dialog, IDYES, fitted.left);
    MoveControl(dialog, IDCANCEL, fitted.right);
    SetWindowPos(GetDlgItem(dialog, PERMISSION_MESSAGE), HWND_TOP, 0, 0, 0, 0,
                 SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

void SetIcons(HWND dialog, HINSTANCE instance) {
    const auto set = [&](WPARAM kind, int width, int height) {
        HANDLE image = LoadImageW(instance, MAKEINTRESOURCEW(PERMISSION_ICON), IMAGE_ICON,
                                  GetSystemMetrics(width), GetSystemMetrics(height), LR_SHARED);
        SendMessageW(dialog, WM_SETICON, kind, reinterpret_cast<LPARAM>(image));
    };
    set(ICON_BIG, SM_CXICON, SM_CYICON);
    set(ICON_SMALL, SM_CXSMICON, SM_CYSMICON);
}

// The screen of the program that the user works with, without taskbars.
Box WorkArea() {
    MONITORINFO info = {};
    info.cbSize = sizeof(info);
    GetMonitorInfoW(MonitorFromWindow(GetForegroundWindow(), MONITOR_DEFAULTTOPRIMARY), &info);
    return ToBox(info.rcWork);
}

// Shows the dialog above all windows and in the taskbar, where it asks for attention. It does not take the
// keyboard.
void ShowOnTop(HWND dialog) {
    SetWindowLongPtrW(dialog, GWL_EXSTYLE, GetWindowLongPtrW(dialog, GWL_EXSTYLE) | WS_EX_APPWINDOW);
    const Box area = WorkArea();
    for (int i = 0; i < 2; ++i) { // the move to a screen of another resolution may change its size
        const Box frame = WindowBox(dialog);
        const Box box = DialogLayout::Centre(area, frame.width, frame.height);
        SetWindowPos(dialog, nullptr, box.x, box.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    SetWindowPos(dialog, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);

    FLASHWINFO flash = {};
    flash.cbSize = sizeof(flash);
    flash.hwnd = dialog;
    flash.dwFlags = FLASHW_ALL | FLASHW_TIMERNOFG; // until the user turns to it
    FlashWindowEx(&flash);
}

void Initialize(HWND dialog, DialogState& state) {
    auto* instance = std::bit_cast<HINSTANCE>(GetWindowLongPtrW(dialog, GWLP_HINSTANCE));
    SetTexts(dialog, instance);
    FitToTexts(dialog);
    SetIcons(dialog, instance);
    ShowOnTop(dialog);
    state.guard.Shown(GetTickCount64());
    SetTimer(dialog, KeyboardTimer, KeyboardInterval, nullptr);
}

// Until the dialog has had the keyboard: takes it if no program has it twice in a row. Once is not enough: at
// every switch between two programs neither has it for a moment.
void SeekKeyboard(HWND dialog, DialogState& state) {
    state.hooks.AllowActivation(); // the timer comes after the system has shown the dialog
    HWND foreground = GetForegroundWindow();
    if (foreground == dialog || state.noticed) {
        KillTimer(dialog, KeyboardTimer);
        return;
    }
    const bool isUnowned = !foreground || foreground == GetShellWindow() || foreground == GetDesktopWindow();
    state.unownedTicks = isUnowned ? state.unownedTicks + 1 : 0;
    if (state.unownedTicks >= 2) {
        SetForegroundWindow(dialog);
    }
}

// Once the user has turned to the dialog and away again, it no longer stays on top of the game.
void FollowActivation(HWND dialog, DialogState& state, bool active) {
    const bool hasKeyboard = active && GetForegroundWindow() == dialog;
    state.guard.SetKeyboard(hasKeyboard, GetTickCount64());
    state.noticed = state.noticed || hasKeyboard;
    if (!active && state.noticed) {
        SetWindowPos(dialog, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        Initialize(dialog, *std::bit_cast<DialogState*>(lParam));
        return TRUE;
    }
    auto* const state = std::bit_cast<DialogState*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (!state) { // some messages come before that one
        return FALSE;
    }
    switch (message) {
    case WM_COMMAND:
        if (LOWORD(wParam) == IDYES || LOWORD(wParam) == IDCANCEL) {
            EndDialog(dialog, static_cast<INT_PTR>(wParam));
            return TRUE;
        }
        return FALSE;
    case WM_ACTIVATE:
        FollowActivation(dialog, *state, LOWORD(wParam) != WA_INACTIVE);
        return FALSE;
    case WM_TIMER:
        SeekKeyboard(dialog, *state);
        return TRUE;
    default:
        return FALSE;
    }
}

// Takes the thread out of background scheduling while it lives: a busy game must not make the dialog
// sluggish.
class NormalScheduling {
public:
    NormalScheduling() : m_changed(SetThreadPriority(GetCurrentThread(), THREAD_MODE_BACKGROUND_END)) {}
    ~NormalScheduling() {
        if (m_changed) {
            SetThreadPriority(GetCurrentThread(), THREAD_MODE_BACKGROUND_BEGIN);
        }
    }
    NormalScheduling(const NormalScheduling&) = delete; // it changes the thread's mode
    NormalScheduling& operator=(const NormalScheduling&) = delete;

private:
    BOOL m_changed;
};

} // namespace

ResultCode ShowPermissionDialog(void* instance, bool& allowed) {
    allowed = false;
    const NormalScheduling scheduling;
    DialogState state;
    const INT_PTR answer =
        DialogBoxParamW(static_cast<HINSTANCE>(instance), MAKEINTRESOURCEW(PERMISSION_DIALOG), nullptr,
                        &DialogProcedure, reinterpret_cast<LPARAM>(&state));
    if (answer == -1 || answer == 0) { // what the system returns instead of showing it
        return "Failed to show the permission dialog";
    }
    allowed = answer == IDYES;
    return Platform::Success;
}
