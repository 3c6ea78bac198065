#pragma once

#include "Libs/Framework/Application/src/AnswerGuard.h"

// While it lives, the dialogs of the thread that made it see only those presses of keys and mouse buttons
// that the guard accepts, and can't activate themselves until they are told that they may: showing a dialog
// would take the keyboard. Input that comes otherwise than from keyboard and mouse (a screen reader's) is let
// through. One a thread; it stays on its thread.
class DialogInputHooks {
public:
    explicit DialogInputHooks(AnswerGuard& guard);
    ~DialogInputHooks();
    DialogInputHooks(const DialogInputHooks&) = delete; // the hooks know its address
    DialogInputHooks& operator=(const DialogInputHooks&) = delete;

    // False when the system refused a hook; what it was for does not happen then.
    bool AreInstalled() const { return m_messageHook && m_activationHook; }

    void AllowActivation() { m_mayActivate = true; }

    // For the system.
    bool DropsMessage(const void* message);
    bool MayActivate() const { return m_mayActivate; }

private:
    AnswerGuard& m_guard;
    bool m_mayActivate = false;
    void* m_messageHook = nullptr;
    void* m_activationHook = nullptr;
};
