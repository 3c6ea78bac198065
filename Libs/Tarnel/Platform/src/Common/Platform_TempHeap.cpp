#include "Libs/Tarnel/Platform/src/Common/Platform_TempHeap.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"
#include "Libs/Tarnel/Types/src/Types_Limits.h"

namespace Platform {
namespace {

constinit TempHeap g_tempHeap;

} // namespace

TempHeap::~TempHeap() {
    PLATFORM_ASSERT_TEXT_MESSAGE(!m_uiCapacity.load(), "!m_uiCapacity", "temp heap not shutdown");
    static_cast<void>(ShutDown()); // with live blocks the arena stays until the process ends
}

bool TempHeap::SetUp(uint32_t capacity) {
    const auto whole = static_cast<uint32_t>(capacity - capacity % MemoryGranularity);
    if (whole == 0 || !EnterReset()) {
        return false;
    }
    void* arena = m_pBase.load() ? nullptr : GeneralAllocate(whole);
    if (arena) {
        m_uiUsed = 0;
        m_uiCapacity = whole;
        m_pBase = static_cast<uint8_t*>(arena);
    }
    LeaveReset();
    return arena != nullptr;
}

bool TempHeap::ShutDown() {
    if (!EnterReset()) {
        return false;
    }
    GeneralFree(m_pBase.exchange(nullptr));
    m_uiUsed = 0;
    m_uiCapacity = 0;
    LeaveReset();
    return true;
}

// Waits while a reset is in progress, which takes a few instructions.
void TempHeap::TakeReference() {
    for (;;) {
        int32_t word = m_iState.load();
        if (word >= 0 && word < Types::Limits<int32_t>::Max &&
            m_iState.compare_exchange_weak(word, word + 1)) {
            return;
        }
    }
}

// Dropping the last reference resets the arena, also for a request that did not fit: its blocks may have been
// freed meanwhile. One release too many is reported and not counted: a negative word would stop every later
// request.
void TempHeap::ReleaseReference() {
    int32_t word = m_iState.load();
    int32_t iResult = 0;
    do {
        iResult = word > 0 ? word - 1 : -1;
        PLATFORM_ASSERT(iResult >= 0);
        if (iResult < 0) {
            return;
        }
    } while (!m_iState.compare_exchange_weak(word, iResult));
    if (iResult == 0 && EnterReset()) {
        m_uiUsed = 0;
        LeaveReset();
    }
}

bool TempHeap::EnterReset() {
    int32_t expected = 0;
    return m_iState.compare_exchange_strong(expected, Resetting);
}

void TempHeap::LeaveReset() {
    m_iState.store(0, std::memory_order_release);
}

void* TempHeap::Allocate(std::size_t size) {
    if (m_uiCapacity.load() == 0) {
        return nullptr;
    }
    TakeReference(); // from here on the arena stays
    uint8_t* const base = m_pBase.load();
    const uint64_t capacity = m_uiCapacity.load();
    if (base && size <= capacity) {
        if (size == 0) {
            return base;
        }
        const uint64_t rounded = RoundUpToGranularity(size);
        uint32_t used = m_uiUsed.load();
        while (used + rounded <= capacity) {
            if (m_uiUsed.compare_exchange_weak(used, static_cast<uint32_t>(used + rounded))) {
                return base + used;
            }
        }
    }
    ReleaseReference();
    return nullptr;
}

bool TempHeap::Owns(const void* pointer) const {
    const auto base = reinterpret_cast<uintptr_t>(m_pBase.load());
    const auto address = reinterpret_cast<uintptr_t>(pointer);
    return base != 0 && address >= base && address - base < m_uiCapacity.load();
}

void TempHeap::Free(void* block) {
    if (!block) {
        return;
    }
    const void* const pBytes = block;
    const bool isOurs = Owns(pBytes);
    PLATFORM_ASSERT_TEXT_MESSAGE(isOurs, "OwnsAllocation(pBytes)",
                                 "Attempting to deallocate mem in the temp heap that did not come from it");
    if (isOurs) {
        ReleaseReference();
    }
}

int32_t TempHeap::LiveBlocks() const {
    const int32_t word = m_iState.load();
    return word > 0 ? word : 0;
}

void* ShortLivedAllocate(std::size_t size) {
    void* const block = g_tempHeap.Allocate(size);
    return block ? block : GeneralAllocate(size);
}

void ShortLivedFree(void* block) {
    if (g_tempHeap.Owns(block)) {
        g_tempHeap.Free(block);
    } else {
        GeneralFree(block);
    }
}

} // namespace Platform

Platform::TempHeap* EXP_GetTempHeap() {
    return &Platform::g_tempHeap;
}
