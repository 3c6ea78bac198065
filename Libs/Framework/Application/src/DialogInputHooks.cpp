#include "Libs/Framework/Application/src/DialogInputHooks.h"

#include <windows.h>

#include <bit>

namespace {

thread_local DialogInputHooks* t_hooks = nullptr; // a hook gets no argument of its own

LRESULT CALLBACK FilterMessage(int code, WPARAM wParam, LPARAM lParam) {
    if (code == MSGF_DIALOGBOX && t_hooks && t_hooks->DropsMessage(std::bit_cast<const MSG*>(lParam))) {
        return TRUE;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK FilterActivation(int code, WPARAM wParam, LPARAM lParam) {
    if (code == HCBT_ACTIVATE && t_hooks && !t_hooks->MayActivate()) {
        return TRUE;
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

} // namespace

DialogInputHooks::DialogInputHooks(AnswerGuard& guard) : m_guard(guard) {
    t_hooks = this;
    m_messageHook = SetWindowsHookExW(WH_MSGFILTER, &FilterMessage, nullptr, GetCurrentThreadId());
    m_activationHook = SetWindowsHookExW(WH_CBT, &FilterActivation, nullptr, GetCurrentThreadId());
}

DialogInputHooks::~DialogInputHooks() {
    UnhookWindowsHookEx(static_cast<HHOOK>(m_messageHook)); // one that is not installed is refused
    UnhookWindowsHookEx(static_cast<HHOOK>(m_activationHook));
    t_hooks = nullptr;
}

bool DialogInputHooks::DropsMessage(const void* message) {
    const MSG& input = *static_cast<const MSG*>(message);
    switch (input.message) {
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN: {
        // Activation may not have been told yet when its first key comes.
        m_guard.SetForeground(GetForegroundWindow() == GetAncestor(input.hwnd, GA_ROOT), GetTickCount());
        const bool repeated = (HIWORD(input.lParam) & KF_REPEAT) != 0;
        return !m_guard.AcceptsKey(static_cast<unsigned>(input.wParam), repeated, input.time);
    }
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
    case WM_NCLBUTTONDOWN:
    case WM_NCLBUTTONDBLCLK:
        return !m_guard.AcceptsClick(input.time);
    default:
        return false;
    }
}
