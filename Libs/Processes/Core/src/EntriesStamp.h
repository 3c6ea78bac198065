#pragma once

#include <cstdint>

// Whether the entries of a folder, once read, are still the ones it has. A change gives the folder another
// last-write time, but only a clock tick apart: what was read right after a change could miss a second one
// with the same time. Such a reading never counts, and is done again. Times are file times (100 ns).
class EntriesStamp {
public:
    // lastWriteTime was asked for before the entries were read, now is the time of that.
    void Set(uint64_t lastWriteTime, uint64_t now) {
        m_lastWriteTime = lastWriteTime;
        m_isSettled = lastWriteTime < now && now - lastWriteTime > LongestTick;
    }
    void Clear() { m_isSettled = false; }

    bool Holds(uint64_t lastWriteTime) const { return m_isSettled && m_lastWriteTime == lastWriteTime; }

private:
    static constexpr uint64_t LongestTick = 20'000'000;

    uint64_t m_lastWriteTime = 0;
    bool m_isSettled = false;
};
