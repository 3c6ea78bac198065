#pragma once

#include <cstdint>

// Tells an answer from a key or click that was meant for the game under a dialog that has just come up. Pure;
// times are the system's tick count in milliseconds, which may wrap around. One a dialog, used by its thread.
//
// A click counts once the dialog has been in sight for a while; a key, once it has had the keyboard for a
// while. Whatever comes before is dropped, and whoever is still hammering has to pause before anything
// counts. A key held down since before that goes on being dropped until it is let go.
class AnswerGuard {
public:
    static constexpr uint32_t SettleTime = 1000;
    static constexpr uint32_t PauseTime = 500;

    void Shown(uint32_t now);

    // Whether the dialog has the keyboard now; may be told again and again.
    void SetForeground(bool foreground, uint32_t now);

    // Whether the dialog may see this press. `repeated`: the key was already down.
    bool AcceptsKey(unsigned key, bool repeated, uint32_t now);
    bool AcceptsClick(uint32_t now);

private:
    // One source of input, and since when it may be meant for the dialog.
    struct Gate {
        uint32_t since = 0;
        uint32_t lastDropped = 0;
        bool open = false;
        bool dropped = false; // something, since `since`

        void Restart(uint32_t now);
        void Drop(uint32_t now);
        bool Accepts(uint32_t now);
    };

    Gate m_clicks;
    Gate m_keys;
    bool m_foreground = false;
    unsigned m_acceptedKey = 0; // the latest, whose repetitions are accepted too
};
