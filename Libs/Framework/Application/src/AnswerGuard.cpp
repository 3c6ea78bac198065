#include "Libs/Framework/Application/src/AnswerGuard.h"

namespace {

// Not after it by a whole round of the tick count, but before it: input can be older than what it is compared
// to.
bool HasPassed(uint32_t since, uint32_t now, uint32_t time) {
    return static_cast<int32_t>(now - since) >= static_cast<int32_t>(time);
}

} // namespace

void AnswerGuard::Gate::Restart(uint32_t now) {
    *this = {};
    since = now;
}

void AnswerGuard::Gate::Drop(uint32_t now) {
    dropped = true;
    lastDropped = now;
}

bool AnswerGuard::Gate::Accepts(uint32_t now) {
    if (!open) {
        open = HasPassed(since, now, SettleTime) && (!dropped || HasPassed(lastDropped, now, PauseTime));
    }
    if (!open) {
        Drop(now);
    }
    return open;
}

void AnswerGuard::Shown(uint32_t now) {
    m_clicks.Restart(now);
}

void AnswerGuard::SetForeground(bool foreground, uint32_t now) {
    if (foreground && !m_foreground) {
        m_keys.Restart(now);
        m_acceptedKey = 0;
    }
    m_foreground = foreground;
}

bool AnswerGuard::AcceptsKey(unsigned key, bool repeated, uint32_t now) {
    if (!m_foreground) {
        return false;
    }
    if (repeated && key != m_acceptedKey) {
        m_keys.Drop(now);
        return false;
    }
    if (!m_keys.Accepts(now)) {
        return false;
    }
    m_acceptedKey = key;
    return true;
}

bool AnswerGuard::AcceptsClick(uint32_t now) {
    return m_clicks.Accepts(now);
}
