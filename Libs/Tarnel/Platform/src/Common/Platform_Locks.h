#pragma once

#include <atomic>
#include <cstdint>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Platform {

// A 32-bit word taken by swapping 0 for 1 and released by storing 0. Busy-waits: hold it for a few
// instructions. Fits std::lock_guard.
class SpinLock {
public:
    void lock() {
        uint32_t expected = 0;
        while (!m_iLock.compare_exchange_weak(expected, 1, std::memory_order_acquire)) {
            expected = 0;
        }
    }
    void unlock() { m_iLock.store(0, std::memory_order_release); }

private:
    std::atomic<uint32_t> m_iLock = 0;
};

// Many readers or one writer in one 32-bit word: readers count up, a writer waits for 0 and swaps in the high
// bit. Fits std::shared_lock and std::unique_lock. A thread that holds either side must not ask for the
// other.
class ReaderWriterLock {
public:
    void lock() {
        int32_t expected = 0;
        while (!m_iLock.compare_exchange_weak(expected, WriterBit, std::memory_order_acquire)) {
            expected = 0;
        }
    }
    void unlock() { m_iLock.store(0, std::memory_order_release); }

    void lock_shared() {
        for (;;) {
            int32_t readers = m_iLock.load(std::memory_order_relaxed);
            if (readers >= 0 &&
                m_iLock.compare_exchange_weak(readers, readers + 1, std::memory_order_acquire)) {
                return;
            }
        }
    }
    void unlock_shared() {
        const int32_t before = m_iLock.fetch_sub(1, std::memory_order_release);
        PLATFORM_ASSERT_TEXT(before - 1 >= 0, "_InterlockedDecrement((volatile long*)(&m_iLock)) >= 0");
    }

private:
    static constexpr int32_t WriterBit = INT32_MIN;
    std::atomic<int32_t> m_iLock = 0;
};

} // namespace Platform
