#pragma once

#include <cstdint>
#include <optional>

// Tells an answer from a key or click that was meant for the game under a dialog that has just come up: a
// click counts once the dialog has been in sight for a while; a key, once the dialog has had the keyboard
// for a while and if it was not held down already. Times are GetTickCount64's. One a dialog, on its thread.
class AnswerGuard {
public:
    static constexpr uint64_t SettleTime = 1000; // milliseconds

    void Shown(uint64_t now) { m_shown = now; }

    // Whether the dialog has the keyboard now; may be called repeatedly.
    void SetKeyboard(bool hasKeyboard, uint64_t now) {
        if (!hasKeyboard) {
            m_keyboard.reset();
        } else if (!m_keyboard) {
            m_keyboard = now;
        }
    }

    bool AcceptsClick(uint64_t pressed) const { return HasSettled(m_shown, pressed); }

    // `repeated`: the key was down before.
    bool AcceptsKey(bool repeated, uint64_t pressed) const {
        return !repeated && HasSettled(m_keyboard, pressed);
    }

private:
    static bool HasSettled(const std::optional<uint64_t>& since, uint64_t pressed) {
        return since && pressed >= *since + SettleTime;
    }

    std::optional<uint64_t> m_shown;    // since when it is in sight
    std::optional<uint64_t> m_keyboard; // since when it has the keyboard
};
