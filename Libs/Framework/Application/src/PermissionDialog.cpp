#include "Libs/Framework/Application/src/PermissionDialog.h"

#include <windows.h>

#include <bit>
#include <string>

#include "Libs/Framework/Application/src/AnswerGuard.h"
#include "Libs/Framework/Application/src/DialogInputHooks.h"
#include "Libs/Framework/Application/src/DialogPlacement.h"
#include "Libs/Framework/Application/src/PermissionLanguage.h"
#include "Libs/Framework/Application/src/PermissionResources.h"
#include "Libs/Framework/Application/src/PermissionTexts.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace {

constexpr UINT_PTR KeyboardTimer = 1;
constexpr UINT KeyboardInterval = 250; // milliseconds

// What one dialog remembers while it is up.
struct DialogState {
    AnswerGuard guard;
    DialogInputHooks hooks{guard};
    bool noticed = false; // has had the keyboard
    int unownedTicks = 0; // of the timer, in a row, during which no program had the keyboard
};

void SetText(HWND window, HINSTANCE instance, uint16_t language, unsigned id) {
    std::wstring text;
    if (PermissionTexts::Load(instance, language, id, text)) {
        SetWindowTextW(window, text.c_str());
    } // else the template's text stays
}

void SetTexts(HWND dialog, HINSTANCE instance) {
    const uint16_t language = PermissionLanguageFor(PermissionTexts::InterfaceLanguage());
    SetText(GetDlgItem(dialog, PERMISSION_MESSAGE), instance, language, PERMISSION_TEXT_MESSAGE);
    SetText(GetDlgItem(dialog, IDYES), instance, language, PERMISSION_TEXT_YES);
    SetText(GetDlgItem(dialog, IDCANCEL), instance, language, PERMISSION_TEXT_NO);
    SetText(dialog, instance, language, PERMISSION_TEXT_TITLE);
}

void Initialize(HWND dialog, DialogState& state) {
    auto* instance = std::bit_cast<HINSTANCE>(GetWindowLongPtrW(dialog, GWLP_HINSTANCE));
    SetTexts(dialog, instance);
    DialogPlacement::FitToTexts(dialog, {PERMISSION_MESSAGE, IDYES, IDCANCEL});
    DialogPlacement::SetIcon(dialog, instance, PERMISSION_ICON);
    DialogPlacement::ShowOnTop(dialog);
    state.guard.Shown(GetTickCount());
    SetTimer(dialog, KeyboardTimer, KeyboardInterval, nullptr);
}

bool IsUnowned(HWND foreground) {
    return !foreground || foreground == GetShellWindow() || foreground == GetDesktopWindow();
}

// Until the dialog has had the keyboard: takes it when no program has it, twice in a row, since for a moment
// that is so with every switch between two programs.
void SeekKeyboard(HWND dialog, DialogState& state) {
    state.hooks.AllowActivation(); // the timer comes after the system has shown the dialog
    HWND foreground = GetForegroundWindow();
    if (foreground == dialog || state.noticed) {
        KillTimer(dialog, KeyboardTimer);
        return;
    }
    state.unownedTicks = IsUnowned(foreground) ? state.unownedTicks + 1 : 0;
    if (state.unownedTicks >= 2) {
        SetForegroundWindow(dialog);
    }
}

void FollowActivation(HWND dialog, DialogState& state, bool active) {
    const bool foreground = active && GetForegroundWindow() == dialog;
    state.guard.SetForeground(foreground, GetTickCount());
    state.noticed = state.noticed || foreground;
    if (!active && state.noticed) {
        SetWindowPos(dialog, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
}

INT_PTR HandleMessage(HWND dialog, DialogState& state, UINT message, WPARAM wParam) {
    switch (message) {
    case WM_INITDIALOG:
        Initialize(dialog, state);
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDYES || LOWORD(wParam) == IDCANCEL) {
            EndDialog(dialog, static_cast<INT_PTR>(wParam));
            return TRUE;
        }
        return FALSE;
    case WM_ACTIVATE:
        FollowActivation(dialog, state, LOWORD(wParam) != WA_INACTIVE);
        return FALSE;
    case WM_TIMER:
        SeekKeyboard(dialog, state);
        return TRUE;
    default:
        return FALSE;
    }
}

INT_PTR CALLBACK DialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    }
    auto* state = std::bit_cast<DialogState*>(GetWindowLongPtrW(dialog, DWLP_USER));
    return state ? HandleMessage(dialog, *state, message, wParam) : FALSE;
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
    NormalScheduling(const NormalScheduling&) = delete; // it stands for the thread's mode
    NormalScheduling& operator=(const NormalScheduling&) = delete;

private:
    BOOL m_changed;
};

} // namespace

ResultCode ShowPermissionDialog(void* instance, bool& allowed) {
    allowed = false;
    const NormalScheduling scheduling;
    DialogState state;
    if (!state.hooks.AreInstalled()) {
        PLATFORM_LOG(Platform::ErrorLog,
                     " Failed to guard the permission dialog against stray keys. Error=%d",
                     static_cast<int>(GetLastError()));
    }
    const INT_PTR answer =
        DialogBoxParamW(static_cast<HINSTANCE>(instance), MAKEINTRESOURCEW(PERMISSION_DIALOG), nullptr,
                        &DialogProcedure, reinterpret_cast<LPARAM>(&state));
    if (answer == -1 || answer == 0) { // what the system returns instead of showing it
        return "Failed to show the permission dialog";
    }
    allowed = answer == IDYES;
    return Platform::Success;
}
