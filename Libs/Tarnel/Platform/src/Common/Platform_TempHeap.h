#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Platform {

// A lock-free bump arena for short-lived blocks, reclaimed as a whole when its last block is freed. Any
// thread may call anything at any time. It starts without an arena and refuses every request. The agent sets
// none up: the heap is for modules loaded into the process.
class TempHeap {
public:
    constexpr TempHeap() = default;
    ~TempHeap();
    TempHeap(const TempHeap&) = delete; // blocks point into it
    TempHeap& operator=(const TempHeap&) = delete;

    // Makes an arena of capacity bytes, rounded down to a multiple of 16. False if there is one already, if
    // capacity is less than 16 or if there is no memory.
    [[nodiscard]] bool SetUp(uint32_t capacity);

    // Frees the arena. False, with nothing changed, while blocks are live.
    [[nodiscard]] bool ShutDown();

    // Null if the request does not fit. A block of size 0 must be freed too.
    [[nodiscard]] void* Allocate(std::size_t size);

    bool Owns(const void* pointer) const;

    // Null is allowed.
    void Free(void* block);

    uint32_t UsedBytes() const { return m_uiUsed.load(std::memory_order_relaxed); }
    int32_t LiveBlocks() const;

private:
    static constexpr int32_t Resetting = INT32_MIN;

    void TakeReference();
    void ReleaseReference();
    bool EnterReset();
    void LeaveReset();

    std::atomic<int32_t> m_iState = 0; // live blocks, or Resetting
    std::atomic<uint8_t*> m_pBase = nullptr;
    std::atomic<uint32_t> m_uiUsed = 0; // a multiple of 16
    std::atomic<uint64_t> m_uiCapacity = 0;
};

} // namespace Platform

extern "C" Platform::TempHeap* EXP_GetTempHeap();
