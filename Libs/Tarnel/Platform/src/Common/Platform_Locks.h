#pragma once

#include <atomic>
#include <cstdint>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Platform {

// A 32-bit word: 0 is free, 1 is taken. A thread that finds it taken sleeps in the system: spinning could
// keep a holder of lower priority from running. Fits std::lock_guard.
class SpinLock {
public:
    void lock() {
        while (m_iLock.exchange(1, std::memory_order_acquire) != 0) {
            m_iLock.wait(1, std::memory_order_relaxed);
        }
    }
    void unlock() {
        m_iLock.store(0, std::memory_order_release);
        m_iLock.notify_one();
    }

private:
    std::atomic<uint32_t> m_iLock = 0;
};

// Many readers or one writer in one 32-bit word: readers count up, a writer waits for 0 and swaps in the high
// bit. Waits as SpinLock does. Fits std::shared_lock and std::unique_lock. A thread that holds either side
// must not ask for the other.
class ReaderWriterLock {
public:
    void lock() {
        int32_t holders = 0;
        while (!m_iLock.compare_exchange_weak(holders, WriterBit, std::memory_order_acquire)) {
            if (holders != 0) {
                m_iLock.wait(holders, std::memory_order_relaxed);
            }
            holders = 0;
        }
    }
    void unlock() {
        m_iLock.store(0, std::memory_order_release);
        m_iLock.notify_all();
    }

    void lock_shared() {
        int32_t readers = m_iLock.load(std::memory_order_relaxed);
        while (readers < 0 ||
               !m_iLock.compare_exchange_weak(readers, readers + 1, std::memory_order_acquire)) {
            if (readers < 0) {
                m_iLock.wait(readers, std::memory_order_relaxed);
                readers = m_iLock.load(std::memory_order_relaxed);
            }
        }
    }
    void unlock_shared() {
        const int32_t before = m_iLock.fetch_sub(1, std::memory_order_release);
        PLATFORM_ASSERT_TEXT(before - 1 >= 0, "_InterlockedDecrement((volatile long*)(&m_iLock)) >= 0");
        if (before == 1) {
            m_iLock.notify_all(); // a writer waits for 0
        }
    }

private:
    static constexpr int32_t WriterBit = INT32_MIN;
    std::atomic<int32_t> m_iLock = 0;
};

} // namespace Platform
